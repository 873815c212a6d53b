#pragma once

#include "datamanagement/Variable.h"
#include "datamanagement/WeakPtr.h"
#include "serialize/Serializer.h"
#include "views/DrawingPolicy.h"

#include <boost/shared_ptr.hpp>
#include <vtkSmartPointer.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

class AxisDetailsCharts;
class AxisDetailsInterface;
class ChartXY;
class Project;
class QWidget;
class vtkPlotPoints;

namespace plexa
{
class PropertyItemInterface;
template<typename T>
class PropertyAbstract;
template<typename T>
class UndoablePropertyProxy;
}

namespace explorer
{

/// An axis's custom grid spacing: the spacing when the user set one, empty when the chart
/// chooses the ticks (the spacing shown then follows from the range and is not a setting).
class GridSpacingSerializer : public Serializer
{
public:
  GridSpacingSerializer(const std::string& name, AxisDetailsInterface& axis);

private:
  void serializeSelf(QDomElement& element) const override;
  void deserializeSelf(QDomElement& element) const override;

  AxisDetailsInterface& axis;
};

/// Where the user put the colour legend, saved as its corners in fractions of the view; an
/// element without them (or "auto") leaves the legend in the chart's margin.
class LegendPlacementSerializer : public Serializer
{
public:
  /// `get` gives the placement, false while the legend sits in its margin; `set` places it, in
  /// the margin for null.
  LegendPlacementSerializer(std::function<bool(double*)> get,
                            std::function<void(const double*)> set);

private:
  void serializeSelf(QDomElement& element) const override;
  void deserializeSelf(QDomElement& element) const override;

  std::function<bool(double*)> get;
  std::function<void(const double*)> set;
};

class PropertyEditors;

/// The scatter plot's settings: the variables on its axes and as its colour (all different and
/// varying at first, see StudyDefaults), how its points are drawn, its axes' ranges and grid
/// spacing; with their editors and the elements they are saved under.
class ScatterPlotSettings
{
public:
  using VariableProxy = plexa::UndoablePropertyProxy<WeakPtr<Variable>>;

  /// Settings bound to the chart's bottom and left axes and to the points' colours.
  ScatterPlotSettings(ChartXY& chart,
                      vtkSmartPointer<vtkPlotPoints> points,
                      const Project& project);
  ~ScatterPlotSettings();
  ScatterPlotSettings(const ScatterPlotSettings&) = delete;
  ScatterPlotSettings& operator=(const ScatterPlotSettings&) = delete;

  boost::shared_ptr<VariableProxy> x() const;
  boost::shared_ptr<VariableProxy> y() const;
  boost::shared_ptr<VariableProxy> colour() const;
  boost::shared_ptr<plexa::PropertyAbstract<Drawing>> drawing() const;
  /// The markers' opacity, from 0.05 to 1.
  boost::shared_ptr<plexa::PropertyAbstract<double>> pointOpacity() const;
  /// Whether an axis is logarithmic: its cases at or below zero are left out and counted, and
  /// its range is held in powers of ten.
  boost::shared_ptr<plexa::PropertyAbstract<bool>> logX() const;
  boost::shared_ptr<plexa::PropertyAbstract<bool>> logY() const;
  AxisDetailsCharts& xAxis() const;
  AxisDetailsCharts& yAxis() const;
  /// Every setting of the two axes: range, custom grid spacing and its use.
  std::vector<const plexa::PropertyItemInterface*> axisSettings() const;

  /// The variables and the other settings are saved as these elements, in this order; a
  /// setting's text says what a value must be.
  std::vector<std::pair<std::string, boost::shared_ptr<VariableProxy>>> savedVariables() const;
  std::vector<std::pair<boost::shared_ptr<SerializerInterface>, std::string>> savedSettings() const;
  /// The editors of the panel's section.
  QWidget* editor(PropertyEditors& editors) const;

private:
  struct Impl;
  std::unique_ptr<Impl> d;
};

} // namespace explorer
