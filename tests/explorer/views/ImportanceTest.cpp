// Which inputs drive an output, on tables small enough to check by hand: rank correlations with
// ties, correlation ratios of values, categories and quantiles, and the rows left out.

#include "views/importance/Importance.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

using namespace explorer;

namespace
{

constexpr double missing = std::numeric_limits<double>::quiet_NaN();

const InputImportance& named(const std::vector<InputImportance>& all, const std::string& name)
{
  for (const auto& entry : all)
    if (entry.name == name)
      return entry;
  throw std::out_of_range(name);
}

} // namespace

TEST(Importance, OrderOfValuesLeavesOutMissingOnesAndKeepsTiesInRowOrder)
{
  constexpr double infinity = std::numeric_limits<double>::infinity();
  const double values[] = { 3, -1, missing, 0.0, -0.0, infinity, -infinity, 3, 2.5 };
  EXPECT_EQ(orderOf(values, 9), (std::vector<std::uint32_t>{ 6, 1, 4, 3, 8, 0, 7, 5 }));
  EXPECT_TRUE(orderOf(values, 0).empty());
  std::vector<double> many;
  many.reserve(70000);
  for (int i = 0; i < 70000; ++i)
    many.push_back(static_cast<double>((i * 7919) % 70000) - 35000.5);
  const auto order = orderOf(many.data(), many.size());
  ASSERT_EQ(order.size(), many.size());
  for (std::size_t i = 1; i < order.size(); ++i)
    ASSERT_LT(many[order[i - 1]], many[order[i]]) << i;

  // Values alike in their upper bits (sorted by the values alone, or by one pass of the two),
  // and many ties among missing values: the order of a stable sort.
  std::vector<double> ties;
  ties.reserve(20000);
  for (int i = 0; i < 20000; ++i)
    ties.push_back(i % 13 == 0 ? missing : std::round((i * 7919 % 1000) / 7.0) - 70);
  for (const auto& values : { std::vector<double>{ 1 + 3e-12, 1 + 2e-12, 1 + 1e-12, missing, 1 },
                              std::vector<double>{ 1.05, 1.01, 1.03, 1.0, 1.01 },
                              ties })
  {
    std::vector<std::uint32_t> expected;
    for (std::uint32_t row = 0; row < values.size(); ++row)
      if (!std::isnan(values[row]))
        expected.push_back(row);
    std::stable_sort(expected.begin(),
                     expected.end(),
                     [&](std::uint32_t a, std::uint32_t b) { return values[a] < values[b]; });
    EXPECT_EQ(orderOf(values.data(), values.size()), expected) << values.size();
  }
}

TEST(Importance, OneInputDrivesTheOutputAndOthersDoNot)
{
  const std::vector<double> output = { 1, 2, 3, 4, 5, 6 };
  const std::vector<double> drives = { 10, 20, 30, 40, 50, 60 };
  const std::vector<double> alternates = { 1, 2, 1, 2, 1, 2 };
  const std::vector<int> pairs = { 0, 0, 1, 1, 2, 2 };
  const std::vector<double> constant = { 7, 7, 7, 7, 7, 7 };
  const auto all = importanceOf(output.data(),
                                output.size(),
                                { { "drives", drives.data(), nullptr },
                                  { "alternates", alternates.data(), nullptr },
                                  { "pairs", nullptr, pairs.data() },
                                  { "constant", constant.data(), nullptr } });
  ASSERT_EQ(all.size(), 4u);
  EXPECT_EQ(all[0].name, "drives") << "sorted by correlation ratio";
  EXPECT_EQ(all[1].name, "pairs");
  EXPECT_EQ(all[2].name, "alternates");
  EXPECT_EQ(all[3].name, "constant") << "it explains nothing";

  EXPECT_DOUBLE_EQ(named(all, "drives").rankCorrelation, 1.0);
  EXPECT_DOUBLE_EQ(named(all, "drives").correlationRatio, 1.0);
  // Ranks 2, 5, 2, 5, 2, 5 against 1 to 6: 4.5 / sqrt(13.5 x 17.5).
  EXPECT_NEAR(named(all, "alternates").rankCorrelation, 4.5 / std::sqrt(13.5 * 17.5), 1e-12);
  // Group means 3 and 4 about 3.5: 1.5 of 17.5.
  EXPECT_NEAR(named(all, "alternates").correlationRatio, 1.5 / 17.5, 1e-12);
  // Categories: means 1.5, 3.5, 5.5: 16 of 17.5; no rank correlation of categories.
  EXPECT_NEAR(named(all, "pairs").correlationRatio, 16 / 17.5, 1e-12);
  EXPECT_TRUE(std::isnan(named(all, "pairs").rankCorrelation));
  EXPECT_TRUE(std::isnan(named(all, "constant").rankCorrelation));
  EXPECT_DOUBLE_EQ(named(all, "constant").correlationRatio, 0.0) << "one group explains nothing";
  EXPECT_EQ(named(all, "drives").cases, 6u);
}

TEST(Importance, ManyValuesMakeTenQuantilesAndMissingOrUnlistedRowsAreLeftOut)
{
  std::vector<double> output;
  std::vector<double> input;
  for (int i = 0; i < 100; ++i)
  {
    output.push_back(i);
    input.push_back(i * 0.5);
  }
  // Within each quantile of ten, 82.5 of the 83,325 about the mean.
  auto all = importanceOf(output.data(), output.size(), { { "x", input.data(), nullptr } });
  EXPECT_NEAR(all[0].correlationRatio, 1 - 825.0 / 83325, 1e-12);
  EXPECT_DOUBLE_EQ(all[0].rankCorrelation, 1.0);

  // Rows without a value of the input, or of the output, or not listed, do not count.
  input[0] = missing;
  output[1] = missing;
  const std::vector<std::uint32_t> rows = { 0, 1, 2, 3, 4, 50 };
  all = importanceOf(output.data(), output.size(), { { "x", input.data(), nullptr } }, &rows);
  EXPECT_EQ(all[0].cases, 4u);
  EXPECT_DOUBLE_EQ(all[0].rankCorrelation, 1.0);
  const std::vector<std::uint32_t> two = { 2, 3 };
  all = importanceOf(output.data(), output.size(), { { "x", input.data(), nullptr } }, &two);
  EXPECT_TRUE(std::isnan(all[0].rankCorrelation)) << "two cases say nothing";
  EXPECT_TRUE(std::isnan(all[0].correlationRatio));

  // A text input's groups over the listed rows that have a category: 2, 3, 4 (outputs 2, 3, 4)
  // in one group, 50 in another. The unlisted rows of the first group, far from its mean, must
  // not spread it.
  std::vector<int> category(output.size(), 0);
  category[0] = -1; // no category
  category[50] = 1;
  all = importanceOf(output.data(), output.size(), { { "text", nullptr, category.data() } }, &rows);
  ASSERT_EQ(all[0].cases, 4u);
  const double mean = (2 + 3 + 4 + 50) / 4.0;
  const double spread = (2 - mean) * (2 - mean) + (3 - mean) * (3 - mean) +
                        (4 - mean) * (4 - mean) + (50 - mean) * (50 - mean);
  const double between = 3 * (3 - mean) * (3 - mean) + (50 - mean) * (50 - mean);
  EXPECT_NEAR(all[0].correlationRatio, between / spread, 1e-12);
}
