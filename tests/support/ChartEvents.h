#pragma once

// Mouse events for charts at data coordinates, as a user's pointer over a drawn chart makes them.

#include <vtkContextMouseEvent.h>

#include <utility>

class vtkAxis;
class vtkChart;
class vtkPlotPoints;
class vtkRenderWindowInteractor;

namespace testsupport
{

/// The scene coordinate of a value along an axis (component 0 for a horizontal axis, 1 for a
/// vertical one), as the axis was last laid out.
float pixelOf(vtkAxis& axis, int component, double value);

/// A left-button event at the point (x, y) of a chart's bottom and left axes, moved by
/// (dx, dy) pixels.
vtkContextMouseEvent mouseAt(vtkChart& chart,
                             vtkRenderWindowInteractor* interactor,
                             double x,
                             double y,
                             float dx = 0,
                             float dy = 0);

/// The values a plot of points shows for a case (its id in column 0), by the titles of its axes;
/// NaN when the plot does not show the case.
std::pair<double, double> valuesOfCase(vtkPlotPoints& points, unsigned long long id);

} // namespace testsupport
