#include "serialization/TagGroupsToShowSerializer.h"
#include "datamanagement/Project.h"
#include "properties/PropertyAbstract.h"

#include <QDomDocument>
#include <QDomElement>

TagGroupsToShowSerializer::TagGroupsToShowSerializer(
  boost::shared_ptr<TagGroupListProperty> property)
{
  auto getter = [property]
  {
    std::vector<std::string> groupNames;
    for (const auto& handle : property->value())
    {
      groupNames.push_back(handle.lock().name());
    }
    return groupNames;
  };
  auto setter = [property](const std::vector<std::string>& groupNames)
  {
    const auto project = Project::project();
    std::vector<WeakPtr<TagGroup, unsigned long long>> groups;
    for (const auto& groupName : groupNames)
    {
      const auto group = project->tagGroup(groupName);
      if (!group.lock().isNull())
      {
        groups.push_back(group);
      }
    }
    property->setValue(groups);
  };
  names = std::make_unique<VectorSerializer<std::string>>(
    "TagGroupsToShow", getter, setter, [](const std::string&) { return true; });
}

TagGroupsToShowSerializer::~TagGroupsToShowSerializer() = default;

QDomElement TagGroupsToShowSerializer::serialize(QDomDocument& document)
{
  return names->serialize(document);
}

void TagGroupsToShowSerializer::deserialize(QDomElement& element) const
{
  names->deserialize(element);
}

std::string TagGroupsToShowSerializer::name() const
{
  return names->name();
}

void TagGroupsToShowSerializer::addSubElement(boost::shared_ptr<SerializerInterface> subElement)
{
  names->addSubElement(std::move(subElement));
}

void TagGroupsToShowSerializer::replaceSubElement(boost::shared_ptr<SerializerInterface> subElement)
{
  names->replaceSubElement(std::move(subElement));
}

void TagGroupsToShowSerializer::addDeserializeOnlySubElement(
  boost::shared_ptr<SerializerInterface> subElement)
{
  names->addDeserializeOnlySubElement(std::move(subElement));
}
