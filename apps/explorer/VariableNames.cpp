#include "VariableNames.h"

namespace explorer
{

namespace
{

const char* rolePrefix(Variable::Role role)
{
  switch (role)
  {
    case Variable::Input:
      return "in:";
    case Variable::Output:
      return "out:";
    case Variable::Unknown:
      break;
  }
  return "";
}

} // namespace

std::string exportedName(const std::string& name, Variable::Role role)
{
  return rolePrefix(role) + name;
}

QString headerName(const std::string& name, Variable::Role role)
{
  const QString prefix = QString::fromLatin1(rolePrefix(role));
  return (prefix.isEmpty() ? prefix : prefix + ' ') + QString::fromStdString(name);
}

} // namespace explorer
