#include "views/scatter/ScatterPlotView.h"

#include "CaseKeys.h"
#include "KeyedSelectionModel.h"
#include "PropertyEditors.h"
#include "StudyDefaults.h"
#include "views/scatter/ScatterPlotModel.h"
#include "views/scatter/ScatterPlotScene.h"
#include "views/scatter/ScatterPlotSettings.h"

#include "analyzer_common/SelectionModelInterface.h"
#include "charts/AxisDetailsCharts.h"
#include "charts/ChartXY.h"
#include "charts/ChartXYLocationTransformer.h"
#include "charts/ConstraintsRegionPlot.h"
#include "charts/vtkChartUtils.h"
#include "charts/vtkDensityPlotPoints.h"
#include "colorlegend/ColorLegend.h"
#include "colorlegend/NiceLabelsColorBarWidget.h"
#include "common/ScopedGuards.h"
#include "common_vtk/vtkPxCommandProxy.h"
#include "datamanagement/Project.h"
#include "datapipeline/DataPipelineManager.h"
#include "dataviews/DataView2DSelectionSynchronizer.h"
#include "dataviews/PlotSelectionModel.h"
#include "properties/BoundedValueValidator.h"
#include "properties/ColorVariableProperty.h"
#include "properties/Property.h"
#include "properties/SpatialVariableProperty2D.h"
#include "properties/UndoablePropertyProxy.h"
#include "properties/VTKChartsMouseModeProperty.h"
#include "serialization/GenericSerializer.h"
#include "serialize/Serializer.h"

#include <QFormLayout>
#include <QLineEdit>
#include <QTimer>
#include <QVTKOpenGLNativeWidget.h>
#include <boost/make_shared.hpp>
#include <vtkAxis.h>
#include <vtkCommand.h>
#include <vtkDoubleArray.h>
#include <vtkIdTypeArray.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkTable.h>

#include <array>
#include <cmath>
#include <cstring>

namespace explorer
{

namespace
{

using VariableProxy = plexa::UndoablePropertyProxy<WeakPtr<Variable>>;

} // namespace

struct ScatterPlotView::Impl
{
  std::shared_ptr<const Project> project;
  std::shared_ptr<const CaseKeys> keys;
  // Owned by the view (its widget); the scene draws into it.
  QVTKOpenGLNativeWidget* widget = nullptr;
  std::unique_ptr<ScatterPlotScene> scene;
  std::unique_ptr<ScatterPlotModel> model;
  boost::shared_ptr<plexa::UndoablePropertyProxy<Drawing>> drawing;
  boost::shared_ptr<plexa::UndoablePropertyProxy<double>> pointOpacity;
  boost::shared_ptr<SpatialVariableProperty2D> xTarget;
  boost::shared_ptr<SpatialVariableProperty2D> yTarget;
  boost::shared_ptr<ColorVariableProperty<vtkPlotPoints>> colorTarget;
  boost::shared_ptr<VariableProxy> x;
  boost::shared_ptr<VariableProxy> y;
  boost::shared_ptr<VariableProxy> color;
  // Whether the legend is drawn: while the points are coloured.
  boost::shared_ptr<plexa::Property<bool>> coloured;
  std::unique_ptr<AxisDetailsCharts> xAxis;
  std::unique_ptr<AxisDetailsCharts> yAxis;
  std::unique_ptr<ColorLegend> legend;
  std::unique_ptr<VTKChartsMouseModeProperty> chartMouseMode;
  // The plot's rows carry case keys; the plot selects through them (see CaseKeys).
  boost::shared_ptr<KeyedSelectionModel> keyedSelection;
  boost::shared_ptr<PlotSelectionModel> plotSelection;
  std::unique_ptr<DataView2DSelectionSynchronizer> synchronizer;
  vtkSmartPointer<vtkPxCommandProxy> pressObserver;
  vtkSmartPointer<vtkPxCommandProxy> releaseObserver;
  std::string notes;
  std::string legendNote;
  // Set while the chart fits itself: refresh() then updates it without drawing, since the fit
  // goes on to widen the range and draws once at the end.
  bool fitting = false;
  // A fit asked for before the widget could draw: the chart learns its bounds only while it
  // paints, so the fit is made again on the first refresh once the widget is shown.
  bool pendingFit = false;
  int pressPosition[2] = { 0, 0 };
  int clickPosition[2] = { 0, 0 };
  // The axes' ranges when the left button went down: x from, x to, y from, y to.
  double rangesAtPress[4] = { 0, 0, 0, 0 };

  ~Impl()
  {
    if (widget)
    {
      widget->interactor()->RemoveObserver(pressObserver);
      widget->interactor()->RemoveObserver(releaseObserver);
    }
  }

  void updatePoints()
  {
    const vtkSmartPointer<vtkTable> table = model->update();
    scene->showPoints(table, model->xColumn(), model->yColumn(), drawing->value());
    if (table && x->value().lock().isNull())
      scene->chart()->GetAxis(vtkAxis::BOTTOM)->SetTitle(ScatterPlotModel::caseOrder);
    if (table)
      colorTarget->assignColorArray(color->value().lock().name());
    synchronizer->updateChartSelections();
    showSelection();
    updateNotes();
  }

  void showSelection()
  {
    const std::string colour = color->value().lock().name();
    scene->showSelection(legend->show()->value() ? colour : std::string());
  }

  void updateNotes()
  {
    notes = model->leftOutNote();
    const std::size_t grey =
      coloured->value() && legend->show()->value() ? model->withoutColour() : 0;
    legendNote = grey == 0 ? std::string()
                           : "grey: no value\n(" + std::to_string(grey) +
                               (grey == 1 ? " case)" : " cases)");
    scene->setNotes(notes, legendNote);
  }

  // The fitted range ends on the outermost points, which would be cut in half: widen it by a few
  // percent, by at least a marker, and for a discrete variable by half its step.
  void widenToPoints(int which)
  {
    vtkAxis* axis = scene->chart()->GetAxis(which);
    std::array<double, 4> bounds = { 0, 0, 0, 0 };
    vtkDensityPlotPoints& points = *scene->points();
    const bool plotted =
      points.GetVisible() && points.GetInput() && points.GetInput()->GetNumberOfRows() > 0;
    if (plotted)
      points.GetBounds(bounds.data());
    const std::size_t i = which == vtkAxis::BOTTOM ? 0 : 1;
    // From the points themselves: the fitted range has already been rounded outwards.
    const double min = plotted ? bounds[2 * i] : axis->GetMinimum();
    const double max = plotted ? bounds[2 * i + 1] : axis->GetMaximum();
    const float* start = axis->GetPoint1();
    const float* end = axis->GetPoint2();
    const double pixels = std::hypot(end[0] - start[0], end[1] - start[1]);
    const double marker = pixels > 0 ? (max - min) * points.GetMarkerSize() / pixels : 0;
    const Variable variable = (which == vtkAxis::BOTTOM ? x : y)->value().lock();
    const double margin = std::max({ 0.04 * (max - min), marker, model->halfGap(variable) });
    double from = 0;
    double to = 0;
    if (ScatterPlotModel::axisRange(min, max, margin, from, to))
      axis->SetRange(from, to);
  }

  // A custom grid spacing puts a tick on every multiple of the spacing inside the range. The axis
  // settings start the ticks at the multiple nearest zero from the minimum, which can lie below
  // the range and leave it without a label (198 to 242 by 50), and can read "-0"; the ticks are
  // placed again here before each draw.
  static void placeCustomTicks(AxisDetailsInterface& details, vtkAxis& axis)
  {
    if (!details.useCustomGridSpacing()->value())
      return;
    const std::vector<double> ticks = ScatterPlotModel::customTicks(
      axis.GetMinimum(), axis.GetMaximum(), details.gridSpacing()->value());
    // Compared bit for bit: -0 equals 0 as a number.
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
};

ScatterPlotView::ScatterPlotView(const ViewContext& context)
  : ViewOfKind(std::make_unique<Serializer>("ScatterPlot2D"), context.selection)
  , d(std::make_unique<Impl>())
{
  const DataPipelineManagerInterface& pipeline = *context.pipeline;
  d->project = context.project;
  d->keys = context.keys;
  d->widget = new QVTKOpenGLNativeWidget();
  d->widget->setObjectName("scatterView");
  setWidget(d->widget);
  d->scene = std::make_unique<ScatterPlotScene>(*d->widget);
  Impl* impl = d.get();
  ChartXY& chart = *d->scene->chart();

  d->xTarget = boost::make_shared<SpatialVariableProperty2D>(chart.GetAxis(vtkAxis::BOTTOM), 0);
  d->yTarget = boost::make_shared<SpatialVariableProperty2D>(chart.GetAxis(vtkAxis::LEFT), 1);
  d->colorTarget = boost::make_shared<ColorVariableProperty<vtkPlotPoints>>(d->scene->points());
  const defaults::ScatterChoice first = defaults::scatter(*d->project);
  d->xTarget->setValue(first.x);
  d->yTarget->setValue(first.y);
  d->colorTarget->setValue(first.colour);
  d->x = boost::make_shared<VariableProxy>("X Variable", d->xTarget);
  d->y = boost::make_shared<VariableProxy>("Y Variable", d->yTarget);
  d->color = boost::make_shared<VariableProxy>("Color Variable", d->colorTarget);
  d->drawing = boost::make_shared<plexa::UndoablePropertyProxy<Drawing>>(
    "Points", boost::make_shared<plexa::Property<Drawing>>(Drawing::Automatic));
  d->pointOpacity = boost::make_shared<plexa::UndoablePropertyProxy<double>>(
    "Point Opacity",
    boost::make_shared<plexa::Property<double>>(
      1.0,
      boost::make_shared<plexa::BoundedValueValidator<double>>(
        0.05,
        plexa::BoundedValueValidator<double>::Inclusive,
        1.0,
        plexa::BoundedValueValidator<double>::Inclusive)));
  d->model = std::make_unique<ScatterPlotModel>(pipeline, d->project, d->keys, d->x, d->y, d->color);
  d->scene->setCaseNames([impl](long long key, unsigned long long& caseId)
                         { return impl->model->caseOfKey(key, caseId); });

  d->coloured = boost::make_shared<plexa::Property<bool>>(!first.colour.lock().isNull());
  d->scene->setLegendShown(d->coloured->value());
  d->legend = std::make_unique<ColorLegend>(d->color,
                                            d->coloured,
                                            pipeline,
                                            d->scene->lookupTable(),
                                            *d->widget->interactor(),
                                            d->scene->legendBar());
  d->legend->show()->setValue(true);
  // The region outside the range filters is shaded behind the points.
  const auto region = ConstraintsRegionPlot::New(pipeline, d->x, d->y, d->scene->points());
  chart.AddPlot(region);
  chart.StackPlotUnder(region, d->scene->points());
  d->xAxis = std::make_unique<AxisDetailsCharts>("X", *d->x, chart.GetAxis(vtkAxis::BOTTOM));
  d->yAxis = std::make_unique<AxisDetailsCharts>("Y", *d->y, chart.GetAxis(vtkAxis::LEFT));
  d->scene->setBeforeDraw(
    [impl]
    {
      ChartXY& shown = *impl->scene->chart();
      Impl::placeCustomTicks(*impl->xAxis, *shown.GetAxis(vtkAxis::BOTTOM));
      Impl::placeCustomTicks(*impl->yAxis, *shown.GetAxis(vtkAxis::LEFT));
    });

  d->chartMouseMode = std::make_unique<VTKChartsMouseModeProperty>(d->scene->chart());
  d->chartMouseMode->setValue(mouseMode()->value());
  connections().add(mouseMode()->connectSignalValueChanged(
    [impl](const MouseMode& mode) { impl->chartMouseMode->setValue(mode); }));

  d->keyedSelection = boost::make_shared<KeyedSelectionModel>(context.selection, d->keys);
  d->plotSelection =
    boost::make_shared<PlotSelectionModel>(d->widget->interactor(), d->keyedSelection);
  d->synchronizer = std::make_unique<DataView2DSelectionSynchronizer>(
    d->scene->chart(), d->widget->interactor(), d->plotSelection);
  d->synchronizer->setPlotsToSynchronize({ d->scene->points() });
  connections().add(d->synchronizer->connectSignalSelectionsUpdated(
    [impl]
    {
      impl->showSelection();
      impl->scene->render();
    }));

  // A click without a drag outside Select mode picks the case under the mouse; in Select mode
  // the chart's own click selection does it. Outside Select mode a click on empty space keeps
  // the selection: the user meant to pan or zoom.
  d->pressObserver = vtkPxCommandProxy::New(
    [impl]
    {
      impl->widget->interactor()->GetEventPosition(impl->pressPosition);
      for (int i = 0; i < 2; ++i)
        impl->scene->chart()
          ->GetAxis(i == 0 ? vtkAxis::BOTTOM : vtkAxis::LEFT)
          ->GetRange(impl->rangesAtPress + 2 * i);
    });
  d->releaseObserver = vtkPxCommandProxy::New(
    [this, impl]
    {
      const int* at = impl->widget->interactor()->GetEventPosition();
      const bool clicked = std::abs(at[0] - impl->pressPosition[0]) < 3 &&
                           std::abs(at[1] - impl->pressPosition[1]) < 3;
      impl->clickPosition[0] = at[0];
      impl->clickPosition[1] = at[1];
      if (!clicked || mouseMode()->value() == Select)
        return;
      unsigned long long id = 0;
      if (caseIDAtPoint(id))
        adjustSelectionForMouseClickAtPoint();
      // The chart zooms into a box of a few pixels around a click, a hand's tremor between press
      // and release: a click is no zoom, so the axes get their ranges back once the chart has
      // taken the release (this observer runs before it).
      if (mouseMode()->value() == Zoom)
        QTimer::singleShot(
          0,
          impl->widget,
          [impl, ranges = std::vector<double>(impl->rangesAtPress, impl->rangesAtPress + 4)]
          {
            for (int i = 0; i < 2; ++i)
              impl->scene->chart()
                ->GetAxis(i == 0 ? vtkAxis::BOTTOM : vtkAxis::LEFT)
                ->SetRange(ranges[2 * i], ranges[2 * i + 1]);
            impl->scene->chart()->Update();
            impl->scene->render();
          });
    });
  vtkRenderWindowInteractor* mouse = d->widget->interactor();
  mouse->AddObserver(vtkCommand::LeftButtonPressEvent, d->pressObserver, 1.0);
  mouse->AddObserver(vtkCommand::LeftButtonReleaseEvent, d->releaseObserver, 1.0);

  const auto replot = [this]
  {
    d->updatePoints();
    refresh();
  };
  // A new variable on one axis fits that axis; the other keeps the range it has.
  const auto refit = [this](int axis)
  {
    return [this, axis](const WeakPtr<Variable>&)
    {
      d->updatePoints();
      fitAxis(axis);
    };
  };
  connections().add(pipeline.connectSignalPipelineChanged(replot));
  connections().add(d->x->connectSignalValueChanged(refit(vtkAxis::BOTTOM)));
  connections().add(d->y->connectSignalValueChanged(refit(vtkAxis::LEFT)));
  connections().add(d->color->connectSignalValueChanged(
    [impl, replot](const WeakPtr<Variable>& colour)
    {
      impl->coloured->setValue(!colour.lock().isNull());
      impl->scene->setLegendShown(impl->coloured->value());
      replot();
    }));
  connections().add(
    d->legend->show()->connectSignalValueChanged([replot](const bool&) { replot(); }));
  connections().add(d->drawing->connectSignalValueChanged(
    [impl](const Drawing&)
    {
      impl->updatePoints();
      impl->scene->scheduleRender();
    }));
  connections().add(d->pointOpacity->connectSignalValueChanged(
    [impl](const double& opacity)
    {
      impl->scene->setPointOpacity(opacity);
      impl->scene->scheduleRender();
    }));
  // Settings typed in the panel show at once, not when the mouse next enters the chart.
  for (const plexa::PropertyItemInterface* setting :
       std::initializer_list<const plexa::PropertyItemInterface*>{
         d->xAxis->min().get(),
         d->xAxis->max().get(),
         d->xAxis->useCustomGridSpacing().get(),
         d->xAxis->gridSpacing().get(),
         d->yAxis->min().get(),
         d->yAxis->max().get(),
         d->yAxis->useCustomGridSpacing().get(),
         d->yAxis->gridSpacing().get(),
         d->legend->rangeType().get(),
         d->legend->range().get(),
         d->legend->numLabels().get() })
    connections().add(
      setting->connectSignalPropertyChanged([impl] { impl->scene->scheduleRender(); }));
  // A range set by the user, or read from saved settings, is kept: no fit made later for a view
  // that was not yet shown takes its place.
  for (const plexa::PropertyItemInterface* range :
       std::initializer_list<const plexa::PropertyItemInterface*>{
         d->xAxis->min().get(), d->xAxis->max().get(), d->yAxis->min().get(), d->yAxis->max().get() })
    connections().add(range->connectSignalPropertyChanged(
      [impl]
      {
        if (!impl->fitting)
          impl->pendingFit = false;
      }));

  saveVariableSetting("XVariable", d->x, *d->project);
  saveVariableSetting("YVariable", d->y, *d->project);
  saveVariableSetting("ColorVariable", d->color, *d->project);
  saveSetting(d->legend->serializer());
  saveSetting(drawing::serializer("Points", d->drawing), "automatic, marks or density");
  saveSetting(boost::make_shared<GenericSerializer<double>>("PointOpacity", d->pointOpacity),
              "a number from 0.05 to 1");
  // The range first: a custom grid spacing is checked against it.
  for (const auto& [prefix, axis] :
       { std::make_pair("X", d->xAxis.get()), std::make_pair("Y", d->yAxis.get()) })
  {
    const std::string name = prefix;
    saveSetting(boost::make_shared<GenericSerializer<double>>(name + "Min", axis->min()),
                "a number");
    saveSetting(boost::make_shared<GenericSerializer<double>>(name + "Max", axis->max()),
                "a number");
    saveSetting(boost::make_shared<GridSpacingSerializer>(name + "GridSpacing", *axis), "a number");
  }
  saveSetting(boost::make_shared<LegendPlacementSerializer>(
    [impl](double* placement) { return impl->scene->legendPlacement(placement); },
    [impl](const double* placement) { impl->scene->placeLegend(placement); }));

  d->updatePoints();
  fitToData();
}

ScatterPlotView::~ScatterPlotView()
{
  // The connections and the parts that observe the chart's interactor go before the scene.
  connections().clear();
  d->synchronizer.reset();
  d->legend.reset();
}

std::string ScatterPlotView::selectionSummary() const
{
  return std::to_string(highlightedPoints()) + " highlighted points";
}

void ScatterPlotView::suspendParts()
{
  d->synchronizer->suspend();
  d->legend->suspend();
}

void ScatterPlotView::resumeParts()
{
  d->synchronizer->resume();
  d->legend->resume();
  d->updatePoints();
  refresh();
}

void ScatterPlotView::refresh()
{
  if (d->pendingFit && d->widget->isVisible())
  {
    fitToData();
    return;
  }
  d->scene->chart()->Update();
  if (!d->fitting)
    d->scene->render();
}

std::vector<SettingsSection> ScatterPlotView::settingsSections(PropertyEditors& editors)
{
  auto* chart = new QWidget();
  auto* form = new QFormLayout(chart);
  form->addRow("X", editors.variableChooser(d->x, true, "(case order)"));
  form->addRow("Y", editors.variableChooser(d->y, true, {}));
  form->addRow("Colour", editors.variableChooser(d->color, true, "(none)"));
  form->addRow("Points",
               editors.enumChooser<Drawing>(d->drawing,
                                            { { "Automatic (density above 25,000)",
                                                Drawing::Automatic },
                                              { "Markers", Drawing::Marks },
                                              { "Density", Drawing::Density } }));
  form->addRow("Point opacity", editors.numberEditor(d->pointOpacity));
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
  d->pendingFit = !d->widget->isVisible();
  {
    const ScopedValue<bool> fitting(d->fitting, true);
    vtkChartUtils::fitData(*d->scene->chart(), *this);
    d->widenToPoints(vtkAxis::BOTTOM);
    d->widenToPoints(vtkAxis::LEFT);
  }
  d->scene->render();
}

void ScatterPlotView::fitAxis(int which)
{
  if (!d->widget->isVisible())
  {
    fitToData();
    return;
  }
  {
    const ScopedValue<bool> fitting(d->fitting, true);
    vtkChartUtils::resetAxisRange(*d->scene->chart(), *d->scene->chart()->GetAxis(which), *this);
    d->widenToPoints(which);
  }
  d->scene->render();
}

vtkPlotPoints& ScatterPlotView::points() const
{
  return *d->scene->points();
}

long long ScatterPlotView::rowOfCase(unsigned long long caseId) const
{
  return d->model->rowOfCase(caseId);
}

boost::shared_ptr<plexa::PropertyAbstract<Drawing>> ScatterPlotView::drawing() const
{
  return d->drawing;
}

boost::shared_ptr<plexa::PropertyAbstract<double>> ScatterPlotView::pointOpacity() const
{
  return d->pointOpacity;
}

ChartXY& ScatterPlotView::chart() const
{
  return *d->scene->chart();
}

int ScatterPlotView::highlightedPoints() const
{
  vtkIdTypeArray* selection = d->scene->points()->GetSelection();
  return selection ? static_cast<int>(selection->GetNumberOfTuples()) : 0;
}

std::string ScatterPlotView::notes() const
{
  return d->notes;
}

std::string ScatterPlotView::legendNote() const
{
  return d->legendNote;
}

bool ScatterPlotView::caseIDAtPoint(unsigned long long& caseID)
{
  vtkDensityPlotPoints& points = *d->scene->points();
  vtkTable* table = points.GetInput();
  if (!table || table->GetNumberOfColumns() == 0 || table->GetNumberOfRows() == 0)
    return false;
  // The pick box: 5 pixels around the click, in the plot's (shifted and scaled) coordinates.
  const ChartXYLocationTransformer transformer(d->scene->chart());
  const int tolerance = 5;
  const vtkVector2f low = transformer.getWorldCoordinatesFromPixelLocation(
    { d->clickPosition[0] - tolerance, d->clickPosition[1] - tolerance });
  const vtkVector2f high = transformer.getWorldCoordinatesFromPixelLocation(
    { d->clickPosition[0] + tolerance, d->clickPosition[1] + tolerance });
  const vtkRectd shiftScale = points.GetShiftScale();
  const auto scaled = [&](const vtkVector2f& p)
  {
    return vtkVector2f(static_cast<float>((p.GetX() + shiftScale.GetX()) * shiftScale.GetWidth()),
                       static_cast<float>((p.GetY() + shiftScale.GetY()) * shiftScale.GetHeight()));
  };
  unsigned long long key = 0;
  return vtkChartUtils::caseIDAtPoint(
           points, *table->GetColumn(0), scaled(low), scaled(high), key) &&
         d->model->caseOfKey(static_cast<long long>(key), caseID);
}

} // namespace explorer
