#include "property/InvalidPropertyValueException.h"

namespace plexa
{

InvalidPropertyValueException::InvalidPropertyValueException(const std::string& message)
  : ExceptionBase(message)
{
}

InvalidPropertyValueException::~InvalidPropertyValueException() = default;

} // namespace plexa
