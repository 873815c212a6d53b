#include "datamanagement/StudyReader.h"

#include "datamanagement/CsvTokenizer_p.h"
#include "datamanagement/Project.h"
#include "datamanagement/ProjectBuilder.h"
#include "datamanagement/StudyFormatError.h"
#include "datamanagement/StudyText_p.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <sstream>
#include <unordered_map>

namespace fs = std::filesystem;
using namespace studytext;

namespace
{

struct ParsedColumn
{
  std::string name;
  bool isText = false;
  std::vector<double> numbers;
  std::vector<std::string> texts;
};

// The case ids read so far, in the file's order. Ids that ascend, as most studies write them, are
// told apart by comparing each with the one before; a table of every id is built only once they
// stop ascending (ten million ids in a hash table cost 400 MB while the study is read).
class CaseIndex
{
public:
  void reserve(std::size_t expected) { ids.reserve(expected); }

  /// Adds an id; false (and nothing added) when it was read before.
  bool add(unsigned long long id)
  {
    if (rowOf.empty() && (ids.empty() || id > ids.back()))
    {
      ids.push_back(id);
      return true;
    }
    if (rowOf.empty())
    {
      rowOf.reserve(ids.capacity());
      for (std::size_t row = 0; row < ids.size(); ++row)
        rowOf.emplace(ids[row], row);
    }
    if (!rowOf.emplace(id, ids.size()).second)
      return false;
    ids.push_back(id);
    return true;
  }

  /// The row of an id read before, or npos.
  std::size_t find(unsigned long long id) const
  {
    if (rowOf.empty())
    {
      const auto found = std::lower_bound(ids.begin(), ids.end(), id);
      return found != ids.end() && *found == id ? std::size_t(found - ids.begin()) : npos;
    }
    const auto found = rowOf.find(id);
    return found == rowOf.end() ? npos : found->second;
  }

  /// The ids, in the file's order; the index is left empty (its table of ids, if any, goes before
  /// the study is built with its own).
  std::vector<unsigned long long> takeIds()
  {
    rowOf = {};
    return std::move(ids);
  }

  static constexpr std::size_t npos = std::size_t(-1);

private:
  std::vector<unsigned long long> ids;
  std::unordered_map<unsigned long long, std::size_t> rowOf;
};

// Reads the cases' ids into `cases` and their values into `builder`.
void readCases(const fs::path& path, ProjectBuilder& builder, CaseIndex& cases)
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

  // Where the first record starts: the earlier values of a column are read again from there as
  // texts when a later value shows that the column is not numeric.
  const std::size_t firstStart = csv.position();
  const std::size_t firstLine = csv.nextLine();
  // A record a line, as nearly every file has it: the columns get their room once, instead of
  // growing by doubling (ten million values would hold room for 16.7 million meanwhile).
  const std::size_t expected =
    std::size_t(std::count(text.begin() + std::ptrdiff_t(firstStart), text.end(), '\n')) + 1;
  cases.reserve(expected);
  for (auto& column : columns)
    column.numbers.reserve(expected);
  std::size_t rows = 0;
  while (csv.next(fields))
  {
    checkFieldCount(csv, fields, width);
    const unsigned long long id = parseCaseId(csv, fields[0]);
    if (!cases.add(id))
    {
      // The line of its first record, found by reading the records again up to it.
      CsvTokenizer again(text, file);
      again.seek(firstStart, firstLine);
      std::vector<CsvTokenizer::Field> earlier;
      const std::size_t firstRow = cases.find(id);
      for (std::size_t r = 0; r <= firstRow; ++r)
        again.next(earlier);
      throw StudyFormatError(file,
                             csv.recordLine(),
                             fields[0].column,
                             "case id " + std::to_string(id) + " is repeated (first on line " +
                               std::to_string(again.recordLine()) + ")");
    }
    const std::size_t row = rows++;

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
      column.texts.reserve(std::max(expected, row + 1));
      CsvTokenizer again(text, file);
      again.seek(firstStart, firstLine);
      std::vector<CsvTokenizer::Field> earlier;
      for (std::size_t r = 0; r < row; ++r)
      {
        again.next(earlier);
        column.texts.emplace_back(earlier[c].text);
      }
      column.texts.emplace_back(fields[c].text);
    }
  }

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

void readAuxFiles(const fs::path& path, ProjectBuilder& builder, const CaseIndex& cases)
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
    if (cases.find(id) == CaseIndex::npos)
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
  CaseIndex index;
  readCases(cases, builder, index);
  const fs::path auxFiles = root / "auxfiles.csv";
  if (fs::exists(auxFiles, error))
    readAuxFiles(auxFiles, builder, index);
  builder.setCaseIds(index.takeIds());
  return builder.build();
}
