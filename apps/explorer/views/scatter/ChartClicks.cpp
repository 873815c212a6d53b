#include "views/scatter/ChartClicks.h"

#include "charts/ChartXYLocationTransformer.h"
#include "charts/vtkChartUtils.h"
#include "common_vtk/vtkPxCommandProxy.h"

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <vtkAxis.h>
#include <vtkChartXY.h>
#include <vtkCommand.h>
#include <vtkPlotPoints.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkTable.h>

#include <array>
#include <cstdlib>

namespace explorer
{

struct ChartClicks::Impl
{
  vtkRenderWindowInteractor& interactor;
  vtkChartXY& chart;
  QPointer<QObject> owner;
  std::function<Mode()> mode;
  std::function<void(int, int)> pick;
  std::function<void()> redraw;
  vtkSmartPointer<vtkPxCommandProxy> pressObserver;
  vtkSmartPointer<vtkPxCommandProxy> releaseObserver;
  int pressed[2] = { 0, 0 };
  int released[2] = { 0, 0 };
  // The axes' ranges when the left button went down: x from, x to, y from, y to.
  std::array<double, 4> ranges = { 0, 0, 0, 0 };

  Impl(vtkRenderWindowInteractor& interactor, vtkChartXY& chart)
    : interactor(interactor)
    , chart(chart)
  {
  }

  vtkAxis* axis(int i) const { return chart.GetAxis(i == 0 ? vtkAxis::BOTTOM : vtkAxis::LEFT); }

  void press()
  {
    interactor.GetEventPosition(pressed);
    for (int i = 0; i < 2; ++i)
      axis(i)->GetRange(ranges.data() + 2 * i);
  }

  // Runs before the chart takes the release.
  void release()
  {
    interactor.GetEventPosition(released);
    const bool click =
      std::abs(released[0] - pressed[0]) < 3 && std::abs(released[1] - pressed[1]) < 3;
    if (!click || mode() == DataViewMouseMode::Select)
      return;
    pick(released[0], released[1]);
    if (mode() != DataViewMouseMode::Zoom || !owner)
      return;
    QTimer::singleShot(0,
                       owner,
                       [this, before = ranges]
                       {
                         for (int i = 0; i < 2; ++i)
                           axis(i)->SetRange(before[2 * i], before[2 * i + 1]);
                         chart.Update();
                         redraw();
                       });
  }
};

ChartClicks::ChartClicks(vtkRenderWindowInteractor& interactor,
                         vtkChartXY& chart,
                         QObject& owner,
                         std::function<Mode()> mode,
                         std::function<void(int x, int y)> pick,
                         std::function<void()> redraw)
  : d(std::make_unique<Impl>(interactor, chart))
{
  d->owner = &owner;
  d->mode = std::move(mode);
  d->pick = std::move(pick);
  d->redraw = std::move(redraw);
  Impl* impl = d.get();
  d->pressObserver = vtkPxCommandProxy::New([impl] { impl->press(); });
  d->releaseObserver = vtkPxCommandProxy::New([impl] { impl->release(); });
  // Above the chart's own handling (priority 0), so that the ranges are taken before it zooms.
  interactor.AddObserver(vtkCommand::LeftButtonPressEvent, d->pressObserver, 1.0);
  interactor.AddObserver(vtkCommand::LeftButtonReleaseEvent, d->releaseObserver, 1.0);
}

ChartClicks::~ChartClicks()
{
  d->interactor.RemoveObserver(d->pressObserver);
  d->interactor.RemoveObserver(d->releaseObserver);
}

bool ChartClicks::pointAtLastRelease(vtkPlotPoints& plot, unsigned long long& key) const
{
  vtkTable* table = plot.GetInput();
  if (!table || table->GetNumberOfColumns() == 0 || table->GetNumberOfRows() == 0)
    return false;
  // The pick box: 5 pixels around the click, in the plot's (shifted and scaled) coordinates.
  const ChartXYLocationTransformer transformer(&d->chart);
  const int tolerance = 5;
  const int* at = d->released;
  const vtkVector2f low =
    transformer.getWorldCoordinatesFromPixelLocation({ at[0] - tolerance, at[1] - tolerance });
  const vtkVector2f high =
    transformer.getWorldCoordinatesFromPixelLocation({ at[0] + tolerance, at[1] + tolerance });
  const vtkRectd shiftScale = plot.GetShiftScale();
  const auto scaled = [&](const vtkVector2f& p)
  {
    return vtkVector2f(static_cast<float>((p.GetX() + shiftScale.GetX()) * shiftScale.GetWidth()),
                       static_cast<float>((p.GetY() + shiftScale.GetY()) * shiftScale.GetHeight()));
  };
  return vtkChartUtils::caseIDAtPoint(plot, *table->GetColumn(0), scaled(low), scaled(high), key);
}

} // namespace explorer
