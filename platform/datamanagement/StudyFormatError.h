#pragma once

#include "datamanagement/quen_datamanagement_lib2_export.h"

#include <cstddef>
#include <stdexcept>
#include <string>

/// A study folder that cannot be read. The message names the file, the line and column (both
/// 1-based; 0 when the problem is the file as a whole) and what is wrong, as
/// "path/cases.csv:3:7: case id "x" is not a non-negative integer".
class QUEN_DATAMANAGEMENT_LIB2_EXPORT StudyFormatError : public std::runtime_error
{
public:
  StudyFormatError(const std::string& file,
                   std::size_t line,
                   std::size_t column,
                   const std::string& problem);
  ~StudyFormatError() override;

  const std::string& file() const { return fileName; }
  std::size_t line() const { return lineNumber; }
  std::size_t column() const { return columnNumber; }
  const std::string& problem() const { return what_; }

private:
  std::string fileName;
  std::size_t lineNumber;
  std::size_t columnNumber;
  std::string what_;
};
