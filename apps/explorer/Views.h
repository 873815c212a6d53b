#pragma once

// The kinds of data view the explorer hosts, and their common base.

#include "dataviews/DataViewAbstract.h"
#include "dataviews/DataViewVisitorInterface.h"

#include <boost/enable_shared_from_this.hpp>

#include <string>

class QWidget;

class ScatterPlot2DInterface : public virtual DataViewInterface
{
};

class TableViewInterface : public virtual DataViewInterface
{
};

class ImageMatrixViewInterface : public virtual DataViewInterface
{
};

namespace explorer
{

/// A view of the explorer: a data view with a widget, that tells a visitor its kind.
class ExplorerView
  : public DataViewAbstract
  , public boost::enable_shared_from_this<ExplorerView>
{
public:
  using DataViewAbstract::DataViewAbstract;
  ~ExplorerView() override = default;

  virtual QWidget* widget() const = 0;
  /// Calls the visitor's overload of this view's kind.
  virtual void accept(DataViewVisitorInterface& visitor) = 0;
  /// A short name for files and titles ("scatter", "table", "images").
  virtual std::string shortName() const = 0;
  /// What the view shows of the master selection, for the summary: e.g. "2 highlighted points".
  virtual std::string selectionSummary() const = 0;

  using DataViewAbstract::mouseMode;
};

} // namespace explorer
