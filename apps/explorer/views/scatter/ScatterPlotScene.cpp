#include "views/scatter/ScatterPlotScene.h"

#include "ExplorerView.h"
#include "VtkFonts.h"
#include "views/scatter/ScatterPlotModel.h"

#include "charts/ChartXY.h"
#include "charts/vtkDensityPlotPoints.h"
#include "colorlegend/NiceLabelsColorBarWidget.h"
#include "common_vtk/vtkPxCommandProxy.h"

#include <QVTKOpenGLNativeWidget.h>
#include <vtkAxis.h>
#include <vtkCommand.h>
#include <vtkContextScene.h>
#include <vtkContextView.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkIdTypeArray.h>
#include <vtkLookupTable.h>
#include <vtkPen.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkRenderer.h>
#include <vtkScalarBarActor.h>
#include <vtkScalarBarRepresentation.h>
#include <vtkTable.h>
#include <vtkTextActor.h>
#include <vtkTextProperty.h>
#include <vtkTooltipItem.h>

#include <algorithm>

namespace explorer
{

namespace
{

// The margin on the right of the chart that holds the colour legend, in pixels.
constexpr float legendMargin = 110.0f;
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
  vtkSmartPointer<vtkPxCommandProxy> swallowKeys;
  std::function<void()> beforeDraw;
  QueuedDraw draws;
  bool legendShown = false;
  // The legend's corners in fractions of the view once the user has moved it; until then it
  // sits in the margin the chart leaves on its right.
  bool legendPlacedByUser = false;
  double placement[4] = { 0, 0, 0, 0 };
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

  // The chart fills the view but for a margin on the right that holds the colour legend, so the
  // legend never covers a point. Runs before each draw, when the view's size is known.
  void layOut()
  {
    if (beforeDraw)
      beforeDraw();
    const int* size = window->GetSize();
    if (size[0] <= 0 || size[1] <= 0)
      return;
    const float margin = legendShown && !legendPlacedByUser ? legendMargin : 0.0f;
    const vtkRectf area(
      0, 0, std::max(1.0f, static_cast<float>(size[0]) - margin), static_cast<float>(size[1]));
    if (chart->GetSize() != area)
      chart->SetSize(area);
    auto* representation = vtkScalarBarRepresentation::SafeDownCast(legendBar->GetRepresentation());
    if (!representation)
      return;
    if (legendPlacedByUser)
    {
      legendNote->SetPosition(placement[0] * size[0], std::max(0.0, placement[1] * size[1] - 34));
      representation->SetPosition(placement[0], placement[1]);
      representation->SetPosition2(placement[2], placement[3]);
      return;
    }
    const auto width = static_cast<double>(size[0]);
    const auto height = static_cast<double>(size[1]);
    legendNote->SetPosition(width - margin + 8, 6);
    representation->SetPosition((width - margin + 8) / width, 50.0 / height);
    representation->SetPosition2((margin - 16) / width, std::max(0.1, 1.0 - 80.0 / height));
  }

  void legendMoved()
  {
    auto* representation = vtkScalarBarRepresentation::SafeDownCast(legendBar->GetRepresentation());
    if (!representation)
      return;
    legendPlacedByUser = true;
    std::copy(representation->GetPosition(), representation->GetPosition() + 2, placement);
    std::copy(representation->GetPosition2(), representation->GetPosition2() + 2, placement + 2);
    draws.now();
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
  widget.setRenderWindow(d->window);
  vtkGenericOpenGLRenderWindow* window = d->window;
  d->draws.attach(widget, [window] { window->Render(); });
  d->view->SetRenderWindow(d->window);
  d->view->SetInteractor(widget.interactor());
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
  d->legendMovedObserver = vtkPxCommandProxy::New([impl] { impl->legendMoved(); });
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

void ScatterPlotScene::setCaseNames(std::function<bool(long long, unsigned long long&)> caseOfKey)
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
  std::copy(d->placement, d->placement + 4, placement);
  return d->legendPlacedByUser;
}

void ScatterPlotScene::placeLegend(const double* placement)
{
  d->legendPlacedByUser = placement != nullptr;
  if (placement)
    std::copy(placement, placement + 4, d->placement);
  scheduleRender();
}

void ScatterPlotScene::setBeforeDraw(std::function<void()> beforeDraw)
{
  d->beforeDraw = std::move(beforeDraw);
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
