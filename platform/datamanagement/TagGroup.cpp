#include "datamanagement/TagGroup.h"

#include "datamanagement/ProjectData_p.h"

unsigned long long TagGroup::id() const
{
  return d ? d->id : 0;
}

std::string TagGroup::name() const
{
  return d ? d->name : std::string();
}

std::vector<std::string> TagGroup::tags() const
{
  return d ? d->tags : std::vector<std::string>();
}
