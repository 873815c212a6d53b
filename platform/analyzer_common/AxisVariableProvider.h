#pragma once

#include "analyzer_common/quen_analyzer_common_export.h"
#include "datamanagement/Variable.h"
#include "datamanagement/WeakPtr.h"

#include <set>
#include <vector>

/// Hands out a list's variables of a requested nature one after the other, so that the axes of
/// a new view start on different variables.
class QUEN_ANALYZER_COMMON_EXPORT AxisVariableProvider
{
public:
  explicit AxisVariableProvider(std::vector<WeakPtr<Variable>> variables);

  /// The next variable of that nature (a Variable::Nature value) not handed out yet, in list
  /// order; the empty handle when none is left.
  WeakPtr<Variable> next(int nature);

private:
  std::vector<WeakPtr<Variable>> variables;
  std::set<unsigned long long> handedOut;
};
