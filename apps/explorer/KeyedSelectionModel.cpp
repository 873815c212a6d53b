#include "KeyedSelectionModel.h"

namespace explorer
{

KeyedSelectionModel::KeyedSelectionModel(boost::shared_ptr<SelectionModelInterface> master,
                                         std::shared_ptr<const CaseKeys> keys)
  : master(std::move(master))
  , keys(std::move(keys))
{
  connections.add(this->master->connectSignalSelectionChanged(
    [this](const Selection& ids) { emitSignalSelectionChanged(this->keys->keysOf(ids)); }));
}

KeyedSelectionModel::~KeyedSelectionModel() = default;

SelectionModelInterface::Selection KeyedSelectionModel::getSelections() const
{
  return keys->keysOf(master->getSelections());
}

void KeyedSelectionModel::setSelection(const Selection& selected)
{
  master->setSelection(keys->caseIdsOf(selected));
}

} // namespace explorer
