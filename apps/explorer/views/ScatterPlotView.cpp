#include "views/ScatterPlotView.h"

#include "PropertyEditors.h"
#include "vtkPlottableCaseIds.h"

#include "analyzer_common/SelectionModelInterface.h"
#include "charts/AxisDetailsCharts.h"
#include "charts/ChartXY.h"
#include "charts/ChartXYLocationTransformer.h"
#include "charts/ConstraintsRegionPlot.h"
#include "charts/InvalidPointsFilter.h"
#include "charts/vtkChartUtils.h"
#include "colorlegend/ColorLegend.h"
#include "colorlegend/NiceLabelsColorBarWidget.h"
#include "common_vtk/vtkPxCommandProxy.h"
#include "datamanagement/Project.h"
#include "datapipeline/DataPipelineManager.h"
#include "dataviews/DataView2DSelectionSynchronizer.h"
#include "dataviews/PlotSelectionModel.h"
#include "properties/ColorVariableProperty.h"
#include "properties/Property.h"
#include "properties/SpatialVariableProperty2D.h"
#include "properties/UndoablePropertyProxy.h"
#include "properties/VTKChartsMouseModeProperty.h"
#include "serialization/GenericSerializer.h"
#include "serialize/Serializer.h"
#include "signals/SignalConnectionCollection.h"

#include <QFormLayout>
#include <QPointer>
#include <QVTKOpenGLNativeWidget.h>
#include <boost/make_shared.hpp>
#include <vtkAxis.h>
#include <vtkCommand.h>
#include <vtkContextScene.h>
#include <vtkContextView.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkIdTypeArray.h>
#include <vtkLookupTable.h>
#include <vtkPlotPoints.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkRenderer.h>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <cmath>

namespace explorer
{

namespace
{

using VariableProxy = plexa::UndoablePropertyProxy<WeakPtr<Variable>>;

// The first variable of the project of the given nature after `skip` of them, or any.
WeakPtr<Variable> pick(const Project& project, Variable::Nature nature, int skip)
{
  for (const auto& variable : project.variables())
  {
    if (variable.lock().nature() == nature && skip-- == 0)
      return variable;
  }
  return {};
}

} // namespace

struct ScatterPlotView::Impl
{
  std::shared_ptr<const Project> project;
  const DataPipelineManagerInterface& pipeline;
  // Owned by the view; a parent window that goes first takes it along, hence the guard.
  QPointer<QVTKOpenGLNativeWidget> widget;
  vtkSmartPointer<vtkGenericOpenGLRenderWindow> window;
  vtkSmartPointer<vtkContextView> view;
  vtkSmartPointer<ChartXY> chart;
  vtkSmartPointer<vtkPlotPoints> points;
  vtkSmartPointer<vtkLookupTable> lookupTable;
  vtkSmartPointer<vtkPlottableCaseIds> plottable;
  vtkSmartPointer<InvalidPointsFilter> validPoints;
  boost::shared_ptr<SpatialVariableProperty2D> xTarget;
  boost::shared_ptr<SpatialVariableProperty2D> yTarget;
  boost::shared_ptr<ColorVariableProperty<vtkPlotPoints>> colorTarget;
  boost::shared_ptr<VariableProxy> x;
  boost::shared_ptr<VariableProxy> y;
  boost::shared_ptr<VariableProxy> color;
  boost::shared_ptr<plexa::Property<bool>> visible;
  std::unique_ptr<AxisDetailsCharts> xAxis;
  std::unique_ptr<AxisDetailsCharts> yAxis;
  std::unique_ptr<ColorLegend> legend;
  std::unique_ptr<VTKChartsMouseModeProperty> chartMouseMode;
  boost::shared_ptr<PlotSelectionModel> plotSelection;
  std::unique_ptr<DataView2DSelectionSynchronizer> synchronizer;
  vtkSmartPointer<vtkPxCommandProxy> pressObserver;
  vtkSmartPointer<vtkPxCommandProxy> releaseObserver;
  // A fit asked for before the widget could draw: the chart learns its bounds only while it
  // paints, so the fit is made again on the first refresh once the widget is shown.
  bool pendingFit = false;
  int pressPosition[2] = { 0, 0 };
  int clickPosition[2] = { 0, 0 };
  SignalConnectionCollection connections;

  explicit Impl(const DataPipelineManagerInterface& pipeline)
    : pipeline(pipeline)
  {
  }

  // The plotted table: the pipeline's output without the rows that cannot be plotted.
  void updatePoints()
  {
    // Without both variables there is nothing to plot (an empty study, say).
    const bool plottable = !x->value().lock().isNull() && !y->value().lock().isNull();
    points->SetVisible(plottable);
    if (!plottable)
    {
      points->SetInputData(nullptr);
      return;
    }
    validPoints->Update();
    auto table = vtkSmartPointer<vtkTable>::New();
    table->ShallowCopy(validPoints->GetOutput());
    points->SetInputData(table);
    xTarget->assignInputArrayToPlot(*points, x->value());
    yTarget->assignInputArrayToPlot(*points, y->value());
    colorTarget->assignColorArray(color->value().lock().name());
    synchronizer->updateChartSelections();
  }

  void render()
  {
    if (window)
      window->Render();
  }
};

ScatterPlotView::ScatterPlotView(const ViewContext& context)
  : ExplorerView(std::make_unique<Serializer>("ScatterPlot2D"), context.selection)
  , d(std::make_unique<Impl>(*context.pipeline))
{
  const DataPipelineManagerInterface& pipeline = *context.pipeline;
  const auto& selection = context.selection;
  d->project = context.project;
  d->widget = new QVTKOpenGLNativeWidget();
  d->widget->setObjectName("scatterView");
  d->window = vtkSmartPointer<vtkGenericOpenGLRenderWindow>::New();
  d->widget->setRenderWindow(d->window);
  d->view = vtkSmartPointer<vtkContextView>::New();
  d->view->SetRenderWindow(d->window);
  d->view->SetInteractor(d->widget->interactor());
  d->view->GetRenderer()->SetBackground(1, 1, 1);
  d->chart = vtkSmartPointer<ChartXY>::New();
  d->view->GetScene()->AddItem(d->chart);
  for (int axis : { vtkAxis::BOTTOM, vtkAxis::LEFT })
    d->chart->GetAxis(axis)->SetBehavior(vtkAxis::FIXED);

  d->points = vtkSmartPointer<vtkPlotPoints>::New();
  d->points->SetMarkerStyle(vtkPlotPoints::CIRCLE);
  d->points->SetMarkerSize(7);
  d->points->SetColor(30, 90, 200, 255);
  d->points->SetLabel("cases");
  d->lookupTable = vtkSmartPointer<vtkLookupTable>::New();
  d->lookupTable->SetHueRange(0.667, 0.0);
  d->lookupTable->Build();
  d->points->SetLookupTable(d->lookupTable);

  d->xTarget = boost::make_shared<SpatialVariableProperty2D>(d->chart->GetAxis(vtkAxis::BOTTOM), 0);
  d->yTarget = boost::make_shared<SpatialVariableProperty2D>(d->chart->GetAxis(vtkAxis::LEFT), 1);
  d->colorTarget = boost::make_shared<ColorVariableProperty<vtkPlotPoints>>(d->points);
  d->xTarget->setValue(pick(*d->project, Variable::Discrete, 0));
  d->yTarget->setValue(pick(*d->project, Variable::Continuous, 0));
  d->colorTarget->setValue(pick(*d->project, Variable::Continuous, 1));
  d->xTarget->addPlot(d->points);
  d->yTarget->addPlot(d->points);
  d->x = boost::make_shared<VariableProxy>("X Variable", d->xTarget);
  d->y = boost::make_shared<VariableProxy>("Y Variable", d->yTarget);
  d->color = boost::make_shared<VariableProxy>("Color Variable", d->colorTarget);

  d->visible = boost::make_shared<plexa::Property<bool>>(true);
  auto widget = vtkSmartPointer<NiceLabelsColorBarWidget>::New();
  d->legend = std::make_unique<ColorLegend>(
    d->color, d->visible, pipeline, d->lookupTable, *d->widget->interactor(), widget);
  d->legend->show()->setValue(true);

  d->validPoints = InvalidPointsFilter::New(
    { d->x,
      d->y,
      boost::make_shared<InvalidPointsFilter::RelevanceDependentVariableProperty>(
        d->color, d->legend->show()) });
  d->plottable = vtkSmartPointer<vtkPlottableCaseIds>::New();
  d->plottable->SetInputConnection(pipeline.output()->GetOutputPort());
  d->validPoints->SetInputConnection(d->plottable->GetOutputPort());

  // The constraints region first, so that it is painted behind the points.
  d->chart->AddPlot(ConstraintsRegionPlot::New(pipeline, d->x, d->y, d->points));
  d->chart->AddPlot(d->points);
  d->xAxis = std::make_unique<AxisDetailsCharts>("X", *d->x, d->chart->GetAxis(vtkAxis::BOTTOM));
  d->yAxis = std::make_unique<AxisDetailsCharts>("Y", *d->y, d->chart->GetAxis(vtkAxis::LEFT));

  d->chartMouseMode = std::make_unique<VTKChartsMouseModeProperty>(d->chart);
  d->chartMouseMode->setValue(mouseMode()->value());
  Impl* impl = d.get();
  d->connections.add(mouseMode()->connectSignalValueChanged(
    [impl](const MouseMode& mode) { impl->chartMouseMode->setValue(mode); }));

  d->plotSelection = boost::make_shared<PlotSelectionModel>(d->widget->interactor(), selection);
  d->synchronizer = std::make_unique<DataView2DSelectionSynchronizer>(
    d->chart, d->widget->interactor(), d->plotSelection);
  d->synchronizer->setPlotsToSynchronize({ d->points });
  d->connections.add(d->synchronizer->connectSignalSelectionsUpdated([impl] { impl->render(); }));

  // A click without a drag outside Select mode picks the case under the mouse; in Select mode
  // the chart's own click selection does it.
  d->pressObserver =
    vtkPxCommandProxy::New([this] { d->widget->interactor()->GetEventPosition(d->pressPosition); });
  d->releaseObserver = vtkPxCommandProxy::New(
    [this]
    {
      int* at = d->widget->interactor()->GetEventPosition();
      const bool click =
        std::abs(at[0] - d->pressPosition[0]) < 3 && std::abs(at[1] - d->pressPosition[1]) < 3;
      if (click && mouseMode()->value() != Select)
      {
        d->clickPosition[0] = at[0];
        d->clickPosition[1] = at[1];
        adjustSelectionForMouseClickAtPoint();
      }
    });
  d->widget->interactor()->AddObserver(vtkCommand::LeftButtonPressEvent, d->pressObserver, 1.0);
  d->widget->interactor()->AddObserver(vtkCommand::LeftButtonReleaseEvent, d->releaseObserver, 1.0);

  const auto replot = [this]
  {
    d->updatePoints();
    refresh();
  };
  const auto refit = [this](const WeakPtr<Variable>&)
  {
    d->updatePoints();
    fitToData();
  };
  d->connections.add(pipeline.connectSignalPipelineChanged(replot));
  d->connections.add(d->x->connectSignalValueChanged(refit));
  d->connections.add(d->y->connectSignalValueChanged(refit));
  d->connections.add(
    d->color->connectSignalValueChanged([replot](const WeakPtr<Variable>&) { replot(); }));
  d->connections.add(
    d->legend->show()->connectSignalValueChanged([replot](const bool&) { replot(); }));

  saveVariableSetting("XVariable", d->x, *d->project);
  saveVariableSetting("YVariable", d->y, *d->project);
  saveVariableSetting("ColorVariable", d->color, *d->project);
  SerializerInterface& settings = serializer();
  settings.addSubElement(d->legend->serializer());
  settings.addSubElement(boost::make_shared<GenericSerializer<double>>("XMin", d->xAxis->min()));
  settings.addSubElement(boost::make_shared<GenericSerializer<double>>("XMax", d->xAxis->max()));
  settings.addSubElement(boost::make_shared<GenericSerializer<double>>("YMin", d->yAxis->min()));
  settings.addSubElement(boost::make_shared<GenericSerializer<double>>("YMax", d->yAxis->max()));

  d->updatePoints();
  fitToData();
}

ScatterPlotView::~ScatterPlotView()
{
  d->connections.clear();
  d->synchronizer.reset();
  d->legend.reset();
  if (d->widget)
  {
    d->widget->interactor()->RemoveObserver(d->pressObserver);
    d->widget->interactor()->RemoveObserver(d->releaseObserver);
    delete d->widget;
  }
}

QWidget* ScatterPlotView::widget() const
{
  return d->widget;
}

void ScatterPlotView::accept(DataViewVisitorInterface& visitor)
{
  visitor.visit(boost::dynamic_pointer_cast<ScatterPlot2DInterface>(shared_from_this()));
}

std::string ScatterPlotView::selectionSummary() const
{
  return std::to_string(highlightedPoints()) + " highlighted points";
}

void ScatterPlotView::suspend()
{
  d->connections.block();
  d->synchronizer->suspend();
  d->legend->suspend();
}

void ScatterPlotView::resume()
{
  d->connections.unblock();
  d->synchronizer->resume();
  d->legend->resume();
  d->updatePoints();
  refresh();
}

void ScatterPlotView::refresh()
{
  if (d->pendingFit && d->widget && d->widget->isVisible())
  {
    d->pendingFit = false;
    fitToData();
    return;
  }
  d->chart->Update();
  d->render();
}

std::vector<SettingsSection> ScatterPlotView::settingsSections(PropertyEditors& editors)
{
  auto* chart = new QWidget();
  auto* form = new QFormLayout(chart);
  form->addRow("X", editors.variableChooser(d->x, true, false));
  form->addRow("Y", editors.variableChooser(d->y, true, false));
  form->addRow("Colour", editors.variableChooser(d->color, true, true));
  form->addRow(editors.axisEditor("X axis", *d->xAxis));
  form->addRow(editors.axisEditor("Y axis", *d->yAxis));
  return { { title(), chart }, { "Colour legend", editors.colorLegendEditor(*d->legend) } };
}

boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> ScatterPlotView::xVariable() const
{
  return d->x;
}

boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> ScatterPlotView::yVariable() const
{
  return d->y;
}

boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> ScatterPlotView::colorVariable() const
{
  return d->color;
}

AxisDetailsInterface& ScatterPlotView::xAxis() const
{
  return *d->xAxis;
}

AxisDetailsInterface& ScatterPlotView::yAxis() const
{
  return *d->yAxis;
}

ColorLegend& ScatterPlotView::colorLegend() const
{
  return *d->legend;
}

void ScatterPlotView::fitToData()
{
  if (!d->widget || !d->widget->isVisible())
  {
    d->pendingFit = true;
  }
  vtkChartUtils::fitData(*d->chart, *this);
}

vtkPlotPoints& ScatterPlotView::points() const
{
  return *d->points;
}

int ScatterPlotView::highlightedPoints() const
{
  vtkIdTypeArray* selection = d->points->GetSelection();
  return selection ? static_cast<int>(selection->GetNumberOfTuples()) : 0;
}

bool ScatterPlotView::caseIDAtPoint(unsigned long long& caseID)
{
  vtkTable* table = d->points->GetInput();
  if (!table || table->GetNumberOfColumns() == 0 || table->GetNumberOfRows() == 0)
  {
    return false;
  }
  // The pick box: 5 pixels around the click, in the plot's (shifted and scaled) coordinates.
  const ChartXYLocationTransformer transformer(d->chart);
  const int tolerance = 5;
  const vtkVector2f low = transformer.getWorldCoordinatesFromPixelLocation(
    { d->clickPosition[0] - tolerance, d->clickPosition[1] - tolerance });
  const vtkVector2f high = transformer.getWorldCoordinatesFromPixelLocation(
    { d->clickPosition[0] + tolerance, d->clickPosition[1] + tolerance });
  const vtkRectd shiftScale = d->points->GetShiftScale();
  const auto scaled = [&](const vtkVector2f& p)
  {
    return vtkVector2f(static_cast<float>((p.GetX() + shiftScale.GetX()) * shiftScale.GetWidth()),
                       static_cast<float>((p.GetY() + shiftScale.GetY()) * shiftScale.GetHeight()));
  };
  return vtkChartUtils::caseIDAtPoint(
    *d->points, *table->GetColumn(0), scaled(low), scaled(high), caseID);
}

} // namespace explorer
