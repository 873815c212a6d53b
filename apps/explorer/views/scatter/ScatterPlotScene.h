#pragma once

#include "views/DrawingPolicy.h"

#include <vtkSmartPointer.h>

#include <functional>
#include <memory>
#include <string>

class AxisDetailsInterface;
class ChartXY;
class NiceLabelsColorBarWidget;
class QVTKOpenGLNativeWidget;
class vtkDensityPlotPoints;
class vtkLookupTable;
class vtkRenderWindowInteractor;
class vtkTable;

namespace explorer
{

/// The scatter plot's drawing, in a VTK widget: an XY chart of the points (markers, or a density
/// when many), the selected points ringed on top, the colour legend's bar in a margin on the
/// right, a note over the plot and one under the legend. It draws what it is given; the view
/// decides what that is.
class ScatterPlotScene
{
public:
  /// Builds the scene in `widget`, which must outlive it.
  explicit ScatterPlotScene(QVTKOpenGLNativeWidget& widget);
  ~ScatterPlotScene();
  ScatterPlotScene(const ScatterPlotScene&) = delete;
  ScatterPlotScene& operator=(const ScatterPlotScene&) = delete;

  vtkSmartPointer<ChartXY> chart() const;
  vtkSmartPointer<vtkDensityPlotPoints> points() const;
  vtkSmartPointer<vtkLookupTable> lookupTable() const;
  vtkSmartPointer<NiceLabelsColorBarWidget> legendBar() const;
  vtkRenderWindowInteractor* interactor() const;

  /// Plots a table's X and Y columns, or nothing for a null table; a density when the drawing
  /// setting says so for its number of rows. `caseOfKey` names the case of a row's key (column
  /// 0) in tool tips.
  void showPoints(vtkSmartPointer<vtkTable> table,
                  const std::string& x,
                  const std::string& y,
                  Drawing drawing);
  void setCaseNames(
    const std::function<bool(long long key, unsigned long long& caseId)>& caseOfKey);
  /// Draws the points' selection (the plot's selected rows): ringed markers over the others,
  /// coloured by `colour` when not empty; a dark density, or darker markers, when many.
  void showSelection(const std::string& colour);
  void setPointOpacity(double opacity);
  /// The texts over the plot and under the legend; an empty text is not drawn.
  void setNotes(const std::string& overPlot, const std::string& underLegend);
  /// Keeps a margin on the right for the colour legend while it is shown, unless placed.
  void setLegendShown(bool shown);
  /// Where the user put the legend, in fractions of the view (x, y, width, height); false
  /// while it sits in its margin. Null puts it back in the margin.
  bool legendPlacement(double placement[4]) const;
  void placeLegend(const double* placement);
  /// Called when the user has dragged the legend, with where it was before and where it is now
  /// (each null while in the margin).
  void onLegendMoved(std::function<void(const double* before, const double* after)> moved);
  /// Puts a tick on every multiple of an axis's custom grid spacing inside its range, before
  /// each draw. The axis settings start the ticks at the multiple nearest zero from the minimum,
  /// which can lie below the range and leave it without a label (198 to 242 by 50), and can
  /// read "-0".
  void placeCustomTicks(AxisDetailsInterface& x, AxisDetailsInterface& y);
  /// Widens an axis's fitted range (vtkAxis::BOTTOM or LEFT), which ends on the outermost
  /// points and would cut them in half: by a few percent, by at least a marker, and by
  /// `halfGap` (half a discrete variable's step; not on a logarithmic axis).
  void widenToPoints(int axis, double halfGap);

  /// Draws now, or once control returns to the event loop however many changes ask for it.
  void render();
  void scheduleRender();

private:
  struct Impl;
  std::unique_ptr<Impl> d;
};

} // namespace explorer
