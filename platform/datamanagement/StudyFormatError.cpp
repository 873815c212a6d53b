#include "datamanagement/StudyFormatError.h"

namespace
{

std::string format(const std::string& file,
                   std::size_t line,
                   std::size_t column,
                   const std::string& problem)
{
  if (line == 0)
  {
    return file + ": " + problem;
  }
  return file + ":" + std::to_string(line) + ":" + std::to_string(column) + ": " + problem;
}

} // namespace

StudyFormatError::StudyFormatError(const std::string& file,
                                   std::size_t line,
                                   std::size_t column,
                                   const std::string& problem)
  : std::runtime_error(format(file, line, column, problem))
  , fileName(file)
  , lineNumber(line)
  , columnNumber(column)
  , what_(problem)
{
}

StudyFormatError::~StudyFormatError() = default;
