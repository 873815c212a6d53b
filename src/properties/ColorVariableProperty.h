#pragma once

#include "datamanagement/Variable.h"
#include "datamanagement/WeakPtr.h"
#include "properties/Property.h"

#include <vtkSmartPointer.h>

#include <string>

template<typename PlotT>
class ColorVariableProperty;

class vtkPlotPoints;

/// The variable that colours the points of a points plot: storing it selects the variable's
/// column as the plot's colour array and switches scalar colouring on (off for no variable).
template<>
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT ColorVariableProperty<vtkPlotPoints>
  : public plexa::Property<WeakPtr<Variable>>
{
public:
  explicit ColorVariableProperty(vtkSmartPointer<vtkPlotPoints> plot);
  ~ColorVariableProperty() override;

  /// Selects the named column as the plot's colour array.
  void assignColorArray(const std::string& name);

protected:
  void storeValue(const WeakPtr<Variable>& variable) override;

private:
  vtkSmartPointer<vtkPlotPoints> plot;
};
