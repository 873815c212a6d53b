#pragma once

// Range filter edits as undo steps, shared by the settings panel and the views that brush.

#include "datamanagement/Variable.h"
#include "datamanagement/WeakPtr.h"

class DataPipelineManager;
class DeleteSignaler;

namespace explorer
{

/// What the user set of one variable's range filter.
struct FilterState
{
  bool exists = false;
  double min = 0;
  double max = 0;
  bool enabled = false;

  bool operator==(const FilterState& other) const
  {
    return exists == other.exists && min == other.min && max == other.max &&
           enabled == other.enabled;
  }
};

FilterState filterState(const DataPipelineManager& pipeline, const WeakPtr<Variable>& variable);

/// Gives a variable's range filter the state `after` as one undo step, "Change Filter on
/// <variable>"; nothing when it has that state already. The step does nothing once `owner` is
/// gone.
void changeFilter(DataPipelineManager& pipeline,
                  const WeakPtr<Variable>& variable,
                  const FilterState& after,
                  const DeleteSignaler& owner);

} // namespace explorer
