#include "charts/ChartXY.h"
#include "serialize/Serializer.h"
#include "support/RenderedView.h"

#include <gtest/gtest.h>
#include <vtkChartLegend.h>
#include <vtkContextScene.h>
#include <vtkContextView.h>
#include <vtkDoubleArray.h>
#include <vtkPlot.h>
#include <vtkTable.h>
#include <vtkTextProperty.h>

namespace
{

constexpr int width = 400;
constexpr int height = 300;

// A chart of 400 x 300 pixels with two labelled plots, so that its legends have entries.
class LegendLayout : public ::testing::Test
{
protected:
  LegendLayout()
    : rendered(width, height)
  {
    rendered.view().GetScene()->AddItem(chart);
    auto table = vtkSmartPointer<vtkTable>::New();
    for (const char* name : { "x", "y", "z" })
    {
      auto column = vtkSmartPointer<vtkDoubleArray>::New();
      column->SetName(name);
      for (int i = 0; i < 5; ++i)
        column->InsertNextValue(i * (name[0] - 'w'));
      table->AddColumn(column);
    }
    vtkPlot* first = chart->AddPlot(vtkChart::POINTS);
    first->SetInputData(table, 0, 1);
    first->SetLabel("range");
    vtkPlot* second = chart->AddPlot(vtkChart::POINTS);
    second->SetInputData(table, 0, 2);
    second->SetLabel("apex height");
    chart->SetShowLegend(true);
    border = static_cast<float>(chart->GetHiddenAxisBorder());
  }

  void TearDown() override
  {
    if (HasFailure())
      ADD_FAILURE() << "rendered image: "
                    << rendered.save(
                         ::testing::UnitTest::GetInstance()->current_test_info()->name());
  }

  vtkSmartPointer<vtkChartLegend> newLegend(int fontSize)
  {
    auto legend = vtkSmartPointer<vtkChartLegend>::New();
    legend->SetChart(chart);
    legend->GetLabelProperties()->SetFontSize(fontSize);
    legend->Update();
    return legend;
  }

  void render()
  {
    chart->GetLegend()->Update();
    rendered.render();
  }

  const ChartXY::LegendAndItsDimensions& entry(std::size_t i) { return chart->legends().at(i); }
  float left(std::size_t i) { return entry(i).legend->GetPoint()[0]; }
  float right(std::size_t i) { return left(i) + entry(i).dimensions.first; }
  float top(std::size_t i) { return entry(i).legend->GetPoint()[1] + entry(i).dimensions.second; }

  testsupport::RenderedView rendered;
  vtkNew<ChartXY> chart;
  float border = 0;
};

} // namespace

TEST_F(LegendLayout, LegendsArePlacedSideBySideFromTheTopRightCorner)
{
  ASSERT_EQ(chart->legends().size(), 1u);
  EXPECT_EQ(entry(0).legend.Get(), chart->GetLegend());
  chart->addLegend(newLegend(20));
  render();

  ASSERT_TRUE(entry(0).isAutoPlaced && entry(1).isAutoPlaced);
  const float w0 = entry(0).dimensions.first;
  EXPECT_GT(w0, 0);
  EXPECT_GT(entry(1).dimensions.first, w0) << "the second legend has the larger font";
  EXPECT_FLOAT_EQ(right(0), width - border);
  EXPECT_FLOAT_EQ(right(1), width - 2 * border - w0);
  EXPECT_FLOAT_EQ(entry(1).rightEdge, width - 2 * border - w0);
  // The first pass puts the tops B above the chart; the viewport clamp brings them to B below.
  EXPECT_FLOAT_EQ(top(0), height - border);
  EXPECT_FLOAT_EQ(top(1), height - border);

  render();
  EXPECT_TRUE(entry(0).isAutoPlaced) << "a vertical move does not count as leaving the slot";
  EXPECT_FLOAT_EQ(right(1), width - 2 * border - w0);
}

TEST_F(LegendLayout, ADraggedLegendKeepsItsPlaceAndGivesUpItsSlot)
{
  chart->addLegend(newLegend(14));
  render();
  const float w0 = entry(0).dimensions.first;

  chart->GetLegend()->SetPoint(60, 100); // dragged by the user between two renders
  render();
  EXPECT_FALSE(entry(0).isAutoPlaced);
  EXPECT_FLOAT_EQ(left(0), 60);
  EXPECT_FLOAT_EQ(entry(0).legend->GetPoint()[1], 100);

  // A legend added now takes the next slot left of the legends still in theirs; the dragged
  // one takes no part.
  chart->addLegend(newLegend(10));
  render();
  EXPECT_TRUE(entry(2).isAutoPlaced);
  EXPECT_FLOAT_EQ(right(2), right(1) - entry(1).dimensions.first - border);
  EXPECT_NE(right(2), width - 2 * border - w0);
  render();
  EXPECT_FLOAT_EQ(left(0), 60) << "a freed legend never returns to a slot";
}

TEST_F(LegendLayout, LegendsAreClampedIntoTheViewport)
{
  render();
  const float w = entry(0).dimensions.first;
  const float h = entry(0).dimensions.second;
  const struct
  {
    float x, y;
    float expectedX, expectedY;
  } cases[] = {
    { -100, 500, border, height - border - h },     // off the top left
    { width + 50, 100, width - w - border, 100 },   // off the right
    { 100, -50, 100, border - h },                  // top below B: only the top is kept in
    { 100, -h + border + 5, 100, -h + border + 5 }, // hanging below, top still high enough
  };
  for (const auto& c : cases)
  {
    chart->GetLegend()->SetPoint(c.x, c.y);
    render();
    EXPECT_FLOAT_EQ(left(0), c.expectedX) << "from " << c.x << ", " << c.y;
    EXPECT_FLOAT_EQ(entry(0).legend->GetPoint()[1], c.expectedY) << "from " << c.x << ", " << c.y;
  }
}

TEST_F(LegendLayout, LayoutWaitsWhileSavedSettingsAreReadBack)
{
  render();
  Serializer::isInMiddleOfDeserialization = true;
  chart->GetLegend()->SetPoint(-300, -300); // a restored position, for now outside
  auto restored = newLegend(12);
  chart->addLegend(restored);
  restored->SetPoint(100, 120);
  render();
  EXPECT_FLOAT_EQ(left(0), -300);
  EXPECT_FALSE(entry(1).isPositioned);
  Serializer::isInMiddleOfDeserialization = false;

  render();
  EXPECT_FLOAT_EQ(left(0), border) << "clamped once reading is over";
  EXPECT_TRUE(entry(1).isPositioned);
  EXPECT_FALSE(entry(1).isAutoPlaced) << "a legend placed by someone else is left where it is";
  EXPECT_FLOAT_EQ(left(1), 100);
  EXPECT_FLOAT_EQ(entry(1).legend->GetPoint()[1], 120);
}

TEST_F(LegendLayout, AnInvisibleLegendKeepsItsDimensionsAndIsReanchoredWhenShownAgain)
{
  auto extra = newLegend(12);
  chart->addLegend(extra);
  render();
  const auto dimensions = entry(1).dimensions;
  const float oldRight = right(1);
  const float oldTop = top(1);

  extra->SetVisible(false);
  extra->GetLabelProperties()->SetFontSize(20);
  extra->Modified();
  render();
  EXPECT_EQ(entry(1).dimensions, dimensions);

  extra->SetVisible(true);
  render();
  EXPECT_GT(entry(1).dimensions.first, dimensions.first);
  EXPECT_FLOAT_EQ(right(1), oldRight);
  EXPECT_FLOAT_EQ(top(1), oldTop);
}
