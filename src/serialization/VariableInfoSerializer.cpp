#include "serialization/VariableInfoSerializer.h"
#include "datamanagement/Project.h"
#include "properties/PropertyAbstract.h"

#include <QDomDocument>
#include <QDomElement>

namespace
{

WeakPtr<Variable, unsigned long long> findByName(
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

} // namespace

VariableInfoSerializer::VariableInfoSerializer(
  const std::string& name,
  boost::shared_ptr<VariableProperty> property,
  std::vector<WeakPtr<Variable, unsigned long long>> candidates)
  : Serializer(name)
  , property(std::move(property))
  , candidates(std::move(candidates))
{
}

VariableInfoSerializer::~VariableInfoSerializer() = default;

void VariableInfoSerializer::serializeSelf(QDomElement& element) const
{
  const Variable variable = property->value().lock();
  if (variable)
  {
    element.appendChild(
      element.ownerDocument().createTextNode(QString::fromStdString(variable.name())));
  }
}

void VariableInfoSerializer::deserializeSelf(QDomElement& element) const
{
  const std::string name = element.text().toStdString();
  if (name.empty())
  {
    return;
  }
  const auto found = findByName(candidates, name);
  if (!found.lock().isNull())
  {
    property->setValue(found);
  }
}

VariableListSerializer::VariableListSerializer(
  const std::string& name,
  boost::shared_ptr<VariableListProperty> property,
  std::vector<WeakPtr<Variable, unsigned long long>> candidates)
  : Serializer(name)
  , property(std::move(property))
  , candidates(std::move(candidates))
{
}

VariableListSerializer::~VariableListSerializer() = default;

void VariableListSerializer::serializeSelf(QDomElement& element) const
{
  QDomDocument document = element.ownerDocument();
  for (const auto& handle : property->value())
  {
    QDomElement child = document.createElement("Variable");
    child.setAttribute("name", QString::fromStdString(handle.lock().name()));
    element.appendChild(child);
  }
}

void VariableListSerializer::deserializeSelf(QDomElement& element) const
{
  std::vector<WeakPtr<Variable, unsigned long long>> result;
  for (QDomElement child = element.firstChildElement(); !child.isNull();
       child = child.nextSiblingElement())
  {
    if (child.tagName() != "Variable" || !child.hasAttribute("name"))
    {
      continue;
    }
    const auto found = findByName(candidates, child.attribute("name").toStdString());
    if (!found.lock().isNull())
    {
      result.push_back(found);
    }
  }
  property->setValue(result);
}
