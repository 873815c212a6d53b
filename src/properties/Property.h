#pragma once

#include <utility>

#include "properties/PropertyAbstract.h"

namespace plexa
{

/// A property that keeps its value in a member. A default-constructed property holds T's
/// value-initialised value (0 for numbers and enumerations).
template<typename T>
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT Property : public PropertyAbstract<T>
{
public:
  Property()
    : heldValue()
  {
  }

  /// Accepts every value; the initial value is stored without a signal.
  explicit Property(T initial)
    : heldValue(std::move(initial))
  {
  }

  /// Throws InvalidPropertyValueException when the validator refuses the initial value.
  /// Construction never signals.
  Property(T initial, boost::shared_ptr<const ValidatorInterface<T>> validator)
    : PropertyAbstract<T>(std::move(validator))
    , heldValue(std::move(initial))
  {
    this->validate(heldValue);
  }

  void operator=(const T& value) { this->setValue(value); }

protected:
  void storeValue(const T& value) override { heldValue = value; }

private:
  T retrieveValue() const override { return heldValue; }

  T heldValue;
};

} // namespace plexa
