#include "images/ImageViewSelectionConverter.h"
#include "images/ImageTableModel.h"

#include <QItemSelectionModel>

ImageViewSelectionConverter::ImageViewSelectionConverter(
  std::shared_ptr<const ImageTableModel> grid,
  const QAbstractItemModel& items)
  : grid(std::move(grid))
  , items(items)
{
}

ImageViewSelectionConverter::~ImageViewSelectionConverter() = default;

std::set<unsigned long long> ImageViewSelectionConverter::caseIDsFromSelection(
  const QItemSelectionModel& selectionModel) const
{
  std::set<unsigned long long> ids;
  for (const QModelIndex& index : selectionModel.selectedIndexes())
  {
    const auto& cases = grid->casesAt(index.row(), index.column());
    ids.insert(cases.begin(), cases.end());
  }
  return ids;
}

namespace
{

QItemSelection selectionOfCells(const std::vector<std::pair<int, int>>& cells,
                                const QAbstractItemModel& items)
{
  QItemSelection selection;
  for (const auto& [row, column] : cells)
  {
    const QModelIndex index = items.index(row, column);
    selection.select(index, index);
  }
  return selection;
}

} // namespace

QItemSelection ImageViewSelectionConverter::selectionFromCaseIDs(
  const std::set<unsigned long long>& ids) const
{
  if (ids.empty())
    return {};
  return selectionOfCells(grid->cellsOf(ids), items);
}

QItemSelection ImageViewSelectionConverter::selectionFromCaseIDs(
  const std::vector<unsigned long long>& ascendingIds) const
{
  if (ascendingIds.empty())
    return {};
  return selectionOfCells(grid->cellsOf(ascendingIds), items);
}
