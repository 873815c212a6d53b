#pragma once

#include <vtkSmartPointer.h>

class vtkChart;
class vtkScalarBarWidget;
class vtkTextActor;

namespace explorer
{

/// Where a chart's colour legend sits: in a margin on the right of the chart, so that it never
/// covers a point, until the user drags it elsewhere; a note under it follows it.
class LegendPlace
{
public:
  LegendPlace(vtkSmartPointer<vtkChart> chart,
              vtkSmartPointer<vtkScalarBarWidget> legend,
              vtkSmartPointer<vtkTextActor> note);

  /// Lays the chart and the legend out in a view of this size (pixels); a legend not shown
  /// leaves the chart the whole width.
  void layOut(const int size[2], bool shown) const;
  /// Takes the place the user dragged the legend to.
  void moved();
  /// The legend's corners in fractions of the view; false while it sits in its margin.
  bool placement(double placement[4]) const;
  /// Puts the legend at these corners, or back in its margin for null.
  void place(const double* placement);

  /// The margin's width, in pixels.
  static constexpr float margin = 110.0f;

private:
  vtkSmartPointer<vtkChart> chart;
  vtkSmartPointer<vtkScalarBarWidget> legend;
  vtkSmartPointer<vtkTextActor> note;
  bool placedByUser = false;
  double corners[4] = { 0, 0, 0, 0 };
};

} // namespace explorer
