#include "datamanagement/AuxFile.h"

#include "datamanagement/Project.h"
#include "datamanagement/ProjectData_p.h"
#include "datamanagement/Record.h"

#include <algorithm>

unsigned long long AuxFile::id() const
{
  return d ? d->id : 0;
}

std::string AuxFile::filePath() const
{
  if (!d)
    return {};
  if (!d->filePath.empty())
    return d->filePath;
  const std::string& folder = d->project->data().fileFolder;
  if (folder.empty())
    return d->relativePath;
  return folder + (folder == "/" ? "" : "/") + d->relativePath;
}

std::string AuxFile::relativePath() const
{
  return d ? d->relativePath : std::string();
}

std::vector<std::string> AuxFile::tags() const
{
  return d && d->tags ? *d->tags : std::vector<std::string>();
}

bool AuxFile::hasTag(const std::string& tag) const
{
  return d && d->tags && std::find(d->tags->begin(), d->tags->end(), tag) != d->tags->end();
}

bool AuxFile::isUrl(const std::string& path)
{
  const std::size_t colon = path.find("://");
  if (colon == std::string::npos || colon < 2)
    return false;
  return std::all_of(path.begin(),
                     path.begin() + static_cast<std::ptrdiff_t>(colon),
                     [](char c)
                     {
                       return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                              (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
                     });
}

WeakPtr<Record> AuxFile::record() const
{
  if (!d)
  {
    return {};
  }
  return aliasHandle<Record>(d, d->project->data().records()[d->record]);
}
