#include "support/TemporaryFolder.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace testsupport
{

TemporaryFolder::TemporaryFolder()
{
  if (!dir.isValid())
  {
    throw std::runtime_error("cannot create a temporary folder");
  }
}

namespace
{

QString& runSettings()
{
  static QString folder;
  return folder;
}

void keepSettingsIn(const QString& folder)
{
  QSettings::setDefaultFormat(QSettings::IniFormat);
  QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder);
}

} // namespace

void keepRunSettingsIn(const QString& folder)
{
  runSettings() = folder;
  keepSettingsIn(folder);
}

TemporarySettings::TemporarySettings()
{
  keepSettingsIn(QString::fromStdString(folder.path()));
}

TemporarySettings::~TemporarySettings()
{
  keepSettingsIn(runSettings());
}

std::string TemporaryFolder::path() const
{
  return dir.path().toStdString();
}

std::string TemporaryFolder::filePath(const std::string& name) const
{
  return dir.filePath(QString::fromStdString(name)).toStdString();
}

std::string TemporaryFolder::write(const std::string& name, const std::string& contents) const
{
  std::string file = filePath(name);
  QDir().mkpath(QFileInfo(QString::fromStdString(file)).absolutePath());
  std::ofstream stream(file, std::ios::binary);
  stream << contents;
  if (!stream)
  {
    throw std::runtime_error("cannot write " + file);
  }
  return file;
}

std::string readFile(const std::string& path)
{
  std::ifstream stream(path, std::ios::binary);
  std::ostringstream contents;
  contents << stream.rdbuf();
  return contents.str();
}

} // namespace testsupport
