#pragma once

#include "properties/PropertyAbstract.h"
#include "properties/ValueRange.h"
#include "serialize/Serializer.h"

#include <QDomElement>
#include <boost/lexical_cast.hpp>
#include <boost/shared_ptr.hpp>

/// Saves a range as the attributes "Min" and "Max" of an element, each as boost::lexical_cast
/// writes a double (17 significant digits in the shortest "%g" form: 0.1 is
/// "0.10000000000000001"; "inf", "-inf", "nan"). Reading starts from the current range and
/// replaces each end whose attribute is present, converted as QString::toDouble converts (a text
/// that is not a number gives 0, unchecked on purpose), then sets the property, whose validator
/// may refuse the result.
template<typename T>
class ValueRangeSerializer : public Serializer
{
public:
  ValueRangeSerializer(const std::string& name,
                       boost::shared_ptr<plexa::PropertyAbstract<ValueRange_s<T>>> property)
    : Serializer(name)
    , property(std::move(property))
  {
  }

private:
  void serializeSelf(QDomElement& element) const override
  {
    const ValueRange_s<T> range = property->value();
    element.setAttribute("Min",
                         QString::fromStdString(boost::lexical_cast<std::string>(range.min)));
    element.setAttribute("Max",
                         QString::fromStdString(boost::lexical_cast<std::string>(range.max)));
  }

  void deserializeSelf(QDomElement& element) const override
  {
    ValueRange_s<T> range = property->value();
    if (element.hasAttribute("Min"))
      range.min = static_cast<T>(element.attribute("Min").toDouble());
    if (element.hasAttribute("Max"))
      range.max = static_cast<T>(element.attribute("Max").toDouble());
    property->setValue(range);
  }

  boost::shared_ptr<plexa::PropertyAbstract<ValueRange_s<T>>> property;
};
