#include "formats/CinemaDatabaseFormat.h"

#include <filesystem>

namespace explorer
{

int CinemaDatabaseFormat::score(const std::string& path) const
{
  std::error_code error;
  return std::filesystem::is_regular_file(std::filesystem::path(path) / "data.csv", error) ? 5 : 0;
}

std::shared_ptr<const Project> CinemaDatabaseFormat::read(const std::string& path,
                                                          const ReadOptions& options) const
{
  return readCinemaDatabase(path, options.rebases);
}

} // namespace explorer
