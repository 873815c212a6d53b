#include "charts/ChartXY.h"
#include "charts/ChartXYLocationTransformer.h"
#include "charts/vtkChartUtils.h"
#include "dataviews/DataViewInterface.h"
#include "support/RenderedView.h"

#include <gtest/gtest.h>
#include <vtkAxis.h>
#include <vtkContextScene.h>
#include <vtkContextView.h>
#include <vtkDoubleArray.h>
#include <vtkIdTypeArray.h>
#include <vtkPlot.h>
#include <vtkTable.h>
#include <vtkTypeUInt64Array.h>

#include <stdexcept>

namespace
{

// A view that redraws its chart when asked, and counts how often it was asked.
class CountingView : public DataViewInterface
{
public:
  explicit CountingView(testsupport::RenderedView& rendered)
    : rendered(rendered)
  {
  }
  void suspend() override {}
  void resume() override {}
  SerializerInterface& serializer() override { throw std::logic_error("not used"); }
  void adjustSelectionForMouseClickAtPoint() override {}
  std::string domName() const override { return {}; }
  void refresh() override
  {
    ++refreshes;
    rendered.render();
  }
  int refreshes = 0;
  testsupport::RenderedView& rendered;

protected:
  boost::shared_ptr<plexa::PropertyAbstract<MouseMode>> mouseMode() const override { return {}; }
};

// A chart over the points (0, 0), (1, 10), ..., (10, 100), with case ids 4294967296 + row.
class ChartCoordinates : public ::testing::Test
{
protected:
  ChartCoordinates()
    : rendered(400, 300)
    , view(rendered)
  {
    rendered.view().GetScene()->AddItem(chart);
    ids->SetName("case_id");
    auto x = vtkSmartPointer<vtkDoubleArray>::New();
    x->SetName("x");
    auto y = vtkSmartPointer<vtkDoubleArray>::New();
    y->SetName("y");
    for (int i = 0; i <= 10; ++i)
    {
      ids->InsertNextValue(4294967296ULL + static_cast<unsigned long long>(i));
      x->InsertNextValue(i);
      y->InsertNextValue(10.0 * i);
    }
    table->AddColumn(ids);
    table->AddColumn(x);
    table->AddColumn(y);
    plot = chart->AddPlot(vtkChart::POINTS);
    plot->SetInputData(table, 1, 2);
    rendered.render();
  }

  std::pair<double, double> range(int axis)
  {
    return { chart->GetAxis(axis)->GetMinimum(), chart->GetAxis(axis)->GetMaximum() };
  }

  testsupport::RenderedView rendered;
  vtkNew<ChartXY> chart;
  vtkNew<vtkTable> table;
  vtkNew<vtkTypeUInt64Array> ids;
  vtkPlot* plot = nullptr;
  CountingView view;
};

} // namespace

TEST(ChartXYLocationTransformer, MapsPixelsLinearlyAlongTheBottomAndLeftAxes)
{
  vtkNew<ChartXY> chart;
  vtkAxis* bottom = chart->GetAxis(vtkAxis::BOTTOM);
  bottom->SetPoint1(50, 40);
  bottom->SetPoint2(450, 40);
  bottom->SetRange(0, 100);
  vtkAxis* left = chart->GetAxis(vtkAxis::LEFT);
  left->SetPoint1(50, 40);
  left->SetPoint2(50, 240);
  left->SetRange(-1, 1);
  const ChartXYLocationTransformer transformer(chart.Get());
  const struct
  {
    int x, y;
    float worldX, worldY;
  } cases[] = {
    { 250, 140, 50.0f, 0.0f },
    { 50, 40, 0.0f, -1.0f },
    { 450, 240, 100.0f, 1.0f },
    { 10, 0, -10.0f, -1.4f }, // outside the axes: not clamped
  };
  for (const auto& c : cases)
  {
    const vtkVector2f world = transformer.getWorldCoordinatesFromPixelLocation({ c.x, c.y });
    EXPECT_FLOAT_EQ(world.GetX(), c.worldX) << c.x;
    EXPECT_FLOAT_EQ(world.GetY(), c.worldY) << c.y;
  }
}

TEST_F(ChartCoordinates, FitDataFitsBothAxesAndKeepsTheirBehaviour)
{
  for (int axis : { vtkAxis::BOTTOM, vtkAxis::LEFT })
  {
    chart->GetAxis(axis)->SetBehavior(vtkAxis::FIXED);
    chart->GetAxis(axis)->SetRange(-500, -400);
  }
  vtkChartUtils::fitData(*chart, view);
  EXPECT_EQ(chart->GetAxis(vtkAxis::BOTTOM)->GetBehavior(), vtkAxis::FIXED);
  EXPECT_EQ(chart->GetAxis(vtkAxis::LEFT)->GetBehavior(), vtkAxis::FIXED);
  EXPECT_EQ(range(vtkAxis::BOTTOM), std::make_pair(0.0, 10.0));
  EXPECT_EQ(range(vtkAxis::LEFT), std::make_pair(0.0, 100.0));
  EXPECT_EQ(view.refreshes, 1);
}

TEST_F(ChartCoordinates, ResetAxisRangeFitsOneAxisAndLeavesTheOther)
{
  chart->GetAxis(vtkAxis::LEFT)->SetBehavior(vtkAxis::AUTO);
  chart->GetAxis(vtkAxis::LEFT)->SetRange(-5, 5);
  chart->GetAxis(vtkAxis::BOTTOM)->SetBehavior(vtkAxis::FIXED);
  chart->GetAxis(vtkAxis::BOTTOM)->SetRange(3, 4);
  vtkChartUtils::resetAxisRange(*chart, *chart->GetAxis(vtkAxis::BOTTOM), view);
  EXPECT_EQ(range(vtkAxis::BOTTOM), std::make_pair(0.0, 10.0));
  EXPECT_EQ(range(vtkAxis::LEFT), std::make_pair(-5.0, 5.0)) << "even though it is AUTO";
  EXPECT_EQ(chart->GetAxis(vtkAxis::BOTTOM)->GetBehavior(), vtkAxis::FIXED);
  EXPECT_EQ(chart->GetAxis(vtkAxis::LEFT)->GetBehavior(), vtkAxis::AUTO);
  EXPECT_EQ(view.refreshes, 1);
}

TEST_F(ChartCoordinates, CaseIdAtPointPicksWithoutDisturbingTheSelection)
{
  auto selected = vtkSmartPointer<vtkIdTypeArray>::New();
  selected->InsertNextValue(9);
  plot->SetSelection(selected);
  unsigned long long caseId = 77;

  EXPECT_TRUE(vtkChartUtils::caseIDAtPoint(*plot, *ids, { 2.9f, 29.0f }, { 3.1f, 31.0f }, caseId));
  EXPECT_EQ(caseId, 3u) << "4294967299 through a 32-bit unsigned conversion";

  caseId = 77;
  EXPECT_FALSE(vtkChartUtils::caseIDAtPoint(*plot, *ids, { 3.2f, 0.0f }, { 3.8f, 100.0f }, caseId));
  EXPECT_EQ(caseId, 77u);

  EXPECT_TRUE(vtkChartUtils::caseIDAtPoint(*plot, *ids, { 4.5f, 0.0f }, { 7.5f, 100.0f }, caseId));
  EXPECT_GE(caseId, 5u);
  EXPECT_LE(caseId, 7u);

  ASSERT_EQ(plot->GetSelection()->GetNumberOfTuples(), 1);
  EXPECT_EQ(plot->GetSelection()->GetValue(0), 9) << "the plot's selection is as it was";
}
