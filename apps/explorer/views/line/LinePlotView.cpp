#include "views/line/LinePlotView.h"

#include "ChangesWhileHidden.h"
#include "MasterSelection.h"
#include "PropertyEditors.h"
#include "StudyDefaults.h"
#include "StudyFiles.h"
#include "views/Canvas.h"
#include "views/UndoableSetting.h"
#include "views/line/LinePlotModel.h"
#include "views/line/LinePlotPainter.h"

#include "datamanagement/Project.h"
#include "datapipeline/DataPipelineManager.h"
#include "properties/Property.h"
#include "properties/UndoablePropertyProxy.h"
#include "serialization/EnumSerializer.h"
#include "serialization/GenericSerializer.h"
#include "serialization/VariableListSerializer.h"
#include "serialize/Serializer.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QListWidget>
#include <QPointer>
#include <QTimer>
#include <QToolTip>
#include <boost/make_shared.hpp>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <algorithm>
#include <limits>
#include <sstream>

namespace explorer
{

namespace
{

using VariableList = std::vector<WeakPtr<Variable>>;

NamedValueTranslator<LineMode> modeNames()
{
  NamedValueTranslator<LineMode> names;
  names.add("response", LineMode::Response);
  names.add("series", LineMode::Series);
  return names;
}

NamedValueTranslator<Aggregate> aggregateNames()
{
  NamedValueTranslator<Aggregate> names;
  names.add("mean", Aggregate::Mean);
  names.add("median", Aggregate::Median);
  names.add("min", Aggregate::Min);
  names.add("max", Aggregate::Max);
  return names;
}

NamedValueTranslator<Band> bandNames()
{
  NamedValueTranslator<Band> names;
  names.add("none", Band::None);
  names.add("minmax", Band::MinMax);
  names.add("std", Band::StdDeviation);
  return names;
}

} // namespace

struct LinePlotView::Impl
{
  std::shared_ptr<const Project> project;
  DataPipelineManager& pipeline;
  boost::shared_ptr<MasterSelection> selection;
  QPointer<Canvas> canvas;

  boost::shared_ptr<plexa::UndoablePropertyProxy<LineMode>> mode;
  boost::shared_ptr<plexa::UndoablePropertyProxy<WeakPtr<Variable>>> x;
  boost::shared_ptr<plexa::UndoablePropertyProxy<WeakPtr<Variable>>> y;
  boost::shared_ptr<plexa::UndoablePropertyProxy<VariableList>> linesBy;
  boost::shared_ptr<plexa::UndoablePropertyProxy<Aggregate>> aggregate;
  boost::shared_ptr<plexa::UndoablePropertyProxy<Band>> band;
  boost::shared_ptr<plexa::UndoablePropertyProxy<std::string>> seriesTag;
  boost::shared_ptr<plexa::UndoablePropertyProxy<std::string>> seriesX;
  boost::shared_ptr<plexa::UndoablePropertyProxy<std::string>> seriesY;
  boost::shared_ptr<plexa::UndoablePropertyProxy<WeakPtr<Variable>>> colour;
  boost::shared_ptr<plexa::UndoablePropertyProxy<Drawing>> drawing;
  boost::shared_ptr<plexa::UndoablePropertyProxy<bool>> logX;
  boost::shared_ptr<plexa::UndoablePropertyProxy<bool>> logY;

  std::unique_ptr<LinePlotModel> model;
  bool drawPending = false;
  // What the painter draws besides the curves and the model's look: the user's legend place,
  // a rubber band in progress.
  QPointF legendOffset;
  QRectF rubberBand;
  LinePlotPainter painter;
  std::unique_ptr<ChangesWhileHidden> changes;

  // The mouse: a rubber band, or the legend being moved.
  QPoint pressedAt;
  QPoint clickedAt;
  bool pressed = false;
  bool movingLegend = false;
  QPointF legendAtPress;

  explicit Impl(DataPipelineManager& pipeline)
    : pipeline(pipeline)
  {
  }

  LogAxes log() const { return { logX->value(), logY->value() }; }

  LineSettings settings() const
  {
    LineSettings chosen;
    chosen.mode = mode->value();
    chosen.x = x->value();
    chosen.y = y->value();
    chosen.linesBy = linesBy->value();
    chosen.aggregate = aggregate->value();
    chosen.band = band->value();
    chosen.seriesTag = seriesTag->value();
    chosen.seriesX = seriesX->value();
    chosen.seriesY = seriesY->value();
    chosen.colour = colour->value();
    chosen.log = log();
    return chosen;
  }

  PlotFrame frame() const { return frameFor(canvas->size(), model->curves(), log()); }

  bool density() const
  {
    // While series come in, curves are drawn as a density whatever their number: it counts the
    // curves added since the last draw alone, where lines would all be stroked again.
    if (drawing->value() == Drawing::Automatic && model->seriesWaiting() > 0)
      return true;
    return drawing::asDensity(
      drawing->value(), model->curves().curves.size(), drawing::curvesAsDensityAbove);
  }

  // Reads the shown cases again under the settings.
  void reload()
  {
    pipeline.output()->Update();
    Impl* impl = this;
    model->reload(
      *pipeline.output()->GetOutput(), settings(), canvas, [impl] { impl->seriesArrived(); });
    painter.curvesChanged();
    model->select(*selection->cases());
  }

  // Series came in: their curves are added, and the plot is drawn again at once when the last
  // came, else at most every 100 ms (the curves that came in since are counted alone).
  void seriesArrived()
  {
    model->takeInSeries();
    painter.curvesAdded();
    if (model->seriesWaiting() == 0)
      canvas->update();
    else if (!drawPending)
    {
      drawPending = true;
      Impl* impl = this;
      QTimer::singleShot(100,
                         canvas,
                         [impl]
                         {
                           impl->drawPending = false;
                           impl->canvas->update();
                         });
    }
  }

  // What the painter draws besides the curves: the model's axes, colours and legend, with the
  // view's own marks.
  LinePlotPainter::Look look() const
  {
    LinePlotPainter::Look drawn = model->look();
    drawn.density = density();
    drawn.notes = model->notes(drawn.density);
    drawn.legendOffset = legendOffset;
    drawn.rubberBand = rubberBand;
    return drawn;
  }

  // While series come in, a paint counts a slice of the curves that came (some 25 ms of work
  // here) and asks for another paint for the rest, so that the window keeps answering however
  // fast the files are read; once every series is in, what is left is counted in one paint.
  static constexpr std::size_t pointsPerSlice = 400000;

  void paint(QPainter& on)
  {
    changes->catchUp();
    const bool arriving = model->seriesWaiting() > 0;
    painter.paint(on,
                  canvas->size(),
                  model->curves(),
                  frame(),
                  model->selectedRows(),
                  look(),
                  arriving ? pointsPerSlice : std::numeric_limits<std::size_t>::max());
    if (painter.curvesLeftToCount())
    {
      QTimer::singleShot(0, canvas, [target = canvas.data()] { target->update(); });
    }
  }

  // A move with the button down moves the legend, or draws a rubber band once the pointer is
  // three pixels from where it was pressed.
  void dragTo(const QPoint& at)
  {
    if (movingLegend)
      legendOffset = legendAtPress + QPointF(at - pressedAt);
    else if ((at - pressedAt).manhattanLength() >= 3)
      rubberBand = QRectF(pressedAt, at);
  }

  std::vector<std::uint32_t> rowsNear(const QPoint& point,
                                      int* curve = nullptr,
                                      std::size_t* at = nullptr) const
  {
    return explorer::rowsNear(model->curves(), frame(), point.x(), point.y(), 6, curve, at);
  }

  void selectRows(const std::vector<std::uint32_t>& rows, bool control)
  {
    const auto& caseIds = model->caseIds();
    MasterSelection::Cases picked;
    picked.reserve(rows.size());
    for (std::uint32_t row : rows)
      picked.push_back(caseIds[row]);
    std::sort(picked.begin(), picked.end());
    picked.erase(std::unique(picked.begin(), picked.end()), picked.end());
    if (!control)
    {
      selection->setCases(std::move(picked));
      return;
    }
    // With Control the curves picked are added, or taken away when all of them were selected.
    const MasterSelection::Cases& was = *selection->cases();
    MasterSelection::Cases ids;
    if (std::includes(was.begin(), was.end(), picked.begin(), picked.end()))
      std::set_difference(
        was.begin(), was.end(), picked.begin(), picked.end(), std::back_inserter(ids));
    else
      std::set_union(was.begin(), was.end(), picked.begin(), picked.end(), std::back_inserter(ids));
    selection->setCases(std::move(ids));
  }

  void hover(const QPoint& at)
  {
    int curve = -1;
    std::size_t point = 0;
    const auto rows = rowsNear(at, &curve, &point);
    if (rows.empty())
    {
      QToolTip::hideText();
      return;
    }
    const Curve& hit = model->curves().curves[static_cast<std::size_t>(curve)];
    const auto& caseIds = model->caseIds();
    std::ostringstream text;
    if (hit.firstRow.empty())
      text << hit.label;
    else
      text << (hit.label.empty() ? std::string("all cases") : hit.label) << ", " << rows.size()
           << (rows.size() == 1 ? " case (" + std::to_string(caseIds[rows.front()]) + ")"
                                : " cases");
    text << "\n"
         << model->look().x.title << " = " << hit.xAt(point) << "\n"
         << model->look().y.title << " = " << hit.yAt(point);
    QToolTip::showText(canvas->mapToGlobal(at), QString::fromStdString(text.str()), canvas);
  }
};

LinePlotView::LinePlotView(const ViewContext& context)
  : ViewOfKind(std::make_unique<Serializer>("LinePlot"), context.selection)
  , d(std::make_unique<Impl>(*context.pipeline))
{
  d->project = context.project;
  d->selection = context.selection;
  d->model = std::make_unique<LinePlotModel>(context.project, context.files);
  d->canvas = new Canvas();
  setWidget(d->canvas);
  d->canvas->setObjectName("linePlot");
  d->canvas->setMinimumSize(200, 160);
  d->canvas->setMouseTracking(true);

  // An output along an input, one line per value of another input.
  const defaults::ScatterChoice first = defaults::scatter(*d->project);
  VariableList lines;
  for (const auto& candidate : defaults::varyingNumbers(*d->project))
    if (candidate.lock() != first.x.lock() && candidate.lock() != first.y.lock() &&
        candidate.lock().nature() == Variable::Discrete)
    {
      lines.push_back(candidate);
      break;
    }
  const auto tags = studyfiles::seriesTags(*d->project);
  d->mode = undoableSetting("Line Plot", LineMode::Response);
  d->x = undoableSetting("X Variable", first.x);
  d->y = undoableSetting("Y Variable", first.y);
  d->linesBy = undoableSetting("Lines By", lines);
  d->aggregate = undoableSetting("Aggregate", Aggregate::Mean);
  d->band = undoableSetting("Band", Band::MinMax);
  d->seriesTag = undoableSetting("Series File", tags.empty() ? std::string() : tags.front());
  d->seriesX = undoableSetting("Series X", std::string());
  d->seriesY = undoableSetting("Series Y", std::string());
  d->colour = undoableSetting("Curve Color Variable", first.colour);
  d->drawing = undoableSetting("Curves", Drawing::Automatic);
  d->logX = undoableSetting("Logarithmic X", false);
  d->logY = undoableSetting("Logarithmic Y", false);

  Impl* impl = d.get();
  d->canvas->paint = [impl](QPainter& painter) { impl->paint(painter); };
  d->canvas->press = [impl](QMouseEvent& event)
  {
    if (event.button() != Qt::LeftButton)
      return;
    impl->changes->catchUp();
    impl->pressed = true;
    impl->pressedAt = event.pos();
    impl->movingLegend =
      LinePlotPainter::legendRect(impl->model->curves(), impl->frame(), impl->look())
        .contains(event.pos());
    impl->legendAtPress = impl->legendOffset;
  };
  d->canvas->move = [impl](QMouseEvent& event)
  {
    if (!impl->pressed)
    {
      impl->hover(event.pos());
      return;
    }
    impl->dragTo(event.pos());
    impl->canvas->update();
  };
  d->canvas->release = [this, impl](QMouseEvent& event)
  {
    if (!impl->pressed || event.button() != Qt::LeftButton)
      return;
    impl->pressed = false;
    // The release ends the drag where it is, whether or not the moves before it came (a fast
    // drag or a remote display may send none).
    impl->dragTo(event.pos());
    const bool control = event.modifiers() & Qt::ControlModifier;
    if (impl->movingLegend)
    {
      impl->movingLegend = false;
      impl->canvas->update();
      return;
    }
    if (!impl->rubberBand.isNull())
    {
      const QRectF band = impl->rubberBand.normalized();
      impl->rubberBand = QRectF();
      impl->selectRows(rowsThrough(impl->model->curves(),
                                   impl->frame(),
                                   band.left(),
                                   band.top(),
                                   band.right(),
                                   band.bottom()),
                       control);
      impl->canvas->update();
      return;
    }
    impl->clickedAt = event.pos();
    if (control)
    {
      const auto rows = impl->rowsNear(event.pos());
      if (!rows.empty())
        impl->selectRows(rows, true);
      return;
    }
    const auto rows = impl->rowsNear(event.pos());
    if (rows.size() > 1)
      impl->selectRows(rows, false);
    else
      adjustSelectionForMouseClickAtPoint();
  };

  d->changes = std::make_unique<ChangesWhileHidden>(
    *d->canvas,
    *context.selection,
    ChangesWhileHidden::Steps{ [impl] { impl->reload(); },
                               [impl](const auto& ids) { impl->model->select(ids); },
                               [impl] { impl->canvas->update(); } });
  // A change is taken in when the plot is next drawn or asked about: a setting that signals
  // twice, or several changes in one step, cost one reading.
  const auto reload = [impl] { impl->changes->changedLater(); };
  connections().add(context.pipeline->connectSignalPipelineChanged(reload));
  for (const auto& property :
       std::initializer_list<plexa::PropertyItemInterface*>{ d->mode.get(),
                                                             d->x.get(),
                                                             d->y.get(),
                                                             d->linesBy.get(),
                                                             d->aggregate.get(),
                                                             d->band.get(),
                                                             d->seriesTag.get(),
                                                             d->seriesX.get(),
                                                             d->seriesY.get(),
                                                             d->colour.get(),
                                                             d->logX.get(),
                                                             d->logY.get() })
    connections().add(property->connectSignalPropertyChanged(reload));
  connections().add(d->drawing->connectSignalPropertyChanged(
    [impl]
    {
      impl->painter.curvesChanged();
      impl->canvas->update();
    }));
  connections().add(context.selection->connectCasesChanged(
    [impl](const MasterSelection::SharedCases& ids) { impl->changes->selectionChanged(*ids); }));

  saveSetting(boost::make_shared<EnumSerializer<LineMode>>("Mode", d->mode, modeNames()),
              "response or series");
  saveVariableSetting("XVariable", d->x, *d->project);
  saveVariableSetting("YVariable", d->y, *d->project);
  saveSetting(
    boost::make_shared<VariableListSerializer>("LinesBy", d->linesBy, d->project->variables()));
  saveSetting(
    boost::make_shared<EnumSerializer<Aggregate>>("Aggregate", d->aggregate, aggregateNames()),
    "mean, median, min or max");
  saveSetting(boost::make_shared<EnumSerializer<Band>>("Band", d->band, bandNames()),
              "none, minmax or std");
  saveSetting(boost::make_shared<GenericSerializer<std::string>>("SeriesTag", d->seriesTag));
  saveSetting(boost::make_shared<GenericSerializer<std::string>>("SeriesX", d->seriesX));
  saveSetting(boost::make_shared<GenericSerializer<std::string>>("SeriesY", d->seriesY));
  saveVariableSetting("ColorVariable", d->colour, *d->project);
  saveSetting(drawing::serializer("Curves", d->drawing), "automatic, marks or density");
  saveSetting(boost::make_shared<GenericSerializer<bool>>("LogX", d->logX), "0 or 1");
  saveSetting(boost::make_shared<GenericSerializer<bool>>("LogY", d->logY), "0 or 1");
}

LinePlotView::~LinePlotView() = default;

std::vector<SettingsSection> LinePlotView::settingsSections(PropertyEditors& editors)
{
  auto* box = new QWidget();
  auto* form = new QFormLayout(box);
  form->addRow("Show",
               editors.enumChooser<LineMode>(d->mode,
                                             { { "Response curves", LineMode::Response },
                                               { "Series of each run", LineMode::Series } }));
  form->addRow("X", editors.variableChooser(d->x, false, QString()));
  form->addRow("Y", editors.variableChooser(d->y, true, QString()));
  form->addRow("Lines by (two at most)", editors.variableList(d->linesBy, false));
  form->addRow("Aggregate",
               editors.enumChooser<Aggregate>(d->aggregate,
                                              { { "Mean", Aggregate::Mean },
                                                { "Median", Aggregate::Median },
                                                { "Minimum", Aggregate::Min },
                                                { "Maximum", Aggregate::Max } }));
  form->addRow(
    "Band",
    editors.enumChooser<Band>(d->band,
                              { { "None", Band::None },
                                { "Minimum to maximum", Band::MinMax },
                                { "Mean \u00b1 one standard deviation", Band::StdDeviation } }));
  form->addRow("Series file", editors.tagChooser(d->seriesTag, "(none)"));
  // The columns of the first series file read name the choices.
  std::vector<std::pair<QString, std::string>> xChoices{ { "(first column)", std::string() } };
  std::vector<std::pair<QString, std::string>> yChoices{ { "(second column)", std::string() } };
  for (const auto& name : d->model->seriesColumns())
  {
    xChoices.emplace_back(QString::fromStdString(name), name);
    yChoices.emplace_back(QString::fromStdString(name), name);
  }
  form->addRow("Series X", editors.enumChooser<std::string>(d->seriesX, xChoices));
  form->addRow("Series Y", editors.enumChooser<std::string>(d->seriesY, yChoices));
  form->addRow("Colour series by", editors.variableChooser(d->colour, true, "(none)"));
  form->addRow("Curves",
               editors.enumChooser<Drawing>(d->drawing,
                                            { { "Automatic", Drawing::Automatic },
                                              { "One line per curve", Drawing::Marks },
                                              { "Density", Drawing::Density } }));
  form->addRow(editors.checkBox("Logarithmic X", d->logX));
  form->addRow(editors.checkBox("Logarithmic Y", d->logY));
  return { { "Line plot", box } };
}

std::string LinePlotView::selectionSummary() const
{
  return std::to_string(highlightedCases()) + " highlighted cases";
}

void LinePlotView::refresh()
{
  d->canvas->update();
}

boost::shared_ptr<plexa::PropertyAbstract<LineMode>> LinePlotView::mode() const
{
  return d->mode;
}
boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> LinePlotView::xVariable() const
{
  return d->x;
}
boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> LinePlotView::yVariable() const
{
  return d->y;
}
boost::shared_ptr<plexa::PropertyAbstract<std::vector<WeakPtr<Variable>>>> LinePlotView::linesBy()
  const
{
  return d->linesBy;
}
boost::shared_ptr<plexa::PropertyAbstract<Aggregate>> LinePlotView::aggregate() const
{
  return d->aggregate;
}
boost::shared_ptr<plexa::PropertyAbstract<Band>> LinePlotView::band() const
{
  return d->band;
}
boost::shared_ptr<plexa::PropertyAbstract<std::string>> LinePlotView::seriesTag() const
{
  return d->seriesTag;
}
boost::shared_ptr<plexa::PropertyAbstract<std::string>> LinePlotView::seriesX() const
{
  return d->seriesX;
}
boost::shared_ptr<plexa::PropertyAbstract<std::string>> LinePlotView::seriesY() const
{
  return d->seriesY;
}
boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> LinePlotView::colorVariable() const
{
  return d->colour;
}
boost::shared_ptr<plexa::PropertyAbstract<Drawing>> LinePlotView::drawing() const
{
  return d->drawing;
}
boost::shared_ptr<plexa::PropertyAbstract<bool>> LinePlotView::logX() const
{
  return d->logX;
}
boost::shared_ptr<plexa::PropertyAbstract<bool>> LinePlotView::logY() const
{
  return d->logY;
}

const CurveSet& LinePlotView::curves() const
{
  d->changes->catchUp();
  return d->model->curves();
}

QPoint LinePlotView::pointOf(std::size_t curve, std::size_t point) const
{
  d->changes->catchUp();
  const PlotFrame frame = d->frame();
  const Curve& c = d->model->curves().curves.at(curve);
  if (point >= c.points())
    throw std::out_of_range("no such point of the curve");
  return QPointF(frame.px(c.xAt(point)), frame.py(c.yAt(point))).toPoint();
}

bool LinePlotView::drawsDensity() const
{
  d->changes->catchUp();
  return d->density();
}

std::vector<std::string> LinePlotView::notes() const
{
  d->changes->catchUp();
  return d->model->notes(d->density());
}

bool LinePlotView::working() const
{
  d->changes->catchUp();
  return d->model->seriesPending() > 0 || d->model->seriesWaiting() > 0;
}

std::size_t LinePlotView::seriesPending() const
{
  return d->model->seriesPending();
}

std::size_t LinePlotView::highlightedCases() const
{
  d->changes->catchUp();
  return d->model->selectedCount();
}

void LinePlotView::resumeParts()
{
  d->changes->changed(true);
}

bool LinePlotView::caseIDAtPoint(unsigned long long& caseID)
{
  const auto rows = d->rowsNear(d->clickedAt);
  if (rows.empty())
    return false;
  caseID = d->model->caseIds()[rows.front()];
  return true;
}

} // namespace explorer
