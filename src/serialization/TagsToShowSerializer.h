#pragma once

#include "quen_analyzer_dataviews_common_export.h"
#include "serialize/VectorSerializer.h"

#include <set>
#include <string>
#include <vector>

namespace plexa
{
template<typename T>
class PropertyAbstract;
}

/// Saves the tags to show as the comma-separated text of a "TagsToShow" element, and reads back
/// only the names among the known tags (exact, case-sensitive).
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT TagsToShowSerializer
  : public VectorSerializer<std::string>
{
public:
  TagsToShowSerializer(
    boost::shared_ptr<plexa::PropertyAbstract<std::vector<std::string>>> property,
    const std::set<std::string>& knownTags);
  ~TagsToShowSerializer() override;
};
