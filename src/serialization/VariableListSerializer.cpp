#include "serialization/VariableListSerializer.h"
#include "datamanagement/Project.h"
#include "properties/PropertyAbstract.h"
#include "serialization/VariableByName_p.h"

#include <QDomDocument>
#include <QDomElement>

using serialization_detail::findByName;

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
