#pragma once

#include "property/ExceptionBase.h"
#include "property/plexa_property_export.h"

namespace plexa
{

/// Thrown when a value is refused by a property's validator; what() is the validator's message,
/// unchanged.
class PLEXA_PROPERTY_EXPORT InvalidPropertyValueException : public ExceptionBase
{
public:
  explicit InvalidPropertyValueException(const std::string& message);
  ~InvalidPropertyValueException() override;
};

} // namespace plexa
