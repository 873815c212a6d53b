#pragma once

#include "analyzer_common/SuspendableInterface.h"
#include "dataviews/MouseMode.h"
#include "quen_analyzer_dataviews_common_export.h"

#include <boost/shared_ptr.hpp>

#include <string>

class SerializerInterface;

namespace plexa
{
template<typename T>
class PropertyAbstract;
}

/// A data view of the host: line plot, 2-D and 3-D scatter plot, table, image matrix, selected
/// cases, selected image or image difference.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT DataViewInterface
  : public SuspendableInterface
  , public DataViewMouseMode
{
public:
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
