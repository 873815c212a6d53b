#pragma once

#include <cstdint>
#include <set>
#include <unordered_map>
#include <vector>

class Project;

namespace explorer
{

/// A dense key for each case of a study: its position in the study (0 for the first case).
///
/// The chart selection of the library reads the case ids of a plot's rows as 32-bit integers on
/// purpose, so a plot cannot carry case ids of 2^31 and above. The explorer's plots carry keys
/// instead (a study has fewer than 2^31 cases), and these conversions translate between keys and
/// case ids where a plot meets the rest of the program. Sequential or sorted case ids, the usual
/// shapes, convert without a lookup table.
class CaseKeys
{
public:
  using Set = std::set<unsigned long long>;

  CaseKeys() = default;
  explicit CaseKeys(std::vector<unsigned long long> caseIds);
  explicit CaseKeys(const Project& project);

  std::size_t size() const { return ids.size(); }
  /// Whether each case's key is its id (ids 0, 1, 2...): a selection then needs no conversion.
  bool keysAreIds() const { return sequential && (ids.empty() || ids.front() == 0); }
  /// The case of a key; a key beyond the study gives false.
  bool caseIdOf(unsigned long long key, unsigned long long& caseId) const;
  /// The key of a case; a case the study lacks gives false.
  bool keyOf(unsigned long long caseId, unsigned long long& key) const;
  /// The keys of the cases the study has (given in increasing order), and the cases of the keys
  /// it has, in increasing order; others are left out.
  Set keysOf(const std::vector<unsigned long long>& sortedCaseIds) const;
  std::vector<unsigned long long> caseIdsOf(const Set& keys) const;

private:
  std::vector<unsigned long long> ids;
  // Sequential ids convert by an offset; sorted ones by a search; others through a table.
  bool sequential = true;
  bool sorted = true;
  std::unordered_map<unsigned long long, std::uint32_t> keyOfId;
};

} // namespace explorer
