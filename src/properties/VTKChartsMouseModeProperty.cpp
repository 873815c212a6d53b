#include "properties/VTKChartsMouseModeProperty.h"

#include <vtkChart.h>
#include <vtkContextMouseEvent.h>

VTKChartsMouseModeProperty::VTKChartsMouseModeProperty(vtkSmartPointer<vtkChart> chart)
  : chart(std::move(chart))
{
  setValue(DataViewMouseMode::Pan);
}

VTKChartsMouseModeProperty::~VTKChartsMouseModeProperty() = default;

void VTKChartsMouseModeProperty::storeValue(const DataViewMouseMode::MouseMode& mode)
{
  constexpr int left = vtkContextMouseEvent::LEFT_BUTTON;
  constexpr int middle = vtkContextMouseEvent::MIDDLE_BUTTON;
  // Not vtkContextMouseEvent::NO_BUTTON (0): VTK delivers a move without a button as button 0,
  // so an action bound to it would swallow plain moves, and with them the points' tooltips.
  constexpr int none = -1;
  // The chart keeps one action per button, so the order of the calls matters: an action bound
  // to a button takes that button from the action that had it.
  switch (mode)
  {
    case DataViewMouseMode::Select:
      chart->SetActionToButton(vtkChart::SELECT, left);
      chart->SetActionToButton(vtkChart::PAN, middle);
      chart->SetActionToButton(vtkChart::ZOOM, none);
      break;
    case DataViewMouseMode::Pan:
      chart->SetActionToButton(vtkChart::SELECT, none);
      chart->SetActionToButton(vtkChart::PAN, left);
      chart->SetActionToButton(vtkChart::ZOOM, middle);
      break;
    case DataViewMouseMode::Zoom:
      chart->SetActionToButton(vtkChart::SELECT, none);
      chart->SetActionToButton(vtkChart::PAN, middle);
      chart->SetActionToButton(vtkChart::ZOOM, left);
      break;
    default:
      break;
  }
  Property::storeValue(mode);
}
