#include "formats/StudyFormats.h"

#include "formats/CinemaDatabaseFormat.h"
#include "formats/StudyFolderFormat.h"
#include "formats/TableOfRunsFormat.h"

#include "datamanagement/StudyFormatError.h"

#include <filesystem>

namespace explorer
{

const std::vector<std::unique_ptr<StudyFormat>>& studyFormats()
{
  // A new format is a file pair in formats/ and one line here.
  static const std::vector<std::unique_ptr<StudyFormat>> formats = []
  {
    std::vector<std::unique_ptr<StudyFormat>> list;
    list.push_back(std::make_unique<StudyFolderFormat>());
    list.push_back(std::make_unique<CinemaDatabaseFormat>());
    list.push_back(std::make_unique<TableOfRunsFormat>());
    return list;
  }();
  return formats;
}

const StudyFormat* formatOf(const std::string& path)
{
  const StudyFormat* best = nullptr;
  int bestScore = 0;
  for (const auto& format : studyFormats())
  {
    const int score = format->score(path);
    if (score > bestScore)
    {
      best = format.get();
      bestScore = score;
    }
  }
  return best;
}

std::shared_ptr<const Project> readAnyStudy(const std::string& path, const ReadOptions& options)
{
  if (const StudyFormat* format = formatOf(path))
    return format->read(path, options);
  namespace fs = std::filesystem;
  std::error_code error;
  std::string what;
  if (!fs::exists(fs::path(path), error))
    what = "does not exist";
  else if (fs::is_directory(fs::path(path), error))
    what = "is a folder the explorer does not read";
  else
    what = "is a file the explorer does not read";
  std::string formats;
  for (const auto& format : studyFormats())
    formats += (formats.empty() ? "" : ", or ") + format->description();
  throw StudyFormatError(path, 0, 0, what + "; the explorer opens " + formats);
}

std::string formatsHelp()
{
  std::string help;
  for (const auto& format : studyFormats())
    help += "  " + format->name() + ": " + format->description() + "\n";
  return help;
}

} // namespace explorer
