#include "datamanagement/SeriesReader.h"

#include "datamanagement/StudyFormatError.h"
#include "datamanagement/StudyText_p.h"
#include "datamanagement/TableReader.h"

#include <algorithm>

using namespace studytext;

const std::vector<double>* SeriesTable::column(const std::string& name) const
{
  const auto found = std::find(names.begin(), names.end(), name);
  return found == names.end() ? nullptr : &columns[static_cast<std::size_t>(found - names.begin())];
}

SeriesTable readSeriesTable(const std::string& path)
{
  const std::string contents = readFile(path);
  const std::string_view text = checkedText(contents, path);
  const std::string_view firstLine = text.substr(0, text.find('\n'));
  CsvTokenizer csv(text, path, tableSeparator(std::string(firstLine)));

  SeriesTable table;
  std::vector<CsvTokenizer::Field> fields;
  if (!csv.next(fields))
    throw StudyFormatError(path, 0, 0, "the table is empty");
  for (const auto& field : fields)
    table.names.emplace_back(trimmed(field.text));
  table.columns.resize(fields.size());
  const std::size_t headerLine = csv.recordLine();

  while (csv.next(fields))
  {
    // A blank line (at the end, say) is no sample.
    if (fields.size() == 1 && trimmed(fields.front().text).empty())
      continue;
    checkFieldCount(csv, fields, table.names.size());
    for (std::size_t c = 0; c < fields.size(); ++c)
    {
      double value = 0;
      if (!parseNumber(fields[c].text, value))
        throw StudyFormatError(path,
                               csv.recordLine(),
                               fields[c].column,
                               inQuotes(trimmed(fields[c].text)) + " in column " +
                                 inQuotes(table.names[c]) + " is not a number");
      table.columns[c].push_back(value);
    }
  }
  if (table.rows() == 0)
    throw StudyFormatError(path, headerLine, 0, "the table has a header but no rows");
  return table;
}
