#include "analyzer_common/AxisVariableProvider.h"

AxisVariableProvider::AxisVariableProvider(std::vector<WeakPtr<Variable>> variables)
  : variables(std::move(variables))
{
}

WeakPtr<Variable> AxisVariableProvider::next(int nature)
{
  for (const auto& candidate : variables)
  {
    const Variable variable = candidate.lock();
    if (variable && static_cast<int>(variable.nature()) == nature &&
        handedOut.insert(candidate.id()).second)
    {
      return candidate;
    }
  }
  return {};
}
