#include "images/ImageViewSelectionConverter.h"
#include "images/ImageTableModel.h"

#include <QItemSelectionModel>

#include <algorithm>

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

QItemSelection ImageViewSelectionConverter::selectionFromCaseIDs(
  const std::set<unsigned long long>& ids) const
{
  QItemSelection selection;
  if (ids.empty())
  {
    return selection;
  }
  for (int row = 0; row < grid->rowCount(); ++row)
  {
    for (int column = 0; column < grid->columnCount(); ++column)
    {
      const auto& cases = grid->casesAt(row, column);
      // Look the smaller set up in the larger one.
      const bool shown =
        ids.size() < cases.size()
          ? std::any_of(ids.begin(),
                        ids.end(),
                        [&](unsigned long long id)
                        { return std::binary_search(cases.begin(), cases.end(), id); })
          : std::any_of(cases.begin(),
                        cases.end(),
                        [&](unsigned long long id) { return ids.count(id) != 0; });
      if (shown)
      {
        const QModelIndex index = items.index(row, column);
        selection.select(index, index);
      }
    }
  }
  return selection;
}
