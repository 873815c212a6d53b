#include "formats/StudyFolderFormat.h"

#include "datamanagement/StudyReader.h"

#include <filesystem>

namespace explorer
{

namespace
{

// The folder a path names: itself, or the folder of its cases.csv.
std::string folderOf(const std::string& path)
{
  const std::filesystem::path given(path);
  std::error_code error;
  if (given.filename() == "cases.csv" && std::filesystem::is_regular_file(given, error))
    return given.parent_path().string();
  return path;
}

bool holdsCases(const std::string& folder)
{
  std::error_code error;
  return std::filesystem::is_regular_file(std::filesystem::path(folder) / "cases.csv", error);
}

} // namespace

int StudyFolderFormat::score(const std::string& path) const
{
  return holdsCases(folderOf(path)) ? 10 : 0;
}

std::shared_ptr<const Project> StudyFolderFormat::read(const std::string& path,
                                                       const ReadOptions&) const
{
  return readStudy(folderOf(path));
}

} // namespace explorer
