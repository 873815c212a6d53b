#include "StudyFiles.h"

#include "datamanagement/Project.h"
#include "datamanagement/Record.h"

#include <QByteArray>
#include <QFileInfo>
#include <QImageReader>
#include <QSet>

#include <map>
#include <memory>
#include <mutex>

namespace explorer::studyfiles
{

namespace
{

const QSet<QByteArray>& imageExtensions()
{
  static const QSet<QByteArray> extensions = []
  {
    QSet<QByteArray> known;
    for (const QByteArray& format : QImageReader::supportedImageFormats())
      known.insert(format.toLower());
    return known;
  }();
  return extensions;
}

} // namespace

bool isImage(const std::string& path)
{
  const QString name = QString::fromStdString(path);
  const QString suffix = QFileInfo(name).suffix().toLower();
  if (!suffix.isEmpty())
    return imageExtensions().contains(suffix.toLatin1());
  return QFileInfo::exists(name) && QImageReader(name).canRead();
}

bool isSeries(const std::string& path)
{
  const QString suffix = QFileInfo(QString::fromStdString(path)).suffix().toLower();
  return suffix == "csv" || suffix == "tsv" || suffix == "txt";
}

namespace
{

// What the views ask of a study's files, again and again as they are made (each image view,
// each chooser of tags, the line plot): found in one walk over the files and kept for the last
// study asked about. A study never changes once built, and a walk reads every file's path (two
// hundred thousand at 100,000 runs with two images each).
struct FileKinds
{
  std::vector<std::string> imageTags;
  std::vector<std::string> seriesTags;
  bool otherFiles = false;
};

FileKinds kindsOf(const Project& project)
{
  // Per tag: whether every file with it is an image, and whether every one is a series.
  std::map<std::string, std::pair<bool, bool>> allOfKind;
  FileKinds kinds;
  for (const auto& handle : project.auxFiles())
  {
    const AuxFile file = handle.lock();
    const std::string path = file.filePath();
    const bool image = isImage(path);
    const bool series = isSeries(path);
    kinds.otherFiles = kinds.otherFiles || !image;
    for (const auto& tag : file.tags())
    {
      const auto [entry, added] = allOfKind.emplace(tag, std::make_pair(image, series));
      if (!added)
        entry->second = { entry->second.first && image, entry->second.second && series };
    }
  }
  for (const auto& tag : project.tags())
  {
    const auto kind = allOfKind.find(tag);
    if (kind != allOfKind.end() && kind->second.first)
      kinds.imageTags.push_back(tag);
    if (kind != allOfKind.end() && kind->second.second)
      kinds.seriesTags.push_back(tag);
  }
  return kinds;
}

FileKinds kindsKeptFor(const Project& project)
{
  static std::mutex lock;
  static std::weak_ptr<const Project> keptFor;
  static FileKinds kept;
  const std::lock_guard<std::mutex> guard(lock);
  const std::weak_ptr<const Project> asked = project.weak_from_this();
  if (keptFor.lock().get() != &project || asked.expired())
  {
    kept = kindsOf(project);
    keptFor = asked;
  }
  return kept;
}

} // namespace

std::vector<std::string> imageTags(const Project& project)
{
  return kindsKeptFor(project).imageTags;
}

std::vector<std::string> seriesTags(const Project& project)
{
  return kindsKeptFor(project).seriesTags;
}

bool hasOtherFiles(const Project& project)
{
  return kindsKeptFor(project).otherFiles;
}

std::vector<AuxFile> imagesOf(const Record& record, const std::string& tag)
{
  std::vector<AuxFile> images;
  for (const auto& handle : record.auxFiles())
  {
    const AuxFile file = handle.lock();
    if ((tag.empty() || file.hasTag(tag)) && isImage(file.filePath()))
      images.push_back(file);
  }
  return images;
}

} // namespace explorer::studyfiles
