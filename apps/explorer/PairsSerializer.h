#pragma once

#include "serialize/Serializer.h"

#include <boost/shared_ptr.hpp>

#include <functional>
#include <string>
#include <vector>

namespace plexa
{
template<typename T>
class PropertyAbstract;
}

namespace explorer
{

/// Writes and reads a list of pairs of strings, kept alternately in a property, as child
/// elements with two attributes:
///   <FileLocations><Location prefix="https://host/" folder="/home/me"/>...</FileLocations>
/// `check` refuses a pair it reads by throwing std::invalid_argument; nothing is set then.
class PairsSerializer : public Serializer
{
public:
  struct Names
  {
    const char* element;
    const char* child;
    const char* first;
    const char* second;
  };
  using Check = std::function<void(const std::string& first, const std::string& second)>;

  PairsSerializer(Names names,
                  boost::shared_ptr<plexa::PropertyAbstract<std::vector<std::string>>> pairs,
                  Check check);

private:
  void serializeSelf(QDomElement& element) const override;
  void deserializeSelf(QDomElement& element) const override;

  Names names;
  boost::shared_ptr<plexa::PropertyAbstract<std::vector<std::string>>> pairs;
  Check check;
};

} // namespace explorer
