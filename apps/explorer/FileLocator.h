#pragma once

#include <QString>
#include <boost/shared_ptr.hpp>

#include <memory>
#include <string>
#include <vector>

class AuxFile;
class ImageFileLoaderInterface;
class Project;
class SerializerInterface;

namespace plexa
{
template<typename T>
class PropertyAbstract;
}

namespace explorer
{

/// Where the files of a study are on this machine. Tables written by other tools name their
/// files by URL ("https://host/study/run1.png") or by an absolute path of the machine that wrote
/// them; the user has the files in a local folder. A location maps a prefix of such paths to a
/// folder: "https://host/study/" to "/home/me/study" reads "run1.png" there.
///
/// The locations are a setting of the study: undoable, and saved with the view settings (the
/// element "FileLocations").
class FileLocator
{
public:
  struct Location
  {
    std::string prefix;
    std::string folder;
  };

  FileLocator();
  ~FileLocator();
  FileLocator(const FileLocator&) = delete;
  FileLocator& operator=(const FileLocator&) = delete;

  /// The path to open for a file of the study: a file that exists as written stays as written;
  /// a "file://" URL is its path; otherwise the longest location whose prefix it starts with
  /// gives the folder. What cannot be located is returned as written.
  std::string locate(const std::string& path) const;
  /// Why a file cannot be opened, or empty: "not found: https://host/a.png (a URL: File >
  /// Locate Files... says where such files are)", "missing: images/a.png".
  QString problem(const AuxFile& file) const;
  /// How many files of the study cannot be found, and of those how many are URLs.
  void countMissing(const Project& project, std::size_t& missing, std::size_t& urls) const;

  /// The locations as prefix and folder, alternately, in the order they were added; views
  /// follow its changes (an edit, an undo, loaded settings).
  boost::shared_ptr<plexa::PropertyAbstract<std::vector<std::string>>> locations() const;
  std::vector<Location> locationList() const;
  /// Adds a location (or replaces the one of the same prefix); one undo step.
  void addLocation(const Location& location);

  /// A loader that reads each file from where `locator` finds it.
  static std::shared_ptr<ImageFileLoaderInterface> locating(
    std::shared_ptr<const FileLocator> locator,
    std::shared_ptr<ImageFileLoaderInterface> loader);

  /// Writes and reads the element "FileLocations".
  boost::shared_ptr<SerializerInterface> serializer() const;

  /// A location for the first file that cannot be found: the part of its path before its name,
  /// and the folder under `searchFrom` (at most three levels down, nearest first) that holds a
  /// file of that name; false when every file is found.
  bool proposeLocation(const Project& project,
                       const std::string& searchFrom,
                       Location& proposed) const;

private:
  struct Impl;
  std::unique_ptr<Impl> d;
};

/// How many of a study's files are missing, counted again only when the study names other files
/// or the locations changed since the last count: a study made anew for a derived variable names
/// the same files, and looking for each is a call to the file system (a second for 200,000).
class MissingFiles
{
public:
  struct Count
  {
    std::size_t missing = 0;
    std::size_t urls = 0;
  };
  Count of(const FileLocator& locator, const Project& project);

private:
  bool counted = false;
  std::size_t countedFor = 0; // a fingerprint of the files' paths and the locations
  Count count;
};

} // namespace explorer
