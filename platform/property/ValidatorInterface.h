#pragma once

#include "property/ValidationResult.h"

namespace plexa
{

/// Decides whether a value of type T is acceptable for a property.
template<typename T>
class ValidatorInterface
{
public:
  virtual ValidationResult validate(const T& value) const = 0;
  virtual ~ValidatorInterface() = default;
};

} // namespace plexa
