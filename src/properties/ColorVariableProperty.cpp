#include "properties/ColorVariableProperty.h"

#include <vtkPlotPoints.h>
#include <vtkStdString.h>

ColorVariableProperty<vtkPlotPoints>::ColorVariableProperty(vtkSmartPointer<vtkPlotPoints> plot)
  : plot(std::move(plot))
{
}

ColorVariableProperty<vtkPlotPoints>::~ColorVariableProperty() = default;

void ColorVariableProperty<vtkPlotPoints>::assignColorArray(const std::string& name)
{
  plot->SelectColorArray(vtkStdString(name));
}

void ColorVariableProperty<vtkPlotPoints>::storeValue(const WeakPtr<Variable>& variable)
{
  const std::string name = variable.lock().name();
  assignColorArray(name);
  if (name.empty())
    plot->ScalarVisibilityOff();
  else
    plot->ScalarVisibilityOn();
  Property::storeValue(variable);
}
