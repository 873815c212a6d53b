#include "derived/DerivedVariables.h"

#include "derived/Expression.h"

#include "datamanagement/Project.h"
#include "datamanagement/ProjectBuilder.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace explorer
{

namespace
{

bool isPresent(const DerivedVariables& derived, const std::string& name)
{
  return std::any_of(derived.begin(),
                     derived.end(),
                     [&name](const DerivedVariable& variable) { return variable.name == name; });
}

std::string trimmed(const std::string& text)
{
  const auto first = text.find_first_not_of(" \t");
  if (first == std::string::npos)
    return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

} // namespace

std::shared_ptr<const Project> withDerivedVariables(const Project& shown,
                                                    const DerivedVariables& present,
                                                    const DerivedVariables& wanted,
                                                    const SeriesColumns& series)
{
  std::vector<std::string> removed;
  for (const auto& variable : present)
    removed.push_back(variable.name);

  // A derived variable reads the study's own variables and the derived ones computed before it.
  std::vector<std::pair<std::string, std::vector<double>>> computed;
  const auto columnOf = [&](const std::string& name) -> const std::vector<double>*
  {
    for (const auto& [computedName, values] : computed)
    {
      if (computedName == name)
        return &values;
    }
    if (isPresent(present, name))
      return nullptr;
    return shown.numericValues(shown.variable(name).lock());
  };
  const auto kindOf = [&](const std::string& name)
  {
    if (columnOf(name))
      return Expression::NameKind::Numbers;
    const bool isStudyVariable = !isPresent(present, name) && !shown.variable(name).lock().isNull();
    return isStudyVariable ? Expression::NameKind::Text : Expression::NameKind::Unknown;
  };

  for (const DerivedVariable& variable : wanted)
  {
    const auto refuse = [&variable](const std::string& why)
    { throw ExpressionError(variable.name + ": " + why); };
    if (trimmed(variable.name).empty())
      throw ExpressionError("a derived variable needs a name");
    if (trimmed(variable.name) != variable.name)
      refuse("a name may not begin or end with a space");
    if (kindOf(variable.name) != Expression::NameKind::Unknown ||
        variable.name == ProjectBuilder::caseIdName)
      refuse("the study has a variable of that name already");
    try
    {
      const Expression expression = Expression::parse(variable.expression, kindOf);
      const auto& features = expression.seriesFeatures();
      std::vector<std::vector<double>> featureColumns;
      if (!features.empty())
      {
        if (!series)
          throw ExpressionError("the runs' series are not read here");
        featureColumns = series(features);
      }
      std::vector<const double*> values;
      for (const auto& name : expression.variables())
      {
        const auto feature =
          std::find_if(features.begin(),
                       features.end(),
                       [&name](const SeriesFeature& f) { return f.text() == name; });
        values.push_back(feature == features.end()
                           ? columnOf(name)->data()
                           : featureColumns[std::size_t(feature - features.begin())].data());
      }
      std::vector<double> result(shown.numberOfRecords());
      expression.evaluate(values, result.size(), result.data());
      computed.emplace_back(variable.name, std::move(result));
    }
    catch (const ExpressionError& e)
    {
      refuse(e.what());
    }
  }
  return ProjectBuilder::withColumns(shown, removed, std::move(computed));
}

DerivedVariable derivedVariableOf(const std::string& definition)
{
  const auto equals = definition.find('=');
  if (equals == std::string::npos)
    throw ExpressionError("\"" + definition + "\" is not NAME=EXPRESSION");
  DerivedVariable variable{ trimmed(definition.substr(0, equals)), definition.substr(equals + 1) };
  if (variable.name.empty())
    throw ExpressionError("\"" + definition + "\" gives no name before '='");
  return variable;
}

} // namespace explorer
