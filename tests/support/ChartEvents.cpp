#include "support/ChartEvents.h"

#include <vtkAxis.h>
#include <vtkChart.h>
#include <vtkPlotPoints.h>
#include <vtkTable.h>

#include <cmath>

namespace testsupport
{

float pixelOf(vtkAxis& axis, int component, double value)
{
  const float start = axis.GetPoint1()[component];
  const float end = axis.GetPoint2()[component];
  return start +
         static_cast<float>((value - axis.GetMinimum()) / (axis.GetMaximum() - axis.GetMinimum())) *
           (end - start);
}

vtkContextMouseEvent mouseAt(vtkChart& chart,
                             vtkRenderWindowInteractor* interactor,
                             double x,
                             double y,
                             float dx,
                             float dy)
{
  const vtkVector2f at(pixelOf(*chart.GetAxis(vtkAxis::BOTTOM), 0, x) + dx,
                       pixelOf(*chart.GetAxis(vtkAxis::LEFT), 1, y) + dy);
  const vtkVector2i screen(static_cast<int>(at[0]), static_cast<int>(at[1]));
  vtkContextMouseEvent event;
  event.SetInteractor(interactor);
  event.SetButton(vtkContextMouseEvent::LEFT_BUTTON);
  event.SetPos(at);
  event.SetScenePos(at);
  event.SetScreenPos(screen);
  event.SetLastPos(at);
  event.SetLastScenePos(at);
  event.SetLastScreenPos(screen);
  return event;
}

std::pair<double, double> valuesAtRow(vtkPlotPoints& points, vtkIdType row)
{
  vtkTable* table = points.GetInput();
  if (!table || row < 0 || row >= table->GetNumberOfRows())
    return { std::nan(""), std::nan("") };
  return { table->GetValueByName(row, points.GetXAxis()->GetTitle().c_str()).ToDouble(),
           table->GetValueByName(row, points.GetYAxis()->GetTitle().c_str()).ToDouble() };
}

} // namespace testsupport
