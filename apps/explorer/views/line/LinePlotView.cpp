#include "views/line/LinePlotView.h"

#include "CaseRowIndex.h"
#include "ChangesWhileHidden.h"
#include "FileLocator.h"
#include "PropertyEditors.h"
#include "StudyDefaults.h"
#include "StudyFiles.h"
#include "views/Canvas.h"
#include "views/ColourScale.h"
#include "views/line/LineGroups.h"
#include "views/line/LinePlotPainter.h"
#include "views/line/SeriesCache.h"

#include "analyzer_common/SelectionModelInterface.h"
#include "datamanagement/AuxFile.h"
#include "datamanagement/Project.h"
#include "datamanagement/Record.h"
#include "datamanagement/SeriesReader.h"
#include "datamanagement/StudyFormatError.h"
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
#include <vtkDoubleArray.h>
#include <vtkStringArray.h>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <sstream>

namespace explorer
{

namespace
{

using VariableList = std::vector<WeakPtr<Variable>>;

// A continuous X is cut into at most this many intervals: enough for the shape of a response,
// few enough that each point has cases to aggregate.
constexpr std::size_t xIntervalsAtMost = 24;

template<typename T>
boost::shared_ptr<plexa::UndoablePropertyProxy<T>> undoable(const std::string& name, T value)
{
  return boost::make_shared<plexa::UndoablePropertyProxy<T>>(
    name, boost::make_shared<plexa::Property<T>>(std::move(value)));
}

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

std::string countText(std::size_t count)
{
  std::string digits = std::to_string(count);
  for (auto at = static_cast<std::ptrdiff_t>(digits.size()) - 3; at > 0; at -= 3)
    digits.insert(static_cast<std::size_t>(at), ",");
  return digits;
}

// The sorted distinct texts of a text variable over the whole study, so that categories keep
// their place as filters change.
std::vector<std::string> categoriesOf(const Project& project, const Variable& variable)
{
  std::vector<std::string> categories;
  if (const auto* all = project.textValues(variable))
    categories = *all;
  std::sort(categories.begin(), categories.end());
  categories.erase(std::unique(categories.begin(), categories.end()), categories.end());
  return categories;
}

// A column of the shown cases as numbers: a text column as its categories' indices.
std::vector<double> numbersOf(vtkTable& shown,
                              const Project& project,
                              const Variable& variable,
                              std::vector<std::string>* categories)
{
  const auto rows = static_cast<std::size_t>(shown.GetNumberOfRows());
  std::vector<double> values(rows, NAN);
  if (variable.isNull())
    return values;
  vtkAbstractArray* column = shown.GetColumnByName(variable.name().c_str());
  if (auto* numbers = vtkDoubleArray::SafeDownCast(column))
    std::copy_n(numbers->GetPointer(0), rows, values.begin());
  else if (auto* texts = vtkStringArray::SafeDownCast(column))
  {
    std::vector<std::string> names = categoriesOf(project, variable);
    for (std::size_t row = 0; row < rows; ++row)
    {
      const auto found =
        std::lower_bound(names.begin(), names.end(), texts->GetValue(static_cast<vtkIdType>(row)));
      if (found != names.end() && *found == texts->GetValue(static_cast<vtkIdType>(row)))
        values[row] = static_cast<double>(found - names.begin());
    }
    if (categories)
      *categories = std::move(names);
  }
  return values;
}

} // namespace

struct LinePlotView::Impl
{
  std::shared_ptr<const Project> project;
  DataPipelineManager& pipeline;
  boost::shared_ptr<SelectionModelInterface> selection;
  std::shared_ptr<const FileLocator> files;
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

  // The shown cases, in the pipeline's row order, as of the pipeline's output at shownTime.
  vtkMTimeType shownTime = 0;
  std::vector<unsigned long long> caseIds;
  // The values of X (orderedX) for the shown cases, a text X's categories, and the rows in X
  // order.
  std::string orderedX;
  std::vector<double> xValues;
  std::vector<std::string> xCategories;
  std::vector<std::uint32_t> xOrder;
  // Whether a continuous X was cut into intervals, each a point of the curves.
  bool xInIntervals = false;
  CaseRowIndex rowOfCase;
  std::vector<float> colourOfRow;
  // Each shown case's series file, empty for a case without one.
  std::vector<std::string> seriesPaths;
  SeriesCache series;
  CurveSet curves;
  std::vector<std::string> seriesProblems;
  std::size_t seriesWaiting = 0;
  // The shown cases whose series was taken in (drawn or named), and the columns drawn.
  std::vector<char> seriesTaken;
  std::string seriesXName;
  std::string seriesYName;
  bool drawPending = false;
  const std::array<QRgb, 256> colours = colourScale();
  LinePlotPainter::Look look;
  std::vector<char> selectedRows;
  std::size_t selectedCount = 0;
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

  // What is drawn besides the curves, read again; the legend stays where the user put it.
  LinePlotPainter::Look freshLook() const
  {
    LinePlotPainter::Look fresh;
    fresh.legendOffset = look.legendOffset;
    return fresh;
  }

  PlotFrame frame() const { return frameFor(canvas->size(), curves, log()); }

  bool density() const
  {
    // While series come in, curves are drawn as a density whatever their number: it counts the
    // curves added since the last draw alone, where lines would all be stroked again.
    if (drawing->value() == Drawing::Automatic && seriesWaiting > 0)
      return true;
    return drawing::asDensity(
      drawing->value(), curves.curves.size(), drawing::curvesAsDensityAbove);
  }

  // Reads the shown cases again: their ids, colours and, for series, their files.
  void reload()
  {
    pipeline.output()->Update();
    vtkTable& shown = *pipeline.output()->GetOutput();
    // What follows the shown cases alone is read again only when they change.
    if (shown.GetMTime() != shownTime)
    {
      shownTime = shown.GetMTime();
      caseIds = caseIdsOf(shown);
      rowOfCase.assign(caseIds);
      orderedX.clear();
    }
    if (mode->value() == LineMode::Response)
      buildResponse(shown);
    else
      readSeries(shown);
    select(selection->getSelections());
  }

  void buildResponse(vtkTable& shown)
  {
    look = freshLook();
    const Variable xVariable = x->value().lock();
    const Variable yVariable = y->value().lock();
    // X and the rows in its order stay while X and the shown cases do: a new Y or new groups
    // cost no sort.
    const std::string xName = xVariable.isNull() ? std::string() : xVariable.name();
    if (orderedX != xName || xName.empty())
    {
      xCategories.clear();
      if (xVariable.isNull())
      {
        // Without X, the cases in their order, as the scatter plot shows them.
        xValues.resize(caseIds.size());
        std::iota(xValues.begin(), xValues.end(), 1.0);
        xInIntervals = false;
      }
      else
      {
        xValues = numbersOf(shown, *project, xVariable, &xCategories);
        xInIntervals = xCategories.empty() && intoIntervals(xValues, xIntervalsAtMost);
      }
      xOrder = orderByX(xValues);
      orderedX = xName;
    }
    look.x.categories = xCategories;
    // A numeric Y is read where it lies.
    auto* yNumbers =
      yVariable.isNull()
        ? nullptr
        : vtkDoubleArray::SafeDownCast(shown.GetColumnByName(yVariable.name().c_str()));
    const std::vector<double> yCopy =
      yNumbers ? std::vector<double>() : numbersOf(shown, *project, yVariable, nullptr);
    const Values ys = yNumbers ? Values(yNumbers->GetPointer(0), caseIds.size()) : Values(yCopy);
    std::vector<vtkAbstractArray*> columns;
    for (const auto& handle : linesBy->value())
    {
      const Variable variable = handle.lock();
      if (!variable.isNull() && columns.size() < 2)
        if (auto* column = shown.GetColumnByName(variable.name().c_str()))
        {
          columns.push_back(column);
          look.legendTitle += (look.legendTitle.empty() ? "" : ", ") + variable.name();
        }
    }
    const LineGroups groups = lineGroups(columns, caseIds.size());
    curves = responseCurves(xValues, ys, groups, aggregate->value(), band->value(), log(), &xOrder);
    look.x.title = xVariable.isNull() ? "case order"
                                      : xVariable.name() + (xInIntervals ? " (in intervals)" : "");
    look.y.title = yVariable.isNull() ? "" : yVariable.name();
    look.legend = groups.labels.size() > 1;
    for (const Curve& curve : curves.curves)
    {
      look.colours.push_back(groupColour(curve.group));
      look.scale.push_back(NAN);
    }
    seriesProblems.clear();
    seriesWaiting = 0;
    painter.curvesChanged();
  }

  void readSeries(vtkTable& shown)
  {
    colourOfRow.assign(caseIds.size(), NAN);
    const Variable colourVariable = colour->value().lock();
    if (!colourVariable.isNull())
      if (auto* numbers =
            vtkDoubleArray::SafeDownCast(shown.GetColumnByName(colourVariable.name().c_str())))
      {
        const auto [low, high] = colourVariable.range();
        for (std::size_t row = 0; row < caseIds.size(); ++row)
        {
          const double value = numbers->GetValue(static_cast<vtkIdType>(row));
          if (!std::isnan(value))
            colourOfRow[row] = high > low ? static_cast<float>((value - low) / (high - low)) : 0.5f;
        }
      }
    seriesPaths.assign(caseIds.size(), std::string());
    const std::string tag = seriesTag->value();
    for (std::size_t row = 0; row < caseIds.size(); ++row)
    {
      const Record record = project->record(caseIds[row]).lock();
      if (record.isNull())
        continue;
      for (const auto& handle : record.auxFiles())
      {
        const AuxFile file = handle.lock();
        if (file.hasTag(tag) && studyfiles::isSeries(file.filePath()))
        {
          seriesPaths[row] = files ? files->locate(file.filePath()) : file.filePath();
          break;
        }
      }
    }
    Impl* impl = this;
    series.request(seriesPaths,
                   canvas,
                   [impl]
                   {
                     impl->takeInSeries();
                     // While series come in, the plot is drawn again at most every 100 ms: the
                     // curves that came in since are counted alone, in well under that time.
                     if (impl->seriesWaiting == 0)
                       impl->canvas->update();
                     else if (!impl->drawPending)
                     {
                       impl->drawPending = true;
                       QTimer::singleShot(100,
                                          impl->canvas,
                                          [impl]
                                          {
                                            impl->drawPending = false;
                                            impl->canvas->update();
                                          });
                     }
                   });
    curves = {};
    look = freshLook();
    seriesProblems.clear();
    seriesTaken.assign(caseIds.size(), 0);
    seriesXName = seriesX->value();
    seriesYName = seriesY->value();
    painter.curvesChanged();
    takeInSeries();
  }

  // Adds the curves of the series read since the last call; those still to come are counted,
  // those that cannot be drawn are named.
  void takeInSeries()
  {
    seriesWaiting = 0;
    for (std::size_t row = 0; row < caseIds.size(); ++row)
    {
      if (seriesPaths[row].empty() || seriesTaken[row])
        continue;
      const SeriesCache::Entry* entry = series.find(seriesPaths[row]);
      if (!entry)
      {
        ++seriesWaiting;
        continue;
      }
      seriesTaken[row] = 1;
      const std::string caseName = "case " + std::to_string(caseIds[row]);
      if (!entry->table)
      {
        seriesProblems.push_back(caseName + ": " + entry->error);
        continue;
      }
      const SeriesTable& table = *entry->table;
      // Without a choice, the first column is X and the second Y.
      if (seriesXName.empty() && !table.names.empty())
        seriesXName = table.names.front();
      if (seriesYName.empty() && !table.names.empty())
        seriesYName = table.names.size() > 1 ? table.names[1] : table.names.front();
      const auto* xs = table.column(seriesXName);
      const auto* ys = table.column(seriesYName);
      if (!xs || !ys)
      {
        seriesProblems.push_back(caseName + ": " + seriesPaths[row] + " has no column \"" +
                                 (xs ? seriesYName : seriesXName) + "\"");
        continue;
      }
      addSeriesCurve(
        curves, static_cast<std::uint32_t>(row), caseName, *xs, *ys, log(), entry->table);
      const float tone = colourOfRow[row];
      look.colours.push_back(
        std::isnan(tone)
          ? 0xff4682b4
          : colours[static_cast<std::size_t>(std::clamp(static_cast<int>(tone * 255), 0, 255))]);
      look.scale.push_back(tone);
    }
    look.x.title = seriesXName;
    look.y.title = seriesYName;
    painter.curvesAdded();
  }

  void select(const std::set<unsigned long long>& ids)
  {
    selectedRows.assign(caseIds.size(), 0);
    const std::vector<int> rows = rowOfCase.rowsOf(ids);
    for (int row : rows)
      selectedRows[static_cast<std::size_t>(row)] = 1;
    selectedCount = rows.size();
  }

  std::vector<std::string> notes() const
  {
    std::vector<std::string> lines;
    const bool series = mode->value() == LineMode::Series;
    const std::string what = series ? " samples" : " cases";
    if (curves.curves.empty() && seriesWaiting == 0 && seriesProblems.empty())
      lines.emplace_back(series && seriesTag->value().empty()
                           ? "Choose the tag of the runs' series files"
                           : "Nothing to plot");
    if (density())
      lines.push_back(countText(curves.curves.size()) + " curves, drawn as density");
    if (curves.missing > 0)
      lines.push_back(countText(curves.missing) + what + " without a value, left out");
    if (curves.notPositive > 0)
      lines.push_back(countText(curves.notPositive) + what +
                      " at or below zero on a logarithmic axis, left out");
    if (seriesWaiting > 0)
      lines.push_back("Reading series: " + countText(seriesWaiting) + " to go");
    if (!seriesProblems.empty())
    {
      lines.push_back(countText(seriesProblems.size()) + " series could not be read:");
      for (std::size_t i = 0; i < std::min<std::size_t>(seriesProblems.size(), 3); ++i)
        lines.push_back(seriesProblems[i]);
    }
    return lines;
  }

  void paint(QPainter& on)
  {
    changes->catchUp();
    look.density = density();
    look.notes = notes();
    painter.paint(on, canvas->size(), curves, frame(), selectedRows, look);
  }

  std::vector<std::uint32_t> rowsNear(const QPoint& point,
                                      int* curve = nullptr,
                                      std::size_t* at = nullptr) const
  {
    return explorer::rowsNear(curves, frame(), point.x(), point.y(), 6, curve, at);
  }

  void selectRows(const std::vector<std::uint32_t>& rows, bool control)
  {
    std::set<unsigned long long> ids =
      control ? selection->getSelections() : std::set<unsigned long long>();
    const bool allSelected =
      control && std::all_of(rows.begin(),
                             rows.end(),
                             [&](std::uint32_t row) { return ids.count(caseIds[row]) > 0; });
    for (std::uint32_t row : rows)
      if (allSelected)
        ids.erase(caseIds[row]);
      else
        ids.insert(caseIds[row]);
    selection->setSelection(ids);
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
    const Curve& hit = curves.curves[static_cast<std::size_t>(curve)];
    std::ostringstream text;
    if (hit.firstRow.empty())
      text << hit.label;
    else
      text << (hit.label.empty() ? std::string("all cases") : hit.label) << ", " << rows.size()
           << (rows.size() == 1 ? " case (" + std::to_string(caseIds[rows.front()]) + ")"
                                : " cases");
    text << "\n"
         << look.x.title << " = " << hit.xAt(point) << "\n"
         << look.y.title << " = " << hit.yAt(point);
    QToolTip::showText(canvas->mapToGlobal(at), QString::fromStdString(text.str()), canvas);
  }
};

LinePlotView::LinePlotView(const ViewContext& context)
  : ViewOfKind(std::make_unique<Serializer>("LinePlot"), context.selection)
  , d(std::make_unique<Impl>(*context.pipeline))
{
  d->project = context.project;
  d->selection = context.selection;
  d->files = context.files;
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
  d->mode = undoable("Line Plot", LineMode::Response);
  d->x = undoable("X Variable", first.x);
  d->y = undoable("Y Variable", first.y);
  d->linesBy = undoable("Lines By", lines);
  d->aggregate = undoable("Aggregate", Aggregate::Mean);
  d->band = undoable("Band", Band::MinMax);
  d->seriesTag = undoable("Series File", tags.empty() ? std::string() : tags.front());
  d->seriesX = undoable("Series X", std::string());
  d->seriesY = undoable("Series Y", std::string());
  d->colour = undoable("Curve Color Variable", first.colour);
  d->drawing = undoable("Curves", Drawing::Automatic);
  d->logX = undoable("Logarithmic X", false);
  d->logY = undoable("Logarithmic Y", false);

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
      LinePlotPainter::legendRect(impl->curves, impl->frame(), impl->look).contains(event.pos());
    impl->legendAtPress = impl->look.legendOffset;
  };
  d->canvas->move = [impl](QMouseEvent& event)
  {
    if (!impl->pressed)
    {
      impl->hover(event.pos());
      return;
    }
    if (impl->movingLegend)
      impl->look.legendOffset = impl->legendAtPress + QPointF(event.pos() - impl->pressedAt);
    else if ((event.pos() - impl->pressedAt).manhattanLength() >= 3)
      impl->look.rubberBand = QRectF(impl->pressedAt, event.pos());
    impl->canvas->update();
  };
  d->canvas->release = [this, impl](QMouseEvent& event)
  {
    if (!impl->pressed || event.button() != Qt::LeftButton)
      return;
    impl->pressed = false;
    const bool control = event.modifiers() & Qt::ControlModifier;
    if (impl->movingLegend)
    {
      impl->movingLegend = false;
      impl->canvas->update();
      return;
    }
    if (!impl->look.rubberBand.isNull())
    {
      const QRectF band = impl->look.rubberBand.normalized();
      impl->look.rubberBand = QRectF();
      impl->selectRows(
        rowsThrough(
          impl->curves, impl->frame(), band.left(), band.top(), band.right(), band.bottom()),
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
                               [impl](const auto& ids) { impl->select(ids); },
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
  connections().add(context.selection->connectSignalSelectionChanged(
    [impl](const std::set<unsigned long long>& ids) { impl->changes->selectionChanged(ids); }));

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
  // The columns of the first series file that can be read name the choices.
  std::vector<std::pair<QString, std::string>> xChoices{ { "(first column)", std::string() } };
  std::vector<std::pair<QString, std::string>> yChoices{ { "(second column)", std::string() } };
  for (const auto& path : d->seriesPaths)
  {
    const SeriesCache::Entry* entry = path.empty() ? nullptr : d->series.find(path);
    if (entry && entry->table)
    {
      for (const auto& name : entry->table->names)
      {
        xChoices.emplace_back(QString::fromStdString(name), name);
        yChoices.emplace_back(QString::fromStdString(name), name);
      }
      break;
    }
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
  return d->curves;
}

QPoint LinePlotView::pointOf(std::size_t curve, std::size_t point) const
{
  d->changes->catchUp();
  const PlotFrame frame = d->frame();
  const Curve& c = d->curves.curves.at(curve);
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
  return d->notes();
}

bool LinePlotView::working() const
{
  d->changes->catchUp();
  return d->series.pending() > 0 || d->seriesWaiting > 0;
}

std::size_t LinePlotView::seriesPending() const
{
  return d->series.pending();
}

std::size_t LinePlotView::highlightedCases() const
{
  d->changes->catchUp();
  return d->selectedCount;
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
  caseID = d->caseIds[rows.front()];
  return true;
}

} // namespace explorer
