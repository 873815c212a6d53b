#pragma once

#include "property/plexa_exception_export.h"

#include <exception>
#include <string>

namespace plexa
{

/// Root of the exceptions of the property framework: a std::exception carrying a message.
class PLEXA_EXCEPTION_EXPORT ExceptionBase : public std::exception
{
public:
  explicit ExceptionBase(std::string message);
  ~ExceptionBase() override;

  const char* what() const noexcept override;

private:
  std::string message;
};

} // namespace plexa
