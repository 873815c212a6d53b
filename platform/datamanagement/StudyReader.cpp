#include "datamanagement/StudyReader.h"

#include "datamanagement/CsvTokenizer_p.h"
#include "datamanagement/Project.h"
#include "datamanagement/ProjectBuilder.h"
#include "datamanagement/StudyFormatError.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <sstream>
#include <unordered_map>

namespace fs = std::filesystem;

namespace
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

// A numeric field: an empty field or "nan" is NaN. False when the field is not a number.
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

std::string readFile(const fs::path& path)
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

// The text of a CSV file, checked to be UTF-8, without a byte-order mark.
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

struct ParsedColumn
{
  std::string name;
  bool isText = false;
  std::vector<double> numbers;
  std::vector<std::string> texts;
};

void readCases(const fs::path& path,
               ProjectBuilder& builder,
               std::unordered_map<unsigned long long, std::size_t>& lineOfCase)
{
  const std::string contents = readFile(path);
  const std::string file = path.string();
  const std::string_view text = checkedText(contents, file);
  CsvTokenizer csv(text, file);
  std::vector<CsvTokenizer::Field> fields;

  if (!csv.next(fields))
    throw StudyFormatError(file, 1, 1, "the file is empty; it needs a header line");
  if (trimmed(fields[0].text) != ProjectBuilder::caseIdName)
    throw StudyFormatError(file,
                           csv.recordLine(),
                           fields[0].column,
                           "the first column must be \"case_id\", found " +
                             inQuotes(trimmed(fields[0].text)));
  std::vector<ParsedColumn> columns(fields.size() - 1);
  std::unordered_map<std::string, std::size_t> columnOfName;
  lineOfCase.reserve(text.size() / 32);
  for (std::size_t c = 1; c < fields.size(); ++c)
  {
    const std::string name(trimmed(fields[c].text));
    if (name.empty())
      throw StudyFormatError(file,
                             csv.recordLine(),
                             fields[c].column,
                             "column " + std::to_string(c + 1) + " has no name");
    if (name == ProjectBuilder::caseIdName || !columnOfName.emplace(name, c).second)
      throw StudyFormatError(
        file, csv.recordLine(), fields[c].column, "column name " + inQuotes(name) + " is repeated");
    columns[c - 1].name = name;
  }
  const std::size_t width = fields.size();

  // Where each record starts, to read the earlier values of a column again as texts when a
  // later value shows that the column is not numeric.
  std::vector<std::pair<std::size_t, std::size_t>> recordStarts;
  std::vector<unsigned long long> caseIds;
  std::size_t start = csv.position();
  std::size_t startLine = csv.nextLine();
  while (csv.next(fields))
  {
    recordStarts.emplace_back(start, startLine);
    checkFieldCount(csv, fields, width);
    const unsigned long long id = parseCaseId(csv, fields[0]);
    const auto [previous, inserted] = lineOfCase.emplace(id, csv.recordLine());
    if (!inserted)
      throw StudyFormatError(file,
                             csv.recordLine(),
                             fields[0].column,
                             "case id " + std::to_string(id) + " is repeated (first on line " +
                               std::to_string(previous->second) + ")");
    caseIds.push_back(id);
    const std::size_t row = caseIds.size() - 1;

    for (std::size_t c = 1; c < width; ++c)
    {
      ParsedColumn& column = columns[c - 1];
      if (column.isText)
      {
        column.texts.emplace_back(fields[c].text);
        continue;
      }
      double value = 0.0;
      if (parseNumber(fields[c].text, value))
      {
        column.numbers.push_back(value);
        continue;
      }
      // The column turns out to hold text: read its earlier fields again, as written.
      column.isText = true;
      column.numbers.clear();
      column.numbers.shrink_to_fit();
      column.texts.reserve(row + 1);
      CsvTokenizer again(text, file);
      std::vector<CsvTokenizer::Field> earlier;
      for (std::size_t r = 0; r < row; ++r)
      {
        again.seek(recordStarts[r].first, recordStarts[r].second);
        again.next(earlier);
        column.texts.emplace_back(earlier[c].text);
      }
      column.texts.emplace_back(fields[c].text);
    }
    start = csv.position();
    startLine = csv.nextLine();
  }

  builder.setCaseIds(std::move(caseIds));
  for (auto& column : columns)
  {
    if (column.isText)
      builder.addTextVariable(std::move(column.name), std::move(column.texts));
    else
      builder.addNumericVariable(std::move(column.name), std::move(column.numbers));
  }
}

std::vector<std::string> splitTags(std::string_view text)
{
  std::vector<std::string> tags;
  while (true)
  {
    const auto separator = text.find(';');
    const std::string_view tag = trimmed(text.substr(0, separator));
    if (!tag.empty())
      tags.emplace_back(tag);
    if (separator == std::string_view::npos)
      return tags;
    text.remove_prefix(separator + 1);
  }
}

void readAuxFiles(const fs::path& path,
                  ProjectBuilder& builder,
                  const std::unordered_map<unsigned long long, std::size_t>& lineOfCase)
{
  const std::string contents = readFile(path);
  const std::string file = path.string();
  CsvTokenizer csv(checkedText(contents, file), file);
  std::vector<CsvTokenizer::Field> fields;
  if (!csv.next(fields))
    return;
  const char* expected[] = { "case_id", "path", "tags" };
  checkFieldCount(csv, fields, 3);
  for (std::size_t c = 0; c < 3; ++c)
  {
    if (trimmed(fields[c].text) != expected[c])
      throw StudyFormatError(file,
                             csv.recordLine(),
                             fields[c].column,
                             "the header must be \"case_id,path,tags\"; column " +
                               std::to_string(c + 1) + " is " + inQuotes(trimmed(fields[c].text)));
  }
  while (csv.next(fields))
  {
    checkFieldCount(csv, fields, 3);
    const unsigned long long id = parseCaseId(csv, fields[0]);
    if (lineOfCase.count(id) == 0)
      throw StudyFormatError(file,
                             csv.recordLine(),
                             fields[0].column,
                             "case id " + std::to_string(id) + " is not in cases.csv");
    const std::string_view text = trimmed(fields[1].text);
    if (text.empty())
      throw StudyFormatError(file, csv.recordLine(), fields[1].column, "the path is empty");
    const fs::path relative(text);
    if (relative.has_root_path())
      throw StudyFormatError(file,
                             csv.recordLine(),
                             fields[1].column,
                             "path " + inQuotes(text) + " must be relative to the study folder");
    const fs::path normal = relative.lexically_normal();
    if (!normal.empty() && *normal.begin() == "..")
      throw StudyFormatError(file,
                             csv.recordLine(),
                             fields[1].column,
                             "path " + inQuotes(text) + " leads out of the study folder");
    builder.addAuxFile(id, std::string(text), splitTags(fields[2].text));
  }
}

} // namespace

std::shared_ptr<const Project> readStudy(const std::string& folder)
{
  const fs::path root(folder);
  std::error_code error;
  if (!fs::is_directory(root, error))
    throw StudyFormatError(folder, 0, 0, "the study folder does not exist");
  const fs::path cases = root / "cases.csv";
  if (!fs::exists(cases, error))
    throw StudyFormatError(cases.string(), 0, 0, "the study folder has no cases.csv");

  ProjectBuilder builder;
  builder.setFolder(root.lexically_normal().string());
  std::unordered_map<unsigned long long, std::size_t> lineOfCase;
  readCases(cases, builder, lineOfCase);
  const fs::path auxFiles = root / "auxfiles.csv";
  if (fs::exists(auxFiles, error))
    readAuxFiles(auxFiles, builder, lineOfCase);
  return builder.build();
}
