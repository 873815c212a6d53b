#pragma once

#include "quen_analyzer_dataviews_common_export.h"

#include <boost/shared_ptr.hpp>

// The eight kinds of view; the host declares them.
class TableViewInterface;
class SelectedImageViewInterface;
class SelectedCasesViewInterface;
class ScatterPlot3DInterface;
class ScatterPlot2DInterface;
class LinePlotInterface;
class ImageMatrixViewInterface;
class ImageDiffViewInterface;

/// Dispatches on the kind of a data view: a view calls the visit overload of its own kind.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT DataViewVisitorInterface
{
public:
  virtual void visit(boost::shared_ptr<TableViewInterface> view) = 0;
  virtual void visit(boost::shared_ptr<SelectedImageViewInterface> view) = 0;
  virtual void visit(boost::shared_ptr<SelectedCasesViewInterface> view) = 0;
  virtual void visit(boost::shared_ptr<ScatterPlot3DInterface> view) = 0;
  virtual void visit(boost::shared_ptr<ScatterPlot2DInterface> view) = 0;
  virtual void visit(boost::shared_ptr<LinePlotInterface> view) = 0;
  virtual void visit(boost::shared_ptr<ImageMatrixViewInterface> view) = 0;
  virtual void visit(boost::shared_ptr<ImageDiffViewInterface> view) = 0;
  virtual ~DataViewVisitorInterface();
};
