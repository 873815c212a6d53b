#include "datamanagement/TableReader.h"

#include "datamanagement/AuxFile.h"
#include "datamanagement/Project.h"
#include "datamanagement/ProjectBuilder.h"
#include "datamanagement/StudyFormatError.h"
#include "datamanagement/StudyText_p.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <limits>
#include <optional>
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

// The records of a table, read a block at a time: a table of millions of runs is never in
// memory whole, and the block's memory is used again and again. A block ends at the last line
// end read; a record that runs past it (a quoted field over several lines) waits for the next.
class BlockRecords
{
public:
  static constexpr std::size_t blockSize = std::size_t(4) << 20;

  BlockRecords(const fs::path& file,
               std::string name,
               char separator,
               std::uint64_t offset,
               std::size_t line)
    : stream(file, std::ios::binary)
    , name(std::move(name))
    , separator(separator)
    , blockOffset(offset)
    , blockLine(line)
  {
    if (!stream)
      throw StudyFormatError(this->name, 0, 0, "cannot open the file");
    stream.seekg(static_cast<std::streamoff>(offset));
    std::error_code unknown;
    const std::uintmax_t size = fs::file_size(file, unknown);
    if (!unknown)
      fileSize = size;
  }

  /// The next record; its fields are valid until the next call.
  bool next(std::vector<CsvTokenizer::Field>& fields)
  {
    while (!csv || !csv->next(fields))
      if (!readBlock())
        return false;
    return true;
  }
  std::size_t recordLine() const { return csv->recordLine(); }
  /// Where the next record starts: its offset in the file, and its line.
  std::uint64_t position() const { return blockOffset + (csv ? csv->position() : 0); }
  std::size_t nextLine() const { return csv ? csv->nextLine() : blockLine; }
  const std::string& file() const { return name; }
  void checkFieldCount(const std::vector<CsvTokenizer::Field>& fields, std::size_t expected) const
  {
    studytext::checkFieldCount(*csv, fields, expected);
  }

private:
  bool readBlock()
  {
    const std::size_t used = csv ? csv->position() : 0;
    blockLine = nextLine();
    blockOffset += used;
    block.erase(0, used);
    csv.reset();
    std::size_t end = 0;
    do
    {
      if (!atEnd)
      {
        const std::size_t kept = block.size();
        // A small file takes a small block: fresh memory is costly, and a block is zero-filled.
        // One byte more than what is left finds the end of the file in the same read; a file
        // that grew meanwhile is read on in whole blocks.
        const std::uint64_t read = blockOffset + kept;
        const std::size_t wanted =
          fileSize > read ? std::size_t(std::min<std::uint64_t>(blockSize, fileSize - read + 1))
                          : blockSize;
        block.resize(kept + wanted);
        stream.read(block.data() + kept, static_cast<std::streamsize>(wanted));
        block.resize(kept + static_cast<std::size_t>(stream.gcount()));
        atEnd = !stream;
        if (blockOffset == 0 && block.compare(0, 3, "\xEF\xBB\xBF") == 0)
        {
          block.erase(0, 3);
          blockOffset = 3;
        }
      }
      const std::size_t lastLineEnd = block.rfind('\n');
      end = atEnd ? block.size() : lastLineEnd == std::string::npos ? 0 : lastLineEnd + 1;
    } while (end == 0 && !atEnd);
    if (end == 0)
      return false;
    const std::string_view text(block.data(), end);
    const auto [line, column] = firstInvalidUtf8(text);
    if (line != 0)
      throw StudyFormatError(name, blockLine + line - 1, column, "the text is not valid UTF-8");
    csv.emplace(text, name, separator);
    csv->seek(0, blockLine);
    csv->setMoreToCome(!atEnd);
    return true;
  }

  std::ifstream stream;
  std::string name;
  char separator;
  std::string block;
  std::uint64_t blockOffset;
  std::size_t blockLine;
  bool atEnd = false;
  // The file's size when opened; unknown for a pipe or a device.
  std::uint64_t fileSize = std::numeric_limits<std::uint64_t>::max();
  std::optional<CsvTokenizer> csv;
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
  std::string header;
  std::getline(std::ifstream(file, std::ios::binary) >> std::noskipws, header);
  if (header.rfind("\xEF\xBB\xBF", 0) == 0)
    header.erase(0, 3);
  const char separator = tableSeparator(header);
  BlockRecords csv(file, path, separator, 0, 1);

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
  std::vector<std::size_t> lineOfRow;
  const std::uint64_t dataStart = csv.position();
  const std::size_t dataStartLine = csv.nextLine();
  // Memory grown step by step costs more than memory taken once: the rows are estimated from
  // the first ones read.
  constexpr std::size_t rowsToEstimateFrom = 1024;
  std::size_t rowsAtMost = 0;
  const auto reserveRows = [&]
  {
    const double bytesPerRow =
      double(csv.position() - dataStart) / double(std::max<std::size_t>(lineOfRow.size(), 1));
    rowsAtMost = std::size_t(double(fs::file_size(file, error)) / bytesPerRow * 1.05) + 16;
    lineOfRow.reserve(rowsAtMost);
    for (Column& column : columns)
    {
      if (column.isText)
      {
        column.texts.reserve(rowsAtMost);
        column.fieldColumns.reserve(rowsAtMost);
      }
      else
        column.numbers.reserve(rowsAtMost);
    }
  };
  while (csv.next(fields))
  {
    csv.checkFieldCount(fields, columns.size());
    const std::size_t row = lineOfRow.size();
    if (row == rowsToEstimateFrom)
      reserveRows();
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
        column.texts.reserve(rowsAtMost);
        column.fieldColumns.reserve(rowsAtMost);
        BlockRecords again(file, path, separator, dataStart, dataStartLine);
        std::vector<CsvTokenizer::Field> earlier;
        for (std::size_t r = 0; r < row; ++r)
        {
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
                           resolvedPath(std::move(column.texts[row]),
                                        folder,
                                        rebases,
                                        { path, lineOfRow[row], column.fieldColumns[row], row + 1 },
                                        "the table's folder"),
                           { column.name });
      }
      column.texts = {};
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
