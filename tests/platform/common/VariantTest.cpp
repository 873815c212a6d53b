#include "common/Variant.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <set>
#include <vector>

TEST(Variant, TotalOrderPutsEmptyThenNumbersByValueThenTexts)
{
  const double nan = std::numeric_limits<double>::quiet_NaN();
  // Each value is strictly less than the next one.
  const std::vector<Variant> ascending = {
    Variant(),
    Variant(-std::numeric_limits<double>::infinity()),
    Variant(-3LL),
    Variant(false),
    Variant(0.5),
    Variant(true),
    Variant(2),
    Variant(10.0),
    Variant(9007199254740993ULL),     // 2^53 + 1: not representable as a double
    Variant(18446744073709551615ULL), // 2^64 - 1
    Variant(std::numeric_limits<double>::infinity()),
    Variant(nan),
    Variant(""),
    Variant("10"),
    Variant("9"),
    Variant("a"),
  };
  for (std::size_t i = 0; i < ascending.size(); ++i)
  {
    for (std::size_t j = 0; j < ascending.size(); ++j)
    {
      EXPECT_EQ(ascending[i] < ascending[j], i < j) << "at " << i << ", " << j;
      EXPECT_EQ(ascending[i] == ascending[j], i == j) << "at " << i << ", " << j;
    }
  }
}

TEST(Variant, NumbersOfDifferentKindsAreEqualByValueAndGroupInSets)
{
  EXPECT_EQ(Variant(1), Variant(1.0));
  EXPECT_EQ(Variant(true), Variant(1ULL));
  EXPECT_NE(Variant(9007199254740993ULL), Variant(9007199254740992.0));
  EXPECT_NE(Variant(1), Variant("1"));

  const double nan = std::numeric_limits<double>::quiet_NaN();
  const std::set<Variant> grouped = { Variant(2.0), Variant(2),   Variant(nan), Variant(nan),
                                      Variant("x"), Variant("x"), Variant() };
  EXPECT_EQ(grouped.size(), 4u) << "2 and 2.0, the two NaNs and the two texts must group";
}

TEST(Variant, TextForms)
{
  const struct
  {
    Variant value;
    const char* text;
  } cases[] = {
    { Variant(), "" },
    { Variant(true), "true" },
    { Variant(-42), "-42" },
    { Variant(18446744073709551615ULL), "18446744073709551615" },
    { Variant(0.1), "0.1" },
    { Variant(558.765989623179), "558.765989623179" },
    { Variant(1e308), "1e+308" },
    { Variant(std::numeric_limits<double>::quiet_NaN()), "nan" },
    { Variant(-std::numeric_limits<double>::infinity()), "-inf" },
    { Variant("plot:speed"), "plot:speed" },
  };
  for (const auto& c : cases)
  {
    EXPECT_EQ(c.value.toString(), c.text);
  }
}
