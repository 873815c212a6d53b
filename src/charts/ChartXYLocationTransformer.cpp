#include "charts/ChartXYLocationTransformer.h"

#include <vtkAxis.h>
#include <vtkChart.h>

ChartXYLocationTransformer::ChartXYLocationTransformer(vtkSmartPointer<vtkChart> chart)
  : chart(std::move(chart))
{
}

ChartXYLocationTransformer::~ChartXYLocationTransformer() = default;

vtkVector2f ChartXYLocationTransformer::getWorldCoordinatesFromPixelLocation(
  const vtkVector2i& pixel) const
{
  return vtkVector2f(transformPixelLocation(vtkAxis::BOTTOM, 0, pixel.GetX()),
                     transformPixelLocation(vtkAxis::LEFT, 1, pixel.GetY()));
}

float ChartXYLocationTransformer::transformPixelLocation(int axisIndex,
                                                         int component,
                                                         int pixel) const
{
  vtkAxis* axis = chart->GetAxis(axisIndex);
  const float start = axis->GetPoint1()[component];
  const auto minimum = static_cast<float>(axis->GetMinimum());
  return minimum + getAxisUnitsPerPixel(axisIndex, component) * (static_cast<float>(pixel) - start);
}

float ChartXYLocationTransformer::getAxisUnitsPerPixel(int axisIndex, int component) const
{
  vtkAxis* axis = chart->GetAxis(axisIndex);
  const float start = axis->GetPoint1()[component];
  const float end = axis->GetPoint2()[component];
  return (static_cast<float>(axis->GetMaximum()) - static_cast<float>(axis->GetMinimum())) /
         (end - start);
}
