#include "serialization/TagsToShowSerializer.h"
#include "properties/PropertyAbstract.h"

TagsToShowSerializer::TagsToShowSerializer(
  boost::shared_ptr<plexa::PropertyAbstract<std::vector<std::string>>> property,
  const std::set<std::string>& knownTags)
  : VectorSerializer<std::string>("TagsToShow",
                                  std::move(property),
                                  [knownTags](const std::string& tag)
                                  { return knownTags.count(tag) != 0; })
{
}

TagsToShowSerializer::~TagsToShowSerializer() = default;
