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

std::vector<std::string> imageTags(const Project& project)
{
  // Per tag: whether every file seen with it so far is an image.
  std::map<std::string, bool> allImages;
  for (const auto& handle : project.auxFiles())
  {
    const AuxFile file = handle.lock();
    const bool image = isImage(file.filePath());
    for (const auto& tag : file.tags())
    {
      const auto [entry, added] = allImages.emplace(tag, image);
      if (!added)
        entry->second = entry->second && image;
    }
  }
  std::vector<std::string> tags;
  for (const auto& tag : project.tags())
    if (allImages[tag])
      tags.push_back(tag);
  return tags;
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
