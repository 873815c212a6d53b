#pragma once

#include "derived/SeriesFeatures.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

class Project;

namespace explorer
{

/// A variable the user computes from the study's others: a name and an expression (see
/// Expression for the language).
struct DerivedVariable
{
  std::string name;
  std::string expression;

  friend bool operator==(const DerivedVariable& a, const DerivedVariable& b)
  {
    return a.name == b.name && a.expression == b.expression;
  }
  friend bool operator!=(const DerivedVariable& a, const DerivedVariable& b) { return !(a == b); }
};
using DerivedVariables = std::vector<DerivedVariable>;

/// The columns of series features, one per feature, in record order (see SeriesFeatureColumns).
using SeriesColumns =
  std::function<std::vector<std::vector<double>>(const std::vector<SeriesFeature>&)>;

/// The study `shown`, which holds the derived variables `present`, holding `wanted` instead.
/// They are computed in order, so that each can use the ones before it; `series` gives the
/// figures of the runs' series they use. Throws ExpressionError naming the variable and the
/// reason ("ratio: there is no variable named \"spd\" (column 1)") when one cannot be
/// computed; `shown` is left as it is.
std::shared_ptr<const Project> withDerivedVariables(const Project& shown,
                                                    const DerivedVariables& present,
                                                    const DerivedVariables& wanted,
                                                    const SeriesColumns& series = {});

/// Parses a "NAME=EXPRESSION" definition, as given on the command line. Throws ExpressionError
/// when there is no '=' or no name.
DerivedVariable derivedVariableOf(const std::string& definition);

} // namespace explorer
