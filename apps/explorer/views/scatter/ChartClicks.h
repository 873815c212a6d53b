#pragma once

#include "dataviews/MouseMode.h"

#include <functional>
#include <memory>

class QObject;
class vtkChartXY;
class vtkPlotPoints;
class vtkRenderWindowInteractor;

namespace explorer
{

/// Clicks on a chart in Pan and Zoom mode. In Select mode the chart's own click selection picks
/// the case under the mouse; in the other modes a click does it here, and a click on empty space
/// keeps the selection (the user meant to pan or zoom). In Zoom mode a click zooms nothing: the
/// chart zooms into a box of a few pixels around a click, a hand's tremor between press and
/// release, so the axes get their ranges back once the chart has taken the release.
class ChartClicks
{
public:
  using Mode = DataViewMouseMode::MouseMode;

  /// Watches the left button on `interactor`, whose clicks reach `chart`. `mode` tells the
  /// chart's mouse mode, `pick` is given a click's place (the interactor's pixels) outside
  /// Select mode, `redraw` draws the chart; `owner` bounds the life of what runs later.
  ChartClicks(vtkRenderWindowInteractor& interactor,
              vtkChartXY& chart,
              QObject& owner,
              std::function<Mode()> mode,
              std::function<void(int x, int y)> pick,
              std::function<void()> redraw);
  ~ChartClicks();
  ChartClicks(const ChartClicks&) = delete;
  ChartClicks& operator=(const ChartClicks&) = delete;

  /// The key (column 0 of the plot's table) of a point of `plot` within 5 pixels of where the
  /// left button was last released; false when there is none.
  bool pointAtLastRelease(vtkPlotPoints& plot, unsigned long long& key) const;

private:
  struct Impl;
  std::unique_ptr<Impl> d;
};

} // namespace explorer
