#include "formats/CinemaDatabaseFormat.h"

#include <filesystem>

namespace explorer
{

namespace
{

// The folder a path names: itself, or the folder of its data.csv.
std::string folderOf(const std::string& path)
{
  const std::filesystem::path given(path);
  std::error_code error;
  if (given.filename() == "data.csv" && std::filesystem::is_regular_file(given, error))
    return given.parent_path().string();
  return path;
}

bool holdsData(const std::string& folder)
{
  std::error_code error;
  return std::filesystem::is_regular_file(std::filesystem::path(folder) / "data.csv", error);
}

} // namespace

int CinemaDatabaseFormat::score(const std::string& path) const
{
  return holdsData(folderOf(path)) ? 6 : 0;
}

std::shared_ptr<const Project> CinemaDatabaseFormat::read(const std::string& path,
                                                          const ReadOptions& options) const
{
  return readCinemaDatabase(folderOf(path), options.rebases);
}

} // namespace explorer
