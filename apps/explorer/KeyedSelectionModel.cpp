#include "KeyedSelectionModel.h"

#include "MasterSelection.h"

namespace explorer
{

KeyedSelectionModel::KeyedSelectionModel(boost::shared_ptr<MasterSelection> master,
                                         std::shared_ptr<const CaseKeys> keys)
  : master(std::move(master))
  , keys(std::move(keys))
{
}

KeyedSelectionModel::~KeyedSelectionModel() = default;

SelectionModelInterface::Selection KeyedSelectionModel::getSelections() const
{
  if (keys->keysAreIds())
    return master->getSelections();
  return keys->keysOf(*master->cases());
}

void KeyedSelectionModel::setSelection(const Selection& selected)
{
  // Where keys are the case ids, the set is passed on as it is, not copied.
  if (keys->keysAreIds() && (selected.empty() || *selected.rbegin() < keys->size()))
    master->setSelection(selected);
  else
    master->setCases(keys->caseIdsOf(selected));
}

} // namespace explorer
