#include "views/scatter/ScatterPlotModel.h"

#include "CaseKeys.h"
#include "CaseRowIndex.h"
#include "views/scatter/vtkCaseKeysFilter.h"

#include "analyzer_common/NiceNumber.h"
#include "charts/InvalidPointsFilter.h"
#include "datamanagement/Project.h"
#include "datapipeline/DataPipelineManagerInterface.h"

#include <vtkDoubleArray.h>
#include <vtkIdList.h>
#include <vtkIdTypeArray.h>
#include <vtkIntArray.h>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <algorithm>
#include <cmath>
#include <map>

namespace explorer
{

namespace
{

// A multiple of a nice step as the double nearest the decimal: 3 steps of 0.1 are 0.3, where
// 3 * 0.1 would be 0.30000000000000004.
double multipleOf(double count, double step)
{
  return step < 1 ? count / std::round(1 / step) : count * step;
}

} // namespace

const char* const ScatterPlotModel::caseOrder = vtkCaseKeysFilter::caseOrderColumnName;

struct ScatterPlotModel::Impl
{
  const DataPipelineManagerInterface& pipeline;
  std::shared_ptr<const Project> project;
  std::shared_ptr<const CaseKeys> keys;
  boost::shared_ptr<const VariableProperty> x;
  boost::shared_ptr<const VariableProperty> y;
  boost::shared_ptr<const VariableProperty> colour;
  vtkSmartPointer<vtkCaseKeysFilter> keyed = vtkSmartPointer<vtkCaseKeysFilter>::New();
  vtkSmartPointer<InvalidPointsFilter> plottable;
  vtkSmartPointer<vtkTable> table;
  // Whether the table's keys ascend with its rows, as the pipeline keeps the study's order; if
  // not, the rows by case id. Found when a selection first asks after the key column changed
  // (not on a change of X alone: the same rows keep the same key column).
  mutable const void* indexedKeys = nullptr;
  mutable vtkMTimeType indexedKeysTime = 0;
  mutable bool keysAscend = false;
  mutable CaseRowIndex rowOfCase;
  bool logX = false;
  bool logY = false;
  // Cases with a value at or below zero on a logarithmic axis, at the last update.
  vtkIdType notPositive = 0;
  // Answers that take a pass over a whole column (ten million values in a large study), kept
  // for the next time they are asked: the half gap by variable id (a study's values never
  // change), and the colour column's missing values by the column counted and its modification
  // time (which counts up across every VTK object, so a new column at an old address differs).
  mutable std::map<unsigned long long, double> halfGaps;
  mutable const void* countedColour = nullptr;
  mutable vtkMTimeType countedColourTime = 0;
  mutable std::size_t withoutColour = 0;

  // The plotted rows without those a logarithmic axis cannot place.
  void leaveOutNotPositive(const std::string& xName, const std::string& yName)
  {
    notPositive = 0;
    if (!logX && !logY)
      return;
    auto* xs = vtkDoubleArray::SafeDownCast(table->GetColumnByName(xName.c_str()));
    auto* ys = vtkDoubleArray::SafeDownCast(table->GetColumnByName(yName.c_str()));
    auto rows = vtkSmartPointer<vtkIdTypeArray>::New();
    for (vtkIdType row = 0; row < table->GetNumberOfRows(); ++row)
    {
      if ((logX && xs && !(xs->GetValue(row) > 0)) || (logY && ys && !(ys->GetValue(row) > 0)))
        ++notPositive;
      else
        rows->InsertNextValue(row);
    }
    if (notPositive == 0)
      return;
    std::vector<std::string> names;
    for (vtkIdType c = 0; c < table->GetNumberOfColumns(); ++c)
      names.emplace_back(table->GetColumnName(c));
    table = rowsOf(*table, *rows, names);
  }

  // Column 0 of the plotted table: the case keys; null without a table.
  vtkIntArray* keyColumn() const
  {
    return table && table->GetNumberOfColumns() > 0 ? vtkIntArray::SafeDownCast(table->GetColumn(0))
                                                    : nullptr;
  }

  explicit Impl(const DataPipelineManagerInterface& pipeline)
    : pipeline(pipeline)
  {
  }
};

ScatterPlotModel::ScatterPlotModel(const DataPipelineManagerInterface& pipeline,
                                   std::shared_ptr<const Project> project,
                                   std::shared_ptr<const CaseKeys> keys,
                                   boost::shared_ptr<const VariableProperty> x,
                                   boost::shared_ptr<const VariableProperty> y,
                                   boost::shared_ptr<const VariableProperty> colour)
  : d(std::make_unique<Impl>(pipeline))
{
  d->project = std::move(project);
  d->keys = std::move(keys);
  d->x = std::move(x);
  d->y = std::move(y);
  d->colour = std::move(colour);
  d->keyed->SetKeys(d->keys);
  d->keyed->SetInputConnection(pipeline.output()->GetOutputPort());
  // A case is plotted when it has X and Y; a missing colour value is drawn grey.
  d->plottable = InvalidPointsFilter::New({ d->x, d->y });
  d->plottable->SetInputConnection(d->keyed->GetOutputPort());
}

ScatterPlotModel::~ScatterPlotModel() = default;

void ScatterPlotModel::setLogAxes(bool x, bool y)
{
  d->logX = x;
  d->logY = y;
}

vtkSmartPointer<vtkTable> ScatterPlotModel::update()
{
  d->table = nullptr;
  if (d->y->value().lock().isNull())
    return nullptr;
  d->keyed->SetColumns({ xColumn(), yColumn(), d->colour->value().lock().name() });
  d->plottable->Update();
  d->table = vtkSmartPointer<vtkTable>::New();
  d->table->ShallowCopy(d->plottable->GetOutput());
  d->leaveOutNotPositive(xColumn(), yColumn());
  return d->table;
}

vtkTable* ScatterPlotModel::table() const
{
  return d->table;
}

std::string ScatterPlotModel::xColumn() const
{
  const Variable variable = d->x->value().lock();
  return variable.isNull() ? caseOrder : variable.name();
}

std::string ScatterPlotModel::yColumn() const
{
  return d->y->value().lock().name();
}

std::string ScatterPlotModel::leftOutNote() const
{
  if (d->y->value().lock().isNull())
    return d->project->variables().empty()
             ? "The study has no variables to plot."
             : "Nothing to plot: choose a numeric Y variable (no number of this study varies).";
  d->pipeline.output()->Update();
  const vtkIdType shown = d->pipeline.output()->GetOutput()->GetNumberOfRows();
  const vtkIdType plotted = d->table ? d->table->GetNumberOfRows() : 0;
  const vtkIdType missing = shown - plotted - d->notPositive;
  std::string note;
  if (missing > 0)
  {
    const Variable x = d->x->value().lock();
    note = std::to_string(missing) + " of " + std::to_string(shown) + " cases have no value of " +
           (x.isNull() ? yColumn() : x.name() + " or " + yColumn()) + " and are not shown.";
  }
  if (d->notPositive > 0)
    note += (note.empty() ? "" : "\n") + std::to_string(d->notPositive) + " of " +
            std::to_string(shown) +
            " cases are at or below zero on a logarithmic axis and are not shown.";
  return note;
}

std::size_t ScatterPlotModel::withoutColour() const
{
  const std::string name = d->colour->value().lock().name();
  auto* values = d->table && !name.empty()
                   ? vtkDoubleArray::SafeDownCast(d->table->GetColumnByName(name.c_str()))
                   : nullptr;
  if (!values)
    return 0;
  if (values != d->countedColour || values->GetMTime() != d->countedColourTime)
  {
    const double* first = values->GetPointer(0);
    d->withoutColour = static_cast<std::size_t>(std::count_if(
      first, first + values->GetNumberOfValues(), [](double v) { return std::isnan(v); }));
    d->countedColour = values;
    d->countedColourTime = values->GetMTime();
  }
  return d->withoutColour;
}

long long ScatterPlotModel::rowOfCase(unsigned long long caseId) const
{
  const std::vector<int> rows = rowsOfCases({ caseId });
  return rows.empty() ? -1 : rows.front();
}

std::vector<int> ScatterPlotModel::rowsOfCases(
  const std::vector<unsigned long long>& sortedCaseIds) const
{
  vtkIntArray* keys = d->keyColumn();
  if (!keys)
    return {};
  const int* first = keys->GetPointer(0);
  const auto count = static_cast<std::size_t>(keys->GetNumberOfTuples());
  const int* last = first + count;
  if (keys != d->indexedKeys || keys->GetMTime() != d->indexedKeysTime)
  {
    d->keysAscend = (count == 0 || first[0] >= 0) &&
                    std::adjacent_find(first, last, std::greater_equal<>()) == last;
    d->rowOfCase.assign(CaseIds());
    if (!d->keysAscend)
    {
      std::vector<unsigned long long> caseIds(count);
      for (std::size_t row = 0; row < count; ++row)
        d->keys->caseIdOf(static_cast<unsigned long long>(first[row]), caseIds[row]);
      d->rowOfCase.assign(CaseIds(std::move(caseIds)));
    }
    d->indexedKeys = keys;
    d->indexedKeysTime = keys->GetMTime();
  }
  if (!d->keysAscend)
  {
    std::vector<int> rows = d->rowOfCase.rowsOf(sortedCaseIds);
    std::sort(rows.begin(), rows.end());
    return rows;
  }

  // The keys ascend with the rows: the selection's keys are found in the key column itself,
  // without a case id per row (80 MB at ten million runs, made again after every filter).
  return positionsIn<int>(first, count, d->keys->keysOf(sortedCaseIds));
}

std::vector<unsigned long long> ScatterPlotModel::caseIdsOfRows(const vtkIdTypeArray& rows) const
{
  vtkIntArray* keys = d->keyColumn();
  std::vector<unsigned long long> caseIds;
  if (!keys)
    return caseIds;
  caseIds.reserve(static_cast<std::size_t>(rows.GetNumberOfValues()));
  for (vtkIdType i = 0; i < rows.GetNumberOfValues(); ++i)
  {
    const vtkIdType row = rows.GetValue(i);
    unsigned long long caseId = 0;
    if (row >= 0 && row < keys->GetNumberOfTuples() &&
        d->keys->caseIdOf(static_cast<unsigned long long>(keys->GetValue(row)), caseId))
      caseIds.push_back(caseId);
  }
  return caseIds;
}

bool ScatterPlotModel::caseOfKey(long long key, unsigned long long& caseId) const
{
  return key >= 0 && d->keys->caseIdOf(static_cast<unsigned long long>(key), caseId);
}

double ScatterPlotModel::halfGap(const Variable& variable) const
{
  const auto* values = variable.isNull() || variable.nature() != Variable::Discrete
                         ? nullptr
                         : d->project->numericValues(variable);
  if (!values)
    return 0;
  const auto kept = d->halfGaps.find(variable.id());
  if (kept != d->halfGaps.end())
    return kept->second;
  // A discrete variable has few values: a short list searched in order.
  std::vector<double> distinct;
  for (double value : *values)
    if (!std::isnan(value) && std::find(distinct.begin(), distinct.end(), value) == distinct.end())
      distinct.push_back(value);
  const auto range = variable.range();
  const double gap = distinct.size() < 2 ? 0
                                         : (range.second - range.first) /
                                             (2.0 * static_cast<double>(distinct.size() - 1));
  d->halfGaps.emplace(variable.id(), gap);
  return gap;
}

bool ScatterPlotModel::axisRange(double min,
                                 double max,
                                 double markerShare,
                                 double halfGap,
                                 double& from,
                                 double& to)
{
  const double span = max - min;
  if (!std::isfinite(span) || span < 0)
    return false;
  const double margin = std::max({ 0.04 * span, span * markerShare, halfGap });
  if (span == 0)
  {
    const double half = min == 0 ? 1 : makeNiceNumber(std::abs(min) / 10);
    from = min - half;
    to = min + half;
    return true;
  }
  const double step = makeNiceNumber(span / 100);
  from = multipleOf(std::floor((min - margin) / step), step);
  to = multipleOf(std::ceil((max + margin) / step), step);
  return true;
}

std::vector<double> ScatterPlotModel::customTicks(double min, double max, double spacing)
{
  const double low = std::min(min, max);
  const double high = std::max(min, max);
  std::vector<double> ticks;
  if (!(spacing > 0) || !std::isfinite(low) || !std::isfinite(high) ||
      (high - low) / spacing > 10000)
    return ticks;
  for (double k = std::ceil(low / spacing); k <= std::floor(high / spacing); ++k)
    ticks.push_back(multipleOf(k, spacing) + 0.0); // + 0.0: never "-0"
  return ticks;
}

vtkSmartPointer<vtkTable> ScatterPlotModel::rowsOf(vtkTable& table,
                                                   vtkIdTypeArray& rows,
                                                   const std::vector<std::string>& names)
{
  auto ids = vtkSmartPointer<vtkIdList>::New();
  auto positions = vtkSmartPointer<vtkIdList>::New();
  ids->SetNumberOfIds(rows.GetNumberOfTuples());
  positions->SetNumberOfIds(rows.GetNumberOfTuples());
  for (vtkIdType i = 0; i < rows.GetNumberOfTuples(); ++i)
  {
    ids->SetId(i, rows.GetValue(i));
    positions->SetId(i, i);
  }
  auto subset = vtkSmartPointer<vtkTable>::New();
  for (const std::string& name : names)
  {
    vtkAbstractArray* column = table.GetColumnByName(name.c_str());
    if (!column || subset->GetColumnByName(name.c_str()))
      continue;
    vtkSmartPointer<vtkAbstractArray> copy;
    copy.TakeReference(vtkAbstractArray::CreateArray(column->GetDataType()));
    copy->SetName(column->GetName());
    copy->SetNumberOfComponents(column->GetNumberOfComponents());
    copy->InsertTuples(positions, ids, column);
    subset->AddColumn(copy);
  }
  return subset;
}

} // namespace explorer
