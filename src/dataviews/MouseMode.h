#pragma once

#include <cstdint>

/// Holds DataViewInterface::MouseMode, apart from the data view so that properties can name the
/// type without including the data views. DataViewInterface derives from it: the mode is used as
/// DataViewInterface::MouseMode, DataViewInterface::Select and so on.
struct DataViewMouseMode
{
  /// What the left mouse button does in a chart view. On a vtkChart (see
  /// VTKChartsMouseModeProperty): Select binds selection to the left button and panning to the
  /// middle one; Pan binds panning to the left and zooming to the middle; Zoom binds zooming to
  /// the left and panning to the middle. The type is 32 bits wide so that any other value is a
  /// valid mode too; such modes are accepted and bind nothing.
  enum MouseMode : std::int32_t
  {
    Select = 0,
    Pan = 1,
    Zoom = 2
  };
};
