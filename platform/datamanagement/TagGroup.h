#pragma once

#include "datamanagement/StudyObjectHandle.h"
#include "datamanagement/quen_datamanagement_lib2_export.h"

#include <string>
#include <vector>

struct TagGroupData;

/// The tags that share a group: the tag texts "plot:trajectory" and "plot:speed" form the group
/// "plot".
class QUEN_DATAMANAGEMENT_LIB2_EXPORT TagGroup : public StudyObjectHandle<TagGroupData>
{
public:
  using StudyObjectHandle::StudyObjectHandle;

  unsigned long long id() const;
  std::string name() const;
  /// The full tag texts of the group ("plot:speed", ...), sorted.
  std::vector<std::string> tags() const;
};
