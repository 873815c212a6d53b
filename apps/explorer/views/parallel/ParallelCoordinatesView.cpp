#include "views/parallel/ParallelCoordinatesView.h"

#include "ChangesWhileHidden.h"
#include "FilterEdits.h"
#include "MasterSelection.h"
#include "PropertyEditors.h"
#include "StudyDefaults.h"
#include "views/Canvas.h"
#include "views/UndoableSetting.h"
#include "views/parallel/ParallelCoordinatesModel.h"
#include "views/parallel/ParallelCoordinatesPainter.h"

#include "analyzer_common/DeleteSignaler.h"
#include "datamanagement/Project.h"
#include "datapipeline/DataPipelineManager.h"
#include "properties/Property.h"
#include "properties/UndoablePropertyProxy.h"
#include "serialization/VariableListSerializer.h"
#include "serialize/Serializer.h"

#include <QFormLayout>
#include <QListWidget>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QWidget>
#include <boost/make_shared.hpp>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <algorithm>
#include <cmath>
#include <functional>

namespace explorer
{

namespace
{

using VariableList = std::vector<WeakPtr<Variable>>;

} // namespace

struct ParallelCoordinatesView::Impl
{
  std::shared_ptr<const Project> project;
  DataPipelineManager& pipeline;
  boost::shared_ptr<MasterSelection> selection;
  QPointer<Canvas> canvas;
  boost::shared_ptr<plexa::UndoablePropertyProxy<VariableList>> axesProperty;
  boost::shared_ptr<plexa::UndoablePropertyProxy<WeakPtr<Variable>>> color;
  boost::shared_ptr<plexa::UndoablePropertyProxy<Drawing>> drawing;
  boost::shared_ptr<plexa::UndoablePropertyProxy<VariableList>> logAxes;
  // The owner of the brushes' undo steps.
  DeleteSignaler undoOwner;
  ParallelCoordinatesModel model;
  ParallelCoordinatesPainter painter;
  std::unique_ptr<ChangesWhileHidden> changes;
  int brushedAxis = -1;
  double brushFrom = 0;
  double brushTo = 0;
  QPoint pressedAt;
  QPoint clickedAt;

  explicit Impl(DataPipelineManager& pipeline)
    : pipeline(pipeline)
  {
  }

  ParallelLayout layout() const
  {
    return ParallelLayout(canvas->size(), static_cast<int>(model.axes().size()));
  }

  bool density() const
  {
    return drawing::asDensity(
      drawing->value(), model.caseIds().size(), drawing::linesAsDensityAbove);
  }

  // Reads the shown cases of the chosen variables from the pipeline's output.
  void reload()
  {
    pipeline.output()->Update();
    model.reload(*pipeline.output()->GetOutput(),
                 *project,
                 axesProperty->value(),
                 color->value(),
                 logAxes->value());
    painter.linesChanged();
    select(*selection->cases());
  }

  void select(const std::vector<unsigned long long>& ids)
  {
    model.select(ids);
    painter.selectionChanged();
  }

  void paint(QPainter& on)
  {
    changes->catchUp();
    ParallelCoordinatesPainter::Marks marks;
    for (const ParallelAxis& axis : model.axes())
      marks.filters.push_back(filterState(pipeline, axis.variable));
    marks.brushedAxis = brushedAxis;
    marks.brushFrom = brushFrom;
    marks.brushTo = brushTo;
    marks.colourName = color->value().lock().name();
    painter.paint(on, canvas->size(), model, density(), marks);
  }

  // The numeric axis within reach of a point, or -1.
  int axisAt(const QPoint& point) const
  {
    const ParallelLayout at = layout();
    const auto& axes = model.axes();
    for (std::size_t a = 0; a < axes.size(); ++a)
      if (!axes[a].text && std::abs(point.x() - at.x(static_cast<int>(a))) <= 9 &&
          point.y() >= at.top - 6 && point.y() <= at.bottom + 6)
        return static_cast<int>(a);
    return -1;
  }

  // Ends a drag along an axis: its range becomes the variable's filter. Without a drag, the
  // click takes the axis's filter away; on an axis without one it is a click like elsewhere,
  // and the result says so.
  bool endBrush(const QPoint& point)
  {
    const ParallelAxis& axis = model.axes()[static_cast<std::size_t>(brushedAxis)];
    brushedAxis = -1;
    brushTo = point.y();
    const bool dragged = std::abs(brushTo - brushFrom) >= 3;
    if (!dragged && !filterState(pipeline, axis.variable).exists)
    {
      canvas->update();
      return false;
    }
    FilterState after;
    if (dragged)
    {
      const ParallelLayout at = layout();
      const double a = axis.valueAt(at.position(brushFrom));
      const double b = axis.valueAt(at.position(brushTo));
      after = { true, std::min(a, b), std::max(a, b), true };
    }
    // The pipeline's change redraws the view.
    changeFilter(pipeline, axis.variable, after, undoOwner);
    canvas->update();
    return true;
  }
};

ParallelCoordinatesView::ParallelCoordinatesView(const ViewContext& context)
  : ViewOfKind(std::make_unique<Serializer>("ParallelCoordinates"), context.selection)
  , d(std::make_unique<Impl>(*context.pipeline))
{
  d->project = context.project;
  d->selection = context.selection;
  d->canvas = new Canvas();
  setWidget(d->canvas);
  d->canvas->setObjectName("parallelCoordinates");
  d->canvas->setMinimumSize(200, 160);
  d->canvas->setMouseTracking(false);

  // The varying variables as the axes; the lines coloured as the scatter plot's points.
  const VariableList firstAxes = defaults::parallelAxes(*d->project, 8);
  const WeakPtr<Variable> firstColour = defaults::scatter(*d->project).colour;
  d->axesProperty = undoableSetting("Axes", firstAxes);
  d->color = undoableSetting("Line Color Variable", firstColour);
  d->drawing = undoableSetting("Lines", Drawing::Automatic);
  d->logAxes = undoableSetting("Logarithmic Axes", VariableList());

  Impl* impl = d.get();
  d->canvas->paint = [impl](QPainter& painter) { impl->paint(painter); };
  d->canvas->press = [impl](QMouseEvent& event)
  {
    impl->pressedAt = event.pos();
    if (event.button() != Qt::LeftButton)
      return;
    impl->brushedAxis = impl->axisAt(event.pos());
    impl->brushFrom = impl->brushTo = event.pos().y();
  };
  d->canvas->move = [impl](QMouseEvent& event)
  {
    if (impl->brushedAxis < 0)
      return;
    impl->brushTo = event.pos().y();
    impl->canvas->update();
  };
  d->canvas->release = [this, impl](QMouseEvent& event)
  {
    if (impl->brushedAxis >= 0 && impl->endBrush(event.pos()))
      return;
    if ((event.pos() - impl->pressedAt).manhattanLength() >= 3 || event.button() != Qt::LeftButton)
      return;
    impl->clickedAt = event.pos();
    if (event.modifiers() & Qt::ControlModifier)
    {
      const int row = ParallelCoordinatesPainter::rowAt(impl->model, impl->layout(), event.pos());
      if (row < 0)
        return;
      impl->selection->toggle(impl->model.caseIds()[static_cast<std::size_t>(row)]);
      return;
    }
    adjustSelectionForMouseClickAtPoint();
  };

  d->changes = std::make_unique<ChangesWhileHidden>(
    *d->canvas,
    *context.selection,
    ChangesWhileHidden::Steps{ [impl] { impl->reload(); },
                               [impl](const auto& ids) { impl->select(ids); },
                               [impl] { impl->canvas->update(); } });
  const auto reload = [impl] { impl->changes->changed(true); };
  connections().add(context.pipeline->connectSignalPipelineChanged(reload));
  connections().add(d->axesProperty->connectSignalPropertyChanged(reload));
  connections().add(d->color->connectSignalPropertyChanged(reload));
  connections().add(d->logAxes->connectSignalPropertyChanged(reload));
  connections().add(d->drawing->connectSignalPropertyChanged(
    [impl]
    {
      impl->painter.linesChanged();
      impl->canvas->update();
    }));
  connections().add(context.selection->connectCasesChanged(
    [impl](const MasterSelection::SharedCases& ids) { impl->changes->selectionChanged(*ids); }));

  saveSetting(
    boost::make_shared<VariableListSerializer>("Axes", d->axesProperty, d->project->variables()));
  saveVariableSetting("ColorVariable", d->color, *d->project);
  saveSetting(drawing::serializer("Lines", d->drawing), "automatic, marks or density");
  saveSetting(
    boost::make_shared<VariableListSerializer>("LogAxes", d->logAxes, d->project->variables()));
}

ParallelCoordinatesView::~ParallelCoordinatesView() = default;

std::vector<SettingsSection> ParallelCoordinatesView::settingsSections(PropertyEditors& editors)
{
  auto* box = new QWidget();
  auto* form = new QFormLayout(box);
  // The chosen axes first, in their order, then the others; drag an entry to reorder.
  form->addRow("Axes", editors.variableList(d->axesProperty, true));
  form->addRow("Colour", editors.variableChooser(d->color, true, "(none)"));
  form->addRow("Logarithmic axes", editors.variableList(d->logAxes, false));
  form->addRow("Lines",
               editors.enumChooser<Drawing>(d->drawing,
                                            { { "Automatic", Drawing::Automatic },
                                              { "One line per case", Drawing::Marks },
                                              { "Density", Drawing::Density } }));
  return { { "Parallel coordinates", box } };
}

std::string ParallelCoordinatesView::selectionSummary() const
{
  return std::to_string(highlightedLines()) + " highlighted lines";
}

void ParallelCoordinatesView::suspendParts() {}

void ParallelCoordinatesView::resumeParts()
{
  d->changes->changed(true);
}

void ParallelCoordinatesView::refresh()
{
  d->canvas->update();
}

boost::shared_ptr<plexa::PropertyAbstract<std::vector<WeakPtr<Variable>>>>
ParallelCoordinatesView::axes() const
{
  return d->axesProperty;
}

boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>>
ParallelCoordinatesView::colorVariable() const
{
  return d->color;
}

boost::shared_ptr<plexa::PropertyAbstract<Drawing>> ParallelCoordinatesView::drawing() const
{
  return d->drawing;
}

boost::shared_ptr<plexa::PropertyAbstract<std::vector<WeakPtr<Variable>>>>
ParallelCoordinatesView::logAxes() const
{
  return d->logAxes;
}

bool ParallelCoordinatesView::drawsDensity() const
{
  d->changes->catchUp();
  return d->density();
}

QPoint ParallelCoordinatesView::pointOnAxis(int axis, double value) const
{
  d->changes->catchUp();
  const ParallelLayout at = d->layout();
  return QPointF(at.x(axis), at.y(d->model.positionOf(static_cast<std::size_t>(axis), value)))
    .toPoint();
}

int ParallelCoordinatesView::highlightedLines() const
{
  d->changes->catchUp();
  return static_cast<int>(d->model.selectedRows().size());
}

bool ParallelCoordinatesView::caseIDAtPoint(unsigned long long& caseID)
{
  const int row = ParallelCoordinatesPainter::rowAt(d->model, d->layout(), d->clickedAt);
  if (row < 0)
    return false;
  caseID = d->model.caseIds()[static_cast<std::size_t>(row)];
  return true;
}

} // namespace explorer
