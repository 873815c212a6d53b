#pragma once

#include "serialize/Serializer.h"

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>

#include <functional>
#include <string>
#include <vector>

template<typename T, typename Predicate = boost::function<bool(const T&)>>
class VectorSerializer;

/// Saves a list of strings as the text of one element, the fields joined by commas, and reads it
/// back with boost::escaped_list_separator (escape "\", separator ",", quote "\""), keeping the
/// fields the predicate accepts. The list is reached through a getter and a setter, or through
/// a property offering value() and setValue(). A malformed escape in the saved text lets
/// boost::escaped_list_error escape from deserialize().
template<>
class QUEN_ANALYZER_SERIALIZE_EXPORT
  VectorSerializer<std::string, boost::function<bool(const std::string&)>> : public Serializer
{
public:
  using Getter = std::function<std::vector<std::string>()>;
  using Setter = std::function<void(const std::vector<std::string>&)>;
  using Predicate = boost::function<bool(const std::string&)>;

  VectorSerializer(const std::string& name, Getter getter, Setter setter, Predicate accept);

  template<typename Property>
  VectorSerializer(const std::string& name, boost::shared_ptr<Property> property, Predicate accept)
    : VectorSerializer(
        name,
        [property] { return std::vector<std::string>(property->value()); },
        [property](const std::vector<std::string>& list) { property->setValue(list); },
        std::move(accept))
  {
  }

  ~VectorSerializer() override;

  /// The field text of one list element: the element itself, or, when it holds a comma, a
  /// double quote or a backslash (or is empty), the element in double quotes with every
  /// backslash and double quote preceded by a backslash. Splitting the result with the
  /// tokenizer above yields exactly one field equal to the element.
  static std::string stringValue(const std::string& value);

  /// Splits a saved text into its fields (all of them, before the predicate).
  static std::vector<std::string> split(const std::string& text);

private:
  void serializeSelf(QDomElement& element) const override;
  void deserializeSelf(QDomElement& element) const override;

  Getter getter;
  Setter setter;
  Predicate accept;
};

using StringVectorSerializer = VectorSerializer<std::string>;
