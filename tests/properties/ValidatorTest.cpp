#include "properties/BoundedValueValidator.h"
#include "properties/ValueRangeValidator.h"

#include <gtest/gtest.h>

#include <limits>

TEST(ValueRangeValidator, RefusesOnlyAMinimumGreaterThanTheMaximum)
{
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const plexa::ValueRangeValidator<double> validator;
  const struct
  {
    ValueRange_s<double> range;
    bool valid;
  } cases[] = {
    { { 1, 2 }, true },   { { 5, 5 }, true },  { { nan, 1 }, true },
    { { 1, nan }, true }, { { 2, 1 }, false }, { { -0.5, -1 }, false },
  };
  for (const auto& c : cases)
  {
    const auto result = validator.validate(c.range);
    EXPECT_EQ(result.isValid(), c.valid) << c.range.min << ", " << c.range.max;
    EXPECT_EQ(result.errorString(), c.valid ? "" : "Minimum cannot be greater than maximum.");
  }
}

TEST(BoundedValueValidator, ChecksEachSideByItsKindAndNamesBothBounds)
{
  using V = plexa::BoundedValueValidator<short>;
  const auto otherKind = static_cast<V::BoundKind>(7);
  const struct
  {
    V validator;
    short value;
    const char* error; // empty: valid
  } cases[] = {
    { V(0, V::Exclusive, 100, V::Inclusive),
      0,
      "The value must be greater than 0 and less than or equal to 100" },
    { V(0, V::Exclusive, 100, V::Inclusive), 1, "" },
    { V(0, V::Exclusive, 100, V::Inclusive), 100, "" },
    { V(0, V::Exclusive, 100, V::Inclusive),
      101,
      "The value must be greater than 0 and less than or equal to 100" },
    { V(1, V::Inclusive, 10, V::Exclusive), 1, "" },
    { V(1, V::Inclusive, 10, V::Exclusive),
      10,
      "The value must be greater than or equal to 1 and less than 10" },
    { V(3, V::Inclusive, 40, V::Inclusive),
      2,
      "The value must be greater than or equal to 3 and less than or equal to 40" },
    { V(3, V::Inclusive, 40, V::Inclusive), 40, "" },
    { V(-5, V::Unbounded, 5, V::Inclusive), -32768, "" },
    { V(-5, V::Unbounded, 5, V::Inclusive),
      6,
      "The value must be greater than -5 and less than or equal to 5" },
    { V(-5, V::Inclusive, 5, otherKind), 32767, "" },
    { V(-5, V::Inclusive, 5, otherKind),
      -6,
      "The value must be greater than or equal to -5 and less than 5" },
  };
  for (const auto& c : cases)
  {
    const auto result = c.validator.validate(c.value);
    EXPECT_EQ(result.isValid(), *c.error == '\0') << "value " << c.value;
    EXPECT_EQ(result.errorString(), c.error) << "value " << c.value;
  }
}
