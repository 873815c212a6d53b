#include "views/scatter/ScatterPlotScene.h"

#include "ExplorerView.h"
#include "VtkAxisGuard.h"
#include "VtkFonts.h"
#include "views/scatter/LegendPlace.h"
#include "views/scatter/ScatterPlotModel.h"

#include "charts/AxisDetailsInterface.h"
#include "charts/ChartXY.h"
#include "charts/vtkDensityPlotPoints.h"
#include "colorlegend/NiceLabelsColorBarWidget.h"
#include "common_vtk/vtkPxCommandProxy.h"
#include "properties/PropertyAbstract.h"

#include <QVTKOpenGLNativeWidget.h>
#include <vtkAxis.h>
#include <vtkCallbackCommand.h>
#include <vtkCommand.h>
#include <vtkContextInteractorStyle.h>
#include <vtkContextScene.h>
#include <vtkContextView.h>
#include <vtkDoubleArray.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkIdTypeArray.h>
#include <vtkLookupTable.h>
#include <vtkNew.h>
#include <vtkObjectFactory.h>
#include <vtkPen.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkRenderer.h>
#include <vtkScalarBarActor.h>
#include <vtkTable.h>
#include <vtkTextActor.h>
#include <vtkTextProperty.h>
#include <vtkTooltipItem.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace explorer
{

namespace
{

// A few points are drawn larger, so that they are seen at once.
constexpr vtkIdType fewPoints = 500;

vtkSmartPointer<vtkDensityPlotPoints> pointsPlot(float size, unsigned char grey)
{
  auto plot = vtkSmartPointer<vtkDensityPlotPoints>::New();
  plot->SetMarkerStyle(vtkPlotPoints::CIRCLE);
  plot->SetMarkerSize(size);
  plot->SetColor(grey, grey, grey, 255);
  return plot;
}

// VTK's context style renders once control returns to the event loop after anything in the
// scene changed, even when the view drew the change itself meanwhile (as it does after each
// change it makes): a second, identical render of the whole plot. This style skips a render
// when one has been made since the last change of the scene.
class RenderOnceInteractorStyle : public vtkContextInteractorStyle
{
public:
  static RenderOnceInteractorStyle* New();
  vtkTypeMacro(RenderOnceInteractorStyle, vtkContextInteractorStyle);

  /// Counts the renders of `window` from now on.
  void watch(vtkRenderWindow* window)
  {
    vtkNew<vtkCallbackCommand> counted;
    counted->SetClientData(&renders);
    counted->SetCallback([](vtkObject*, unsigned long, void* count, void*)
                         { ++*static_cast<unsigned long long*>(count); });
    window->AddObserver(vtkCommand::EndEvent, counted);
  }

  void OnSceneModified() override
  {
    rendersAtChange = renders;
    vtkContextInteractorStyle::OnSceneModified();
  }

protected:
  void RenderNow() override
  {
    if (renders > rendersAtChange)
    {
      // Drawn since the scene last changed: what the render would show is on screen.
      SceneTimerId = 0;
      return;
    }
    vtkContextInteractorStyle::RenderNow();
  }

private:
  unsigned long long renders = 0;
  unsigned long long rendersAtChange = 0;
};

vtkStandardNewMacro(RenderOnceInteractorStyle);

} // namespace

struct ScatterPlotScene::Impl
{
  QVTKOpenGLNativeWidget& widget;
  vtkSmartPointer<vtkGenericOpenGLRenderWindow> window =
    vtkSmartPointer<vtkGenericOpenGLRenderWindow>::New();
  vtkSmartPointer<vtkContextView> view = vtkSmartPointer<vtkContextView>::New();
  vtkSmartPointer<ChartXY> chart = vtkSmartPointer<ChartXY>::New();
  vtkSmartPointer<vtkDensityPlotPoints> points = pointsPlot(7, 30);
  // The selected cases, drawn over the others as larger markers in a dark ring, so that they
  // stand out in any colour of the map.
  vtkSmartPointer<vtkDensityPlotPoints> selectedRing = pointsPlot(14, 20);
  vtkSmartPointer<vtkDensityPlotPoints> selectedFill = pointsPlot(9, 30);
  vtkSmartPointer<vtkLookupTable> lookupTable = vtkSmartPointer<vtkLookupTable>::New();
  vtkSmartPointer<NiceLabelsColorBarWidget> legendBar =
    vtkSmartPointer<NiceLabelsColorBarWidget>::New();
  vtkSmartPointer<vtkTextActor> notes = vtkSmartPointer<vtkTextActor>::New();
  vtkSmartPointer<vtkTextActor> legendNote = vtkSmartPointer<vtkTextActor>::New();
  vtkSmartPointer<vtkPxCommandProxy> layoutObserver;
  vtkSmartPointer<vtkPxCommandProxy> legendMovedObserver;
  std::function<void(const double* before, const double* after)> legendMoved;
  vtkSmartPointer<vtkPxCommandProxy> swallowKeys;
  AxisDetailsInterface* xDetails = nullptr;
  AxisDetailsInterface* yDetails = nullptr;
  QueuedDraw draws;
  bool legendShown = false;
  LegendPlace legendPlace{ chart, legendBar, legendNote };
  std::string xColumn;
  std::string yColumn;

  explicit Impl(QVTKOpenGLNativeWidget& widget)
    : widget(widget)
  {
  }

  ~Impl()
  {
    window->RemoveObserver(layoutObserver);
    legendBar->RemoveObserver(legendMovedObserver);
    widget.interactor()->RemoveObserver(swallowKeys);
  }

  // Places the ticks of a custom grid spacing, unless in place already: compared bit for bit,
  // since -0 equals 0 as a number.
  static void placeTicks(AxisDetailsInterface* details, vtkAxis& axis)
  {
    if (!details || !details->useCustomGridSpacing()->value())
      return;
    const std::vector<double> ticks = ScatterPlotModel::customTicks(
      axis.GetMinimum(), axis.GetMaximum(), details->gridSpacing()->value());
    vtkDoubleArray* placed = axis.GetTickPositions();
    if (placed && static_cast<std::size_t>(placed->GetNumberOfTuples()) == ticks.size() &&
        (ticks.empty() ||
         std::memcmp(ticks.data(), placed->GetPointer(0), sizeof(double) * ticks.size()) == 0))
      return;
    auto positions = vtkSmartPointer<vtkDoubleArray>::New();
    for (double tick : ticks)
      positions->InsertNextValue(tick);
    axis.SetCustomTickPositions(positions, nullptr);
  }

  // Runs before each draw, when the view's size is known.
  void layOut()
  {
    placeTicks(xDetails, *chart->GetAxis(vtkAxis::BOTTOM));
    placeTicks(yDetails, *chart->GetAxis(vtkAxis::LEFT));
    legendPlace.layOut(window->GetSize(), legendShown);
  }

  void assignColumns(vtkPlot& plot) const
  {
    plot.SetInputArray(0, xColumn);
    plot.SetInputArray(1, yColumn);
  }
};

ScatterPlotScene::ScatterPlotScene(QVTKOpenGLNativeWidget& widget)
  : d(std::make_unique<Impl>(widget))
{
  guardAxisTicks(*d->chart);
  // One sample a pixel: the chart's marks are sprites and its lines upright, so multisampling
  // changes little that is seen, and software OpenGL drew the chart in twice the time with the
  // eight samples VTK takes by default.
  d->window->SetMultiSamples(0);
  widget.setRenderWindow(d->window);
  vtkGenericOpenGLRenderWindow* window = d->window;
  d->draws.attach(widget, [window] { window->Render(); });
  d->view->SetRenderWindow(d->window);
  d->view->SetInteractor(widget.interactor());
  if (auto* style =
        vtkContextInteractorStyle::SafeDownCast(widget.interactor()->GetInteractorStyle()))
    style->SetScene(nullptr);
  vtkNew<RenderOnceInteractorStyle> renderOnce;
  renderOnce->SetScene(d->view->GetScene());
  renderOnce->watch(d->window);
  widget.interactor()->SetInteractorStyle(renderOnce);
  d->view->GetRenderer()->SetBackground(1, 1, 1);
  d->chart->SetLayoutStrategy(vtkChart::FILL_RECT);
  d->view->GetScene()->AddItem(d->chart);
  for (int axis : { vtkAxis::BOTTOM, vtkAxis::LEFT })
    d->chart->GetAxis(axis)->SetBehavior(vtkAxis::FIXED);

  d->points->SetColor(30, 90, 200, 255);
  d->points->SetLabel("cases");
  d->lookupTable->SetHueRange(0.667, 0.0);
  // A case without a colour value is drawn, in a grey no colour of the map comes near.
  d->lookupTable->SetNanColor(0.6, 0.6, 0.6, 1.0);
  d->lookupTable->Build();
  d->points->SetLookupTable(d->lookupTable);
  // The selection is drawn by the two plots on top, not in the selection pen's single colour,
  // unless it is very large (see showSelection).
  d->points->GetSelectionPen()->SetColor(20, 20, 20);
  d->points->GetSelectionPen()->SetOpacity(0);
  d->points->SetSelectionDensityColor(20, 20, 20, 255);
  d->selectedRing->ScalarVisibilityOff();
  d->selectedFill->SetColor(30, 90, 200, 255);
  d->selectedFill->SetLookupTable(d->lookupTable);
  for (vtkPlotPoints* plot : { static_cast<vtkPlotPoints*>(d->selectedRing),
                               static_cast<vtkPlotPoints*>(d->selectedFill) })
  {
    plot->SetSelectable(false);
    plot->SetLegendVisibility(false);
    plot->SetVisible(false);
  }
  d->chart->AddPlot(d->points);
  d->chart->AddPlot(d->selectedRing);
  d->chart->AddPlot(d->selectedFill);

  // Text of a fixed size: scaled to the bar, it grows with the view's height.
  vtkScalarBarActor* bar = d->legendBar->GetScalarBarActor();
  bar->UnconstrainedFontSizeOn();
  bar->GetLabelTextProperty()->SetFontSize(13);
  bar->GetTitleTextProperty()->SetFontSize(13);
  d->notes->GetTextProperty()->SetFontSize(13);
  d->notes->GetTextProperty()->SetColor(0.35, 0.1, 0.1);
  d->notes->GetTextProperty()->SetVerticalJustificationToTop();
  d->notes->GetPositionCoordinate()->SetCoordinateSystemToNormalizedViewport();
  d->notes->SetPosition(0.09, 0.985);
  d->legendNote->GetTextProperty()->SetFontSize(12);
  d->legendNote->GetTextProperty()->SetColor(0.45, 0.45, 0.45);
  for (vtkTextActor* note : { d->notes.Get(), d->legendNote.Get() })
  {
    note->SetVisibility(false);
    d->view->GetRenderer()->AddActor2D(note);
  }
  for (vtkTextProperty* text : { d->notes->GetTextProperty(),
                                 d->legendNote->GetTextProperty(),
                                 bar->GetLabelTextProperty(),
                                 bar->GetTitleTextProperty(),
                                 d->chart->GetTooltip()->GetTextProperties(),
                                 d->chart->GetAxis(vtkAxis::BOTTOM)->GetTitleProperties(),
                                 d->chart->GetAxis(vtkAxis::BOTTOM)->GetLabelProperties(),
                                 d->chart->GetAxis(vtkAxis::LEFT)->GetTitleProperties(),
                                 d->chart->GetAxis(vtkAxis::LEFT)->GetLabelProperties() })
    useSystemFont(*text);

  Impl* impl = d.get();
  d->layoutObserver = vtkPxCommandProxy::New([impl] { impl->layOut(); });
  d->window->AddObserver(vtkCommand::StartEvent, d->layoutObserver);
  d->legendMovedObserver = vtkPxCommandProxy::New(
    [impl]
    {
      double before[4];
      const bool wasPlaced = impl->legendPlace.placement(before);
      impl->legendPlace.moved();
      double after[4];
      const bool placed = impl->legendPlace.placement(after);
      impl->draws.now();
      // A press on a placed legend that did not move it changes nothing.
      const bool same = wasPlaced == placed && (!placed || std::equal(before, before + 4, after));
      if (impl->legendMoved && !same)
        impl->legendMoved(wasPlaced ? before : nullptr, placed ? after : nullptr);
    });
  d->legendBar->AddObserver(vtkCommand::EndInteractionEvent, d->legendMovedObserver);
  // VTK's interactor style answers keys as in a 3-D viewer (3 for stereo, w and s for wireframe
  // and surface, e and q to quit, r to reset); none of that belongs in a chart, so the keys stop
  // here.
  d->swallowKeys = vtkPxCommandProxy::New([impl] { impl->swallowKeys->SetAbortFlag(1); });
  for (unsigned long event :
       { vtkCommand::CharEvent, vtkCommand::KeyPressEvent, vtkCommand::KeyReleaseEvent })
    widget.interactor()->AddObserver(event, d->swallowKeys, 10.0);
}

ScatterPlotScene::~ScatterPlotScene() = default;

vtkSmartPointer<ChartXY> ScatterPlotScene::chart() const
{
  return d->chart;
}

vtkSmartPointer<vtkDensityPlotPoints> ScatterPlotScene::points() const
{
  return d->points;
}

vtkSmartPointer<vtkLookupTable> ScatterPlotScene::lookupTable() const
{
  return d->lookupTable;
}

vtkSmartPointer<NiceLabelsColorBarWidget> ScatterPlotScene::legendBar() const
{
  return d->legendBar;
}

vtkRenderWindowInteractor* ScatterPlotScene::interactor() const
{
  return d->widget.interactor();
}

void ScatterPlotScene::showPoints(vtkSmartPointer<vtkTable> table,
                                  const std::string& x,
                                  const std::string& y,
                                  Drawing drawing)
{
  d->points->SetVisible(table != nullptr);
  d->points->SetInputData(table);
  d->xColumn = x;
  d->yColumn = y;
  if (!table)
    return;
  d->assignColumns(*d->points);
  const vtkIdType rows = table->GetNumberOfRows();
  // A selected point is drawn a little larger than the others, in a dark ring.
  const float size = rows <= fewPoints ? 9 : 7;
  d->points->SetMarkerSize(size);
  d->selectedFill->SetMarkerSize(size + 2);
  d->selectedRing->SetMarkerSize(size + 7);
  d->points->SetDrawDensity(
    drawing::asDensity(drawing, static_cast<std::size_t>(rows), drawing::pointsAsDensityAbove));
}

void ScatterPlotScene::setCaseNames(
  const std::function<bool(long long, unsigned long long&)>& caseOfKey)
{
  for (vtkDensityPlotPoints* plot :
       { d->points.Get(), d->selectedRing.Get(), d->selectedFill.Get() })
    plot->SetCaseIdOfKey(caseOfKey);
}

void ScatterPlotScene::showSelection(const std::string& colour)
{
  // Up to a number of points they are copied into the plots drawn on top, costing the
  // selection, not the study. Past it two more passes of markers would cost as much as the
  // points themselves: with markers the points plot draws its selected points larger in the
  // ring's colour; with density it draws them as a dark density over the other.
  vtkTable* table = d->points->GetInput();
  vtkIdTypeArray* rows = d->points->GetSelection();
  const vtkIdType count = rows ? rows->GetNumberOfTuples() : 0;
  const bool any = d->points->GetVisible() && table && count > 0;
  const bool many = count > static_cast<vtkIdType>(drawing::ringedSelectionUpTo);
  const bool density = d->points->GetDrawDensity();
  d->points->GetSelectionPen()->SetOpacity(any && many && !density ? 255 : 0);
  d->points->SetDrawSelectionDensity(any && many && density);
  const bool ringed = any && !many;
  // The case keys first, as in the points' table: the tool tips read them there. One copy
  // serves both plots.
  const vtkSmartPointer<vtkTable> selected =
    ringed ? ScatterPlotModel::rowsOf(
               *table, *rows, { table->GetColumnName(0), d->xColumn, d->yColumn, colour })
           : nullptr;
  for (vtkDensityPlotPoints* plot : { d->selectedRing.Get(), d->selectedFill.Get() })
  {
    plot->SetVisible(ringed);
    plot->SetInputData(selected);
    if (ringed)
      d->assignColumns(*plot);
  }
  d->selectedFill->SetScalarVisibility(ringed && !colour.empty());
  if (ringed && !colour.empty())
    d->selectedFill->SelectColorArray(colour);
}

void ScatterPlotScene::setPointOpacity(double opacity)
{
  d->points->SetPointOpacity(opacity);
}

void ScatterPlotScene::setNotes(const std::string& overPlot, const std::string& underLegend)
{
  d->notes->SetInput(overPlot.c_str());
  d->notes->SetVisibility(!overPlot.empty());
  d->legendNote->SetInput(underLegend.c_str());
  d->legendNote->SetVisibility(!underLegend.empty());
}

void ScatterPlotScene::setLegendShown(bool shown)
{
  d->legendShown = shown;
}

bool ScatterPlotScene::legendPlacement(double placement[4]) const
{
  return d->legendPlace.placement(placement);
}

void ScatterPlotScene::placeLegend(const double* placement)
{
  d->legendPlace.place(placement);
  scheduleRender();
}

void ScatterPlotScene::onLegendMoved(
  std::function<void(const double* before, const double* after)> moved)
{
  d->legendMoved = std::move(moved);
}

void ScatterPlotScene::placeCustomTicks(AxisDetailsInterface& x, AxisDetailsInterface& y)
{
  d->xDetails = &x;
  d->yDetails = &y;
}

void ScatterPlotScene::widenToPoints(int which, double halfGap)
{
  vtkAxis* axis = d->chart->GetAxis(which);
  double bounds[4] = { 0, 0, 0, 0 };
  vtkDensityPlotPoints& points = *d->points;
  const bool plotted =
    points.GetVisible() && points.GetInput() && points.GetInput()->GetNumberOfRows() > 0;
  if (plotted)
    points.GetBounds(bounds);
  // From the points themselves: the fitted range has already been rounded outwards.
  const int i = which == vtkAxis::BOTTOM ? 0 : 2;
  const float* start = axis->GetPoint1();
  const float* end = axis->GetPoint2();
  const double pixels = std::hypot(end[0] - start[0], end[1] - start[1]);
  double from = 0;
  double to = 0;
  if (ScatterPlotModel::axisRange(plotted ? bounds[i] : axis->GetMinimum(),
                                  plotted ? bounds[i + 1] : axis->GetMaximum(),
                                  pixels > 0 ? points.GetMarkerSize() / pixels : 0,
                                  // A sweep's half step is in the values' units, which a
                                  // logarithmic axis does not have.
                                  axis->GetLogScaleActive() ? 0.0 : halfGap,
                                  from,
                                  to))
    axis->SetRange(from, to);
}

void ScatterPlotScene::render()
{
  d->draws.now();
}

void ScatterPlotScene::scheduleRender()
{
  d->draws.later();
}

} // namespace explorer
