#pragma once

#include "images/ImageFileLoaderInterface.h"

#include <QImage>

#include <memory>
#include <mutex>
#include <string>
#include <type_traits>
#include <unordered_map>

/// The cache under every loader: each file name is produced once and then served from the map
/// for as long as its entry yields an image. EntryT is the kind of reference kept:
/// std::weak_ptr<QImage> (an image stays cached while someone else holds it) or
/// std::shared_ptr<QImage> (kept until clear() or destruction).
///
/// image() holds the loader's mutex for the whole request, production included, so concurrent
/// requests to one loader are served one after another and a produceImage must never call back
/// into the same loader. File names are compared as exact byte strings.
template<typename EntryT>
class CachingImageLoaderAbstract : public virtual ImageFileLoaderInterface
{
public:
  CachingImageLoaderAbstract() { entries.max_load_factor(1.0f); }
  ~CachingImageLoaderAbstract() override = default;

  std::shared_ptr<QImage> image(const std::string& fileName) const override
  {
    std::lock_guard<std::mutex> lock(mutex);
    const auto found = entries.find(fileName);
    if (found != entries.end())
    {
      std::shared_ptr<QImage> cached = toSharedPointer(found->second);
      if (cached)
      {
        return cached;
      }
      // A weak entry whose image has been freed: load it anew.
      entries.erase(found);
    }
    return loadNewCacheEntry(fileName);
  }

protected:
  /// Forgets every entry.
  void clear() const
  {
    std::lock_guard<std::mutex> lock(mutex);
    entries.clear();
  }

  /// Runs f with the loader's mutex held, for state that production reads.
  template<typename F>
  auto withLock(F&& f) const
  {
    std::lock_guard<std::mutex> lock(mutex);
    return f();
  }

  /// Forgets every entry; only inside withLock.
  void clearWhileLocked() const { entries.clear(); }

  /// The number of entries, stale ones included.
  std::size_t entryCount() const
  {
    std::lock_guard<std::mutex> lock(mutex);
    return entries.size();
  }

private:
  /// What the loader does on a miss; never returns an empty pointer.
  virtual std::shared_ptr<QImage> produceImage(const std::string& fileName) const = 0;

  std::shared_ptr<QImage> loadNewCacheEntry(const std::string& fileName) const
  {
    std::shared_ptr<QImage> produced = produceImage(fileName);
    if (!produced)
    {
      produced = std::make_shared<QImage>();
    }
    entries.emplace(fileName, EntryT(produced));
    return produced;
  }

  std::shared_ptr<QImage> toSharedPointer(const EntryT& entry) const
  {
    if constexpr (std::is_same_v<EntryT, std::weak_ptr<QImage>>)
      return entry.lock();
    else
      return entry;
  }

  mutable std::unordered_map<std::string, EntryT> entries;
  mutable std::mutex mutex;
};
