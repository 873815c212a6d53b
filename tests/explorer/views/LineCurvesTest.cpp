// The line plot's arithmetic: groups of cases, response curves aggregated per X with their
// bands, logarithmic axes, what a click or a rubber band picks, and long series reduced for
// drawing without losing their spikes.

#include "views/line/Curves.h"
#include "views/line/LineGroups.h"
#include "views/line/LinePlotPainter.h"

#include <QImage>
#include <QPainter>
#include <gtest/gtest.h>
#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkStringArray.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

using namespace explorer;

namespace
{

vtkNew<vtkDoubleArray> numbers(const std::vector<double>& values)
{
  vtkNew<vtkDoubleArray> column;
  for (double value : values)
    column->InsertNextValue(value);
  return column;
}

vtkNew<vtkStringArray> texts(const std::vector<std::string>& values)
{
  vtkNew<vtkStringArray> column;
  for (const auto& value : values)
    column->InsertNextValue(value);
  return column;
}

} // namespace

TEST(LineGroups, SplitTheCasesByValuesIntervalsAndPairs)
{
  // Few values: one group each, in order; missing values last.
  auto seeds = numbers({ 2, 1, NAN, 2 });
  ColumnGroups groups = groupsOf(*seeds);
  EXPECT_EQ(groups.labels, (std::vector<std::string>{ "1", "2", "missing" }));
  EXPECT_EQ(groups.groupOfRow, (std::vector<int>{ 1, 0, 2, 1 }));

  // A continuous variable: at most eight intervals on nice numbers.
  std::vector<double> many;
  for (int i = 0; i <= 100; ++i)
    many.push_back(i * 0.96 + 3);
  auto continuous = numbers(many);
  groups = groupsOf(*continuous);
  EXPECT_LE(groups.labels.size(), LineGroups::maxGroupsPerVariable);
  EXPECT_EQ(groups.labels.front(), "[0, 20)");
  EXPECT_EQ(groups.labels.back(), "[80, 100)");
  EXPECT_EQ(groups.groupOfRow[0], 0) << "3 is in [0, 20)";
  EXPECT_EQ(groups.groupOfRow[100], 4) << "99 is in the last";

  const struct
  {
    double min, max;
    std::vector<double> edges;
  } cuts[] = {
    { 0, 100, { 0, 20, 40, 60, 80, 100, 120 } },
    { 0.13, 0.91, { 0, 0.2, 0.4, 0.6, 0.8, 1.0 } }, // steps of 0.1 would make nine
    { -3, 5, { -4, -2, 0, 2, 4, 6 } },
  };
  for (const auto& cut : cuts)
  {
    const auto edges = niceEdges(cut.min, cut.max, 8);
    ASSERT_EQ(edges.size(), cut.edges.size()) << cut.min << ".." << cut.max;
    for (std::size_t i = 0; i < edges.size(); ++i)
      EXPECT_NEAR(edges[i], cut.edges[i], 1e-9);
    EXPECT_LE(edges.front(), cut.min);
    EXPECT_GT(edges.back(), cut.max);
  }

  // Two variables: only the pairs the cases hold, the first variable's order first.
  auto material = texts({ "wood", "steel", "wood", "steel" });
  auto size = numbers({ 1, 1, 2, 1 });
  const LineGroups pairs = lineGroups({ material.Get(), size.Get() }, 4);
  EXPECT_EQ(pairs.labels, (std::vector<std::string>{ "steel, 1", "wood, 1", "wood, 2" }));
  EXPECT_EQ(pairs.groupOfRow, (std::vector<int>{ 1, 0, 2, 0 }));
  const LineGroups none = lineGroups({}, 3);
  EXPECT_EQ(none.labels.size(), 1u);
  EXPECT_EQ(none.groupOfRow, (std::vector<int>{ 0, 0, 0 }));
}

TEST(LineGroups, AContinuousXIsCutIntoIntervalsAndASweepIsNot)
{
  std::vector<double> sweep = { 15, 25, 35, 15, NAN, 25 };
  EXPECT_FALSE(intoIntervals(sweep, 4));
  EXPECT_EQ(sweep[0], 15);

  std::vector<double> continuous;
  continuous.reserve(101);
  for (int i = 0; i < 100; ++i)
    continuous.push_back(0.013 * i + 0.004); // 0.004 to 1.291
  continuous.push_back(NAN);
  ASSERT_TRUE(intoIntervals(continuous, 24));
  std::vector<double> middles = continuous;
  middles.pop_back();
  std::sort(middles.begin(), middles.end());
  middles.erase(std::unique(middles.begin(), middles.end()), middles.end());
  EXPECT_LE(middles.size(), 24u);
  EXPECT_GT(middles.size(), 10u) << "not too coarse";
  EXPECT_DOUBLE_EQ(continuous[0], 0.05) << "0.004 in [0, 0.1): steps of 0.05 would make 26";
  EXPECT_TRUE(std::isnan(continuous.back())) << "a missing X stays missing";
}

TEST(ResponseCurves, AggregateTheCasesOfALineAndAnXWithTheirBand)
{
  // Two groups; group 0 has three seeds at x = 1 and one at x = 2, listed out of order.
  const std::vector<double> x = { 2, 1, 1, 1, 1, 3, NAN };
  const std::vector<double> y = { 10, 4, 1, 7, 5, 6, 9 };
  LineGroups groups;
  groups.labels = { "a", "b" };
  groups.groupOfRow = { 0, 0, 0, 0, 1, 1, 0 };
  const struct
  {
    Aggregate aggregate;
    Band band;
    double first;     // group a's value at x = 1
    double low, high; // and its band
  } cases[] = {
    { Aggregate::Mean, Band::MinMax, 4, 1, 7 },
    { Aggregate::Median, Band::None, 4, NAN, NAN },
    { Aggregate::Min, Band::None, 1, NAN, NAN },
    { Aggregate::Max, Band::None, 7, NAN, NAN },
    { Aggregate::Mean, Band::StdDeviation, 4, 1, 7 }, // sample deviation of 4, 1, 7 is 3
  };
  for (const auto& c : cases)
  {
    const CurveSet set = responseCurves(x, y, groups, c.aggregate, c.band, {});
    ASSERT_EQ(set.curves.size(), 2u);
    EXPECT_EQ(set.missing, 1u) << "the case without an X";
    const Curve& a = set.curves[0];
    EXPECT_EQ(a.label, "a");
    EXPECT_EQ(a.x, (std::vector<double>{ 1, 2 }));
    EXPECT_DOUBLE_EQ(a.y[0], c.first);
    EXPECT_EQ(a.y[1], 10);
    if (c.band == Band::None)
      EXPECT_TRUE(a.low.empty());
    else
    {
      EXPECT_DOUBLE_EQ(a.low[0], c.low);
      EXPECT_DOUBLE_EQ(a.high[0], c.high);
      EXPECT_DOUBLE_EQ(a.low[1], 10) << "one case has no spread";
    }
    // The rows behind each point, for selection.
    const auto [first, last] = a.rowsAt(0);
    EXPECT_EQ(std::vector<std::uint32_t>(first, last), (std::vector<std::uint32_t>{ 1, 2, 3 }));
    EXPECT_EQ(set.curves[1].x, (std::vector<double>{ 1, 3 }));
  }
  // Rows taken in a given X order make the same curves as rows sorted per line.
  const std::vector<std::uint32_t> order = orderByX(x);
  EXPECT_EQ(order, (std::vector<std::uint32_t>{ 1, 2, 3, 4, 0, 5 })) << "no row without X";
  const CurveSet sorted = responseCurves(x, y, groups, Aggregate::Median, Band::MinMax, {});
  const CurveSet ordered =
    responseCurves(x, y, groups, Aggregate::Median, Band::MinMax, {}, &order);
  ASSERT_EQ(ordered.curves.size(), sorted.curves.size());
  for (std::size_t c = 0; c < sorted.curves.size(); ++c)
  {
    EXPECT_EQ(ordered.curves[c].x, sorted.curves[c].x);
    EXPECT_EQ(ordered.curves[c].y, sorted.curves[c].y);
    EXPECT_EQ(ordered.curves[c].rows, sorted.curves[c].rows);
    EXPECT_EQ(ordered.curves[c].low, sorted.curves[c].low);
  }

  // An even number of values: the median is the mean of the middle two.
  groups.groupOfRow = { 1, 0, 0, 0, 0, 1, 1 };
  const CurveSet even = responseCurves(x, y, groups, Aggregate::Median, Band::None, {});
  EXPECT_DOUBLE_EQ(even.curves[0].y[0], 4.5) << "median of 4, 1, 7, 5";
}

TEST(ResponseCurves, LogarithmicAxesLeaveOutAndCountValuesAtOrBelowZero)
{
  const std::vector<double> x = { -1, 0, 1, 10, 100, 1000 };
  const std::vector<double> y = { 1, 1, 1, 0, 5, NAN };
  LineGroups one{ { "" }, std::vector<int>(6, 0) };
  CurveSet set = responseCurves(x, y, one, Aggregate::Mean, Band::None, { true, false });
  EXPECT_EQ(set.notPositive, 2u);
  EXPECT_EQ(set.missing, 1u);
  EXPECT_EQ(set.curves[0].x, (std::vector<double>{ 1, 10, 100 }));
  set = responseCurves(x, y, one, Aggregate::Mean, Band::None, { true, true });
  EXPECT_EQ(set.notPositive, 3u) << "and y = 0";

  CurveSet series;
  addSeriesCurve(series, 4, "case 4", { 0, 1, 2, 3 }, { 1, -2, NAN, 8 }, { false, true });
  EXPECT_EQ(series.notPositive, 1u);
  EXPECT_EQ(series.missing, 1u);
  EXPECT_EQ(series.curves[0].x, (std::vector<double>{ 0, 3 }));

  PlotFrame frame;
  frame.left = 0;
  frame.right = 300;
  frame.xMin = 1;
  frame.xMax = 1000;
  frame.log.x = true;
  EXPECT_NEAR(frame.px(10), 100, 1e-9) << "a decade per third";
  EXPECT_NEAR(frame.valueX(200), 100, 1e-9);
  EXPECT_EQ(ticksOf(1, 1000, true), (std::vector<double>{ 1, 10, 100, 1000 }));
  EXPECT_EQ(ticksOf(1, 20, true), (std::vector<double>{ 1, 2, 5, 10, 20 }));
  EXPECT_EQ(ticksOf(0, 1, false), (std::vector<double>{ 0, 0.2, 0.4, 0.6000000000000001, 0.8, 1 }));
}

TEST(CurvePicking, AClickOrARubberBandPicksTheCasesOfThePointsOrCurves)
{
  PlotFrame frame;
  frame.left = 0;
  frame.top = 0;
  frame.right = 100;
  frame.bottom = 100;
  frame.xMin = 0;
  frame.xMax = 10;
  frame.yMin = 0;
  frame.yMax = 10;

  // Series: a click near a segment picks its case, between its samples too.
  CurveSet series;
  addSeriesCurve(series, 7, "case 7", { 0, 10 }, { 0, 10 }, {});
  addSeriesCurve(series, 3, "case 3", { 0, 10 }, { 10, 0 }, {});
  EXPECT_EQ(rowsNear(series, frame, 25, 74, 6), (std::vector<std::uint32_t>{ 7 }));
  EXPECT_EQ(rowsNear(series, frame, 25, 26, 6), (std::vector<std::uint32_t>{ 3 }));
  EXPECT_TRUE(rowsNear(series, frame, 50, 10, 6).empty());
  // A band that no sample lies in, but that both segments cross.
  EXPECT_EQ(rowsThrough(series, frame, 45, 45, 55, 55), (std::vector<std::uint32_t>{ 3, 7 }));
  EXPECT_EQ(rowsThrough(series, frame, 0, 0, 20, 5), (std::vector<std::uint32_t>{ 3 }));

  // Response curves: a click picks every case behind the nearest point.
  LineGroups one{ { "" }, { 0, 0, 0 } };
  const std::vector<double> x = { 1, 1, 5 };
  const std::vector<double> y = { 2, 4, 5 };
  const CurveSet response = responseCurves(x, y, one, Aggregate::Mean, Band::None, {});
  EXPECT_EQ(rowsNear(response, frame, 11, 70, 6), (std::vector<std::uint32_t>{ 0, 1 }));
  EXPECT_TRUE(rowsNear(response, frame, 30, 60, 6).empty()) << "between points is no point";
  EXPECT_EQ(rowsThrough(response, frame, 40, 40, 60, 60), (std::vector<std::uint32_t>{ 2 }));
}

TEST(CurveDrawing, LongSeriesKeepTheirSpikesAndTheDensityCountsEverySegment)
{
  PlotFrame frame;
  frame.right = 100;
  frame.bottom = 100;
  frame.xMax = 100000;
  frame.yMax = 10;
  CurveSet set;
  std::vector<double> x, y;
  for (int i = 0; i < 100000; ++i)
  {
    x.push_back(i);
    y.push_back(i == 54321 ? 10 : 1);
  }
  addSeriesCurve(set, 0, "long", x, y, {});
  const auto points = reducedForDrawing(set.curves[0], frame);
  EXPECT_LE(points.size(), 4u * 101);
  const auto top = std::min_element(
    points.begin(), points.end(), [](const auto& a, const auto& b) { return a.second < b.second; });
  EXPECT_FLOAT_EQ(top->second, 0.f) << "the spike to 10 is drawn at the top";

  // Two crossing curves in a 100 x 100 density: where they cross, two segments.
  CurveSet cross;
  addSeriesCurve(cross, 0, "up", { 0, 10 }, { 0, 10 }, {});
  addSeriesCurve(cross, 1, "down", { 0, 10 }, { 10, 0 }, {});
  frame.xMax = 10;
  const QImage alone = curveDensity(cross, frame, QSize(101, 101), {}, { 1, 0 }, 0xff000000);
  const QImage both = curveDensity(cross, frame, QSize(101, 101), {}, {}, 0xff000000);
  EXPECT_EQ(qAlpha(alone.pixel(50, 50)), 255) << "one curve alone is the most there is";
  EXPECT_EQ(qAlpha(alone.pixel(20, 80)), 255) << "up from the bottom left";
  EXPECT_EQ(qAlpha(alone.pixel(20, 20)), 0);
  EXPECT_GT(qAlpha(both.pixel(50, 50)), qAlpha(both.pixel(20, 20)))
    << "two segments through the crossing, one elsewhere";
}

TEST(CurveDrawing, ADensityCountedInSlicesIsTheDensityCountedAtOnce)
{
  // Twelve zigzags of 20 points, each shifted and coloured differently, over 120 x 80 pixels.
  const PlotFrame frame{ 0, 0, 120, 80, 0, 19, 0, 14, {} };
  CurveSet set;
  std::vector<float> scale;
  for (int c = 0; c < 12; ++c)
  {
    std::vector<double> x, y;
    for (int i = 0; i < 20; ++i)
    {
      x.push_back(i);
      y.push_back(c + (i % 2 ? 2.5 : 0.0));
    }
    addSeriesCurve(set, static_cast<std::uint32_t>(c), "zigzag", x, y, {});
    scale.push_back(c == 5 ? NAN : static_cast<float>(c) / 11.f);
  }
  const QSize size(121, 81);
  const QImage atOnce = curveDensity(set, frame, size, scale, {}, 0xff000000);

  CurveDensity sliced;
  sliced.reset(frame, size);
  std::vector<std::size_t> progress;
  for (int slice = 0; slice < 20 && sliced.curves() < set.curves.size(); ++slice)
  {
    sliced.add(set, scale, {}, 30);
    progress.push_back(sliced.curves());
  }
  // Each slice stops after the curve that brings it to 30 points: two curves of 20.
  EXPECT_EQ(progress, (std::vector<std::size_t>{ 2, 4, 6, 8, 10, 12 }));
  EXPECT_EQ(sliced.image(0xff000000), atOnce);

  // The painter counts a slice per paint and says when curves are left for the next.
  LinePlotPainter::Look look;
  look.density = true;
  look.scale = scale;
  const auto paintedWith = [&](LinePlotPainter& painter, std::size_t mostPoints)
  {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    QPainter on(&image);
    painter.paint(on, size, set, frame, {}, look, mostPoints);
    return image;
  };
  LinePlotPainter whole;
  const QImage wholePicture = paintedWith(whole, std::numeric_limits<std::size_t>::max());
  EXPECT_FALSE(whole.curvesLeftToCount());
  LinePlotPainter inSlices;
  int paints = 1;
  QImage picture = paintedWith(inSlices, 100);
  EXPECT_NE(picture, wholePicture) << "the first paint holds five curves of twelve";
  while (inSlices.curvesLeftToCount() && paints < 20)
  {
    picture = paintedWith(inSlices, 100);
    ++paints;
  }
  EXPECT_EQ(paints, 3);
  EXPECT_EQ(picture, wholePicture);
}
