#pragma once

// Finding a variable among candidates by its name, for the serializers that read variables back.

#include "datamanagement/Variable.h"
#include "datamanagement/WeakPtr.h"

#include <string>
#include <vector>

namespace serialization_detail
{

/// The first candidate named exactly `name`; an empty handle when none is.
inline WeakPtr<Variable, unsigned long long> findByName(
  const std::vector<WeakPtr<Variable, unsigned long long>>& candidates,
  const std::string& name)
{
  for (const auto& candidate : candidates)
  {
    if (candidate.lock().name() == name)
    {
      return candidate;
    }
  }
  return {};
}

} // namespace serialization_detail
