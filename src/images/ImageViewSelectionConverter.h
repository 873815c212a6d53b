#pragma once

#include "dataviews/SelectionConverterInterface.h"

#include <memory>
#include <vector>

class ImageTableModel;
class QAbstractItemModel;

/// What the cells of the image matrix stand for: the cases of the cells. A selection of cells is
/// the union of their cases; a set of cases selects every cell holding one of them, so a case
/// shown in several cells selects all of them.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT ImageViewSelectionConverter
  : public SelectionConverterInterface
{
public:
  /// `items` is the Qt model over the grid (for the indexes).
  ImageViewSelectionConverter(std::shared_ptr<const ImageTableModel> grid,
                              const QAbstractItemModel& items);
  ~ImageViewSelectionConverter() override;

  std::set<unsigned long long> caseIDsFromSelection(
    const QItemSelectionModel& selectionModel) const override;
  QItemSelection selectionFromCaseIDs(const std::set<unsigned long long>& ids) const override;
  /// The same for case ids ascending without repeats.
  QItemSelection selectionFromCaseIDs(const std::vector<unsigned long long>& ascendingIds) const;

private:
  std::shared_ptr<const ImageTableModel> grid;
  const QAbstractItemModel& items;
};
