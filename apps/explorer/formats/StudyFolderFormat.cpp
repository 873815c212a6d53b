#include "formats/StudyFolderFormat.h"

#include "datamanagement/StudyReader.h"

#include <filesystem>

namespace explorer
{

int StudyFolderFormat::score(const std::string& path) const
{
  std::error_code error;
  return std::filesystem::is_regular_file(std::filesystem::path(path) / "cases.csv", error) ? 10
                                                                                            : 0;
}

std::shared_ptr<const Project> StudyFolderFormat::read(const std::string& path,
                                                       const ReadOptions&) const
{
  return readStudy(path);
}

} // namespace explorer
