#include "PairsSerializer.h"

#include "properties/PropertyAbstract.h"

#include <QDomElement>

namespace explorer
{

PairsSerializer::PairsSerializer(
  Names names,
  boost::shared_ptr<plexa::PropertyAbstract<std::vector<std::string>>> pairs,
  Check check)
  : Serializer(names.element)
  , names(names)
  , pairs(std::move(pairs))
  , check(std::move(check))
{
}

void PairsSerializer::serializeSelf(QDomElement& element) const
{
  const std::vector<std::string> values = pairs->value();
  for (std::size_t i = 0; i + 1 < values.size(); i += 2)
  {
    QDomElement child = element.ownerDocument().createElement(names.child);
    child.setAttribute(names.first, QString::fromStdString(values[i]));
    child.setAttribute(names.second, QString::fromStdString(values[i + 1]));
    element.appendChild(child);
  }
}

void PairsSerializer::deserializeSelf(QDomElement& element) const
{
  std::vector<std::string> values;
  for (QDomElement child = element.firstChildElement(names.child); !child.isNull();
       child = child.nextSiblingElement(names.child))
  {
    const std::string first = child.attribute(names.first).toStdString();
    const std::string second = child.attribute(names.second).toStdString();
    check(first, second);
    values.push_back(first);
    values.push_back(second);
  }
  pairs->setValue(values);
}

} // namespace explorer
