#pragma once

#include "ExplorerView.h"

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
/// a colour legend, the region outside the range filters shaded behind them, rows with NaN in
/// the plotted variables dropped before plotting. Selecting points selects their cases.
class ScatterPlotView
  : public ScatterPlot2DInterface
  , public ExplorerView
{
public:
  explicit ScatterPlotView(const ViewContext& context);
  ~ScatterPlotView() override;

  QWidget* widget() const override;
  void accept(DataViewVisitorInterface& visitor) override;
  QString title() const override { return "Scatter plot"; }
  std::string shortName() const override { return "scatter"; }
  std::vector<SettingsSection> settingsSections(PropertyEditors& editors) override;
  std::string selectionSummary() const override;
  void suspend() override;
  void resume() override;
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
  /// The points plot and the number of its rows that are selected.
  vtkPlotPoints& points() const;
  /// The row of the points plot's table that shows a case, or -1. The table's column 0 holds
  /// case keys (see CaseKeys), not case ids.
  long long rowOfCase(unsigned long long caseId) const;
  /// How the points are drawn: one marker each, or a density image (binned, costing the plot
  /// area rather than the points), or markers up to 25,000 points and density above.
  enum PointsMode : short
  {
    AutomaticPoints = 0,
    MarkerPoints = 1,
    DensityPoints = 2
  };
  boost::shared_ptr<plexa::PropertyAbstract<short>> pointsMode() const;
  /// The markers' opacity, from 0.05 to 1.
  boost::shared_ptr<plexa::PropertyAbstract<double>> pointOpacity() const;
  /// The chart, for mouse events sent to it directly.
  ChartXY& chart() const;
  int highlightedPoints() const;
  /// What the plot says over its points: the cases it leaves out and why, or why it shows
  /// nothing; and under the legend, the cases drawn grey for want of a colour value.
  std::string notes() const;
  std::string legendNote() const;

protected:
  bool caseIDAtPoint(unsigned long long& caseID) override;

private:
  struct Impl;
  std::unique_ptr<Impl> d;
};

} // namespace explorer
