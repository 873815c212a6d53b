#pragma once

#include "properties/PropertyAbstract.h"
#include "serialization/NamedValueTranslator.h"
#include "serialize/Serializer.h"

#include <QDomDocument>
#include <QDomElement>
#include <boost/shared_ptr.hpp>

/// Saves an enumeration property as the name its value has in a translator, as element text,
/// and reads the name back. An unknown name raises std::out_of_range ("bimap<>: invalid key")
/// and leaves the property as it was.
template<typename T>
class EnumSerializer : public Serializer
{
public:
  EnumSerializer(const std::string& name,
                 boost::shared_ptr<plexa::PropertyAbstract<T>> property,
                 NamedValueTranslator<T> translator)
    : Serializer(name)
    , property(std::move(property))
    , translator(std::move(translator))
  {
  }

private:
  void serializeSelf(QDomElement& element) const override
  {
    element.appendChild(element.ownerDocument().createTextNode(
      QString::fromStdString(translator.name(property->value()))));
  }

  void deserializeSelf(QDomElement& element) const override
  {
    property->setValue(translator.value(element.text().toStdString()));
  }

  boost::shared_ptr<plexa::PropertyAbstract<T>> property;
  NamedValueTranslator<T> translator;
};
