#pragma once

#include "datamanagement/Variable.h"
#include "datamanagement/WeakPtr.h"
#include "quen_analyzer_dataviews_common_export.h"

#include <boost/shared_ptr.hpp>
#include <vtkPlot.h>
#include <vtkSmartPointer.h>

#include <memory>

class DataPipelineManagerInterface;

namespace plexa
{
template<typename T>
class PropertyAbstract;
}

/// A background plot that shades, in a light tint (247, 232, 222), the parts of the visible area
/// that the range filters in effect on the chart's x and y variables exclude, so that the region
/// meeting the constraints stands out. It draws in the data coordinates of a reference plot
/// (usually the chart's scatter plot, whose shift and scale it applies), outlines nothing, and
/// reports empty bounds so that it never widens the chart's automatic axis ranges. Add it to the
/// chart before the points, so that it is painted behind them.
///
/// The constraints are read again whenever the x or y variable or the pipeline changes; the
/// next repaint shows them. The pipeline must outlive the plot.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT ConstraintsRegionPlot : public vtkPlot
{
public:
  using VariableProperty = plexa::PropertyAbstract<WeakPtr<Variable, unsigned long long>>;

  vtkAbstractTypeMacro(ConstraintsRegionPlot, vtkPlot);
  static vtkSmartPointer<ConstraintsRegionPlot> New(
    const DataPipelineManagerInterface& pipeline,
    const boost::shared_ptr<const VariableProperty>& xVariable,
    const boost::shared_ptr<const VariableProperty>& yVariable,
    vtkSmartPointer<vtkPlot> referencePlot);
  void PrintSelf(ostream& os, vtkIndent indent) override;

  bool Paint(vtkContext2D* painter) override;
  /// Always the inverted, empty bounds (max, -max, max, -max).
  void GetBounds(double bounds[4]) override;

protected:
  ~ConstraintsRegionPlot() override;
  /// A plot over the same pipeline, variables and reference plot.
  vtkObjectBase* NewInstanceInternal() const override;

private:
  ConstraintsRegionPlot(const DataPipelineManagerInterface& pipeline,
                        const boost::shared_ptr<const VariableProperty>& xVariable,
                        const boost::shared_ptr<const VariableProperty>& yVariable,
                        vtkSmartPointer<vtkPlot> referencePlot);
  ConstraintsRegionPlot(const ConstraintsRegionPlot&) = delete;
  void operator=(const ConstraintsRegionPlot&) = delete;

  struct Impl;
  std::unique_ptr<Impl> d;
};
