#include "serialize/Serializer.h"

#include <QDomDocument>
#include <QDomElement>

#include <utility>

bool Serializer::isInMiddleOfDeserialization = false;

namespace
{

// Raises the flag for the outermost deserialize() and lowers it when that call leaves, also
// through an exception, so that a failed read never leaves the flag stuck.
class DeserializationScope
{
public:
  DeserializationScope()
    : outermost(!Serializer::isInMiddleOfDeserialization)
  {
    Serializer::isInMiddleOfDeserialization = true;
  }
  ~DeserializationScope()
  {
    if (outermost)
    {
      Serializer::isInMiddleOfDeserialization = false;
    }
  }
  DeserializationScope(const DeserializationScope&) = delete;
  DeserializationScope& operator=(const DeserializationScope&) = delete;

private:
  bool outermost;
};

} // namespace

Serializer::Serializer(std::string name)
  : elementName(std::move(name))
{
}

Serializer::~Serializer() = default;

QDomElement Serializer::serialize(QDomDocument& document)
{
  QDomElement element = document.createElement(QString::fromStdString(elementName));
  serializeSelf(element);
  for (const auto& sub : subElements)
  {
    if (!sub.deserializeOnly)
    {
      element.appendChild(sub.serializer->serialize(document));
    }
  }
  return element;
}

void Serializer::deserialize(QDomElement& element) const
{
  DeserializationScope scope;
  deserializeSelf(element);
  for (const auto& sub : subElements)
  {
    QDomElement child = element.firstChildElement(QString::fromStdString(sub.serializer->name()));
    if (!child.isNull())
    {
      sub.serializer->deserialize(child);
    }
  }
}

std::string Serializer::name() const
{
  return elementName;
}

void Serializer::addSubElement(boost::shared_ptr<SerializerInterface> subElement)
{
  subElements.push_back({ std::move(subElement), false });
}

void Serializer::replaceSubElement(boost::shared_ptr<SerializerInterface> subElement)
{
  const std::string subName = subElement->name();
  for (auto& sub : subElements)
  {
    if (sub.serializer->name() == subName)
    {
      sub.serializer = std::move(subElement);
      return;
    }
  }
  addSubElement(std::move(subElement));
}

void Serializer::addDeserializeOnlySubElement(boost::shared_ptr<SerializerInterface> subElement)
{
  subElements.push_back({ std::move(subElement), true });
}

void Serializer::serializeSelf(QDomElement&) const {}

void Serializer::deserializeSelf(QDomElement&) const {}
