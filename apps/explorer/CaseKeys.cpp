#include "CaseKeys.h"

#include "datamanagement/Project.h"

#include <algorithm>
#include <utility>

namespace explorer
{

CaseKeys::CaseKeys(std::vector<unsigned long long> caseIds)
  : CaseKeys(CaseIds(std::move(caseIds)))
{
}

CaseKeys::CaseKeys(const Project& project)
  : CaseKeys(CaseIds(project))
{
}

CaseKeys::CaseKeys(CaseIds caseIds)
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
    if (caseId < ids[0] || caseId - ids[0] >= ids.size())
      return false;
    key = caseId - ids[0];
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

std::vector<unsigned long long> CaseKeys::keysOf(
  const std::vector<unsigned long long>& ascendingIds) const
{
  // Sorted ids are searched or walked along; sequential ones convert by an offset, others one by
  // one.
  if (sorted && !sequential)
    return positionsIn<unsigned long long>(ids.begin(), ids.size(), ascendingIds);
  std::vector<unsigned long long> keys;
  if (sequential)
  {
    if (ids.empty())
      return keys;
    const unsigned long long first = ids[0];
    const auto from = std::lower_bound(ascendingIds.begin(), ascendingIds.end(), first);
    const auto to = std::upper_bound(from, ascendingIds.end(), ids[ids.size() - 1]);
    keys.reserve(static_cast<std::size_t>(to - from));
    for (auto id = from; id != to; ++id)
      keys.push_back(*id - first);
    return keys;
  }
  keys.reserve(std::min(ascendingIds.size(), ids.size()));
  unsigned long long key = 0;
  for (unsigned long long id : ascendingIds)
    if (keyOf(id, key))
      keys.push_back(key);
  if (!sorted)
    std::sort(keys.begin(), keys.end());
  return keys;
}

void CaseKeys::keysOfEach(const unsigned long long* caseIds, std::size_t count, int* keys) const
{
  if (sequential && !ids.empty())
  {
    // An id below the first wraps around to a large offset, beyond the study like one above it.
    const unsigned long long first = ids[0];
    for (std::size_t i = 0; i < count; ++i)
    {
      const unsigned long long offset = caseIds[i] - first;
      keys[i] = static_cast<int>(offset < ids.size() ? offset : i);
    }
    return;
  }
  for (std::size_t i = 0; i < count; ++i)
  {
    unsigned long long key = i;
    keyOf(caseIds[i], key);
    keys[i] = static_cast<int>(key);
  }
}

} // namespace explorer
