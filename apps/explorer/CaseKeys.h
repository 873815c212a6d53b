#pragma once

#include "CaseRowIndex.h"

#include <cstdint>
#include <unordered_map>
#include <vector>

class Project;

namespace explorer
{

/// A dense key for each case of a study: its position in the study (0 for the first case).
///
/// The library's chart classes read the case ids of a plot's rows as 32-bit integers on purpose,
/// so a plot cannot carry case ids of 2^31 and above. The explorer's plots carry keys instead (a
/// study has fewer than 2^31 cases), and these conversions translate between keys and case ids
/// where a plot meets the rest of the program. Sequential or sorted case ids, the usual shapes,
/// convert without a lookup table.
class CaseKeys
{
public:
  CaseKeys() = default;
  explicit CaseKeys(std::vector<unsigned long long> caseIds);
  /// The study's own ids, read in place.
  explicit CaseKeys(const Project& project);
  explicit CaseKeys(CaseIds caseIds);

  std::size_t size() const { return ids.size(); }
  /// The case of a key; a key beyond the study gives false.
  bool caseIdOf(unsigned long long key, unsigned long long& caseId) const;
  /// The key of a case; a case the study lacks gives false.
  bool keyOf(unsigned long long caseId, unsigned long long& key) const;
  /// The keys of the cases (ids in increasing order) the study has, in increasing order.
  std::vector<unsigned long long> keysOf(const std::vector<unsigned long long>& ascendingIds) const;
  /// The key of each of `count` cases in turn into `keys`; a case the study lacks gets its place
  /// in the list. A whole column of ids in one call, without a call per id.
  void keysOfEach(const unsigned long long* caseIds, std::size_t count, int* keys) const;

private:
  CaseIds ids;
  // Sequential ids convert by an offset; sorted ones by a search; others through a table.
  bool sequential = true;
  bool sorted = true;
  std::unordered_map<unsigned long long, std::uint32_t> keyOfId;
};

} // namespace explorer
