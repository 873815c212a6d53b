#include "datamanagement/CinemaReader.h"

#include "datamanagement/AuxFile.h"

#include "datamanagement/Project.h"
#include "datamanagement/ProjectBuilder.h"
#include "datamanagement/StudyFormatError.h"
#include "datamanagement/StudyText_p.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <stdexcept>
#include <unordered_set>

namespace fs = std::filesystem;
using namespace studytext;

namespace
{

// One column of data.csv as read: its cells' texts and, for messages, where each cell starts.
struct Column
{
  std::string name;
  std::size_t headerColumn = 0;
  std::vector<std::string> cells;
  std::vector<std::size_t> cellColumns;
};

bool isFileColumn(const std::string& name)
{
  return name.rfind("FILE", 0) == 0;
}

} // namespace

bool isCinemaDatabase(const std::string& folder)
{
  std::error_code error;
  const fs::path root(folder);
  return fs::exists(root / "data.csv", error) && !fs::exists(root / "cases.csv", error);
}

std::shared_ptr<const Project> readCinemaDatabase(const std::string& folder,
                                                  const std::vector<PathRebase>& rebases)
{
  const fs::path root = fs::path(folder).lexically_normal();
  std::error_code error;
  if (!fs::is_directory(root, error))
    throw StudyFormatError(folder, 0, 0, "the database folder does not exist");
  const fs::path dataPath = root / "data.csv";
  if (!fs::exists(dataPath, error))
    throw StudyFormatError(dataPath.string(), 0, 0, "the database folder has no data.csv");
  const std::string file = dataPath.string();
  const std::string contents = readFile(dataPath);
  CsvTokenizer csv(checkedText(contents, file), file);

  std::vector<CsvTokenizer::Field> fields;
  if (!csv.next(fields))
    throw StudyFormatError(file, 1, 1, "the file has no header");
  std::vector<Column> columns(fields.size());
  std::unordered_set<std::string> names;
  for (std::size_t c = 0; c < fields.size(); ++c)
  {
    columns[c].name = std::string(trimmed(fields[c].text));
    columns[c].headerColumn = fields[c].column;
    if (columns[c].name.empty())
      throw StudyFormatError(file, csv.recordLine(), fields[c].column, "the column has no name");
    if (!names.insert(columns[c].name).second)
      throw StudyFormatError(file,
                             csv.recordLine(),
                             fields[c].column,
                             "column " + inQuotes(columns[c].name) + " is repeated");
  }
  std::vector<std::size_t> lineOfRow;
  while (csv.next(fields))
  {
    checkFieldCount(csv, fields, columns.size());
    lineOfRow.push_back(csv.recordLine());
    for (std::size_t c = 0; c < columns.size(); ++c)
    {
      columns[c].cells.emplace_back(fields[c].text);
      columns[c].cellColumns.push_back(fields[c].column);
    }
  }

  ProjectBuilder builder;
  builder.setFolder(root.string());
  // Absolute paths are compared with the folder's absolute form.
  const fs::path absoluteRoot = fs::absolute(root, error).lexically_normal();
  std::vector<unsigned long long> caseIds;
  const Column* idColumn = nullptr;
  for (const Column& column : columns)
  {
    if (!idColumn && isIdColumnName(column.name) && asCaseIds(column.cells, caseIds))
      idColumn = &column;
  }
  for (const Column& column : columns)
  {
    // A study keeps that name for its case ids: such a column cannot be a variable.
    if (&column != idColumn && column.name == ProjectBuilder::caseIdName)
      throw StudyFormatError(file,
                             1,
                             column.headerColumn,
                             "column " + inQuotes(column.name) +
                               " must hold unique non-negative integers, the case ids");
  }
  if (!idColumn)
  {
    caseIds.resize(lineOfRow.size());
    for (std::size_t row = 0; row < caseIds.size(); ++row)
      caseIds[row] = row + 1;
  }
  builder.setCaseIds(caseIds);

  for (Column& column : columns)
  {
    if (&column == idColumn)
      continue;
    if (isFileColumn(column.name))
    {
      for (std::size_t row = 0; row < column.cells.size(); ++row)
      {
        const std::string_view cell = trimmed(column.cells[row]);
        if (cell.empty() || isNanText(cell))
          continue;
        builder.addAuxFile(caseIds[row],
                           resolvedPath(cell,
                                        absoluteRoot,
                                        rebases,
                                        { file, lineOfRow[row], column.cellColumns[row], row + 1 },
                                        "the database folder"),
                           { column.name });
      }
      continue;
    }
    std::vector<double> numbers(column.cells.size());
    bool numeric = true;
    for (std::size_t row = 0; row < column.cells.size() && numeric; ++row)
      numeric = parseNumber(column.cells[row], numbers[row]);
    if (numeric)
      builder.addNumericVariable(column.name, std::move(numbers));
    else
      builder.addTextVariable(column.name, std::move(column.cells));
  }
  try
  {
    return builder.build();
  }
  catch (const std::invalid_argument& e)
  {
    throw StudyFormatError(file, 0, 0, e.what());
  }
}
