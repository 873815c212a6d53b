#pragma once

#include "property/ValidatorInterface.h"

namespace plexa
{

/// Accepts every value; the validator of a property built without one.
template<typename T>
class AllowAnyValueValidator : public ValidatorInterface<T>
{
public:
  ValidationResult validate(const T&) const override { return {}; }
};

} // namespace plexa
