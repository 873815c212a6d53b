#pragma once

#include "CaseRowIndex.h"

#include "signals/SignalConnectionCollection.h"

#include <QAbstractTableModel>
#include <vtkSmartPointer.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

class DataPipelineManagerInterface;
class vtkTable;

namespace explorer
{

class VariableRoles;

/// The shown cases (the pipeline's output) as a Qt table model, read again on every pipeline
/// change, in the order of a column when sorted. Rows of the model are "shown rows", rows of the
/// pipeline's table "table rows". Numbers are shown as the study wrote them, NaN as nothing.
class CasesModel : public QAbstractTableModel
{
public:
  /// The shown cases of `pipeline`; the variables' roles mark their columns ("in: Depth [ft]",
  /// "out: Rate"), again whenever they change.
  CasesModel(const DataPipelineManagerInterface& pipeline,
             std::shared_ptr<const VariableRoles> roles);
  ~CasesModel() override;

  /// Reads the shown cases again, in the sorted order.
  void reload();
  /// The variable a column shows; empty for the case id column.
  std::string variableOf(int column) const;

  int rowCount(const QModelIndex& parent = QModelIndex()) const override;
  int columnCount(const QModelIndex& parent = QModelIndex()) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  /// Sorts by a column (none below 0), numbers with NaN last, texts as text; ties keep the
  /// table's order.
  void sortBy(int column, bool descending);

  unsigned long long caseOfRow(int row) const;
  /// Adds the cases of the shown rows from `first` to `last` (both included) to `ids`, in that
  /// order: a million selected rows without a call per row.
  void addCasesOfRows(int first, int last, std::vector<unsigned long long>& ids) const;
  /// The shown cases in the shown order when sorted; empty in the study's order.
  std::vector<unsigned long long> sortedCases() const;
  /// The largest case id shown, whose text is the widest of the case id column.
  unsigned long long largestCaseId() const;
  /// The shown rows of the cases, given in increasing order.
  std::vector<int> rowsOf(const std::vector<unsigned long long>& sortedIds) const;

private:
  vtkIdType tableRow(int row) const;
  QString headerText(int column) const;
  void arrange();

  const DataPipelineManagerInterface& pipeline;
  vtkSmartPointer<vtkTable> table;
  CaseRowIndex rowOfCase;
  int sortColumn = -1;
  bool sortDescending = false;
  // Empty when unsorted: the table row of each shown row, and the shown row of each table row.
  std::vector<std::size_t> order;
  std::vector<int> shownRow;
  std::shared_ptr<const VariableRoles> roles;
  SignalConnectionCollection connections;
};

} // namespace explorer
