#include "property/ValidationResult.h"

#include <utility>

namespace plexa
{

void ValidationResult::setErrorString(std::string message)
{
  error = std::move(message);
  valid = false;
}

bool ValidationResult::isValid() const
{
  return valid;
}

std::string ValidationResult::errorString() const
{
  return error;
}

} // namespace plexa
