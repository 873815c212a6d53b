#pragma once

#include "charts/AxisDetailsInterface.h"
#include "datamanagement/Variable.h"
#include "datamanagement/WeakPtr.h"

#include <vtkSmartPointer.h>

#include <memory>
#include <string>

class vtkAxis;

/// The settings of a vtkAxis, each an undoable property whose value lives in the axis: changing
/// a setting changes the axis, and changing the axis (zoom, pan, fit) changes the settings.
///
/// - "<axis> Min" and "<axis> Max" never cross; the other end moves along and keeps the span.
/// - "<axis> Grid Spacing Type": true for a custom tick spacing (the axis then has custom tick
///   positions), false for the automatic one.
/// - "<axis> Grid Spacing": the custom spacing, which must lie between 1/50 of the range and 10
///   times the range; read while custom spacing is off, it is the nice-number distance of the
///   automatic ticks. Custom ticks follow range changes; a range change that leaves the spacing
///   out of bounds, and a new variable on the axis, switch custom spacing off, except while an
///   undo or redo replays history.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT AxisDetailsCharts : public virtual AxisDetailsInterface
{
public:
  /// variableProperty is the variable shown on the axis; it is only observed.
  AxisDetailsCharts(
    const std::string& axisName,
    const plexa::PropertyAbstract<WeakPtr<Variable, unsigned long long>>& variableProperty,
    vtkSmartPointer<vtkAxis> axis);
  ~AxisDetailsCharts() override;

  boost::shared_ptr<plexa::PropertyAbstract<double>> min() const override;
  boost::shared_ptr<plexa::PropertyAbstract<double>> max() const override;
  boost::shared_ptr<plexa::PropertyAbstract<bool>> useCustomGridSpacing() const override;
  boost::shared_ptr<plexa::PropertyAbstract<double>> gridSpacing() const override;
  /// Empty: a chart axis has no separate bounds settings.
  boost::shared_ptr<plexa::PropertyAbstract<double>> boundsMin() const override;
  boost::shared_ptr<plexa::PropertyAbstract<double>> boundsMax() const override;

private:
  struct Impl;
  std::unique_ptr<Impl> d;
};
