#include "CaseKeys.h"

#include "datamanagement/Project.h"

#include <algorithm>
#include <utility>

namespace explorer
{

CaseKeys::CaseKeys(std::vector<unsigned long long> caseIds)
  : ids(std::move(caseIds))
{
  for (std::size_t i = 1; i < ids.size(); ++i)
  {
    sequential = sequential && ids[i] == ids[i - 1] + 1;
    sorted = sorted && ids[i] > ids[i - 1];
  }
  if (!sorted)
  {
    keyOfId.reserve(ids.size());
    for (std::size_t key = 0; key < ids.size(); ++key)
      keyOfId.emplace(ids[key], static_cast<std::uint32_t>(key));
  }
}

CaseKeys::CaseKeys(const Project& project)
  : CaseKeys(project.caseIds())
{
}

bool CaseKeys::caseIdOf(unsigned long long key, unsigned long long& caseId) const
{
  if (key >= ids.size())
    return false;
  caseId = ids[key];
  return true;
}

bool CaseKeys::keyOf(unsigned long long caseId, unsigned long long& key) const
{
  if (ids.empty())
    return false;
  if (sequential)
  {
    if (caseId < ids.front() || caseId - ids.front() >= ids.size())
      return false;
    key = caseId - ids.front();
    return true;
  }
  if (sorted)
  {
    const auto found = std::lower_bound(ids.begin(), ids.end(), caseId);
    if (found == ids.end() || *found != caseId)
      return false;
    key = static_cast<unsigned long long>(found - ids.begin());
    return true;
  }
  const auto found = keyOfId.find(caseId);
  if (found == keyOfId.end())
    return false;
  key = found->second;
  return true;
}

CaseKeys::Set CaseKeys::keysOf(const std::vector<unsigned long long>& caseIds) const
{
  Set keys;
  if (!sorted)
  {
    for (unsigned long long id : caseIds)
    {
      unsigned long long key = 0;
      if (keyOf(id, key))
        keys.insert(key);
    }
    return keys;
  }
  // Sorted ids have keys in the same order: the keys are appended at the end, and a large
  // selection is found by one walk along both lists.
  const bool many = caseIds.size() * 16 > ids.size();
  auto position = ids.begin();
  for (unsigned long long id : caseIds)
  {
    unsigned long long key = 0;
    if (sequential || !many)
    {
      if (keyOf(id, key))
        keys.emplace_hint(keys.end(), key);
      continue;
    }
    while (position != ids.end() && *position < id)
      ++position;
    if (position == ids.end())
      break;
    if (*position == id)
      keys.emplace_hint(keys.end(), static_cast<unsigned long long>(position - ids.begin()));
  }
  return keys;
}

std::vector<unsigned long long> CaseKeys::caseIdsOf(const Set& keys) const
{
  std::vector<unsigned long long> caseIds;
  caseIds.reserve(keys.size());
  for (unsigned long long key : keys)
  {
    if (key >= ids.size())
      break;
    caseIds.push_back(ids[key]);
  }
  // Sorted ids have keys in the same order; others are sorted here.
  if (!sorted)
    std::sort(caseIds.begin(), caseIds.end());
  return caseIds;
}

} // namespace explorer
