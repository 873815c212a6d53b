#include "ViewRegistry.h"

#include "views/ImageDiffView.h"
#include "views/ImageMatrixView.h"
#include "views/SelectedCasesView.h"
#include "views/SelectedImageView.h"
#include "views/importance/ImportanceView.h"
#include "views/line/LinePlotView.h"
#include "views/parallel/ParallelCoordinatesView.h"
#include "views/scatter/ScatterPlotView.h"
#include "views/scatter3d/ScatterPlot3DView.h"
#include "views/table/CasesTableView.h"

#include <boost/make_shared.hpp>

namespace explorer
{

namespace
{

template<typename View>
ViewKind kind(ViewArea area, int stretch)
{
  return { area, stretch, [](const ViewContext& context) {
            return boost::make_shared<View>(context);
          } };
}

} // namespace

const std::vector<ViewKind>& viewKinds()
{
  // A new kind of view is a file pair in views/ and one line here.
  static const std::vector<ViewKind> kinds = {
    kind<ScatterPlotView>(ViewArea::Main, 1),   kind<CasesTableView>(ViewArea::Side, 2),
    kind<ImageMatrixView>(ViewArea::Side, 4),   kind<ParallelCoordinatesView>(ViewArea::Tabs, 4),
    kind<LinePlotView>(ViewArea::Tabs, 4),      kind<ScatterPlot3DView>(ViewArea::Tabs, 3),
    kind<ImportanceView>(ViewArea::Tabs, 3),    kind<SelectedCasesView>(ViewArea::Tabs, 3),
    kind<SelectedImageView>(ViewArea::Tabs, 3), kind<ImageDiffView>(ViewArea::Tabs, 3),
  };
  return kinds;
}

} // namespace explorer
