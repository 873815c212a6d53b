#pragma once

#include "ExplorerView.h"

#include <functional>
#include <vector>

namespace explorer
{

/// Where the window puts a view: the main area (left, the larger share), the side column, where
/// views are stacked top to bottom in registry order, or the tabs below the side column.
enum class ViewArea
{
  Main,
  Side,
  Tabs
};

/// A kind of view the explorer can show: how to make one, and where it goes.
struct ViewKind
{
  ViewArea area = ViewArea::Side;
  /// The view's share of its area's height (side) or width (main), relative to its neighbours.
  int stretch = 1;
  std::function<boost::shared_ptr<ExplorerView>(const ViewContext&)> create;
};

/// Every kind of view, in the order the window shows them and the settings file lists them.
const std::vector<ViewKind>& viewKinds();

} // namespace explorer
