#pragma once

// What the readers of study files share: field texts, numbers, case ids and whole files.

#include "datamanagement/CinemaReader.h"
#include "datamanagement/CsvTokenizer_p.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace studytext
{

/// The text without surrounding blanks and tabs.
std::string_view trimmed(std::string_view text);
/// The text in double quotes, for messages.
std::string inQuotes(std::string_view text);
/// "nan" in any case.
bool isNanText(std::string_view text);
/// A numeric field: an empty field or "nan" is NaN. False when the field is not a number.
bool parseNumber(std::string_view field, double& value);
/// A case id field; throws StudyFormatError naming the field when it is not one.
unsigned long long parseCaseId(const CsvTokenizer& csv, const CsvTokenizer::Field& field);
/// Throws StudyFormatError when a record does not have the header's number of fields.
void checkFieldCount(const CsvTokenizer& csv,
                     const std::vector<CsvTokenizer::Field>& fields,
                     std::size_t expected);
/// The whole file; throws StudyFormatError when it cannot be read.
std::string readFile(const std::filesystem::path& path);
/// The text of a CSV file, checked to be UTF-8, without a byte-order mark.
std::string_view checkedText(const std::string& contents, const std::string& file);

/// A relative path already in normal form ("runs/a.png"; not "./a.png", "a//b.png", "../a.png"
/// or "/a.png"): joined to a folder as it is, without the cost of normalising it.
bool isNormalRelativePath(std::string_view path);

/// "case_id", "id", "run" or "simuID", in any case: a column that gives the case ids when its
/// values are unique non-negative integers.
bool isIdColumnName(std::string name);

/// The cells as case ids, when each is a non-negative integer and none repeats.
bool asCaseIds(const std::vector<std::string>& cells, std::vector<unsigned long long>& ids);

/// Where a cell stands, for messages: the file, its line and column, and the data row.
struct CellPlace
{
  std::string file;
  std::size_t line = 0;
  std::size_t column = 0;
  std::size_t row = 0;
};

/// A file path of a cell as the study's files are named: relative to `root` where it lies inside
/// it, as a rebase sends it, or as written for a URL. Throws StudyFormatError for a path that
/// leads out of `root` (named `folder` in the message: "the database folder").
std::string resolvedPath(std::string_view cell,
                         const std::filesystem::path& root,
                         const std::vector<PathRebase>& rebases,
                         const CellPlace& place,
                         const std::string& folder);
/// The same, taking the cell's text: a plain relative path that no rebase names is kept without
/// a copy, which a million files feel.
std::string resolvedPath(std::string&& cell,
                         const std::filesystem::path& root,
                         const std::vector<PathRebase>& rebases,
                         const CellPlace& place,
                         const std::string& folder);

} // namespace studytext
