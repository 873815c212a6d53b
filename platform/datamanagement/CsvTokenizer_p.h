#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

/// Splits comma-separated text (or text separated by another character) into records of fields:
/// fields may be quoted with double quotes, a doubled quote inside quotes stands for one quote, and
/// a quoted field may span lines. Lines end with "\n" or "\r\n"; empty lines are skipped. Malformed
/// quoting throws StudyFormatError naming the file, the line and the column.
class CsvTokenizer
{
public:
  struct Field
  {
    std::string_view text;
    std::size_t column = 0; // 1-based byte column of the field's first character
  };

  CsvTokenizer(std::string_view text, std::string fileName);
  /// Fields separated by `separator` (a tab, a semicolon) instead of a comma.
  CsvTokenizer(std::string_view text, std::string fileName, char separator);

  /// Reads the next record; false at the end of the text. The fields stay valid until the next
  /// call.
  bool next(std::vector<Field>& fields);
  /// The 1-based line on which the last record read started.
  std::size_t recordLine() const { return line; }
  /// The offset and line at which the next record starts, to come back to it with seek().
  std::size_t position() const { return offset; }
  std::size_t nextLine() const { return currentLine; }
  void seek(std::size_t position, std::size_t line);
  const std::string& file() const { return fileName; }

  /// The text is a block of a longer file: a quoted field that its end cuts short is not refused
  /// but left unread, and next() returns false with cutShort() true, at the record's start.
  void setMoreToCome(bool more) { moreToCome = more; }
  bool cutShort() const { return cut; }

private:
  std::string_view text;
  std::string fileName;
  char separator = ',';
  std::size_t offset = 0;
  std::size_t currentLine = 1;
  std::size_t lineStart = 0;
  std::size_t line = 0;
  bool moreToCome = false;
  bool cut = false;
  std::deque<std::string> unescaped;
};

/// The first byte that is not valid UTF-8, as a 1-based (line, column), or (0, 0) when the whole
/// text is valid.
std::pair<std::size_t, std::size_t> firstInvalidUtf8(std::string_view text);
