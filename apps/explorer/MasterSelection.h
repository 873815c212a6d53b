#pragma once

#include "analyzer_common/SelectionModelInterface.h"

#include <boost/signals2/signal.hpp>

#include <memory>
#include <vector>

namespace explorer
{

/// The one selection of the program, kept as a sorted list of case ids that every view reads
/// without copying. The library's classes still see a `std::set`: it is made once per change,
/// when one of them listens or asks, instead of being copied and walked by every view; a set
/// handed in is passed on as it is.
///
/// Listeners of the list are told first, then those of the set. A listener that changes the
/// selection while being told stops the older change from being passed on further.
class MasterSelection : public virtual SelectionModelInterface
{
public:
  /// Case ids in increasing order, each once.
  using Cases = std::vector<unsigned long long>;
  using SharedCases = std::shared_ptr<const Cases>;
  using CasesChangedSignal = boost::signals2::signal<void(const SharedCases&)>;

  MasterSelection();
  ~MasterSelection() override;

  /// The selected cases; the list is never changed in place, so holding it is safe.
  const SharedCases& cases() const { return current; }
  std::size_t size() const { return current->size(); }
  /// Selects `ids` (any order, repeats allowed: they are sorted and made unique here); false
  /// when they were the selection already.
  bool setCases(Cases ids);
  /// Selects the case if it was not selected, else leaves it out.
  void toggle(unsigned long long id);
  /// What picking cases in a chart does (a click on a point, a rubber band): without Control
  /// they become the selection; with Control one case is toggled and several are added. False
  /// when the selection stays as it was (Control and nothing new), so the chart shows it again.
  bool pick(Cases ids, bool control);

  /// The selection as a set, made once per change when first asked for.
  const Selection& selectedSet() const;
  Selection getSelections() const override;
  void setSelection(const Selection& selection) override;

  boost::signals2::connection connectCasesChanged(const CasesChangedSignal::slot_type& slot) const;

private:
  void change(const SharedCases& next, const Selection* asSet);
  void signalSelectionChangedConnected() const override;

  SharedCases current;
  mutable std::unique_ptr<Selection> set;
  mutable bool setListened = false;
  mutable CasesChangedSignal casesChanged;
};

} // namespace explorer
