#pragma once

#include "properties/PropertyAbstract.h"
#include "serialize/Serializer.h"

#include <QDomDocument>
#include <QDomElement>
#include <boost/lexical_cast.hpp>
#include <boost/shared_ptr.hpp>

#include <charconv>
#include <string>
#include <type_traits>
#include <typeinfo>

namespace savedtext
{

/// Reads a saved value as boost::lexical_cast reads it, and fails as it does, with
/// boost::bad_lexical_cast. Integers are parsed with std::from_chars first: Boost 1.74's cast to
/// 16-bit integers overflows a signed int on ordinary texts such as "0.50000", which is
/// undefined behaviour. A bool is "1" or "0".
template<typename T>
T parse(const std::string& text)
{
  if constexpr (std::is_same_v<T, bool>)
  {
    if (text == "1")
      return true;
    if (text == "0")
      return false;
    throw boost::bad_lexical_cast(typeid(std::string), typeid(T));
  }
  else if constexpr (std::is_integral_v<T>)
  {
    // lexical_cast accepts a leading plus sign; from_chars does not.
    const char* begin = text.data();
    const char* end = text.data() + text.size();
    if (begin != end && *begin == '+')
      ++begin;
    T value{};
    const auto result = std::from_chars(begin, end, value);
    if (begin == end || result.ec != std::errc() || result.ptr != end)
      throw boost::bad_lexical_cast(typeid(std::string), typeid(T));
    return value;
  }
  else
  {
    return boost::lexical_cast<T>(text);
  }
}

} // namespace savedtext

/// Saves a property's value as the text of an element, as boost::lexical_cast writes it (a bool
/// as "1" or "0", a short in decimal), and reads it back, setting the property. A text that is
/// not a value of the type raises boost::bad_lexical_cast and leaves the property as it was.
template<typename T>
class GenericSerializer : public Serializer
{
public:
  GenericSerializer(const std::string& name, boost::shared_ptr<plexa::PropertyAbstract<T>> property)
    : Serializer(name)
    , property(std::move(property))
  {
  }

private:
  void serializeSelf(QDomElement& element) const override
  {
    element.appendChild(element.ownerDocument().createTextNode(
      QString::fromStdString(boost::lexical_cast<std::string>(property->value()))));
  }

  void deserializeSelf(QDomElement& element) const override
  {
    property->setValue(savedtext::parse<T>(element.text().toStdString()));
  }

  boost::shared_ptr<plexa::PropertyAbstract<T>> property;
};
