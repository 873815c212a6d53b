#pragma once

#include "ExplorerView.h"
#include "views/DrawingPolicy.h"

#include <memory>

class AxisDetailsInterface;
class ChartXY;
class ColorLegend;
class vtkPlotPoints;

namespace plexa
{
template<typename T>
class PropertyAbstract;
}

namespace explorer
{

/// The 2-D scatter view: the shown cases as points of an XY chart, coloured by a variable with
/// a colour legend, the region outside the range filters shaded behind them. A case without X
/// or Y is left out and counted; one without a colour value is drawn grey. Selecting points
/// selects their cases.
///
/// Its parts: ScatterPlotModel (what is plotted), ScatterPlotScene (the drawing); the view binds
/// them to the settings, the selection and the mouse.
class ScatterPlotView : public ViewOfKind<ScatterPlot2DInterface>
{
public:
  explicit ScatterPlotView(const ViewContext& context);
  ~ScatterPlotView() override;

  QString title() const override { return "Scatter plot"; }
  std::string shortName() const override { return "scatter"; }
  std::vector<SettingsSection> settingsSections(PropertyEditors& editors) override;
  std::string selectionSummary() const override;
  void refresh() override;

  boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> xVariable() const;
  boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> yVariable() const;
  boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> colorVariable() const;
  AxisDetailsInterface& xAxis() const;
  AxisDetailsInterface& yAxis() const;
  ColorLegend& colorLegend() const;
  /// Fits both axes to the shown points.
  void fitToData() override;
  /// Fits one axis (vtkAxis::BOTTOM or LEFT) to the shown points; the other keeps its range.
  void fitAxis(int axis);
  /// The points plot; its selection holds the rows of the selected cases.
  vtkPlotPoints& points() const;
  /// The row of the points plot's table that shows a case, or -1. The table's column 0 holds
  /// case keys (see CaseKeys), not case ids.
  long long rowOfCase(unsigned long long caseId) const;
  /// Markers, or a density above drawing::pointsAsDensityAbove points (automatic).
  boost::shared_ptr<plexa::PropertyAbstract<Drawing>> drawing() const;
  /// The markers' opacity, from 0.05 to 1.
  boost::shared_ptr<plexa::PropertyAbstract<double>> pointOpacity() const;
  /// Whether an axis is logarithmic (see ScatterPlotSettings).
  boost::shared_ptr<plexa::PropertyAbstract<bool>> logX() const;
  boost::shared_ptr<plexa::PropertyAbstract<bool>> logY() const;
  /// The chart, for mouse events sent to it directly.
  ChartXY& chart() const;
  int highlightedPoints() const;
  /// What the plot says over its points: the cases it leaves out and why, or why it shows
  /// nothing; and under the legend, the cases drawn grey for want of a colour value.
  std::string notes() const;
  std::string legendNote() const;

protected:
  bool caseIDAtPoint(unsigned long long& caseID) override;
  void suspendParts() override;
  void resumeParts() override;

private:
  struct Impl;
  std::unique_ptr<Impl> d;
};

} // namespace explorer
