#include "serialize/VectorSerializer.h"

#include <QDomDocument>
#include <QDomElement>
#include <boost/tokenizer.hpp>

VectorSerializer<std::string, boost::function<bool(const std::string&)>>::VectorSerializer(
  const std::string& name,
  Getter getter,
  Setter setter,
  Predicate accept)
  : Serializer(name)
  , getter(std::move(getter))
  , setter(std::move(setter))
  , accept(std::move(accept))
{
}

VectorSerializer<std::string, boost::function<bool(const std::string&)>>::~VectorSerializer() =
  default;

std::string VectorSerializer<std::string, boost::function<bool(const std::string&)>>::stringValue(
  const std::string& value)
{
  // An empty field must be quoted too: an empty text splits into no field at all.
  if (!value.empty() && value.find_first_of(",\"\\") == std::string::npos)
  {
    return value;
  }
  std::string field;
  field.reserve(value.size() + 2);
  field.push_back('"');
  for (char c : value)
  {
    if (c == '"' || c == '\\')
    {
      field.push_back('\\');
    }
    field.push_back(c);
  }
  field.push_back('"');
  return field;
}

std::vector<std::string>
VectorSerializer<std::string, boost::function<bool(const std::string&)>>::split(
  const std::string& text)
{
  using Separator = boost::escaped_list_separator<char>;
  const boost::tokenizer<Separator> tokens(text, Separator('\\', ',', '"'));
  return std::vector<std::string>(tokens.begin(), tokens.end());
}

void VectorSerializer<std::string, boost::function<bool(const std::string&)>>::serializeSelf(
  QDomElement& element) const
{
  std::string joined;
  bool first = true;
  for (const auto& value : getter())
  {
    if (!first)
    {
      joined.push_back(',');
    }
    joined += stringValue(value);
    first = false;
  }
  element.appendChild(element.ownerDocument().createTextNode(QString::fromStdString(joined)));
}

void VectorSerializer<std::string, boost::function<bool(const std::string&)>>::deserializeSelf(
  QDomElement& element) const
{
  std::vector<std::string> kept;
  for (auto& field : split(element.text().toStdString()))
  {
    if (accept(field))
    {
      kept.push_back(std::move(field));
    }
  }
  setter(kept);
}
