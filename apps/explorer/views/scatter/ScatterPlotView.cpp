#include "views/scatter/ScatterPlotView.h"

#include "CaseKeys.h"
#include "MasterSelection.h"
#include "PropertyEditors.h"
#include "views/scatter/ChartClicks.h"
#include "views/scatter/ScatterPlotModel.h"
#include "views/scatter/ScatterPlotScene.h"
#include "views/scatter/ScatterPlotSettings.h"

#include "analyzer_common/DeleteSignaler.h"
#include "analyzer_common/GenericUndoCommand.h"
#include "analyzer_common/UndoStack.h"
#include "charts/AxisDetailsCharts.h"
#include "charts/ChartXY.h"
#include "charts/ConstraintsRegionPlot.h"
#include "charts/vtkChartUtils.h"
#include "charts/vtkDensityPlotPoints.h"
#include "colorlegend/ColorLegend.h"
#include "colorlegend/NiceLabelsColorBarWidget.h"
#include "common/ScopedGuards.h"
#include "common_vtk/vtkPxCommandProxy.h"
#include "datamanagement/Project.h"
#include "datapipeline/DataPipelineManager.h"
#include "dataviews/PlotSelectionModel.h"
#include "properties/Property.h"
#include "properties/UndoablePropertyProxy.h"
#include "properties/VTKChartsMouseModeProperty.h"
#include "serialize/Serializer.h"

#include <QVTKOpenGLNativeWidget.h>
#include <boost/make_shared.hpp>
#include <vtkAxis.h>
#include <vtkCommand.h>
#include <vtkDoubleArray.h>
#include <vtkIdTypeArray.h>
#include <vtkTable.h>

#include <array>
#include <optional>

namespace explorer
{

namespace
{

using VariableProxy = plexa::UndoablePropertyProxy<WeakPtr<Variable>>;

} // namespace

struct ScatterPlotView::Impl
{
  // Steps of the undo history this view made do nothing once it is gone.
  DeleteSignaler undoOwner;
  std::shared_ptr<const Project> project;
  std::shared_ptr<const CaseKeys> keys;
  // Owned by the view (its widget); the scene draws into it.
  QVTKOpenGLNativeWidget* widget = nullptr;
  std::unique_ptr<ScatterPlotScene> scene;
  std::unique_ptr<ScatterPlotModel> model;
  std::unique_ptr<ScatterPlotSettings> settings;
  boost::shared_ptr<VariableProxy> x;
  boost::shared_ptr<VariableProxy> y;
  boost::shared_ptr<VariableProxy> color;
  // Whether the legend is drawn: while the points are coloured.
  boost::shared_ptr<plexa::Property<bool>> coloured;
  std::unique_ptr<ColorLegend> legend;
  std::unique_ptr<VTKChartsMouseModeProperty> chartMouseMode;
  boost::shared_ptr<MasterSelection> master;
  // Hears the chart's picks while the view is live.
  vtkSmartPointer<vtkPxCommandProxy> picks;
  std::unique_ptr<ChartClicks> clicks;
  std::string notes;
  std::string legendNote;
  // Set while the chart fits itself: refresh() then updates it without drawing, since the fit
  // goes on to widen the range and draws once at the end.
  bool fitting = false;
  // The range an axis had before it turned logarithmic (by X, then Y), put back when it turns
  // linear again, by hand or by undo: the step undoes whole.
  std::array<std::optional<std::pair<double, double>>, 2> linearRange;
  // A fit asked for before the widget could draw: the chart learns its bounds only while it
  // paints, so the fit is made again on the first refresh once the widget is shown.
  bool pendingFit = false;

  void updatePoints()
  {
    const vtkSmartPointer<vtkTable> table = model->update();
    scene->showPoints(table, model->xColumn(), model->yColumn(), settings->drawing()->value());
    if (table && x->value().lock().isNull())
      scene->chart()->GetAxis(vtkAxis::BOTTOM)->SetTitle(ScatterPlotModel::caseOrder);
    if (table)
      scene->points()->SelectColorArray(color->value().lock().name());
    selectCases(*master->cases());
    showSelection();
    updateNotes();
  }

  // The rows of the selected cases become the plot's selection. The plot's rows carry case keys
  // (see CaseKeys); the model turns them into case ids and back.
  void selectCases(const MasterSelection::Cases& ids) const
  {
    const std::vector<int> rows = model->rowsOfCases(ids);
    auto selection = vtkSmartPointer<vtkIdTypeArray>::New();
    selection->SetNumberOfValues(static_cast<vtkIdType>(rows.size()));
    std::copy(rows.begin(), rows.end(), selection->GetPointer(0));
    scene->points()->SetSelection(selection);
  }

  // What the chart picked (a click on a point, a rubber band) goes to the master, whose change
  // shows it; a pick the master does not take is undone by showing the master's again.
  void picked()
  {
    vtkIdTypeArray* rows = scene->points()->GetSelection();
    const bool control = PlotSelectionModel::modifierKeyIsDown(*widget->interactor());
    if (!master->pick(rows ? model->caseIdsOfRows(*rows) : MasterSelection::Cases(), control))
    {
      selectCases(*master->cases());
      showSelection();
      scene->scheduleRender();
    }
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
    legendNote =
      grey == 0 ? std::string()
                : "grey: no value\n(" + std::to_string(grey) + (grey == 1 ? " case)" : " cases)");
    scene->setNotes(notes, legendNote);
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

  d->settings = std::make_unique<ScatterPlotSettings>(chart, d->scene->points(), *d->project);
  d->x = d->settings->x();
  d->y = d->settings->y();
  d->color = d->settings->colour();
  d->model =
    std::make_unique<ScatterPlotModel>(pipeline, d->project, d->keys, d->x, d->y, d->color);
  d->scene->setCaseNames([impl](long long key, unsigned long long& caseId)
                         { return impl->model->caseOfKey(key, caseId); });

  d->coloured = boost::make_shared<plexa::Property<bool>>(!d->color->value().lock().isNull());
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
  AxisDetailsCharts& xAxis = d->settings->xAxis();
  AxisDetailsCharts& yAxis = d->settings->yAxis();
  d->scene->placeCustomTicks(xAxis, yAxis);

  d->chartMouseMode = std::make_unique<VTKChartsMouseModeProperty>(d->scene->chart());
  d->chartMouseMode->setValue(mouseMode()->value());
  connections().add(mouseMode()->connectSignalValueChanged(
    [impl](const MouseMode& mode) { impl->chartMouseMode->setValue(mode); }));

  d->master = context.selection;
  d->picks = vtkPxCommandProxy::New([impl] { impl->picked(); });
  chart.AddObserver(vtkCommand::SelectionChangedEvent, d->picks);
  // What the master selects, the view shows: so also the cases a pick toggled or added.
  connections().add(context.selection->connectCasesChanged(
    [impl](const MasterSelection::SharedCases& ids)
    {
      impl->selectCases(*ids);
      impl->showSelection();
      impl->scene->render();
    }));

  d->clicks = std::make_unique<ChartClicks>(
    *d->widget->interactor(),
    chart,
    *d->widget,
    [this] { return mouseMode()->value(); },
    [this](int, int)
    {
      unsigned long long id = 0;
      if (caseIDAtPoint(id))
        adjustSelectionForMouseClickAtPoint();
    },
    [impl] { impl->scene->render(); });

  const auto replot = [this]
  {
    d->updatePoints();
    refresh();
  };
  // A new variable on one axis fits that axis; the other keeps the range it has.
  const auto refit = [this](int axis)
  {
    return
      [this, axis, last = std::make_shared<WeakPtr<Variable>>()](const WeakPtr<Variable>& variable)
    {
      // An undoable setting reports one change twice: the points are read once.
      if (variable == *last)
        return;
      *last = variable;
      d->updatePoints();
      fitAxis(axis);
    };
  };
  connections().add(pipeline.connectSignalPipelineChanged(replot));
  connections().add(d->x->connectSignalValueChanged(refit(vtkAxis::BOTTOM)));
  connections().add(d->y->connectSignalValueChanged(refit(vtkAxis::LEFT)));
  connections().add(d->color->connectSignalValueChanged(
    [impl, replot, last = std::make_shared<WeakPtr<Variable>>()](const WeakPtr<Variable>& colour)
    {
      // Reported twice, as the axes' variables are: coloured once.
      if (colour == *last)
        return;
      *last = colour;
      impl->coloured->setValue(!colour.lock().isNull());
      impl->scene->setLegendShown(impl->coloured->value());
      replot();
    }));
  connections().add(
    d->legend->show()->connectSignalValueChanged([replot](const bool&) { replot(); }));
  // A logarithmic axis: VTK places the points by their logarithm; the model leaves out what
  // cannot be placed, and the axis is fitted again.
  for (const auto& [log, axis] : { std::make_pair(d->settings->logX(), int(vtkAxis::BOTTOM)),
                                   std::make_pair(d->settings->logY(), int(vtkAxis::LEFT)) })
    connections().add(log->connectSignalValueChanged(
      [this, impl, which = axis](const bool& on)
      {
        impl->model->setLogAxes(impl->settings->logX()->value(), impl->settings->logY()->value());
        impl->updatePoints();
        // An axis turns logarithmic only over a range above zero: the values' own.
        vtkAxis& turned = *impl->scene->chart()->GetAxis(which);
        // A scale set again as it is (settings loaded, say) leaves the range where it is.
        if (on == turned.GetLogScale())
          return;
        auto& linear = impl->linearRange[which == vtkAxis::BOTTOM ? 0 : 1];
        if (on)
          linear = std::make_pair(turned.GetUnscaledMinimum(), turned.GetUnscaledMaximum());
        vtkTable* table = impl->model->table();
        auto* values = vtkDoubleArray::SafeDownCast(
          table ? table->GetColumnByName(
                    (which == vtkAxis::BOTTOM ? impl->model->xColumn() : impl->model->yColumn())
                      .c_str())
                : nullptr);
        if (on && values && values->GetNumberOfTuples() > 0)
        {
          double range[2];
          values->GetRange(range);
          turned.SetUnscaledRange(range[0], range[1]);
        }
        else if (on)
          turned.SetUnscaledRange(1, 10);
        turned.SetLogScale(on);
        impl->updatePoints();
        if (on || !linear)
        {
          fitAxis(which);
          return;
        }
        // Put back through the axis's settings, which the field and the saved settings show; not
        // a step of its own: it belongs to the change of scale.
        const UndoStack::SuspendUndoRecording unrecorded;
        AxisDetailsCharts& details =
          which == vtkAxis::BOTTOM ? impl->settings->xAxis() : impl->settings->yAxis();
        details.min()->setValue(linear->first);
        details.max()->setValue(linear->second);
        linear.reset();
        impl->scene->scheduleRender();
      }));
  connections().add(d->settings->drawing()->connectSignalValueChanged(
    [impl](const Drawing&)
    {
      impl->updatePoints();
      impl->scene->scheduleRender();
    }));
  connections().add(d->settings->pointOpacity()->connectSignalValueChanged(
    [impl](const double& opacity)
    {
      impl->scene->setPointOpacity(opacity);
      impl->scene->scheduleRender();
    }));
  // Settings typed in the panel show at once, not when the mouse next enters the chart.
  std::vector<const plexa::PropertyItemInterface*> drawn = d->settings->axisSettings();
  drawn.insert(
    drawn.end(),
    { d->legend->rangeType().get(), d->legend->range().get(), d->legend->numLabels().get() });
  for (const plexa::PropertyItemInterface* setting : drawn)
    connections().add(
      setting->connectSignalPropertyChanged([impl] { impl->scene->scheduleRender(); }));
  // A range set by the user, or read from saved settings, is kept: no fit made later for a view
  // that was not yet shown takes its place.
  for (const plexa::PropertyItemInterface* range :
       { xAxis.min().get(), xAxis.max().get(), yAxis.min().get(), yAxis.max().get() })
    connections().add(range->connectSignalPropertyChanged(
      [impl]
      {
        if (!impl->fitting)
          impl->pendingFit = false;
      }));

  for (const auto& [element, variable] : d->settings->savedVariables())
    saveVariableSetting(element, variable, *d->project);
  saveSetting(d->legend->serializer());
  for (const auto& [setting, expected] : d->settings->savedSettings())
    saveSetting(setting, expected);
  saveSetting(boost::make_shared<LegendPlacementSerializer>(
    [impl](double* placement) { return impl->scene->legendPlacement(placement); },
    [impl](const double* placement) { impl->scene->placeLegend(placement); }));
  // Moving the legend is a step of the history like any other setting's edit.
  d->scene->onLegendMoved(
    [impl](const double* before, const double* after)
    {
      using Corners = std::optional<std::array<double, 4>>;
      const auto corners = [](const double* placement)
      {
        return placement ? Corners(std::array<double, 4>{
                             placement[0], placement[1], placement[2], placement[3] })
                         : Corners();
      };
      const auto place = [impl](const Corners& at)
      { impl->scene->placeLegend(at ? at->data() : nullptr); };
      UndoStack().push(new GenericUndoCommand([place, at = corners(after)] { place(at); },
                                              [place, at = corners(before)] { place(at); },
                                              impl->undoOwner,
                                              "Move Color Legend",
                                              -1,
                                              nullptr));
    });

  d->updatePoints();
  fitToData();
}

ScatterPlotView::~ScatterPlotView()
{
  // The connections and the parts that observe the chart's interactor go before the scene.
  connections().clear();
  d->clicks.reset();
  d->scene->chart()->RemoveObserver(d->picks);
  d->legend.reset();
}

std::string ScatterPlotView::selectionSummary() const
{
  return std::to_string(highlightedPoints()) + " highlighted points";
}

void ScatterPlotView::suspendParts()
{
  d->scene->chart()->RemoveObserver(d->picks);
  d->legend->suspend();
}

void ScatterPlotView::resumeParts()
{
  d->scene->chart()->AddObserver(vtkCommand::SelectionChangedEvent, d->picks);
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
    d->scene->scheduleRender();
}

std::vector<SettingsSection> ScatterPlotView::settingsSections(PropertyEditors& editors)
{
  return { { title(), d->settings->editor(editors) },
           { "Colour legend", editors.colorLegendEditor(*d->legend) } };
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
  return d->settings->xAxis();
}

AxisDetailsInterface& ScatterPlotView::yAxis() const
{
  return d->settings->yAxis();
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
    for (const auto& [axis, variable] : { std::make_pair(int(vtkAxis::BOTTOM), d->x.get()),
                                          std::make_pair(int(vtkAxis::LEFT), d->y.get()) })
      d->scene->widenToPoints(axis, d->model->halfGap(variable->value().lock()));
  }
  d->scene->scheduleRender();
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
    d->scene->widenToPoints(
      which, d->model->halfGap((which == vtkAxis::BOTTOM ? d->x : d->y)->value().lock()));
  }
  // Drawn once control returns to the event loop, however many changes asked for it meanwhile.
  d->scene->scheduleRender();
}

vtkPlotPoints& ScatterPlotView::points() const
{
  return *d->scene->points();
}

long long ScatterPlotView::rowOfCase(unsigned long long caseId) const
{
  return d->model->rowOfCase(caseId);
}

boost::shared_ptr<plexa::PropertyAbstract<bool>> ScatterPlotView::logX() const
{
  return d->settings->logX();
}

boost::shared_ptr<plexa::PropertyAbstract<bool>> ScatterPlotView::logY() const
{
  return d->settings->logY();
}

boost::shared_ptr<plexa::PropertyAbstract<Drawing>> ScatterPlotView::drawing() const
{
  return d->settings->drawing();
}

boost::shared_ptr<plexa::PropertyAbstract<double>> ScatterPlotView::pointOpacity() const
{
  return d->settings->pointOpacity();
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
  unsigned long long key = 0;
  return d->clicks->pointAtLastRelease(*d->scene->points(), key) &&
         d->model->caseOfKey(static_cast<long long>(key), caseID);
}

} // namespace explorer
