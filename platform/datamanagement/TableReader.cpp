#include "datamanagement/TableReader.h"

#include "datamanagement/AuxFile.h"
#include "datamanagement/Project.h"
#include "datamanagement/ProjectBuilder.h"
#include "datamanagement/StudyFormatError.h"
#include "datamanagement/StudyText_p.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <filesystem>
#include <stdexcept>
#include <unordered_set>

namespace fs = std::filesystem;
using namespace studytext;

namespace
{

// A column as it is read: numbers while every field is one, texts from the first that is not
// (the earlier fields read again as written); whether every non-empty field names a file; and
// for texts where each field starts, for messages.
struct Column
{
  std::string header;
  std::string name;
  Variable::Role role = Variable::Unknown;
  std::size_t headerColumn = 0;
  bool keepTexts = false;
  bool isText = false;
  bool allFiles = true;
  bool anyValue = false;
  std::vector<double> numbers;
  std::vector<std::string> texts;
  std::vector<std::uint32_t> fieldColumns;
};

std::string lowered(std::string_view text)
{
  std::string result(text);
  std::transform(result.begin(),
                 result.end(),
                 result.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return result;
}

// "in:Depth [ft]" is the input "Depth [ft]"; "out: Rate" the output "Rate".
void readRole(Column& column)
{
  const std::string lower = lowered(column.header);
  for (const auto& [prefix, role] : { std::make_pair(std::string("in:"), Variable::Input),
                                      std::make_pair(std::string("out:"), Variable::Output) })
  {
    if (lower.rfind(prefix, 0) == 0 && column.header.size() > prefix.size())
    {
      const std::string_view rest = trimmed(std::string_view(column.header).substr(prefix.size()));
      if (rest.empty())
        return;
      column.name = std::string(rest);
      column.role = role;
      return;
    }
  }
}

// A field that names a file: a URL, or a name with an extension ("a.png", "runs/a.vtk") that
// has a folder in it or lies beside the table. Numbers never get here.
bool namesAFile(std::string_view field, const fs::path& folder)
{
  if (AuxFile::isUrl(std::string(field)))
    return true;
  const std::size_t dot = field.find_last_of('.');
  const std::size_t slash = field.find_last_of("/\\");
  if (dot == std::string_view::npos || dot + 1 == field.size() ||
      (slash != std::string_view::npos && dot < slash) || field.size() - dot > 6)
    return false;
  for (char c : field.substr(dot + 1))
    if (!std::isalnum(static_cast<unsigned char>(c)))
      return false;
  if (slash != std::string_view::npos)
    return true;
  std::error_code error;
  return fs::is_regular_file(folder / fs::path(std::string(field)), error);
}

bool asCaseIds(const std::vector<std::string>& texts, std::vector<unsigned long long>& ids)
{
  std::unordered_set<unsigned long long> seen;
  ids.clear();
  for (const std::string& cell : texts)
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

} // namespace

char tableSeparator(const std::string& headerLine)
{
  std::size_t counts[3] = { 0, 0, 0 };
  const char separators[3] = { ',', '\t', ';' };
  bool quoted = false;
  for (char c : headerLine)
  {
    if (c == '"')
      quoted = !quoted;
    for (int i = 0; i < 3 && !quoted; ++i)
      counts[i] += c == separators[i] ? 1 : 0;
  }
  const auto most = std::max_element(counts, counts + 3);
  return *most == 0 ? ',' : separators[most - counts];
}

std::shared_ptr<const Project> readRunTable(const std::string& path,
                                            const std::vector<PathRebase>& rebases)
{
  const fs::path file(path);
  std::error_code error;
  if (!fs::is_regular_file(file, error))
    throw StudyFormatError(path, 0, 0, "the table does not exist");
  const std::string contents = readFile(file);
  const std::string_view text = checkedText(contents, path);
  const char separator = tableSeparator(std::string(text.substr(0, text.find('\n'))));
  CsvTokenizer csv(text, path, separator);

  std::vector<CsvTokenizer::Field> fields;
  if (!csv.next(fields))
    throw StudyFormatError(path, 1, 1, "the table has no header");
  std::vector<Column> columns(fields.size());
  for (std::size_t c = 0; c < fields.size(); ++c)
  {
    Column& column = columns[c];
    column.header = std::string(trimmed(fields[c].text));
    column.name = column.header;
    column.headerColumn = fields[c].column;
    if (column.header.empty())
      throw StudyFormatError(path, csv.recordLine(), fields[c].column, "the column has no name");
    readRole(column);
    // Case ids may need all 64 bits: kept as written until the end.
    column.keepTexts = column.role == Variable::Unknown && isIdColumnName(column.name);
    column.isText = column.keepTexts;
  }

  const fs::path folder = fs::absolute(file, error).parent_path().lexically_normal();
  std::vector<std::pair<std::size_t, std::size_t>> rowStarts;
  std::vector<std::size_t> lineOfRow;
  std::size_t start = csv.position();
  std::size_t startLine = csv.nextLine();
  while (csv.next(fields))
  {
    checkFieldCount(csv, fields, columns.size());
    const std::size_t row = lineOfRow.size();
    rowStarts.emplace_back(start, startLine);
    lineOfRow.push_back(csv.recordLine());
    for (std::size_t c = 0; c < columns.size(); ++c)
    {
      Column& column = columns[c];
      const std::string_view field = trimmed(fields[c].text);
      if (!column.isText)
      {
        double value = 0;
        if (parseNumber(field, value))
        {
          column.numbers.push_back(value);
          continue;
        }
        // The column turns out to hold text: its earlier fields are read again, as written.
        column.isText = true;
        column.numbers = {};
        column.texts.reserve(row + 1);
        CsvTokenizer again(text, path, separator);
        std::vector<CsvTokenizer::Field> earlier;
        for (std::size_t r = 0; r < row; ++r)
        {
          again.seek(rowStarts[r].first, rowStarts[r].second);
          again.next(earlier);
          const std::string_view before = trimmed(earlier[c].text);
          column.texts.emplace_back(before);
          column.fieldColumns.push_back(static_cast<std::uint32_t>(earlier[c].column));
          column.anyValue = column.anyValue || !before.empty();
          column.allFiles = column.allFiles && (before.empty() || namesAFile(before, folder));
        }
      }
      column.texts.emplace_back(field);
      column.fieldColumns.push_back(static_cast<std::uint32_t>(fields[c].column));
      if (!field.empty())
      {
        column.anyValue = true;
        column.allFiles = column.allFiles && !isNanText(field) && namesAFile(field, folder);
      }
    }
    start = csv.position();
    startLine = csv.nextLine();
  }

  if (lineOfRow.empty())
    throw StudyFormatError(path, csv.nextLine(), 1, "the table has no runs, only a header");

  ProjectBuilder builder;
  builder.setFolder(folder.string());
  std::vector<unsigned long long> caseIds;
  const Column* idColumn = nullptr;
  for (const Column& column : columns)
    if (!idColumn && column.keepTexts && asCaseIds(column.texts, caseIds))
      idColumn = &column;
  if (!idColumn)
  {
    caseIds.resize(lineOfRow.size());
    for (std::size_t row = 0; row < caseIds.size(); ++row)
      caseIds[row] = row + 1;
  }
  builder.setCaseIds(caseIds);

  std::unordered_set<std::string> names;
  for (Column& column : columns)
  {
    if (&column == idColumn)
      continue;
    // A column of "in:x" beside one of "x" keeps its prefix, so that both are there.
    if (!names.insert(column.name).second || column.name == ProjectBuilder::caseIdName)
    {
      column.name = column.header;
      column.role = Variable::Unknown;
      if (!names.insert(column.name).second || column.name == ProjectBuilder::caseIdName)
        throw StudyFormatError(
          path, 1, column.headerColumn, "column " + inQuotes(column.header) + " is repeated");
    }
    if (column.isText && column.anyValue && column.allFiles)
    {
      for (std::size_t row = 0; row < column.texts.size(); ++row)
      {
        if (column.texts[row].empty())
          continue;
        builder.addAuxFile(caseIds[row],
                           resolvedPath(column.texts[row],
                                        folder,
                                        rebases,
                                        { path, lineOfRow[row], column.fieldColumns[row], row + 1 },
                                        "the table's folder"),
                           { column.name });
      }
      continue;
    }
    if (column.keepTexts)
    {
      // An id column that gives no ids is a variable like the others.
      std::vector<double> numbers(column.texts.size());
      bool numeric = true;
      for (std::size_t row = 0; row < column.texts.size() && numeric; ++row)
        numeric = parseNumber(column.texts[row], numbers[row]);
      column.isText = !numeric;
      column.numbers = std::move(numbers);
    }
    if (column.isText)
      builder.addTextVariable(column.name, std::move(column.texts));
    else
      builder.addNumericVariable(column.name, std::move(column.numbers));
    if (column.role != Variable::Unknown)
      builder.setRole(column.name, column.role);
  }
  try
  {
    return builder.build();
  }
  catch (const std::invalid_argument& e)
  {
    throw StudyFormatError(path, 0, 0, e.what());
  }
}
