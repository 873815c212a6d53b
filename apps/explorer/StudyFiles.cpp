#include "StudyFiles.h"

#include "datamanagement/Project.h"
#include "datamanagement/Record.h"

#include <QByteArray>
#include <QFileInfo>
#include <QImageReader>
#include <QSet>

#include <map>

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

namespace
{

// The tags whose files are all of a kind, in the study's order of tags.
std::vector<std::string> tagsOfFiles(const Project& project, bool (*ofKind)(const std::string&))
{
  // Per tag: whether every file seen with it so far is of the kind.
  std::map<std::string, bool> allOfKind;
  for (const auto& handle : project.auxFiles())
  {
    const AuxFile file = handle.lock();
    const bool matches = ofKind(file.filePath());
    for (const auto& tag : file.tags())
    {
      const auto [entry, added] = allOfKind.emplace(tag, matches);
      if (!added)
        entry->second = entry->second && matches;
    }
  }
  std::vector<std::string> tags;
  for (const auto& tag : project.tags())
    if (allOfKind[tag])
      tags.push_back(tag);
  return tags;
}

} // namespace

std::vector<std::string> imageTags(const Project& project)
{
  return tagsOfFiles(project, isImage);
}

bool isSeries(const std::string& path)
{
  const QString suffix = QFileInfo(QString::fromStdString(path)).suffix().toLower();
  return suffix == "csv" || suffix == "tsv" || suffix == "txt";
}

std::vector<std::string> seriesTags(const Project& project)
{
  return tagsOfFiles(project, isSeries);
}

bool hasOtherFiles(const Project& project)
{
  for (const auto& handle : project.auxFiles())
    if (!isImage(handle.lock().filePath()))
      return true;
  return false;
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
