#pragma once

#include <QTemporaryDir>

#include <string>

namespace testsupport
{

/// A folder removed with everything in it when the object goes.
class TemporaryFolder
{
public:
  TemporaryFolder();

  std::string path() const;
  /// The path of a file inside the folder.
  std::string filePath(const std::string& name) const;
  /// Writes a file (creating its subfolders) and returns its path.
  std::string write(const std::string& name, const std::string& contents) const;

private:
  QTemporaryDir dir;
};

/// The application's settings (and the files kept beside them) in a folder of their own while
/// this lives, then back in the test run's folder: nothing is left behind once the folder goes.
class TemporarySettings
{
public:
  TemporarySettings();
  ~TemporarySettings();
  TemporarySettings(const TemporarySettings&) = delete;
  TemporarySettings& operator=(const TemporarySettings&) = delete;

  std::string path() const { return folder.path(); }

private:
  TemporaryFolder folder;
};

/// Where the test run keeps the application's settings outside a TemporarySettings.
void keepRunSettingsIn(const QString& folder);

/// The whole contents of a file; empty when it cannot be read.
std::string readFile(const std::string& path);

} // namespace testsupport
