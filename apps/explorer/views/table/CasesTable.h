#pragma once

#include <QTableView>
#include <boost/shared_ptr.hpp>

#include <memory>

namespace explorer
{

class CasesModel;
class MasterSelection;
class CasesSelectionModel;
class TableSelection;

/// The cases table's widget and its selection, kept in step with the master selection.
///
/// To report a change, Qt compares the old selection with the new one range by range, which is
/// quadratic, and keeps two persistent indexes per run of rows: most of a second for a tenth of
/// a million scattered rows. A selection made in another view of many runs of rows is therefore
/// kept as a flag per row, drawn by the table's delegate, and repainted whole; a change made in
/// the table replaces the flags, and one that adds to them (Control held) first makes them Qt's
/// selection.
class CasesTable : public QTableView
{
public:
  /// A table of the model, which it takes over (as a Qt child), following `master`.
  CasesTable(CasesModel& model, boost::shared_ptr<MasterSelection> master);
  ~CasesTable() override;

  /// Shows the master selection again (after the model was reloaded or sorted).
  void showMasterSelection();
  /// Stops and starts following the master selection; resuming does not catch up.
  void suspend();
  void resume();
  /// The first selected row, flagged or Qt's; -1 without a selection.
  int firstSelectedRow() const;
  /// How many rows are selected, flagged or Qt's.
  int selectedRowCount() const;

protected:
  void mousePressEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  QRegion visualRegionForSelection(const QItemSelection& selection) const override;

private:
  CasesSelectionModel* rows = nullptr;
  std::unique_ptr<TableSelection> synchronizer;
};

} // namespace explorer
