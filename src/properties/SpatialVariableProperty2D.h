#pragma once

#include "datamanagement/Variable.h"
#include "datamanagement/WeakPtr.h"
#include "properties/Property.h"

#include <vtkSmartPointer.h>

#include <vector>

class vtkAxis;
class vtkPlot;

/// The variable shown along one axis of a 2-D chart: it names the input array of the chart's
/// plots (index 0 for x, 1 for y) and the axis title. Plots added later get the current
/// variable at once. A variable that no longer exists names the empty array and title.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT SpatialVariableProperty2D
  : public plexa::Property<WeakPtr<Variable>>
{
public:
  SpatialVariableProperty2D(vtkSmartPointer<vtkAxis> axis, int inputArrayIndex);
  ~SpatialVariableProperty2D() override;

  void addPlot(vtkSmartPointer<vtkPlot> plot);
  void clearPlots();
  void assignInputArrayToPlot(vtkPlot& plot, const WeakPtr<Variable>& variable) const;

protected:
  void storeValue(const WeakPtr<Variable>& variable) override;

private:
  vtkSmartPointer<vtkAxis> axis;
  int inputArrayIndex;
  std::vector<vtkSmartPointer<vtkPlot>> plots;
};
