#include "CaseOrder.h"

#include "CaseKeys.h"

#include <algorithm>
#include <limits>

namespace explorer
{

CaseOrder::CaseOrder(std::shared_ptr<const CaseKeys> keys)
  : keys(std::move(keys))
{
}

void CaseOrder::setOrder(const std::vector<unsigned long long>& caseIds)
{
  if (caseIds.empty())
    rankOfKey.clear();
  else
  {
    const auto cases = static_cast<std::uint32_t>(keys->size());
    rankOfKey.assign(keys->size(), 0);
    // Cases left out follow the listed ones, in the study's order.
    for (std::uint32_t key = 0; key < cases; ++key)
      rankOfKey[key] = cases + key;
    std::uint32_t rank = 0;
    for (unsigned long long id : caseIds)
    {
      unsigned long long key = 0;
      if (keys->keyOf(id, key))
        rankOfKey[key] = rank++;
    }
  }
  changed();
}

std::vector<unsigned long long> CaseOrder::sorted(
  const std::vector<unsigned long long>& caseIds) const
{
  std::vector<std::pair<unsigned long long, unsigned long long>> ranked;
  ranked.reserve(caseIds.size());
  for (unsigned long long id : caseIds)
  {
    unsigned long long key = 0;
    unsigned long long rank = std::numeric_limits<unsigned long long>::max();
    if (keys->keyOf(id, key))
      rank = rankOfKey.empty() ? key : rankOfKey[key];
    ranked.emplace_back(rank, id);
  }
  std::stable_sort(ranked.begin(), ranked.end());
  std::vector<unsigned long long> ids;
  ids.reserve(ranked.size());
  for (const auto& entry : ranked)
    ids.push_back(entry.second);
  return ids;
}

boost::signals2::connection CaseOrder::connectChanged(const std::function<void()>& slot) const
{
  return changed.connect(slot);
}

} // namespace explorer
