#include "datamanagement/StudyText_p.h"

#include "datamanagement/AuxFile.h"
#include "datamanagement/StudyFormatError.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <fstream>
#include <limits>
#include <unordered_set>

namespace studytext
{

std::string_view trimmed(std::string_view text)
{
  const auto isBlank = [](char c) { return c == ' ' || c == '\t'; };
  while (!text.empty() && isBlank(text.front()))
    text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back()))
    text.remove_suffix(1);
  return text;
}

std::string inQuotes(std::string_view text)
{
  return "\"" + std::string(text) + "\"";
}

bool isNanText(std::string_view text)
{
  return text.size() == 3 && (text[0] == 'n' || text[0] == 'N') &&
         (text[1] == 'a' || text[1] == 'A') && (text[2] == 'n' || text[2] == 'N');
}

bool parseNumber(std::string_view field, double& value)
{
  const std::string_view text = trimmed(field);
  if (text.empty() || isNanText(text))
  {
    value = std::numeric_limits<double>::quiet_NaN();
    return true;
  }
  std::string_view digits = text;
  if (digits.front() == '+')
    digits.remove_prefix(1);
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (result.ec == std::errc::result_out_of_range)
  {
    // Beyond the double range: keep the sign, as other CSV readers do.
    value = digits.front() == '-' ? -std::numeric_limits<double>::infinity()
                                  : std::numeric_limits<double>::infinity();
    return result.ptr == digits.data() + digits.size();
  }
  return result.ec == std::errc() && result.ptr == digits.data() + digits.size();
}

std::string readFile(const std::filesystem::path& path)
{
  std::ifstream stream(path, std::ios::binary);
  if (!stream)
    throw StudyFormatError(path.string(), 0, 0, "cannot open the file");
  stream.seekg(0, std::ios::end);
  const std::streamoff size = stream.tellg();
  stream.seekg(0, std::ios::beg);
  std::string contents(static_cast<std::size_t>(std::max<std::streamoff>(size, 0)), '\0');
  if (size > 0 && !stream.read(contents.data(), size))
    throw StudyFormatError(path.string(), 0, 0, "cannot read the file");
  return contents;
}

std::string_view checkedText(const std::string& contents, const std::string& file)
{
  const auto [line, column] = firstInvalidUtf8(contents);
  if (line != 0)
    throw StudyFormatError(file, line, column, "the text is not valid UTF-8");
  std::string_view text = contents;
  if (text.substr(0, 3) == "\xEF\xBB\xBF")
    text.remove_prefix(3);
  return text;
}

unsigned long long parseCaseId(const CsvTokenizer& csv, const CsvTokenizer::Field& field)
{
  const std::string_view text = trimmed(field.text);
  if (text.empty())
    throw StudyFormatError(csv.file(), csv.recordLine(), field.column, "the case id is empty");
  unsigned long long id = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), id);
  if (result.ec == std::errc::result_out_of_range && result.ptr == text.data() + text.size())
    throw StudyFormatError(csv.file(),
                           csv.recordLine(),
                           field.column,
                           "case id " + inQuotes(text) +
                             " is beyond the largest case id, 18446744073709551615");
  if (result.ec != std::errc() || result.ptr != text.data() + text.size())
    throw StudyFormatError(csv.file(),
                           csv.recordLine(),
                           field.column,
                           "case id " + inQuotes(text) + " is not a non-negative integer");
  return id;
}

void checkFieldCount(const CsvTokenizer& csv,
                     const std::vector<CsvTokenizer::Field>& fields,
                     std::size_t expected)
{
  if (fields.size() != expected)
  {
    const std::size_t column = fields.size() > expected ? fields[expected].column : 1;
    throw StudyFormatError(csv.file(),
                           csv.recordLine(),
                           column,
                           "expected " + std::to_string(expected) + " fields, found " +
                             std::to_string(fields.size()));
  }
}

bool isIdColumnName(std::string name)
{
  std::transform(name.begin(),
                 name.end(),
                 name.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return name == "case_id" || name == "id" || name == "run" || name == "simuid";
}

bool asCaseIds(const std::vector<std::string>& cells, std::vector<unsigned long long>& ids)
{
  std::unordered_set<unsigned long long> seen;
  ids.clear();
  for (const std::string& cell : cells)
  {
    const std::string_view text = trimmed(cell);
    unsigned long long id = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), id);
    if (text.empty() || result.ec != std::errc() || result.ptr != text.data() + text.size() ||
        !seen.insert(id).second)
      return false;
    ids.push_back(id);
  }
  return true;
}

bool isNormalRelativePath(std::string_view path)
{
  if (path.empty() || path.front() == '/' || path.back() == '/' ||
      path.find('\\') != std::string_view::npos)
    return false;
  for (std::size_t start = 0; start <= path.size();)
  {
    std::size_t end = path.find('/', start);
    if (end == std::string_view::npos)
      end = path.size();
    const std::string_view part = path.substr(start, end - start);
    if (part.empty() || part == "." || part == "..")
      return false;
    start = end + 1;
  }
  return true;
}

std::string resolvedPath(std::string_view cell,
                         const std::filesystem::path& root,
                         const std::vector<PathRebase>& rebases,
                         const CellPlace& place,
                         const std::string& folder)
{
  std::string text(cell);
  // file://host/abs/path and file:///abs/path name the absolute path /abs/path.
  if (text.rfind("file://", 0) == 0)
  {
    const std::size_t slash = text.find('/', 7);
    text = slash == std::string::npos ? std::string() : text.substr(slash);
  }
  const auto refuse = [&](const std::string& why)
  {
    throw StudyFormatError(place.file,
                           place.line,
                           place.column,
                           "row " + std::to_string(place.row) + ": path " + inQuotes(cell) + " " +
                             why);
  };
  for (const PathRebase& rebase : rebases)
  {
    if (!rebase.from.empty() && text.rfind(rebase.from, 0) == 0)
    {
      // A rebase is the user's word for where the files are: taken as it is, with the one
      // slash between folder and name that "https://host/=/local" leaves out.
      const std::string rest = text.substr(rebase.from.size());
      const bool slashMissing = !rebase.to.empty() && rebase.to.back() != '/' && !rest.empty() &&
                                rest.front() != '/' && rebase.from.back() == '/';
      return rebase.to + (slashMissing ? "/" : "") + rest;
    }
  }
  // A URL names a file elsewhere, found or not by the program that shows it; kept as written.
  if (AuxFile::isUrl(text))
    return text;
  if (isNormalRelativePath(text))
    return text;
  std::filesystem::path path(text);
  if (path.is_absolute())
  {
    path = path.lexically_normal().lexically_relative(root);
    if (path.empty() || *path.begin() == "..")
      refuse("is outside " + folder + "; --rebase OLD=NEW rewrites such paths");
  }
  const std::filesystem::path normal = path.lexically_normal();
  if (normal.empty() || *normal.begin() == "..")
    refuse("leads out of " + folder + "; --rebase OLD=NEW rewrites such paths");
  return normal.generic_string();
}

std::string resolvedPath(std::string&& cell,
                         const std::filesystem::path& root,
                         const std::vector<PathRebase>& rebases,
                         const CellPlace& place,
                         const std::string& folder)
{
  const bool rebased = std::any_of(rebases.begin(),
                                   rebases.end(),
                                   [&](const PathRebase& rebase) {
                                     return !rebase.from.empty() && cell.rfind(rebase.from, 0) == 0;
                                   });
  if (!rebased && isNormalRelativePath(cell))
    return std::move(cell);
  return resolvedPath(std::string_view(cell), root, rebases, place, folder);
}

} // namespace studytext
