#pragma once

#include "quen_analyzer_dataviews_common_export.h"

#include <vtkSmartPointer.h>
#include <vtkVector.h>

class vtkChart;

/// Converts a pixel location of a chart's scene into data coordinates, by the chart's bottom
/// (x) and left (y) axes: linear, the axis minimum at its first point and its maximum at its
/// second, not clamped outside the axis. A logarithmic axis gives its scaled (log) units.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT ChartXYLocationTransformer
{
public:
  explicit ChartXYLocationTransformer(vtkSmartPointer<vtkChart> chart);
  virtual ~ChartXYLocationTransformer();

  vtkVector2f getWorldCoordinatesFromPixelLocation(const vtkVector2i& pixel) const;

private:
  /// axisIndex: 0 left, 1 bottom; component: 0 x, 1 y.
  float transformPixelLocation(int axisIndex, int component, int pixel) const;
  /// Data units per pixel, the axis ends each narrowed to float first. An axis of zero length
  /// gives an infinite or NaN result, passed on unchecked.
  float getAxisUnitsPerPixel(int axisIndex, int component) const;

  vtkSmartPointer<vtkChart> chart;
};
