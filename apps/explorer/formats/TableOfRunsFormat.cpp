#include "formats/TableOfRunsFormat.h"

#include "datamanagement/TableReader.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

namespace explorer
{

int TableOfRunsFormat::score(const std::string& path) const
{
  const std::filesystem::path file(path);
  std::error_code error;
  if (!std::filesystem::is_regular_file(file, error))
    return 0;
  std::string extension = file.extension().string();
  std::transform(extension.begin(),
                 extension.end(),
                 extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return extension == ".csv" || extension == ".tsv" || extension == ".txt" ? 5 : 0;
}

std::shared_ptr<const Project> TableOfRunsFormat::read(const std::string& path,
                                                       const ReadOptions& options) const
{
  return readRunTable(path, options.rebases);
}

} // namespace explorer
