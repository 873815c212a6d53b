#include "properties/SpatialVariableProperty2D.h"

#include <vtkAxis.h>
#include <vtkPlot.h>

SpatialVariableProperty2D::SpatialVariableProperty2D(vtkSmartPointer<vtkAxis> axis,
                                                     int inputArrayIndex)
  : axis(std::move(axis))
  , inputArrayIndex(inputArrayIndex)
{
}

SpatialVariableProperty2D::~SpatialVariableProperty2D() = default;

void SpatialVariableProperty2D::addPlot(vtkSmartPointer<vtkPlot> plot)
{
  assignInputArrayToPlot(*plot, value());
  plots.push_back(std::move(plot));
}

void SpatialVariableProperty2D::clearPlots()
{
  plots.clear();
}

void SpatialVariableProperty2D::assignInputArrayToPlot(vtkPlot& plot,
                                                       const WeakPtr<Variable>& variable) const
{
  plot.SetInputArray(inputArrayIndex, variable.lock().name());
}

void SpatialVariableProperty2D::storeValue(const WeakPtr<Variable>& variable)
{
  for (const auto& plot : plots)
  {
    assignInputArrayToPlot(*plot, variable);
  }
  axis->SetTitle(variable.lock().name());
  Property::storeValue(variable);
}
