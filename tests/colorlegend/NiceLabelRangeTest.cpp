#include "colorlegend/ColorLegend.h"
#include "colorlegend/NiceLabelsColorLegendActor.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

TEST(computeNiceLabelRange, WholeNiceStepsCoverTheRange)
{
  const double inf = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const struct
  {
    double a, b;
    int N;
    double start, step;
    int count;
  } cases[] = {
    // n = 15 gives major 5 and 20 steps, too many; n = 14 gives major 10, minor 5; counts 10
    // and 20 tie around 15, so the major step stays.
    { 0, 100, 15, 0, 10, 10 },
    // 1 / 0.5 = 2 steps is few enough; 2 is closer to 3 than the minor's 5.
    { 0, 1, 3, 0, 0.5, 2 },
    { 7, 7, 15, 7, 1, 0 },
    { -1, 1, 3, -1, 1, 2 },
    { 0.05, 0.95, 5, 0, 0.2, 5 }, // the last step reaches past the maximum
    { 3, 97, 10, 0, 10, 10 },
    { 1e9, 1e9 + 3, 3, 1e9, 1, 3 },
    { -250, -50, 4, -250, 50, 4 },
    { 0, 1, 40, 0, 0.02, 50 },             // the minor candidate is closer to 40 than 20 steps
    { 1e12, 1e12 + 5e4, 5, 1e12, 1e4, 5 }, // a quotient past 1e7 keeps a as start
  };
  for (const auto& c : cases)
  {
    const NiceLabelRange r = computeNiceLabelRange(c.a, c.b, c.N);
    EXPECT_DOUBLE_EQ(r.start, c.start) << c.a << ".." << c.b << " / " << c.N;
    EXPECT_DOUBLE_EQ(r.step, c.step) << c.a << ".." << c.b << " / " << c.N;
    EXPECT_EQ(r.count, c.count) << c.a << ".." << c.b << " / " << c.N;
    EXPECT_GE(r.start + r.count * r.step, c.b);
  }
  for (const auto& [a, b] : { std::make_pair(0.0, inf),
                              std::make_pair(nan, 1.0),
                              std::make_pair(0.0, nan),
                              std::make_pair(-inf, inf) })
  {
    const NiceLabelRange r = computeNiceLabelRange(a, b, 15);
    EXPECT_EQ(r.count, 1) << "a range without a finite span gets the neutral one";
  }
}

TEST(NiceLabelsColorLegendActor, LabelValuesAreEvenAndSnapZero)
{
  EXPECT_EQ(NiceLabelsColorLegendActor::labelValue(1, 3, -1, 1, false), 0.0);
  EXPECT_EQ(NiceLabelsColorLegendActor::labelValue(3, 10, -0.3, 0.6, false), 0.0)
    << "-0.3 + 3 * 0.1 is a residue, not zero, without the snapping";
  EXPECT_DOUBLE_EQ(NiceLabelsColorLegendActor::labelValue(0, 1, 2, 6, false), 4.0);
  EXPECT_DOUBLE_EQ(NiceLabelsColorLegendActor::labelValue(1, 3, 1, 100, true), 10.0);
  EXPECT_DOUBLE_EQ(NiceLabelsColorLegendActor::labelValue(2, 3, 1, 100, true), 100.0);
  EXPECT_EQ(NiceLabelsColorLegendActor::labelValue(0, 1, 0, 0, false), 0.0);
}
