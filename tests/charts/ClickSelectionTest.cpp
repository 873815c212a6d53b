#include "charts/ChartXY.h"
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

#include <limits>
#include <vector>

namespace
{

vtkContextMouseEvent mouseAt(float x, float y, vtkRenderWindowInteractor* interactor)
{
  vtkContextMouseEvent event;
  event.SetInteractor(interactor);
  event.SetButton(vtkContextMouseEvent::LEFT_BUTTON);
  event.SetPos(vtkVector2f(x, y));
  event.SetScreenPos(vtkVector2i(static_cast<int>(x), static_cast<int>(y)));
  event.SetScenePos(vtkVector2f(x, y));
  event.SetLastPos(vtkVector2f(x, y));
  event.SetLastScreenPos(vtkVector2i(static_cast<int>(x), static_cast<int>(y)));
  event.SetLastScenePos(vtkVector2f(x, y));
  return event;
}

float pixelOf(vtkAxis& axis, int component, double value)
{
  const float start = axis.GetPoint1()[component];
  const float end = axis.GetPoint2()[component];
  return start +
         static_cast<float>((value - axis.GetMinimum()) / (axis.GetMaximum() - axis.GetMinimum())) *
           (end - start);
}

} // namespace

TEST(ChartXY, AReleaseThatHardlyMovedSelectsWithATenPixelBox)
{
  testsupport::RenderedView rendered(400, 300);
  vtkNew<ChartXY> chart;
  rendered.view().GetScene()->AddItem(chart);
  auto table = vtkSmartPointer<vtkTable>::New();
  auto x = vtkSmartPointer<vtkDoubleArray>::New();
  x->SetName("x");
  auto y = vtkSmartPointer<vtkDoubleArray>::New();
  y->SetName("y");
  for (int i = 0; i <= 10; ++i)
  {
    x->InsertNextValue(i * 10.0);
    y->InsertNextValue(i * 10.0);
  }
  table->AddColumn(x);
  table->AddColumn(y);
  vtkPlot* plot = chart->AddPlot(vtkChart::POINTS);
  plot->SetInputData(table, 0, 1);
  chart->SetActionToButton(vtkChart::SELECT, vtkContextMouseEvent::LEFT_BUTTON);
  rendered.render();

  // The press lands 3 pixels left of the point (50, 50); the mouse moves 0.3 pixels right and
  // 40 pixels up. As a box that selects nothing; as a click it catches the point.
  const float px = pixelOf(*chart->GetAxis(vtkAxis::BOTTOM), 0, 50.0) - 3.0f;
  const float py = pixelOf(*chart->GetAxis(vtkAxis::LEFT), 1, 50.0);
  vtkRenderWindowInteractor* interactor = rendered.view().GetRenderWindow()->GetInteractor();
  vtkAbstractContextItem& item = *chart;
  ASSERT_TRUE(item.MouseButtonPressEvent(mouseAt(px, py, interactor)));
  const vtkContextMouseEvent moved = mouseAt(px + 0.3f, py + 40.0f, interactor);
  item.MouseMoveEvent(moved);
  item.MouseButtonReleaseEvent(moved);

  vtkIdTypeArray* selection = plot->GetSelection();
  ASSERT_NE(selection, nullptr);
  ASSERT_EQ(selection->GetNumberOfTuples(), 1);
  EXPECT_EQ(selection->GetValue(0), 5);
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
