#pragma once

// What the readers of study files share: field texts, numbers, case ids and whole files.

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

} // namespace studytext
