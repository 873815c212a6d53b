#include "FileLocator.h"

#include "PairsSerializer.h"

#include "datamanagement/AuxFile.h"
#include "datamanagement/Project.h"
#include "images/ImageFileLoaderInterface.h"
#include "properties/Property.h"
#include "properties/UndoablePropertyProxy.h"

#include <boost/make_shared.hpp>

#include <deque>
#include <filesystem>
#include <stdexcept>
#include <utility>

namespace fs = std::filesystem;

namespace explorer
{

namespace
{

using Strings = std::vector<std::string>;

bool exists(const std::string& path)
{
  std::error_code error;
  return !path.empty() && fs::is_regular_file(fs::path(path), error);
}

// Reads each file where the locator finds it.
class LocatingLoader : public ImageFileLoaderInterface
{
public:
  LocatingLoader(std::shared_ptr<const FileLocator> locator,
                 std::shared_ptr<ImageFileLoaderInterface> loader)
    : locator(std::move(locator))
    , loader(std::move(loader))
  {
  }

  std::shared_ptr<QImage> image(const std::string& fileName) const override
  {
    return loader->image(locator->locate(fileName));
  }

private:
  std::shared_ptr<const FileLocator> locator;
  std::shared_ptr<ImageFileLoaderInterface> loader;
};

} // namespace

struct FileLocator::Impl
{
  boost::shared_ptr<plexa::UndoablePropertyProxy<Strings>> locations =
    boost::make_shared<plexa::UndoablePropertyProxy<Strings>>(
      "File Locations",
      boost::make_shared<plexa::Property<Strings>>(Strings()));
};

FileLocator::FileLocator()
  : d(std::make_unique<Impl>())
{
}

FileLocator::~FileLocator() = default;

std::string FileLocator::locate(const std::string& path) const
{
  if (exists(path))
    return path;
  std::string written = path;
  // file://host/abs/path and file:///abs/path name /abs/path.
  if (written.rfind("file://", 0) == 0)
  {
    const std::size_t slash = written.find('/', 7);
    written = slash == std::string::npos ? std::string() : written.substr(slash);
    if (exists(written))
      return written;
  }
  const Strings pairs = d->locations->value();
  std::size_t longest = 0;
  std::string located;
  for (std::size_t i = 0; i + 1 < pairs.size(); i += 2)
  {
    const std::string& prefix = pairs[i];
    if (prefix.size() > longest && written.rfind(prefix, 0) == 0)
    {
      // The rest of the path stays inside the folder: ".." cannot climb out of it.
      const fs::path rest = fs::path(written.substr(prefix.size())).lexically_normal();
      if (rest.empty() || *rest.begin() == ".." || rest.is_absolute())
        continue;
      longest = prefix.size();
      located = (fs::path(pairs[i + 1]) / rest).string();
    }
  }
  return located.empty() ? path : located;
}

QString FileLocator::problem(const AuxFile& file) const
{
  const std::string path = file.filePath();
  if (exists(locate(path)))
    return {};
  if (AuxFile::isUrl(path) && path.rfind("file://", 0) != 0)
    return "not found: " + QString::fromStdString(path) +
           " (a URL: File > Locate Files... says where such files are)";
  if (fs::path(file.relativePath()).is_absolute())
    return "not found: " + QString::fromStdString(path) +
           " (File > Locate Files... says where such files are)";
  return "missing: " + QString::fromStdString(file.relativePath());
}

void FileLocator::countMissing(const Project& project,
                               std::size_t& missing,
                               std::size_t& urls) const
{
  missing = 0;
  urls = 0;
  for (const auto& handle : project.auxFiles())
  {
    const std::string path = handle.lock().filePath();
    // A file where it was written is looked for once, not again by locate().
    if (exists(path) || exists(locate(path)))
      continue;
    ++missing;
    urls += AuxFile::isUrl(path) ? 1 : 0;
  }
}

boost::shared_ptr<plexa::PropertyAbstract<Strings>> FileLocator::locations() const
{
  return d->locations;
}

std::vector<FileLocator::Location> FileLocator::locationList() const
{
  const Strings pairs = d->locations->value();
  std::vector<Location> list;
  for (std::size_t i = 0; i + 1 < pairs.size(); i += 2)
    list.push_back({ pairs[i], pairs[i + 1] });
  return list;
}

void FileLocator::addLocation(const Location& location)
{
  Strings pairs = d->locations->value();
  bool replaced = false;
  for (std::size_t i = 0; i + 1 < pairs.size(); i += 2)
  {
    if (pairs[i] == location.prefix)
    {
      pairs[i + 1] = location.folder;
      replaced = true;
    }
  }
  if (!replaced)
  {
    pairs.push_back(location.prefix);
    pairs.push_back(location.folder);
  }
  d->locations->setValue(pairs);
}

std::shared_ptr<ImageFileLoaderInterface> FileLocator::locating(
  std::shared_ptr<const FileLocator> locator,
  std::shared_ptr<ImageFileLoaderInterface> loader)
{
  return std::make_shared<LocatingLoader>(std::move(locator), std::move(loader));
}

boost::shared_ptr<SerializerInterface> FileLocator::serializer() const
{
  // <FileLocations><Location prefix="https://host/" folder="/home/me/runs"/>...</FileLocations>
  return boost::make_shared<PairsSerializer>(
    PairsSerializer::Names{ "FileLocations", "Location", "prefix", "folder" },
    d->locations,
    [](const std::string& prefix, const std::string& folder)
    {
      if (prefix.empty() || folder.empty())
        throw std::invalid_argument("a file location needs a prefix and a folder");
    });
}

bool FileLocator::proposeLocation(const Project& project,
                                  const std::string& searchFrom,
                                  Location& proposed) const
{
  for (const auto& handle : project.auxFiles())
  {
    const std::string path = handle.lock().filePath();
    // A file where it was written is looked for once, not again by locate().
    if (exists(path) || exists(locate(path)))
      continue;
    const std::size_t slash = path.find_last_of('/');
    const std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
    proposed.prefix = slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
    proposed.folder.clear();
    // Breadth first, so that the nearest folder holding such a name is proposed.
    std::deque<std::pair<fs::path, int>> folders{ { fs::path(searchFrom), 0 } };
    std::error_code error;
    while (!folders.empty() && proposed.folder.empty())
    {
      const auto [folder, depth] = folders.front();
      folders.pop_front();
      if (exists((folder / name).string()))
      {
        proposed.folder = folder.string();
        break;
      }
      if (depth >= 3)
        continue;
      for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
           entry.increment(error))
        if (entry->is_directory(error))
          folders.emplace_back(entry->path(), depth + 1);
    }
    return true;
  }
  return false;
}

MissingFiles::Count MissingFiles::of(const FileLocator& locator, const Project& project)
{
  std::size_t fingerprint = std::hash<std::string>{}(project.folder());
  const auto mix = [&fingerprint](const std::string& text)
  {
    fingerprint ^= std::hash<std::string>{}(text) + 0x9e3779b97f4a7c15ULL + (fingerprint << 6) +
                   (fingerprint >> 2);
  };
  for (const auto& handle : project.auxFiles())
    mix(handle.lock().filePath());
  for (const std::string& text : locator.locations()->value())
    mix(text);
  if (!counted || fingerprint != countedFor)
  {
    locator.countMissing(project, count.missing, count.urls);
    counted = true;
    countedFor = fingerprint;
  }
  return count;
}

} // namespace explorer
