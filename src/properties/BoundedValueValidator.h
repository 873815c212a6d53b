#pragma once

#include "property/ValidatorInterface.h"

#include <sstream>

namespace plexa
{

/// Accepts the values between a lower and an upper bound. Each side is inclusive, exclusive or
/// unbounded (any kind other than Inclusive and Exclusive counts as unbounded). A refused value
/// gets one message for every case, naming both bounds even on an unbounded side, e.g.
/// "The value must be greater than or equal to 1 and less than 10".
template<typename T>
class BoundedValueValidator : public ValidatorInterface<T>
{
public:
  enum BoundKind : int
  {
    Inclusive = 0,
    Exclusive = 1,
    Unbounded = 2
  };

  BoundedValueValidator(T lowerBound, BoundKind lowerKind, T upperBound, BoundKind upperKind)
    : lowerBound(lowerBound)
    , upperBound(upperBound)
    , lowerKind(lowerKind)
    , upperKind(upperKind)
  {
  }

  ValidationResult validate(const T& value) const override
  {
    ValidationResult result;
    if (passesLowerBound(value) && passesUpperBound(value))
    {
      return result;
    }
    std::ostringstream message;
    message << "The value must be greater than " << (lowerKind == Inclusive ? "or equal to " : "")
            << +lowerBound << " and less than " << (upperKind == Inclusive ? "or equal to " : "")
            << +upperBound;
    result.setErrorString(message.str());
    return result;
  }

private:
  bool passesLowerBound(const T& value) const
  {
    switch (lowerKind)
    {
      case Inclusive:
        return !(value < lowerBound);
      case Exclusive:
        return !(value <= lowerBound);
      default:
        return true;
    }
  }

  bool passesUpperBound(const T& value) const
  {
    switch (upperKind)
    {
      case Inclusive:
        return !(value > upperBound);
      case Exclusive:
        return !(value >= upperBound);
      default:
        return true;
    }
  }

  T lowerBound;
  T upperBound;
  BoundKind lowerKind;
  BoundKind upperKind;
};

} // namespace plexa
