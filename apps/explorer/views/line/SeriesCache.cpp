#include "views/line/SeriesCache.h"

#include "datamanagement/SeriesReader.h"
#include "datamanagement/StudyFormatError.h"

#include <QMetaObject>
#include <QObject>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <filesystem>
#include <mutex>
#include <thread>
#include <unordered_map>
#include <unordered_set>

namespace explorer
{

namespace
{

std::size_t bytesOf(const SeriesTable& table)
{
  std::size_t bytes = sizeof(SeriesTable);
  for (const auto& column : table.columns)
    bytes += column.capacity() * sizeof(double) + sizeof(std::vector<double>);
  for (const auto& name : table.names)
    bytes += name.capacity() + sizeof(std::string);
  return bytes;
}

SeriesCache::Entry readEntry(const std::string& path)
{
  SeriesCache::Entry entry;
  std::error_code error;
  if (!std::filesystem::exists(path, error))
  {
    entry.error = "missing file: " + path;
    return entry;
  }
  try
  {
    entry.table = std::make_shared<const SeriesTable>(readSeriesTable(path));
  }
  catch (const StudyFormatError& refused)
  {
    entry.error = refused.what();
  }
  catch (const std::bad_alloc&)
  {
    entry.error = path + ": too large to read";
  }
  return entry;
}

} // namespace

struct SeriesCache::Impl
{
  struct Kept
  {
    Entry entry;
    std::size_t bytes = 0;
    unsigned long long askedFor = 0; // the request that last asked for it
  };

  explicit Impl(std::size_t budget)
    : budget(budget)
  {
  }

  std::size_t budget;
  // Owned by the main thread.
  std::unordered_map<std::string, Kept> kept;
  std::size_t keptBytes = 0;
  unsigned long long requests = 0;

  // Shared with the reader.
  mutable std::mutex mutex;
  std::condition_variable wake;
  std::deque<std::string> toRead;
  std::vector<std::pair<std::string, Entry>> done;
  std::size_t reading = 0;
  bool stopping = false;
  QPointer<QObject> context;
  std::function<void()> ready;
  std::thread reader;

  void readLoop()
  {
    auto lastReport = std::chrono::steady_clock::now();
    std::unique_lock lock(mutex);
    for (;;)
    {
      wake.wait(lock, [this] { return stopping || !toRead.empty(); });
      if (stopping)
        return;
      const std::string path = toRead.front();
      toRead.pop_front();
      ++reading;
      lock.unlock();
      Entry entry = readEntry(path);
      lock.lock();
      --reading;
      done.emplace_back(path, std::move(entry));
      const auto now = std::chrono::steady_clock::now();
      if (toRead.empty() || now - lastReport > std::chrono::milliseconds(50))
      {
        lastReport = now;
        report();
      }
    }
  }

  // Tells the view, on its thread, that tables came in. Called with the mutex held.
  void report()
  {
    if (!context || !ready)
      return;
    QMetaObject::invokeMethod(
      context.data(), [callback = ready] { callback(); }, Qt::QueuedConnection);
  }

  // Takes in what the reader read: called on the main thread before any answer.
  void takeIn()
  {
    std::vector<std::pair<std::string, Entry>> arrived;
    {
      std::lock_guard lock(mutex);
      arrived.swap(done);
    }
    for (auto& [path, entry] : arrived)
      keep(path, std::move(entry));
  }

  void keep(const std::string& path, Entry entry)
  {
    const std::size_t bytes =
      entry.table ? bytesOf(*entry.table) : path.size() + entry.error.size();
    if (keptBytes + bytes > budget)
      makeRoom(bytes);
    if (keptBytes + bytes > budget)
    {
      entry.table.reset();
      entry.error = path + ": not kept, the series memory budget (" +
                    std::to_string(budget / (std::size_t{ 1024 } * 1024)) + " MB) is spent";
    }
    const std::size_t size = entry.table ? bytes : path.size() + entry.error.size();
    kept[path] = { std::move(entry), size, requests };
    keptBytes += size;
  }

  // Drops tables the latest request did not ask for, least recently asked for first.
  void makeRoom(std::size_t bytes)
  {
    std::vector<std::pair<unsigned long long, std::string>> old;
    for (const auto& [path, entry] : kept)
      if (entry.askedFor < requests && entry.entry.table)
        old.emplace_back(entry.askedFor, path);
    std::sort(old.begin(), old.end());
    for (const auto& [asked, path] : old)
    {
      if (keptBytes + bytes <= budget)
        return;
      keptBytes -= kept[path].bytes;
      kept.erase(path);
    }
  }
};

SeriesCache::SeriesCache(std::size_t budget)
  : d(std::make_shared<Impl>(budget))
{
  d->reader = std::thread([impl = d.get()] { impl->readLoop(); });
}

SeriesCache::~SeriesCache()
{
  {
    std::lock_guard lock(d->mutex);
    d->stopping = true;
  }
  d->wake.notify_all();
  d->reader.join();
}

const SeriesCache::Entry* SeriesCache::find(const std::string& path)
{
  d->takeIn();
  const auto found = d->kept.find(path);
  return found == d->kept.end() ? nullptr : &found->second.entry;
}

void SeriesCache::request(const std::vector<std::string>& paths,
                          QObject* context,
                          std::function<void()> ready)
{
  d->takeIn();
  ++d->requests;
  std::deque<std::string> wanted;
  std::unordered_set<std::string> seen;
  for (const auto& path : paths)
  {
    if (!seen.insert(path).second)
      continue;
    const auto found = d->kept.find(path);
    if (found != d->kept.end())
      found->second.askedFor = d->requests;
    else
      wanted.push_back(path);
  }
  {
    std::lock_guard lock(d->mutex);
    d->toRead.swap(wanted);
    d->context = context;
    d->ready = std::move(ready);
  }
  d->wake.notify_all();
}

std::size_t SeriesCache::pending() const
{
  d->takeIn();
  std::lock_guard lock(d->mutex);
  return d->toRead.size() + d->reading + d->done.size();
}

std::size_t SeriesCache::bytes() const
{
  d->takeIn();
  return d->keptBytes;
}

} // namespace explorer
