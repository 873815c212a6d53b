#include "KeyedSelectionModel.h"

#include "MasterSelection.h"

namespace explorer
{

KeyedSelectionModel::KeyedSelectionModel(boost::shared_ptr<MasterSelection> master,
                                         std::shared_ptr<const CaseKeys> keys)
  : master(std::move(master))
  , keys(std::move(keys))
{
  // Where keys are the case ids, the master's set is passed on as it is, not copied.
  if (this->keys->keysAreIds())
    connections.add(this->master->connectSignalSelectionChanged(
      [this](const Selection& ids) { emitSignalSelectionChanged(ids); }));
  else
    connections.add(
      this->master->connectCasesChanged([this](const MasterSelection::SharedCases& ids)
                                        { emitSignalSelectionChanged(this->keys->keysOf(*ids)); }));
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
  if (keys->keysAreIds() && (selected.empty() || *selected.rbegin() < keys->size()))
    master->setSelection(selected);
  else
    master->setSelection(keys->caseIdsOf(selected));
}

} // namespace explorer
