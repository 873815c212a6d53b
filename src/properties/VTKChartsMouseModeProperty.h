#pragma once

#include "dataviews/MouseMode.h"
#include "properties/Property.h"

#include <vtkSmartPointer.h>

class vtkChart;

/// The mouse mode of a chart view, written into the chart's action-to-button table. A new
/// property binds Pan (the chart starts panning with the left button), while a data view's own
/// mouse-mode property starts in Select; the two defaults differ on purpose.
///
/// | mode   | left button | middle button | none (-1) |
/// |--------|-------------|---------------|--------|
/// | Select | select      | pan           | zoom      |
/// | Pan    | pan         | zoom          | select    |
/// | Zoom   | zoom        | pan           | select    |
/// Any other mode is stored and leaves the chart's buttons as they are.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT VTKChartsMouseModeProperty
  : public plexa::Property<DataViewMouseMode::MouseMode>
{
public:
  explicit VTKChartsMouseModeProperty(vtkSmartPointer<vtkChart> chart);
  ~VTKChartsMouseModeProperty() override;

protected:
  void storeValue(const DataViewMouseMode::MouseMode& mode) override;

private:
  vtkSmartPointer<vtkChart> chart;
};
