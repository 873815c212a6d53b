// A points plot drawn as a density: the same points, selection and tool tips as with markers,
// painted as bins whose cost follows the plot's size.

#include "charts/vtkDensityPlotPoints.h"

#include "support/RenderedView.h"

#include <QImage>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>
#include <vtkAxis.h>
#include <vtkChartXY.h>
#include <vtkContextScene.h>
#include <vtkContextView.h>
#include <vtkDoubleArray.h>
#include <vtkIdTypeArray.h>
#include <vtkIntArray.h>
#include <vtkLookupTable.h>
#include <vtkObjectFactory.h>
#include <vtkPoints2D.h>
#include <vtkTable.h>
#include <vtkUnsignedCharArray.h>

namespace
{

// Keys 0..n-1 in column 0; three points share the spot (1, 1).
vtkSmartPointer<vtkTable> points()
{
  auto table = vtkSmartPointer<vtkTable>::New();
  auto keys = vtkSmartPointer<vtkIntArray>::New();
  keys->SetName("key");
  auto x = vtkSmartPointer<vtkDoubleArray>::New();
  x->SetName("x");
  auto y = vtkSmartPointer<vtkDoubleArray>::New();
  y->SetName("y");
  const double values[][2] = { { 1, 1 }, { 2, 3 }, { 1, 1 }, { 4, 2 }, { 1, 1 } };
  for (int i = 0; i < 5; ++i)
  {
    keys->InsertNextValue(i);
    x->InsertNextValue(values[i][0]);
    y->InsertNextValue(values[i][1]);
  }
  table->AddColumn(keys);
  table->AddColumn(x);
  table->AddColumn(y);
  return table;
}

vtkSmartPointer<vtkDoubleArray> numbers(const char* name, const std::vector<double>& values)
{
  auto column = vtkSmartPointer<vtkDoubleArray>::New();
  column->SetName(name);
  for (double value : values)
    column->InsertNextValue(value);
  return column;
}

// A table of some of `columns`, as a host makes one for each update of what it shows.
vtkSmartPointer<vtkTable> tableOf(const std::vector<vtkSmartPointer<vtkDoubleArray>>& columns)
{
  auto table = vtkSmartPointer<vtkTable>::New();
  for (vtkDoubleArray* column : columns)
    table->AddColumn(column);
  return table;
}

} // namespace

TEST(DensityPlotPoints, ToolTipsNameTheCasesOnTheSpotThroughTheirKeys)
{
  auto chart = vtkSmartPointer<vtkChartXY>::New();
  auto plot = vtkSmartPointer<vtkDensityPlotPoints>::New();
  chart->AddPlot(plot);
  plot->SetInputData(points(), "x", "y");
  plot->Update();
  // Keys name cases far above 2^32.
  plot->SetCaseIdOfKey(
    [](long long key, unsigned long long& id)
    {
      id = 18446744073709551000ULL + static_cast<unsigned long long>(key);
      return key != 4;
    });
  EXPECT_EQ(plot->GetTooltipLabel(vtkVector2d(2, 3), 1, 0),
            "case 18446744073709551001\nX Axis 2, Y Axis 3");
  EXPECT_EQ(plot->GetTooltipLabel(vtkVector2d(1, 1), 0, 0),
            "3 cases here: 18446744073709551000, 18446744073709551002, ?\nX Axis 1, Y Axis 1")
    << "the cases a click there would select; one without a case is a question mark";
}

TEST(DensityPlotPoints, ADensityShowsThePointsAndTheSelectionDarkerOverThem)
{
  testsupport::RenderedView shown(200, 200);
  auto chart = vtkSmartPointer<vtkChartXY>::New();
  shown.view().GetScene()->AddItem(chart);
  auto plot = vtkSmartPointer<vtkDensityPlotPoints>::New();
  chart->AddPlot(plot);
  plot->SetInputData(points(), "x", "y");
  plot->SetColor(0, 0, 255, 255);
  plot->SetDrawDensity(true);
  for (int axis : { vtkAxis::BOTTOM, vtkAxis::LEFT })
  {
    chart->GetAxis(axis)->SetBehavior(vtkAxis::FIXED);
    chart->GetAxis(axis)->SetRange(0, 5);
  }
  // Pixels counted on the saved picture: one read of the window, not one per pixel.
  const auto count = [&](const std::string& name, bool (*of)(QRgb))
  {
    const QImage image(QString::fromStdString(shown.save(name)));
    int n = 0;
    for (int x = 0; x < image.width(); ++x)
      for (int y = 0; y < image.height(); ++y)
        n += of(image.pixel(x, y)) ? 1 : 0;
    return n;
  };
  shown.render();
  EXPECT_GE(count("density.png", [](QRgb c) { return qBlue(c) > 150 && qRed(c) < 150; }), 4)
    << "a bin of 2 x 2 pixels for each spot";

  auto selection = vtkSmartPointer<vtkIdTypeArray>::New();
  selection->InsertNextValue(3);
  plot->SetSelection(selection);
  plot->SetDrawSelectionDensity(true);
  plot->SetSelectionDensityColor(20, 20, 20, 255);
  shown.render();
  EXPECT_GE(
    count("selected.png", [](QRgb c) { return qRed(c) < 80 && qGreen(c) < 80 && qBlue(c) < 80; }),
    1)
    << "the selected point drawn dark";
}

// Points on the edges of the axes' ranges are in the edge bins, points outside them, not finite
// or not points at all (a selection of rows the plot does not have) in none.
TEST(DensityPlotPoints, PointsOnTheAxesEdgesAreBinnedAndNoneOutside)
{
  testsupport::RenderedView shown(200, 200);
  auto chart = vtkSmartPointer<vtkChartXY>::New();
  shown.view().GetScene()->AddItem(chart);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  auto table =
    tableOf({ numbers("x", { 0, 5, 5, 0, 7, 2, nan }), numbers("y", { 0, 5, 0, 5, 2, -1, 1 }) });
  auto plot = vtkSmartPointer<vtkDensityPlotPoints>::New();
  chart->AddPlot(plot);
  plot->SetInputData(table, "x", "y");
  plot->SetColor(0, 0, 255, 255);
  plot->SetDrawDensity(true);
  for (int axis : { vtkAxis::BOTTOM, vtkAxis::LEFT })
  {
    chart->GetAxis(axis)->SetBehavior(vtkAxis::FIXED);
    chart->GetAxis(axis)->SetRange(0, 5);
  }
  auto selection = vtkSmartPointer<vtkIdTypeArray>::New();
  for (vtkIdType row : { vtkIdType(-1), vtkIdType(0), vtkIdType(1) << 24 })
    selection->InsertNextValue(row);
  plot->SetSelection(selection);
  plot->SetDrawSelectionDensity(true);
  plot->SetSelectionDensityColor(20, 20, 20, 255);
  shown.render();
  const QImage image(QString::fromStdString(shown.save("edges.png")));
  // The plot area's corners, in the picture's rows from the top.
  const vtkVector2i low(chart->GetPoint1());
  const vtkVector2i high(chart->GetPoint2());
  const auto shownNear = [&](int x, int y, bool (*of)(QRgb))
  {
    for (int dx = -2; dx <= 2; ++dx)
      for (int dy = -2; dy <= 2; ++dy)
        if (of(image.pixel(x + dx, image.height() - 1 - (y + dy))))
          return true;
    return false;
  };
  const auto blue = [](QRgb c) { return qBlue(c) > 150 && qRed(c) < 150; };
  const auto dark = [](QRgb c) { return qRed(c) < 80 && qGreen(c) < 80 && qBlue(c) < 80; };
  EXPECT_TRUE(shownNear(high.GetX(), high.GetY(), blue)) << "the far corner";
  EXPECT_TRUE(shownNear(high.GetX(), low.GetY(), blue));
  EXPECT_TRUE(shownNear(low.GetX(), high.GetY(), blue));
  EXPECT_TRUE(shownNear(low.GetX(), low.GetY(), dark)) << "the selected point at the origin";
  int drawn = 0;
  for (int x = low.GetX() + 3; x < high.GetX() - 3; ++x)
    for (int y = low.GetY() + 3; y < high.GetY() - 3; ++y)
      drawn += blue(image.pixel(x, image.height() - 1 - y)) ? 1 : 0;
  EXPECT_EQ(drawn, 0) << "nothing within: the other points are outside";
}

TEST(DensityPlotPoints, ABinTakesTheMeanColourOfItsPoints)
{
  testsupport::RenderedView shown(200, 200);
  auto chart = vtkSmartPointer<vtkChartXY>::New();
  shown.view().GetScene()->AddItem(chart);
  // The three points on (1, 1) coloured red, blue, blue: one bin of a third red, two thirds blue.
  vtkSmartPointer<vtkTable> table = points();
  auto colour = vtkSmartPointer<vtkDoubleArray>::New();
  colour->SetName("c");
  for (double c : { 0, 0, 1, 0, 1 })
    colour->InsertNextValue(c);
  table->AddColumn(colour);
  auto redToBlue = vtkSmartPointer<vtkLookupTable>::New();
  redToBlue->SetNumberOfTableValues(2);
  redToBlue->SetTableRange(0, 1);
  redToBlue->SetTableValue(0, 1, 0, 0);
  redToBlue->SetTableValue(1, 0, 0, 1);
  auto plot = vtkSmartPointer<vtkDensityPlotPoints>::New();
  chart->AddPlot(plot);
  plot->SetInputData(table, "x", "y");
  plot->SetLookupTable(redToBlue);
  plot->SelectColorArray("c");
  plot->SetScalarVisibility(true);
  plot->SetDrawDensity(true);
  for (int axis : { vtkAxis::BOTTOM, vtkAxis::LEFT })
  {
    chart->GetAxis(axis)->SetBehavior(vtkAxis::FIXED);
    chart->GetAxis(axis)->SetRange(0, 5);
  }
  shown.render();
  const QImage image(QString::fromStdString(shown.save("mean-colour.png")));
  int mixed = 0;
  for (int x = 0; x < image.width(); ++x)
    for (int y = 0; y < image.height(); ++y)
    {
      // The fullest bin is opaque: its pixels are the mean colour itself, (85, 0, 170).
      const QRgb c = image.pixel(x, y);
      mixed += std::abs(qRed(c) - 85) <= 3 && qGreen(c) <= 3 && std::abs(qBlue(c) - 170) <= 3;
    }
  EXPECT_GE(mixed, 1) << "a bin of 2 x 2 pixels in the mean of red, blue and blue";
}

// The points within a rectangle, its edges included; points that are not numbers or infinite
// are never within.
TEST(DensityPlotPoints, ARectangleSelectsThePointsWithinIt)
{
  auto table = points();
  auto* keys = vtkIntArray::SafeDownCast(table->GetColumnByName("key"));
  auto* x = vtkDoubleArray::SafeDownCast(table->GetColumnByName("x"));
  auto* y = vtkDoubleArray::SafeDownCast(table->GetColumnByName("y"));
  const double more[][2] = { { NAN, 2 }, { 3, NAN }, { 2, 2 }, { 4, 3 }, { INFINITY, 2 } };
  for (int i = 0; i < 5; ++i)
  {
    keys->InsertNextValue(5 + i);
    x->InsertNextValue(more[i][0]);
    y->InsertNextValue(more[i][1]);
  }
  // Rows: 0 (1,1) 1 (2,3) 2 (1,1) 3 (4,2) 4 (1,1) 5 (NaN,2) 6 (3,NaN) 7 (2,2) 8 (4,3) 9 (inf,2)
  const struct
  {
    vtkVector2f min, max;
    std::vector<vtkIdType> rows;
  } rectangles[] = {
    { { 0, 0 }, { 5, 5 }, { 0, 1, 2, 3, 4, 7, 8 } },
    { { 1, 1 }, { 1, 1 }, { 0, 2, 4 } },
    { { 1.5, 1.5 }, { 4, 3 }, { 1, 3, 7, 8 } },
    { { 2, 2 }, { 3.9f, 2.9f }, { 7 } },
    { { 6, 6 }, { 7, 7 }, {} },
    { { -5, 1 }, { 1e30f, 2 }, { 0, 2, 3, 4, 7 } },
  };
  auto plot = vtkSmartPointer<vtkDensityPlotPoints>::New();
  plot->SetInputData(table, "x", "y");
  plot->Update();
  for (const auto& rectangle : rectangles)
  {
    const bool any = plot->SelectPoints(rectangle.min, rectangle.max);
    std::vector<vtkIdType> rows;
    for (vtkIdType i = 0; i < plot->GetSelection()->GetNumberOfTuples(); ++i)
      rows.push_back(plot->GetSelection()->GetValue(i));
    EXPECT_EQ(rows, rectangle.rows) << rectangle.min.GetX() << "," << rectangle.min.GetY() << " to "
                                    << rectangle.max.GetX() << "," << rectangle.max.GetY();
    EXPECT_EQ(any, !rows.empty());
  }
}

// A selection set from outside leaves the points' cache as it is (a million points read and
// sorted again for every selection otherwise); new data is read again.
TEST(DensityPlotPoints, ANewSelectionOrItsDensityKeepsThePointsCache)
{
  auto plot = vtkSmartPointer<vtkDensityPlotPoints>::New();
  auto chart = vtkSmartPointer<vtkChartXY>::New();
  chart->AddPlot(plot);
  auto table = points();
  plot->SetInputData(table, "x", "y");
  plot->Update();
  const vtkVector2f near(0.01f, 0.01f);
  vtkVector2f at;
  vtkIdType segment = 0;
  ASSERT_EQ(plot->GetNearestPoint({ 4, 2 }, near, &at, &segment), 3);

  // A point moved behind the table's back: found where it was while the cache is kept.
  vtkDoubleArray::SafeDownCast(table->GetColumnByName("y"))->GetPointer(0)[3] = 9;
  auto selection = vtkSmartPointer<vtkIdTypeArray>::New();
  selection->InsertNextValue(3);
  plot->SetSelection(selection);
  plot->SetDrawSelectionDensity(true);
  plot->Update();
  EXPECT_EQ(plot->GetNearestPoint({ 4, 2 }, near, &at, &segment), 3)
    << "a new selection, drawn as a density, reads no points";
  EXPECT_EQ(plot->GetSelection(), selection.Get());

  table->Modified();
  plot->SetSelection(nullptr);
  plot->Update();
  EXPECT_EQ(plot->GetNearestPoint({ 4, 2 }, near, &at, &segment), -1) << "changed data is read";
  EXPECT_EQ(plot->GetNearestPoint({ 4, 9 }, near, &at, &segment), 3);
  EXPECT_EQ(plot->GetSelection(), nullptr);
}

// The bounds are kept between draws and made again when the columns they come from change, other
// columns are plotted, an axis turns logarithmic or bad points are left out.
TEST(DensityPlotPoints, BoundsAreKeptUntilWhatTheyComeFromChanges)
{
  auto chart = vtkSmartPointer<vtkChartXY>::New();
  auto plot = vtkSmartPointer<vtkDensityPlotPoints>::New();
  chart->AddPlot(plot);
  auto table = points();
  plot->SetInputData(table, "x", "y");
  plot->Update();
  auto* x = vtkDoubleArray::SafeDownCast(table->GetColumnByName("x"));
  const auto boundsNow = [&]
  {
    plot->Update();
    std::vector<double> bounds(4, -1);
    plot->GetBounds(bounds.data());
    return bounds;
  };
  const struct
  {
    const char* change;
    std::function<void()> make;
    std::vector<double> bounds;
  } steps[] = {
    { "none", [] {}, { 1, 4, 1, 3 } },
    { "a value written behind the column's back",
      [&] { x->GetPointer(0)[3] = 8; },
      { 1, 4, 1, 3 } },
    { "the column told of it", [&] { x->Modified(); }, { 1, 8, 1, 3 } },
    { "another column as Y", [&] { plot->SetInputArray(1, "x"); }, { 1, 8, 1, 8 } },
    { "X on a logarithmic axis",
      [&]
      {
        chart->GetAxis(vtkAxis::BOTTOM)->SetLogScale(true);
        chart->GetAxis(vtkAxis::BOTTOM)->SetUnscaledRange(1, 8);
      },
      { 0, std::log10(8.0), 1, 8 } },
    { "a value that is not a number, left out",
      [&]
      {
        x->SetValue(1, std::nan(""));
        x->Modified();
      },
      { 0, std::log10(8.0), 1, 8 } },
  };
  for (const auto& step : steps)
  {
    step.make();
    const std::vector<double> bounds = boundsNow();
    for (int i = 0; i < 4; ++i)
      EXPECT_NEAR(bounds[std::size_t(i)], step.bounds[std::size_t(i)], 1e-12)
        << step.change << ", bound " << i;
  }
}

namespace
{

// What the points plot keeps of its input, read back.
class CacheProbe : public vtkDensityPlotPoints
{
public:
  static CacheProbe* New();
  vtkTypeMacro(CacheProbe, vtkDensityPlotPoints);

  std::vector<float> points() const
  {
    const auto* xy = static_cast<const float*>(this->Points->GetVoidPointer(0));
    return { xy, xy + 2 * this->Points->GetNumberOfPoints() };
  }
  // The points bit for bit, so that NaN equals NaN.
  std::vector<std::uint32_t> pointBits() const
  {
    const std::vector<float> xy = points();
    std::vector<std::uint32_t> bits(xy.size());
    std::memcpy(bits.data(), xy.data(), xy.size() * sizeof(float));
    return bits;
  }
  std::vector<vtkIdType> badPoints() const
  {
    if (!this->BadPoints)
      return {};
    const vtkIdType* bad = this->BadPoints->GetPointer(0);
    return { bad, bad + this->BadPoints->GetNumberOfValues() };
  }
  vtkUnsignedCharArray* colours() const { return this->Colors; }
  vtkMTimeType pointsTime() const { return this->Points->GetMTime(); }
};
vtkStandardNewMacro(CacheProbe);

} // namespace

// A plot given another table of the columns it shows (other X or Y, other rows, other colours)
// keeps what did not change and reads the rest itself; what it holds then is what a plot given
// that table afresh holds: the same floats, bad points, bounds and colours.
TEST(DensityPlotPoints, AnotherTableIsReadAsAFreshPlotReadsIt)
{
  const double inf = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const std::vector<vtkSmartPointer<vtkDoubleArray>> all = {
    numbers("a", { 1, 2, 3, 4, 5, 6 }),       numbers("b", { 0.1, -7, 1e6, 3, 2.5, 0 }),
    numbers("c", { 9, inf, 8, nan, 7, 6 }),   numbers("d", { -1, 1, -1, 1, -1, nan }),
    numbers("colour", { 0, 2, 4, 6, 8, 10 }),
  };
  auto recoloured = all;
  recoloured[4] = numbers("colour", { 10, 8, 6, 4, 2, 0 });
  // Four of the rows, as a filter keeps them.
  const std::vector<vtkSmartPointer<vtkDoubleArray>> fewer = {
    numbers("a", { 2, 3, 5, 6 }),       numbers("b", { -7, 1e6, 2.5, 0 }),
    numbers("c", { inf, 8, 7, 6 }),     numbers("d", { 1, -1, -1, nan }),
    numbers("colour", { 2, 4, 8, 10 }),
  };
  const auto lookup = []
  {
    auto table = vtkSmartPointer<vtkLookupTable>::New();
    table->SetRange(0, 10);
    table->Build();
    return table;
  };
  const auto readAs = [&](CacheProbe& plot, vtkTable* table, const char* x, const char* y)
  {
    plot.SetInputData(table, x, y);
    plot.SetLookupTable(lookup());
    plot.SelectColorArray("colour");
    plot.ScalarVisibilityOn();
    // As a chart that must keep large values apart in floats.
    plot.SetShiftScale(vtkRectd(-2, 1, 0.5, 4));
  };

  auto chart = vtkSmartPointer<vtkChartXY>::New();
  auto plot = vtkSmartPointer<CacheProbe>::New();
  chart->AddPlot(plot);
  readAs(*plot, tableOf(all), "a", "d");
  plot->Update();
  vtkUnsignedCharArray* colours = plot->colours();
  ASSERT_NE(colours, nullptr);
  vtkMTimeType coloursTime = colours->GetMTime();

  const struct
  {
    const std::vector<vtkSmartPointer<vtkDoubleArray>>& columns;
    const char* x;
    const char* y;
    bool kept; // the colours kept, not mapped again
  } steps[] = {
    { all, "b", "d", true }, // d kept, not scanned before: the points plot read it
    { all, "c", "d", true },
    { all, "c", "b", true },
    { all, "a", "b", true }, // no bad points: bounds from the columns' ranges
    { all, "b", "c", true }, // both coordinates
    { recoloured, "b", "c", false },
    { recoloured, "d", "c", true },
    { fewer, "d", "c", false }, // other rows: everything
    { fewer, "d", "a", true },
    { fewer, "b", "a", true }, // no bad points: bounds from the columns' ranges
  };
  for (const auto& step : steps)
  {
    const std::string name = std::string(step.x) + " against " + step.y + " of " +
                             std::to_string(step.columns.front()->GetNumberOfValues()) + " rows";
    auto table = tableOf(step.columns);
    plot->SetInputData(table, step.x, step.y);
    // A host selects the rows again before the next draw.
    auto selection = vtkSmartPointer<vtkIdTypeArray>::New();
    selection->InsertNextValue(1);
    plot->SetSelection(selection);
    plot->Update();

    auto fresh = vtkSmartPointer<CacheProbe>::New();
    auto freshChart = vtkSmartPointer<vtkChartXY>::New();
    freshChart->AddPlot(fresh);
    readAs(*fresh, table, step.x, step.y);
    fresh->Update();
    EXPECT_EQ(plot->pointBits(), fresh->pointBits()) << name;
    EXPECT_EQ(plot->badPoints(), fresh->badPoints()) << name;
    double bounds[4];
    double freshBounds[4];
    plot->GetBounds(bounds);
    fresh->GetBounds(freshBounds);
    EXPECT_TRUE(std::equal(bounds, bounds + 4, freshBounds)) << name;
    plot->GetUnscaledInputBounds(bounds);
    fresh->GetUnscaledInputBounds(freshBounds);
    EXPECT_TRUE(std::equal(bounds, bounds + 4, freshBounds)) << name;
    ASSERT_EQ(plot->colours()->GetNumberOfValues(), fresh->colours()->GetNumberOfValues());
    EXPECT_TRUE(std::equal(plot->colours()->GetPointer(0),
                           plot->colours()->GetPointer(0) + plot->colours()->GetNumberOfValues(),
                           fresh->colours()->GetPointer(0)))
      << name;
    EXPECT_EQ(plot->colours() == colours && colours->GetMTime() == coloursTime, step.kept) << name;
    colours = plot->colours();
    coloursTime = colours->GetMTime();
  }

  // The same columns in another table: nothing to read again.
  const vtkMTimeType pointsTime = plot->pointsTime();
  plot->SetInputData(tableOf(fewer), "b", "a");
  plot->Update();
  EXPECT_EQ(plot->pointsTime(), pointsTime);
  EXPECT_EQ(plot->colours()->GetMTime(), coloursTime);

  // A column told of a change is read again, in another table: Y ("a") shifted by 1, scaled by 4.
  fewer[0]->SetValue(1, 30);
  fewer[0]->Modified();
  plot->SetInputData(tableOf(fewer), "b", "a");
  plot->Update();
  EXPECT_EQ(plot->points()[3], static_cast<float>((30.0 + 1) * 4));
}

// What the kept cache cannot follow is read as the points plot reads it: points sorted for a
// search, an axis made logarithmic, the table itself modified.
TEST(DensityPlotPoints, WhatAKeptCacheCannotFollowIsReadAfresh)
{
  auto x = numbers("x", { 1, 2, 3 });
  auto y = numbers("y", { 10, 20, 30 });
  auto other = numbers("other", { 5, 6, 7 });
  auto chart = vtkSmartPointer<vtkChartXY>::New();
  auto plot = vtkSmartPointer<CacheProbe>::New();
  chart->AddPlot(plot);
  plot->SetInputData(tableOf({ x, y, other }), "x", "y");
  plot->Update();
  const vtkVector2f near(0.01f, 0.01f);
  vtkVector2f at;
  vtkIdType segment = 0;
  ASSERT_EQ(plot->GetNearestPoint({ 2, 20 }, near, &at, &segment), 1);

  plot->SetInputData(tableOf({ x, y, other }), "other", "y");
  plot->Update();
  EXPECT_EQ(plot->GetNearestPoint({ 2, 20 }, near, &at, &segment), -1)
    << "the points sorted for searches are let go";
  EXPECT_EQ(plot->GetNearestPoint({ 6, 20 }, near, &at, &segment), 1);

  chart->GetAxis(vtkAxis::BOTTOM)->SetLogScale(true);
  chart->GetAxis(vtkAxis::BOTTOM)->SetUnscaledRange(1, 3);
  plot->SetInputData(tableOf({ x, y, other }), "x", "y");
  plot->Update();
  EXPECT_FLOAT_EQ(plot->points()[2], static_cast<float>(std::log10(2.0)))
    << "X on a logarithmic axis";
  chart->GetAxis(vtkAxis::BOTTOM)->SetLogScale(false);

  plot->SetInputData(tableOf({ x, y, other }), "other", "y");
  plot->Update();
  // Another table of the same columns, taken as they are; then modified.
  auto table = tableOf({ x, y, other });
  plot->SetInputData(table, "other", "y");
  plot->Update();
  other->GetPointer(0)[1] = 60; // written without telling the column
  table->Modified();
  plot->Update();
  EXPECT_EQ(plot->points()[2], 60.0f) << "the table modified is read again";
}
