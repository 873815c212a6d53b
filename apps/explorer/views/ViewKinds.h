#pragma once

// The kinds of view, as visitors tell them apart: the eight the library's visitor names, and
// the explorer's own. A view derives from its kind through ViewOfKind (ExplorerView.h).

#include "dataviews/DataViewInterface.h"
#include "dataviews/DataViewVisitorAbstract.h"

#include <boost/shared_ptr.hpp>

class ScatterPlot2DInterface : public virtual DataViewInterface
{
};

class ScatterPlot3DInterface : public virtual DataViewInterface
{
};

class LinePlotInterface : public virtual DataViewInterface
{
};

class TableViewInterface : public virtual DataViewInterface
{
};

class ImageMatrixViewInterface : public virtual DataViewInterface
{
};

class SelectedCasesViewInterface : public virtual DataViewInterface
{
};

class SelectedImageViewInterface : public virtual DataViewInterface
{
};

class ImageDiffViewInterface : public virtual DataViewInterface
{
};

namespace explorer
{

/// Parallel coordinates: a kind of the explorer's own, which the library's visitor does not name.
class ParallelCoordinatesInterface : public virtual DataViewInterface
{
};

/// Which inputs drive an output: a kind of the explorer's own.
class ImportanceInterface : public virtual DataViewInterface
{
};

/// A visitor that also tells the explorer's own kinds apart. A view of such a kind visits an
/// ExplorerViewVisitor through its own overload; any other visitor sees nothing of it, as the
/// library's visitor has no overload for it.
class ExplorerViewVisitor : public DataViewVisitorAbstract
{
public:
  using DataViewVisitorAbstract::visit;
  virtual void visit(boost::shared_ptr<ParallelCoordinatesInterface>) { visitAnyViewType(); }
  virtual void visit(boost::shared_ptr<ImportanceInterface>) { visitAnyViewType(); }
};

/// Calls the visitor's overload of a view's kind.
template<typename Kind>
void visitKind(DataViewVisitorInterface& visitor, boost::shared_ptr<Kind> view)
{
  visitor.visit(std::move(view));
}

inline void visitKind(DataViewVisitorInterface& visitor,
                      boost::shared_ptr<ParallelCoordinatesInterface> view)
{
  if (auto* explorerVisitor = dynamic_cast<ExplorerViewVisitor*>(&visitor))
    explorerVisitor->visit(std::move(view));
}

inline void visitKind(DataViewVisitorInterface& visitor,
                      boost::shared_ptr<ImportanceInterface> view)
{
  if (auto* explorerVisitor = dynamic_cast<ExplorerViewVisitor*>(&visitor))
    explorerVisitor->visit(std::move(view));
}

} // namespace explorer
