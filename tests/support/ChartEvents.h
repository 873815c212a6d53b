#pragma once

#include <vtkType.h>

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

/// The values a plot of points shows at a row of its table, by the titles of its axes; NaN for a
/// row it does not have.
std::pair<double, double> valuesAtRow(vtkPlotPoints& points, vtkIdType row);

} // namespace testsupport
