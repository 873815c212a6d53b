#include "datapipeline/DataPipelineManager.h"

#include "common_vtk/vtkArrayOver.h"
#include "datamanagement/Project.h"
#include "datapipeline/RangeFilter.h"
#include "datapipeline/vtkFilteredCasesAlgorithm.h"
#include "signals/SignalConnectionCollection.h"

#include <boost/make_shared.hpp>
#include <vtkDoubleArray.h>
#include <vtkStringArray.h>
#include <vtkTable.h>
#include <vtkTypeUInt64Array.h>

#include <algorithm>

namespace
{

// A column of the project's numbers (its case ids, a numeric variable) as a VTK array over the
// project's own values: a study of ten million cases would otherwise hold every value twice. The
// project is immutable and nothing writes into a pipeline's input; the array keeps the project
// alive, since views may keep the pipeline's output after the pipeline is gone.
template<typename ArrayT, typename T>
vtkSmartPointer<ArrayT> projectColumn(const std::vector<T>& values,
                                      const std::shared_ptr<const Project>& project)
{
  return vtkArrayOver<ArrayT>(values.data(), static_cast<vtkIdType>(values.size()), 1, project);
}

vtkSmartPointer<vtkTable> casesTable(const std::shared_ptr<const Project>& owner)
{
  const Project& project = *owner;
  auto table = vtkSmartPointer<vtkTable>::New();
  const auto& ids = project.caseIds();
  const auto rows = static_cast<vtkIdType>(ids.size());

  auto caseIds = projectColumn<vtkTypeUInt64Array>(ids, owner);
  caseIds->SetName("case_id");
  table->AddColumn(caseIds);

  for (const auto& handle : project.variables())
  {
    const Variable variable = handle.lock();
    if (const auto* numbers = project.numericValues(variable))
    {
      auto column = projectColumn<vtkDoubleArray>(*numbers, owner);
      column->SetName(variable.name().c_str());
      table->AddColumn(column);
    }
    else if (const auto* texts = project.textValues(variable))
    {
      auto column = vtkSmartPointer<vtkStringArray>::New();
      column->SetName(variable.name().c_str());
      column->SetNumberOfValues(rows);
      for (vtkIdType row = 0; row < rows; ++row)
        column->SetValue(row, (*texts)[static_cast<std::size_t>(row)]);
      table->AddColumn(column);
    }
  }
  return table;
}

} // namespace

struct DataPipelineManager::Impl
{
  struct Entry
  {
    boost::shared_ptr<FilterInterface> filter;
    bool enabled = true;
  };

  std::shared_ptr<const Project> project;
  vtkSmartPointer<vtkTable> cases;
  vtkSmartPointer<vtkFilteredCasesAlgorithm> output;
  std::vector<Entry> entries;
  mutable ChangedSignal signalPipelineChanged;
  SignalConnectionCollection filterConnections;

  std::vector<Entry>::iterator find(const WeakPtr<Variable>& variable)
  {
    return std::find_if(entries.begin(),
                        entries.end(),
                        [&](const Entry& entry) { return entry.filter->variable() == variable; });
  }

  std::vector<boost::shared_ptr<FilterInterface>> active() const
  {
    std::vector<boost::shared_ptr<FilterInterface>> result;
    for (const auto& entry : entries)
    {
      if (entry.enabled)
        result.push_back(entry.filter);
    }
    return result;
  }

  // Every change ends here: the output re-executes on its next update and listeners hear of it.
  void changed()
  {
    output->SetFilters(active());
    signalPipelineChanged();
  }

  void reconnectFilters()
  {
    filterConnections.clear();
    for (const auto& entry : entries)
      filterConnections.add(entry.filter->connectSignalFilterChanged([this] { changed(); }));
  }
};

DataPipelineManager::DataPipelineManager(std::shared_ptr<const Project> project)
  : d(std::make_unique<Impl>())
{
  d->output = vtkSmartPointer<vtkFilteredCasesAlgorithm>::New();
  d->project = project ? std::move(project) : Project::project();
  d->cases = casesTable(d->project);
  d->output->SetCases(d->cases);
}

DataPipelineManager::~DataPipelineManager()
{
  // Views may keep the output algorithm alive; leave it with the cases and no filters.
  d->filterConnections.clear();
  d->output->SetFilters({});
}

void DataPipelineManager::setProject(std::shared_ptr<const Project> project)
{
  d->project = project ? std::move(project) : Project::project();
  d->cases = casesTable(d->project);
  d->entries.clear();
  d->reconnectFilters();
  d->output->SetCases(d->cases);
  d->changed();
}

std::shared_ptr<const Project> DataPipelineManager::project() const
{
  return d->project;
}

vtkSmartPointer<vtkTable> DataPipelineManager::cases() const
{
  return d->cases;
}

vtkSmartPointer<vtkTableAlgorithm> DataPipelineManager::output() const
{
  return d->output;
}

boost::shared_ptr<FilterInterface> DataPipelineManager::filter(
  const WeakPtr<Variable>& variable) const
{
  const auto found = d->find(variable);
  return found == d->entries.end() ? nullptr : found->filter;
}

std::vector<boost::shared_ptr<FilterInterface>> DataPipelineManager::activeFilters() const
{
  return d->active();
}

boost::signals2::connection DataPipelineManager::connectSignalPipelineChanged(
  const ChangedSignal::slot_type& slot) const
{
  return d->signalPipelineChanged.connect(slot);
}

void DataPipelineManager::setFilter(const boost::shared_ptr<FilterInterface>& filter)
{
  if (!filter)
  {
    return;
  }
  const auto found = d->find(filter->variable());
  if (found != d->entries.end())
    *found = { filter, true };
  else
    d->entries.push_back({ filter, true });
  d->reconnectFilters();
  d->changed();
}

boost::shared_ptr<RangeFilter>
DataPipelineManager::setRangeFilter(const WeakPtr<Variable>& variable, double min, double max)
{
  const auto found = d->find(variable);
  if (found != d->entries.end())
  {
    if (auto range = boost::dynamic_pointer_cast<RangeFilter>(found->filter))
    {
      const bool wasEnabled = found->enabled;
      found->enabled = true;
      if (range->range() != std::make_pair(min, max))
        range->setRange(min, max); // signals through the filter's connection
      else if (!wasEnabled)
        d->changed();
      return range;
    }
  }
  auto range = boost::make_shared<RangeFilter>(variable, min, max);
  setFilter(range);
  return range;
}

void DataPipelineManager::removeFilter(const WeakPtr<Variable>& variable)
{
  const auto found = d->find(variable);
  if (found == d->entries.end())
  {
    return;
  }
  d->entries.erase(found);
  d->reconnectFilters();
  d->changed();
}

void DataPipelineManager::setFilterEnabled(const WeakPtr<Variable>& variable, bool enabled)
{
  const auto found = d->find(variable);
  if (found == d->entries.end() || found->enabled == enabled)
  {
    return;
  }
  found->enabled = enabled;
  d->changed();
}

bool DataPipelineManager::isFilterEnabled(const WeakPtr<Variable>& variable) const
{
  const auto found = d->find(variable);
  return found != d->entries.end() && found->enabled;
}

std::vector<boost::shared_ptr<FilterInterface>> DataPipelineManager::filters() const
{
  std::vector<boost::shared_ptr<FilterInterface>> result;
  for (const auto& entry : d->entries)
    result.push_back(entry.filter);
  return result;
}
