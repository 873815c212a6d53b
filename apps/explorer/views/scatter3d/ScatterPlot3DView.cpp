#include "views/scatter3d/ScatterPlot3DView.h"

#include "ChangesWhileHidden.h"
#include "MasterSelection.h"
#include "PropertyEditors.h"
#include "StudyDefaults.h"
#include "views/scatter3d/ScatterPlot3DModel.h"
#include "views/scatter3d/ScatterPlot3DScene.h"

#include "common_vtk/vtkPxCommandProxy.h"
#include "datamanagement/Project.h"
#include "datapipeline/DataPipelineManager.h"
#include "dataviews/PlotSelectionModel.h"
#include "properties/Property.h"
#include "properties/UndoablePropertyProxy.h"
#include "serialize/Serializer.h"

#include <QFormLayout>
#include <QPointer>
#include <QVTKOpenGLNativeWidget.h>
#include <boost/make_shared.hpp>
#include <vtkCommand.h>
#include <vtkInteractorStyle.h>
#include <vtkInteractorStyleTrackballCamera.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkRenderer.h>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <cmath>
#include <utility>

namespace explorer
{

namespace
{

using VariableProxy = plexa::UndoablePropertyProxy<WeakPtr<Variable>>;

} // namespace

struct ScatterPlot3DView::Impl
{
  std::shared_ptr<const Project> project;
  DataPipelineManager& pipeline;
  boost::shared_ptr<MasterSelection> selection;
  boost::shared_ptr<PlotSelectionModel> plotSelection;
  QPointer<QVTKOpenGLNativeWidget> widget;
  std::unique_ptr<ScatterPlot3DScene> scene;
  ScatterPlot3DModel model;
  vtkSmartPointer<vtkInteractorStyleTrackballCamera> style;
  vtkSmartPointer<vtkPxCommandProxy> pressObserver;
  vtkSmartPointer<vtkPxCommandProxy> swallowKeys;
  vtkSmartPointer<vtkPxCommandProxy> startTurning;
  vtkSmartPointer<vtkPxCommandProxy> endTurning;
  std::array<boost::shared_ptr<VariableProxy>, 3> axes;
  boost::shared_ptr<VariableProxy> color;
  std::unique_ptr<ChangesWhileHidden> changes;
  int pressedAt[2] = { 0, 0 };
  bool pressed = false;
  int clickedAt[2] = { 0, 0 };

  explicit Impl(DataPipelineManager& pipeline)
    : pipeline(pipeline)
  {
  }

  // Reads the shown cases from the pipeline's output.
  void reload()
  {
    pipeline.output()->Update();
    model.reload(*pipeline.output()->GetOutput(),
                 { axes[0]->value(), axes[1]->value(), axes[2]->value() },
                 color->value());
    model.select(*selection->cases());
    std::array<std::string, 3> titles;
    for (std::size_t a = 0; a < 3; ++a)
      titles[a] = axes[a]->value().lock().name();
    const Variable colour = color->value().lock();
    scene->show(model, titles, colour.name(), colour.range());
  }

  void select(const std::vector<unsigned long long>& ids)
  {
    model.select(ids);
    scene->showSelection(model);
  }
};

ScatterPlot3DView::ScatterPlot3DView(const ViewContext& context)
  : ViewOfKind(std::make_unique<Serializer>("ScatterPlot3D"), context.selection)
  , d(std::make_unique<Impl>(*context.pipeline))
{
  d->project = context.project;
  d->selection = context.selection;
  d->widget = new QVTKOpenGLNativeWidget();
  setWidget(d->widget);
  d->widget->setObjectName("scatter3dView");
  d->scene = std::make_unique<ScatterPlot3DScene>(*d->widget);

  // As the scatter plot starts: inputs across, a result up, another as colour.
  const std::array<WeakPtr<Variable>, 4> first = defaults::scatter3D(*d->project);
  const char* names[3] = { "X Variable", "Y Variable", "Z Variable" };
  for (std::size_t a = 0; a < 3; ++a)
    d->axes[a] = boost::make_shared<VariableProxy>(
      names[a], boost::make_shared<plexa::Property<WeakPtr<Variable>>>(first[a]));
  d->color = boost::make_shared<VariableProxy>(
    "Color Variable", boost::make_shared<plexa::Property<WeakPtr<Variable>>>(first[3]));

  vtkRenderWindowInteractor* interactor = d->widget->interactor();
  d->plotSelection = boost::make_shared<PlotSelectionModel>(
    interactor, boost::make_shared<ShownViewSelection>(context.selection, *d->widget));
  d->style = vtkSmartPointer<vtkInteractorStyleTrackballCamera>::New();
  interactor->SetInteractorStyle(d->style);
  Impl* impl = d.get();
  // Turning a large cloud draws a sample of it; the whole cloud comes back when it stops.
  d->startTurning = vtkPxCommandProxy::New([impl] { impl->scene->turning(true); });
  // The interactor style's keys belong to a model viewer (wireframe, stereo, quit): none here.
  d->swallowKeys = vtkPxCommandProxy::New([impl] { impl->swallowKeys->SetAbortFlag(1); });
  for (unsigned long event :
       { vtkCommand::CharEvent, vtkCommand::KeyPressEvent, vtkCommand::KeyReleaseEvent })
    interactor->AddObserver(event, d->swallowKeys, 10.0);
  d->pressObserver = vtkPxCommandProxy::New(
    [impl]
    {
      impl->widget->interactor()->GetEventPosition(impl->pressedAt);
      impl->pressed = true;
    });
  interactor->AddObserver(vtkCommand::LeftButtonPressEvent, d->pressObserver, 10.0);
  // The style takes the mouse from a press to its release and ends its interaction there: a
  // release where the press was is a click, which selects.
  d->endTurning = vtkPxCommandProxy::New(
    [this, impl]
    {
      impl->scene->turning(false);
      impl->scene->scheduleRender();
      vtkRenderWindowInteractor* events = impl->widget->interactor();
      const int* at = events->GetEventPosition();
      // The wheel ends an interaction too, without a press.
      const bool pressed = std::exchange(impl->pressed, false);
      if (!pressed || impl->style->GetState() != VTKIS_NONE ||
          std::abs(at[0] - impl->pressedAt[0]) >= 3 || std::abs(at[1] - impl->pressedAt[1]) >= 3)
        return;
      impl->clickedAt[0] = at[0];
      impl->clickedAt[1] = at[1];
      if (!events->GetControlKey())
      {
        adjustSelectionForMouseClickAtPoint();
        return;
      }
      // With Control down the plot's selection model toggles the case in the master's.
      const long long point = impl->model.pointAt(impl->scene->projection(), at[0], at[1]);
      if (point >= 0)
        impl->plotSelection->setSelection(
          { impl->model.caseIds()[static_cast<std::size_t>(point)] });
    });
  d->style->AddObserver(vtkCommand::StartInteractionEvent, d->startTurning);
  d->style->AddObserver(vtkCommand::EndInteractionEvent, d->endTurning);

  d->changes = std::make_unique<ChangesWhileHidden>(
    *d->widget,
    *context.selection,
    ChangesWhileHidden::Steps{ [impl] { impl->reload(); },
                               [impl](const auto& ids) { impl->select(ids); },
                               [impl] { impl->scene->scheduleRender(); } });
  const auto reload = [impl] { impl->changes->changed(true); };
  connections().add(context.pipeline->connectSignalPipelineChanged(reload));
  for (const auto& property : { d->axes[0], d->axes[1], d->axes[2], d->color })
    connections().add(property->connectSignalPropertyChanged(reload));
  connections().add(context.selection->connectCasesChanged(
    [impl](const MasterSelection::SharedCases& ids) { impl->changes->selectionChanged(*ids); }));

  saveVariableSetting("XVariable", d->axes[0], *d->project);
  saveVariableSetting("YVariable", d->axes[1], *d->project);
  saveVariableSetting("ZVariable", d->axes[2], *d->project);
  saveVariableSetting("ColorVariable", d->color, *d->project);
  fitToData();
}

ScatterPlot3DView::~ScatterPlot3DView()
{
  connections().clear();
  d->style->RemoveObserver(d->startTurning);
  d->style->RemoveObserver(d->endTurning);
  if (d->widget)
  {
    vtkRenderWindowInteractor* interactor = d->widget->interactor();
    for (vtkCommand* observer :
         { static_cast<vtkCommand*>(d->swallowKeys), static_cast<vtkCommand*>(d->pressObserver) })
      interactor->RemoveObserver(observer);
  }
}

std::vector<SettingsSection> ScatterPlot3DView::settingsSections(PropertyEditors& editors)
{
  auto* box = new QWidget();
  auto* form = new QFormLayout(box);
  form->addRow("X", editors.variableChooser(d->axes[0], true, {}));
  form->addRow("Y", editors.variableChooser(d->axes[1], true, {}));
  form->addRow("Z", editors.variableChooser(d->axes[2], true, {}));
  form->addRow("Colour", editors.variableChooser(d->color, true, "(none)"));
  return { { "3-D scatter plot", box } };
}

std::string ScatterPlot3DView::selectionSummary() const
{
  return std::to_string(highlightedPoints()) + " highlighted points";
}

void ScatterPlot3DView::resumeParts()
{
  d->changes->changed(true);
}

void ScatterPlot3DView::refresh()
{
  d->scene->render();
}

void ScatterPlot3DView::fitToData()
{
  d->scene->resetCamera();
}

boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> ScatterPlot3DView::xVariable() const
{
  return d->axes[0];
}

boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> ScatterPlot3DView::yVariable() const
{
  return d->axes[1];
}

boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> ScatterPlot3DView::zVariable() const
{
  return d->axes[2];
}

boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> ScatterPlot3DView::colorVariable()
  const
{
  return d->color;
}

bool ScatterPlot3DView::pointOfCase(unsigned long long caseId, QPoint& at) const
{
  d->changes->catchUp();
  bool found = false;
  const ScatterPlot3DModel::Projection projection = d->scene->projection();
  d->model.project(projection,
                   [&](std::size_t i, double x, double y, double)
                   {
                     if (d->model.caseIds()[i] == caseId)
                     {
                       at = QPoint(static_cast<int>(std::lround(x)),
                                   projection.size[1] - 1 - static_cast<int>(std::lround(y)));
                       found = true;
                     }
                   });
  return found;
}

int ScatterPlot3DView::shownPoints() const
{
  d->changes->catchUp();
  return static_cast<int>(d->model.caseIds().size());
}

int ScatterPlot3DView::highlightedPoints() const
{
  d->changes->catchUp();
  return static_cast<int>(d->model.selected().size());
}

bool ScatterPlot3DView::caseIDAtPoint(unsigned long long& caseID)
{
  const long long point =
    d->model.pointAt(d->scene->projection(), d->clickedAt[0], d->clickedAt[1]);
  if (point < 0)
    return false;
  caseID = d->model.caseIds()[static_cast<std::size_t>(point)];
  return true;
}

} // namespace explorer
