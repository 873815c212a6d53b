#include "VariableRoles.h"

#include "PairsSerializer.h"

#include "datamanagement/Project.h"
#include "properties/Property.h"
#include "properties/UndoablePropertyProxy.h"

#include <boost/make_shared.hpp>

#include <stdexcept>

namespace explorer
{

namespace
{

using Strings = std::vector<std::string>;

const char* roleName(Variable::Role role)
{
  switch (role)
  {
    case Variable::Input:
      return "input";
    case Variable::Output:
      return "output";
    case Variable::Unknown:
      break;
  }
  return "unknown";
}

bool roleNamed(const std::string& name, Variable::Role& role)
{
  for (Variable::Role candidate : { Variable::Input, Variable::Output, Variable::Unknown })
  {
    if (name == roleName(candidate))
    {
      role = candidate;
      return true;
    }
  }
  return false;
}

} // namespace

struct VariableRoles::Impl
{
  std::shared_ptr<const Project> project;
  boost::shared_ptr<plexa::UndoablePropertyProxy<Strings>> said =
    boost::make_shared<plexa::UndoablePropertyProxy<Strings>>(
      "Variable Roles",
      boost::make_shared<plexa::Property<Strings>>(Strings()));
};

VariableRoles::VariableRoles(std::shared_ptr<const Project> project)
  : d(std::make_unique<Impl>())
{
  d->project = std::move(project);
}

VariableRoles::~VariableRoles() = default;

Variable::Role VariableRoles::role(const std::string& variable) const
{
  const Strings pairs = d->said->value();
  for (std::size_t i = 0; i + 1 < pairs.size(); i += 2)
  {
    Variable::Role said = Variable::Unknown;
    if (pairs[i] == variable && roleNamed(pairs[i + 1], said))
      return said;
  }
  const Variable found = d->project->variable(variable).lock();
  return found.isNull() ? Variable::Unknown : found.role();
}

void VariableRoles::setRole(const std::string& variable, Variable::Role role)
{
  if (d->project->variable(variable).lock().isNull())
    throw std::invalid_argument("the study has no variable '" + variable + "'");
  Strings pairs = d->said->value();
  bool replaced = false;
  for (std::size_t i = 0; i + 1 < pairs.size(); i += 2)
  {
    if (pairs[i] == variable)
    {
      pairs[i + 1] = roleName(role);
      replaced = true;
    }
  }
  if (!replaced)
  {
    pairs.push_back(variable);
    pairs.push_back(roleName(role));
  }
  d->said->setValue(pairs);
}

boost::shared_ptr<plexa::PropertyAbstract<Strings>> VariableRoles::said() const
{
  return d->said;
}

boost::shared_ptr<SerializerInterface> VariableRoles::serializer() const
{
  // <VariableRoles><Variable name="Depth [ft]" role="input"/>...</VariableRoles>
  return boost::make_shared<PairsSerializer>(
    PairsSerializer::Names{ "VariableRoles", "Variable", "name", "role" },
    d->said,
    [project = d->project](const std::string& name, const std::string& role)
    {
      Variable::Role known = Variable::Unknown;
      if (project->variable(name).lock().isNull())
        throw std::invalid_argument("the study has no variable '" + name + "'");
      if (!roleNamed(role, known))
        throw std::invalid_argument("'" + role + "' is no role (input, output or unknown)");
    });
}

} // namespace explorer
