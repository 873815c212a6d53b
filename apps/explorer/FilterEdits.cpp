#include "FilterEdits.h"

#include "analyzer_common/GenericUndoCommand.h"
#include "analyzer_common/UndoStack.h"
#include "datapipeline/DataPipelineManager.h"
#include "datapipeline/RangeFilter.h"

namespace explorer
{

namespace
{

void applyFilterState(DataPipelineManager& pipeline,
                      const WeakPtr<Variable>& variable,
                      const FilterState& state)
{
  if (!state.exists)
  {
    pipeline.removeFilter(variable);
    return;
  }
  pipeline.setRangeFilter(variable, state.min, state.max);
  pipeline.setFilterEnabled(variable, state.enabled);
}

} // namespace

FilterState filterState(const DataPipelineManager& pipeline, const WeakPtr<Variable>& variable)
{
  const auto filter = boost::dynamic_pointer_cast<RangeFilter>(pipeline.filter(variable));
  if (!filter)
    return {};
  return {
    true, filter->range().first, filter->range().second, pipeline.isFilterEnabled(variable)
  };
}

void changeFilter(DataPipelineManager& pipeline,
                  const WeakPtr<Variable>& variable,
                  const FilterState& after,
                  const DeleteSignaler& owner)
{
  const FilterState before = filterState(pipeline, variable);
  if (before == after)
    return;
  DataPipelineManager* target = &pipeline;
  UndoStack().push(new GenericUndoCommand(
    [target, variable, after] { applyFilterState(*target, variable, after); },
    [target, variable, before] { applyFilterState(*target, variable, before); },
    owner,
    "Change Filter on " + QString::fromStdString(variable.lock().name()),
    -1,
    nullptr));
}

} // namespace explorer
