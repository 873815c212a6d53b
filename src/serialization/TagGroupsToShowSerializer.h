#pragma once

#include "datamanagement/TagGroup.h"
#include "datamanagement/WeakPtr.h"
#include "quen_analyzer_dataviews_common_export.h"
#include "serialize/VectorSerializer.h"

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace plexa
{
template<typename T>
class PropertyAbstract;
}

/// Saves the tag groups to show by name as the comma-separated text of a "TagGroupsToShow"
/// element, and reads every name back, resolving it through the current project; a name the
/// project has no tag group for is dropped. A handle whose group no longer exists is written
/// as an empty name.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT TagGroupsToShowSerializer : public SerializerInterface
{
public:
  using TagGroupListProperty =
    plexa::PropertyAbstract<std::vector<WeakPtr<TagGroup, unsigned long long>>>;

  explicit TagGroupsToShowSerializer(boost::shared_ptr<TagGroupListProperty> property);
  ~TagGroupsToShowSerializer() override;

  QDomElement serialize(QDomDocument& document) override;
  void deserialize(QDomElement& element) const override;
  std::string name() const override;
  void addSubElement(boost::shared_ptr<SerializerInterface> subElement) override;
  void replaceSubElement(boost::shared_ptr<SerializerInterface> subElement) override;
  void addDeserializeOnlySubElement(boost::shared_ptr<SerializerInterface> subElement) override;

private:
  std::unique_ptr<VectorSerializer<std::string>> names;
};
