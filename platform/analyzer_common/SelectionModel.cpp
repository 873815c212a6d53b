#include "analyzer_common/SelectionModel.h"

SelectionModel::SelectionModel() = default;

SelectionModel::~SelectionModel() = default;

SelectionModelInterface::Selection SelectionModel::getSelections() const
{
  return selection;
}

void SelectionModel::setSelection(const Selection& newSelection)
{
  if (newSelection == selection)
  {
    return;
  }
  selection = newSelection;
  emitSignalSelectionChanged(selection);
}
