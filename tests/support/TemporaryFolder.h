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

/// The whole contents of a file; empty when it cannot be read.
std::string readFile(const std::string& path);

} // namespace testsupport
