#pragma once

#include "properties/ValueRange.h"
#include "property/ValidatorInterface.h"

namespace plexa
{

/// Refuses a range whose minimum is greater than its maximum, with the message "Minimum cannot
/// be greater than maximum.". Equal ends pass, and so does a range holding a NaN, since the test
/// is a plain "greater than".
template<typename T>
class ValueRangeValidator : public ValidatorInterface<ValueRange_s<T>>
{
public:
  ValidationResult validate(const ValueRange_s<T>& range) const override
  {
    ValidationResult result;
    if (range.min > range.max)
    {
      result.setErrorString("Minimum cannot be greater than maximum.");
    }
    return result;
  }
};

} // namespace plexa
