#pragma once

#include <boost/signals2/signal.hpp>

#include <cstdint>
#include <memory>
#include <set>
#include <vector>

namespace explorer
{

class CaseKeys;

/// The order in which the user sees the cases: the cases table's once it is sorted, the study's
/// until then. Views that list selected cases one after another (their images, say) list them
/// in this order.
class CaseOrder
{
public:
  explicit CaseOrder(std::shared_ptr<const CaseKeys> keys);

  /// The cases from first to last; cases left out come after them, in the study's order. An
  /// empty list is the study's order.
  void setOrder(const std::vector<unsigned long long>& caseIds);
  /// The cases in this order; ids the study lacks come last.
  std::vector<unsigned long long> sorted(const std::vector<unsigned long long>& caseIds) const;

  boost::signals2::connection connectChanged(const std::function<void()>& slot) const;

private:
  std::shared_ptr<const CaseKeys> keys;
  // The place of each case by key; empty for the study's order.
  std::vector<std::uint32_t> rankOfKey;
  mutable boost::signals2::signal<void()> changed;
};

} // namespace explorer
