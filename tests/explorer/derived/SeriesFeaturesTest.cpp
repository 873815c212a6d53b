// Figures of each run's series as variables of the case: each figure on a series checked by hand,
// the functions that name them in expressions, and the columns read from the runs' files.

#include "derived/SeriesFeatures.h"
#include "derived/DerivedVariables.h"
#include "derived/Expression.h"

#include "datamanagement/Project.h"
#include "datamanagement/ProjectBuilder.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace explorer;

namespace
{

constexpr double missing = std::numeric_limits<double>::quiet_NaN();

SeriesFeature feature(SeriesFeature::Kind kind, double value = 0.0)
{
  SeriesFeature made;
  made.kind = kind;
  made.tag = "series:flight";
  made.x = "time";
  made.y = "speed";
  made.value = value;
  return made;
}

void expectSame(double actual, double expected, const std::string& what)
{
  if (std::isnan(expected))
    EXPECT_TRUE(std::isnan(actual)) << what << " gave " << actual;
  else
    EXPECT_DOUBLE_EQ(actual, expected) << what;
}

} // namespace

TEST(SeriesFeatures, FiguresOfOneSeries)
{
  const std::vector<double> x{ 0, 1, 2, 3, 4 };
  const std::vector<double> y{ 1, 3, missing, 5, 2 };
  const std::vector<std::tuple<SeriesFeature, double, double>> table{
    // the figure, on the series above, on a series without samples
    { feature(SeriesFeature::Final), 2, missing },
    { feature(SeriesFeature::Minimum), 1, missing },
    { feature(SeriesFeature::Maximum), 5, missing },
    { feature(SeriesFeature::Mean), 2.75, missing },
    { feature(SeriesFeature::XAtMaximum), 3, missing },
    // trapezoids over the pairs of samples both present: 2 + 3.5
    { feature(SeriesFeature::Integral), 5.5, missing },
    // between (1, 3) and (3, 5), the missing sample skipped
    { feature(SeriesFeature::FirstCrossing, 4), 2, missing },
    { feature(SeriesFeature::FirstCrossing, 3), 1, missing },
    { feature(SeriesFeature::FirstCrossing, 2.5), 0.75, missing },
    { feature(SeriesFeature::FirstCrossing, 10), missing, missing },
  };
  for (const auto& [figure, expected, empty] : table)
  {
    expectSame(figure.of(x.data(), y.data(), x.size()), expected, figure.text());
    expectSame(figure.of(x.data(), y.data(), 0), empty, figure.text() + " of no samples");
  }
  const std::vector<double> falling{ 9, 7, 1 };
  expectSame(
    feature(SeriesFeature::FirstCrossing, 4).of(x.data(), falling.data(), 3), 1.5, "falling");
  EXPECT_EQ(feature(SeriesFeature::FirstCrossing, -1.5).text(),
            "series_crossing(`series:flight`, time, speed, -1.5)");
  EXPECT_EQ(feature(SeriesFeature::Maximum).text(), "series_max(`series:flight`, speed)");
}

TEST(SeriesFeatures, AreNamedInExpressionsAndComputedWithTheOtherVariables)
{
  const auto numbers = [](const std::string& name)
  { return name == "mass" ? Expression::NameKind::Numbers : Expression::NameKind::Unknown; };
  const Expression expression = Expression::parse(
    "series_max(`series:flight`, speed) * mass + series_crossing(`series:flight`, time, speed, -2) "
    "- series_max(`series:flight`, `speed`)",
    numbers);
  EXPECT_EQ(expression.variables(),
            (std::vector<std::string>{ "series_max(`series:flight`, speed)",
                                       "mass",
                                       "series_crossing(`series:flight`, time, speed, -2)" }));
  ASSERT_EQ(expression.seriesFeatures().size(), 2U);
  EXPECT_EQ(expression.seriesFeatures()[1].value, -2.0);

  const std::vector<std::pair<std::string, std::string>> refused{
    { "series_max(1, speed)",
      "series_max expects the tag of the runs' series files here (column 12)" },
    { "series_integral(`s:f`, t)", "',' is expected before ')' (column 25)" },
    { "series_crossing(`s:f`, t, y, x)",
      "series_crossing expects the value Y crosses here (column 30)" },
    { "series_final(`s:f`, y, z)", "')' is expected before ',' (column 22)" },
    { "series_mean",
      "series_mean needs its arguments in parentheses: series_mean(...) (column 1)" },
    { "series_min(`s:f`", "the '(' of series_min is not closed (column 1)" },
  };
  for (const auto& [text, message] : refused)
  {
    try
    {
      Expression::parse(text, numbers);
      ADD_FAILURE() << text << " was accepted";
    }
    catch (const ExpressionError& e)
    {
      EXPECT_EQ(e.what(), message);
    }
  }
}

TEST(SeriesFeatures, ColumnsAreReadFromEachRunsFileOnce)
{
  testsupport::TemporaryFolder folder;
  folder.write("series/1.csv", "time,speed\n0,1\n1,4\n2,3\n");
  folder.write("series/2.csv", "time,speed\n0,2\n1,2\n");
  folder.write("series/3.csv", "time,speed\n0,oops\n"); // broken: its figures stay missing
  ProjectBuilder builder;
  builder.setFolder(folder.path());
  builder.setCaseIds({ 1, 2, 3, 4 });
  builder.addNumericVariable("mass", { 1, 2, 3, 4 });
  for (int run = 1; run <= 3; ++run)
    builder.addAuxFile(run, "series/" + std::to_string(run) + ".csv", { "series:flight" });
  const auto study = builder.build();

  SeriesFeatureColumns columns;
  const auto read = columns.columns(
    *study, nullptr, { feature(SeriesFeature::Maximum), feature(SeriesFeature::Integral) });
  ASSERT_EQ(read.size(), 2U);
  const std::vector<double> maxima{ 4, 2, missing, missing };
  const std::vector<double> integrals{ 6, 2, missing, missing };
  for (std::size_t row = 0; row < 4; ++row)
  {
    expectSame(read[0][row], maxima[row], "maximum of run " + std::to_string(row + 1));
    expectSame(read[1][row], integrals[row], "integral of run " + std::to_string(row + 1));
  }

  // Kept: asked again, the files are not read again.
  folder.write("series/1.csv", "time,speed\n0,100\n");
  EXPECT_EQ(columns.columns(*study, nullptr, { feature(SeriesFeature::Maximum) })[0][0], 4.0);

  SeriesFeature otherTag = feature(SeriesFeature::Final);
  otherTag.tag = "series:other";
  SeriesFeature otherColumn = feature(SeriesFeature::XAtMaximum);
  otherColumn.y = "spd";
  for (const auto& [asked, message] : std::vector<std::pair<SeriesFeature, std::string>>{
         { otherTag, "no run has a series tagged \"series:other\"" },
         { otherColumn, R"(no series tagged "series:flight" has the columns "time" and "spd")" } })
  {
    try
    {
      columns.columns(*study, nullptr, { asked });
      ADD_FAILURE() << message;
    }
    catch (const ExpressionError& e)
    {
      EXPECT_EQ(e.what(), message);
    }
  }

  // In a derived variable, beside the study's own variables.
  const auto grown =
    withDerivedVariables(*study,
                         {},
                         { { "top per mass", "series_max(`series:flight`, speed) / mass" } },
                         [&](const std::vector<SeriesFeature>& features)
                         { return columns.columns(*study, nullptr, features); });
  const auto& values = *grown->numericValues(grown->variable("top per mass").lock());
  EXPECT_EQ(values[0], 4.0);
  EXPECT_EQ(values[1], 1.0);
  try
  {
    withDerivedVariables(*study, {}, { { "top", "series_max(`series:flight`, speed)" } });
    ADD_FAILURE() << "computed without the series";
  }
  catch (const ExpressionError& e)
  {
    EXPECT_STREQ(e.what(), "top: the runs' series are not read here");
  }
}
