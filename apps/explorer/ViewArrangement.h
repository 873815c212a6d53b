#pragma once

#include "ViewRegistry.h"

#include <boost/shared_ptr.hpp>

#include <vector>

class QSplitter;

namespace explorer
{

/// Puts the views in the window's panes, each where its kind says: the main area (left), the
/// side column (stacked top to bottom), or the tabs below the side column. `main` is emptied
/// first; the panes take sizes in proportion to the kinds' stretches, the main area about half
/// the width. `views` are made from `kinds`, in the same order. Returns the side column.
QSplitter* arrangeViews(QSplitter& main,
                        const std::vector<ViewKind>& kinds,
                        const std::vector<boost::shared_ptr<ExplorerView>>& views);

} // namespace explorer
