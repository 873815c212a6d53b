#pragma once

#include "analyzer_common/SuspendableInterface.h"
#include "quen_analyzer_dataviews_common_export.h"

#include <boost/shared_ptr.hpp>

#include <cstdint>
#include <string>

class SerializerInterface;

namespace plexa
{
template<typename T>
class PropertyAbstract;
}

/// A data view of the host: line plot, 2-D and 3-D scatter plot, table, image matrix, selected
/// cases, selected image or image difference.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT DataViewInterface : public SuspendableInterface
{
public:
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

  DataViewInterface();
  DataViewInterface(const DataViewInterface&);
  DataViewInterface& operator=(const DataViewInterface&);
  ~DataViewInterface() override;

  /// The view's XML serializer.
  virtual SerializerInterface& serializer() = 0;
  /// Updates the master selection after a click at the mouse position.
  virtual void adjustSelectionForMouseClickAtPoint() = 0;
  /// The element name under which the view is saved.
  virtual std::string domName() const = 0;
  /// Redraws the view with its current axis ranges.
  virtual void refresh() = 0;

protected:
  virtual boost::shared_ptr<plexa::PropertyAbstract<MouseMode>> mouseMode() const = 0;
};
