#include "MasterSelection.h"

#include <algorithm>
#include <iterator>

namespace explorer
{

MasterSelection::MasterSelection()
  : current(std::make_shared<const Cases>())
{
}

MasterSelection::~MasterSelection() = default;

namespace
{

void sortUnique(MasterSelection::Cases& ids)
{
  if (std::adjacent_find(ids.begin(), ids.end(), std::greater_equal<>()) != ids.end())
  {
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
  }
}

} // namespace

bool MasterSelection::setCases(Cases ids)
{
  sortUnique(ids);
  if (ids == *current)
    return false;
  change(std::make_shared<const Cases>(std::move(ids)), nullptr);
  return true;
}

void MasterSelection::toggle(unsigned long long id)
{
  Cases ids = *current;
  const auto at = std::lower_bound(ids.begin(), ids.end(), id);
  if (at != ids.end() && *at == id)
    ids.erase(at);
  else
    ids.insert(at, id);
  change(std::make_shared<const Cases>(std::move(ids)), nullptr);
}

bool MasterSelection::pick(Cases ids, bool control)
{
  if (!control)
    return setCases(std::move(ids));
  sortUnique(ids);
  const Cases& was = *current;
  if (ids.size() == 1)
  {
    toggle(ids.front());
    return true;
  }
  if (std::includes(was.begin(), was.end(), ids.begin(), ids.end()))
    return false;
  Cases added;
  added.reserve(was.size() + ids.size());
  std::set_union(was.begin(), was.end(), ids.begin(), ids.end(), std::back_inserter(added));
  change(std::make_shared<const Cases>(std::move(added)), nullptr);
  return true;
}

void MasterSelection::setSelection(const Selection& selection)
{
  if (selection.size() == current->size() &&
      std::equal(selection.begin(), selection.end(), current->begin()))
    return;
  change(std::make_shared<const Cases>(selection.begin(), selection.end()), &selection);
}

const SelectionModelInterface::Selection& MasterSelection::selectedSet() const
{
  if (!set)
  {
    set = std::make_unique<Selection>();
    for (unsigned long long id : *current)
      set->emplace_hint(set->end(), id);
  }
  return *set;
}

SelectionModelInterface::Selection MasterSelection::getSelections() const
{
  return selectedSet();
}

boost::signals2::connection MasterSelection::connectCasesChanged(
  const CasesChangedSignal::slot_type& slot) const
{
  return casesChanged.connect(slot);
}

void MasterSelection::change(const SharedCases& next, const Selection* asSet)
{
  current = next;
  set.reset();
  casesChanged(current);
  // A listener that selected something else has already passed that on to everyone.
  if (current != next || !setListened)
    return;
  emitSignalSelectionChanged(asSet ? *asSet : selectedSet());
}

void MasterSelection::signalSelectionChangedConnected() const
{
  // Listeners are not told when they go, so once one came the set is made on every change.
  setListened = true;
}

} // namespace explorer
