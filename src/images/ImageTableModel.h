#pragma once

#include "analyzer_common/SuspendableInterface.h"
#include "common/Variant.h"
#include "datamanagement/AuxFile.h"
#include "datamanagement/WeakPtr.h"
#include "quen_analyzer_dataviews_common_export.h"

#include <boost/signals2/signal.hpp>
#include <vtkSmartPointer.h>

#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

class ImageMatrixViewProperties;
class vtkTableAlgorithm;

/// The grid of the image matrix: rows and columns are the axis values the properties lay out
/// (ImageMatrixViewProperties), and each cell holds the cases that fall into it and their image
/// files that pass the tag filters.
///
/// The cases are those of the input table (its column 0, read as RecordTableUtils reads case
/// ids), looked up in the current project. An axis dimensioned by a variable has one entry per
/// distinct value of the shown cases, ascending; without a variable it has a single entry
/// holding every case. An axis dimensioned by tag has one entry per tag to show and holds every
/// case, its files filtered by the entry's tag; with both axes by tag the cases stand on the
/// diagonal. Within a cell, cases are in ascending case-id order and each case's files in the
/// study's order.
///
/// The grid is rebuilt, and signalModelReset fired, whenever a layout setting changes (the
/// dimensions, their variables, the page, the tags to show) or the input table is modified.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT ImageTableModel : public SuspendableInterface
{
public:
  using ModelResetSignal = boost::signals2::signal<void()>;

  ImageTableModel(vtkSmartPointer<vtkTableAlgorithm> input,
                  std::shared_ptr<ImageMatrixViewProperties> properties);
  ~ImageTableModel() override;
  ImageTableModel(const ImageTableModel&) = delete;
  ImageTableModel& operator=(const ImageTableModel&) = delete;

  /// Stops following the settings and the input; resume() follows them again and rebuilds.
  void suspend() override;
  void resume() override;

  virtual int rowCount() const;
  virtual int columnCount() const;
  /// The files shown in a cell; none outside the grid.
  virtual std::vector<WeakPtr<AuxFile>> auxFilesAt(int row, int column) const;
  /// The cases of a cell, ascending and without repeats; none outside the grid.
  virtual const std::vector<unsigned long long>& casesAt(int row, int column) const;
  /// The cells (row, column) holding any of the cases, each once, in row then column order;
  /// looked up in an index of the cases, so that the cost follows the selection, or one pass
  /// over the cases when the selection is large, never a scan of every cell.
  virtual std::vector<std::pair<int, int>> cellsOf(const std::set<unsigned long long>& ids) const;
  /// The same for case ids in ascending order without repeats.
  std::vector<std::pair<int, int>> cellsOf(
    const std::vector<unsigned long long>& ascendingIds) const;
  /// Every tag of every file of the input's cases, sorted, without repeats.
  virtual std::vector<std::string> availableTags() const;
  /// The i-th axis value; std::out_of_range outside the axis.
  virtual Variant rowValue(int i) const;
  virtual Variant columnValue(int i) const;

  /// The header text of a row or column: the value as a user reads it, or "All" for the single
  /// entry of an axis without a variable.
  std::string rowTitle(int i) const;
  std::string columnTitle(int i) const;

  /// Fires after every rebuild.
  boost::signals2::connection connectSignalModelReset(
    const ModelResetSignal::slot_type& slot) const;

  /// Rebuilds now (normally done by the notifications).
  void rebuild();

private:
  struct Impl;
  std::unique_ptr<Impl> d;
};
