#include "charts/ChartXY.h"
#include "properties/VTKChartsMouseModeProperty.h"
#include "support/ChartEvents.h"
#include "support/RenderedView.h"

#include <gtest/gtest.h>
#include <vtkAxis.h>
#include <vtkContextMouseEvent.h>
#include <vtkContextScene.h>
#include <vtkContextView.h>
#include <vtkDoubleArray.h>
#include <vtkIdTypeArray.h>
#include <vtkPlot.h>
#include <vtkRenderWindow.h>
#include <vtkTable.h>
#include <vtkTooltipItem.h>

#include <limits>
#include <vector>

namespace
{

// Eleven points on the diagonal, 0 to 100 in steps of 10, in a rendered chart.
struct DiagonalChart
{
  DiagonalChart()
  {
    rendered.view().GetScene()->AddItem(chart);
    auto table = vtkSmartPointer<vtkTable>::New();
    for (const char* name : { "x", "y" })
    {
      auto column = vtkSmartPointer<vtkDoubleArray>::New();
      column->SetName(name);
      for (int i = 0; i <= 10; ++i)
        column->InsertNextValue(i * 10.0);
      table->AddColumn(column);
    }
    plot = chart->AddPlot(vtkChart::POINTS);
    plot->SetInputData(table, 0, 1);
    rendered.render();
  }

  vtkContextMouseEvent at(double x, double y, float dx = 0, float dy = 0)
  {
    return testsupport::mouseAt(
      *chart, rendered.view().GetRenderWindow()->GetInteractor(), x, y, dx, dy);
  }

  testsupport::RenderedView rendered{ 400, 300 };
  vtkNew<ChartXY> chart;
  vtkPlot* plot = nullptr;
};

} // namespace

TEST(ChartXY, AReleaseThatHardlyMovedSelectsWithATenPixelBox)
{
  DiagonalChart diagonal;
  diagonal.chart->SetActionToButton(vtkChart::SELECT, vtkContextMouseEvent::LEFT_BUTTON);
  // The press lands 3 pixels left of the point (50, 50); the mouse moves 0.3 pixels right and
  // 40 pixels up. As a box that selects nothing; as a click it catches the point.
  vtkAbstractContextItem& item = *diagonal.chart;
  ASSERT_TRUE(item.MouseButtonPressEvent(diagonal.at(50, 50, -3.0f)));
  const vtkContextMouseEvent moved = diagonal.at(50, 50, -2.7f, 40.0f);
  item.MouseMoveEvent(moved);
  item.MouseButtonReleaseEvent(moved);

  vtkIdTypeArray* selection = diagonal.plot->GetSelection();
  ASSERT_NE(selection, nullptr);
  ASSERT_EQ(selection->GetNumberOfTuples(), 1);
  EXPECT_EQ(selection->GetValue(0), 5);
}

TEST(ChartXY, AMoveWithoutAButtonShowsThePointsToolTipInEveryMouseMode)
{
  DiagonalChart diagonal;
  VTKChartsMouseModeProperty mode(diagonal.chart.Get());
  vtkAbstractContextItem& item = *diagonal.chart;
  for (const auto m :
       { DataViewMouseMode::Select, DataViewMouseMode::Pan, DataViewMouseMode::Zoom })
  {
    mode.setValue(m);
    vtkContextMouseEvent away = diagonal.at(55, 5);
    away.SetButton(vtkContextMouseEvent::NO_BUTTON);
    item.MouseMoveEvent(away);
    EXPECT_FALSE(diagonal.chart->GetTooltip()->GetVisible()) << "mode " << m << ", off the points";
    vtkContextMouseEvent onto = diagonal.at(30, 30);
    onto.SetButton(vtkContextMouseEvent::NO_BUTTON);
    item.MouseMoveEvent(onto);
    EXPECT_TRUE(diagonal.chart->GetTooltip()->GetVisible()) << "mode " << m << ", onto (30, 30)";
  }
}

TEST(ChartXY, EmptyAndNonFiniteTablesRenderQuietly)
{
  testsupport::RenderedView rendered(300, 200);
  vtkNew<ChartXY> chart;
  rendered.view().GetScene()->AddItem(chart);
  const double inf = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (const std::vector<double>& values :
       { std::vector<double>{}, std::vector<double>{ nan, inf, -inf, 1.0 } })
  {
    auto table = vtkSmartPointer<vtkTable>::New();
    for (const char* name : { "x", "y" })
    {
      auto column = vtkSmartPointer<vtkDoubleArray>::New();
      column->SetName(name);
      for (double v : values)
        column->InsertNextValue(v);
      table->AddColumn(column);
    }
    chart->ClearPlots();
    chart->AddPlot(vtkChart::POINTS)->SetInputData(table, 0, 1);
    rendered.render(); // any VTK warning or error fails the test
    EXPECT_EQ(chart->GetNumberOfPlots(), 1);
  }
}
