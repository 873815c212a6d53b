#include "serialization/VariableInfoSerializer.h"
#include "datamanagement/Project.h"
#include "properties/PropertyAbstract.h"
#include "serialization/VariableByName_p.h"

#include <QDomDocument>
#include <QDomElement>

using serialization_detail::findByName;

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
