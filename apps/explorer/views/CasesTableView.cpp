#include "views/CasesTableView.h"

#include "CaseRowIndex.h"

#include "analyzer_common/SelectionModelInterface.h"
#include "analyzer_common/VariantDisplayText.h"
#include "datapipeline/DataPipelineManager.h"
#include "dataviews/SelectionConverterInterface.h"
#include "dataviews/TableViewSelectionSynchronizer.h"
#include "serialize/Serializer.h"
#include "signals/SignalConnectionCollection.h"

#include <QAbstractTableModel>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QPointer>
#include <QTableView>
#include <boost/make_shared.hpp>
#include <vtkAbstractArray.h>
#include <vtkDoubleArray.h>
#include <vtkStringArray.h>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <algorithm>
#include <cmath>

namespace explorer
{

namespace
{

// The pipeline's output table as a Qt model, read again on every pipeline change.
class CasesModel : public QAbstractTableModel
{
public:
  explicit CasesModel(const DataPipelineManagerInterface& pipeline)
    : pipeline(pipeline)
  {
    reload();
  }

  void reload()
  {
    beginResetModel();
    pipeline.output()->Update();
    table = vtkSmartPointer<vtkTable>::New();
    table->ShallowCopy(pipeline.output()->GetOutput());
    caseIds = caseIdsOf(*table);
    rowOfCase.assign(caseIds);
    endResetModel();
  }

  int rowCount(const QModelIndex& parent = QModelIndex()) const override
  {
    return parent.isValid() ? 0 : static_cast<int>(table->GetNumberOfRows());
  }
  int columnCount(const QModelIndex& parent = QModelIndex()) const override
  {
    return parent.isValid() ? 0 : static_cast<int>(table->GetNumberOfColumns());
  }

  QVariant data(const QModelIndex& index, int role) const override
  {
    if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::TextAlignmentRole))
      return {};
    vtkAbstractArray* column = table->GetColumn(index.column());
    if (role == Qt::TextAlignmentRole)
      return vtkStringArray::SafeDownCast(column) ? QVariant(Qt::AlignLeft | Qt::AlignVCenter)
                                                  : QVariant(Qt::AlignRight | Qt::AlignVCenter);
    if (auto* numbers = vtkDoubleArray::SafeDownCast(column))
    {
      const double value = numbers->GetValue(index.row());
      return std::isnan(value) ? QString()
                               : QString::fromStdString(variantDisplayText(Variant(value)));
    }
    return QString::fromStdString(column->GetVariantValue(index.row()).ToString());
  }

  QVariant headerData(int section, Qt::Orientation orientation, int role) const override
  {
    if (role != Qt::DisplayRole)
      return {};
    if (orientation == Qt::Horizontal && section < columnCount())
      return QString::fromUtf8(table->GetColumn(section)->GetName());
    return section + 1;
  }

  unsigned long long caseOfRow(int row) const { return caseIds[static_cast<std::size_t>(row)]; }
  std::vector<int> rowsOf(const std::set<unsigned long long>& ids) const
  {
    return rowOfCase.rowsOf(ids);
  }

private:
  const DataPipelineManagerInterface& pipeline;
  vtkSmartPointer<vtkTable> table;
  std::vector<unsigned long long> caseIds;
  CaseRowIndex rowOfCase;
};

// Rows as runs of consecutive rows: one selection range per run, not per row.
QItemSelection rowRanges(const QAbstractItemModel& model, std::vector<int>& rows)
{
  std::sort(rows.begin(), rows.end());
  QItemSelection selection;
  const int lastColumn = model.columnCount() - 1;
  for (std::size_t i = 0; i < rows.size();)
  {
    std::size_t end = i + 1;
    while (end < rows.size() && rows[end] <= rows[end - 1] + 1)
      ++end;
    selection.append(
      QItemSelectionRange(model.index(rows[i], 0), model.index(rows[end - 1], lastColumn)));
    i = end;
  }
  return selection;
}

// A row stands for its case.
class RowConverter : public SelectionConverterInterface
{
public:
  explicit RowConverter(const CasesModel& model)
    : model(model)
  {
  }

  // From the ranges themselves: QItemSelectionModel::selectedRows() asks, for each row, every
  // range whether the whole row is in it, which is quadratic in scattered selections.
  std::set<unsigned long long> caseIDsFromSelection(
    const QItemSelectionModel& selection) const override
  {
    std::vector<unsigned long long> ids;
    for (const QItemSelectionRange& range : selection.selection())
      for (int row = range.top(); row <= range.bottom(); ++row)
        ids.push_back(model.caseOfRow(row));
    std::sort(ids.begin(), ids.end());
    return std::set<unsigned long long>(ids.begin(), std::unique(ids.begin(), ids.end()));
  }

  QItemSelection selectionFromCaseIDs(const std::set<unsigned long long>& ids) const override
  {
    std::vector<int> rows = model.rowsOf(ids);
    return rowRanges(model, rows);
  }

private:
  const CasesModel& model;
};

// To report a change of selection, Qt compares the old selection with the new one range by
// range, which is quadratic; a selection made in another view (the cases of a matrix cell) is
// tens of thousands of scattered rows. A selection that replaces another is therefore made in
// two steps that Qt reports without comparing: the old one goes, then the new one comes.
class ReplacingSelectionModel : public QItemSelectionModel
{
public:
  using QItemSelectionModel::QItemSelectionModel;
  using QItemSelectionModel::select;

  void select(const QItemSelection& selection, SelectionFlags command) override
  {
    if ((command & Clear) && (command & Select) && hasSelection())
    {
      QItemSelectionModel::select(QItemSelection(), Clear);
      QItemSelectionModel::select(selection, command & ~Clear);
      return;
    }
    QItemSelectionModel::select(selection, command);
  }
};

} // namespace

struct CasesTableView::Impl
{
  QPointer<QTableView> table;
  std::unique_ptr<CasesModel> model;
  std::unique_ptr<TableViewSelectionSynchronizer> synchronizer;
  SignalConnectionCollection connections;
};

CasesTableView::CasesTableView(const ViewContext& context)
  : ExplorerView(std::make_unique<Serializer>("CasesTable"), context.selection)
  , d(std::make_unique<Impl>())
{
  const DataPipelineManagerInterface& pipeline = *context.pipeline;
  d->table = new QTableView();
  d->table->setObjectName("casesTable");
  d->table->setSelectionBehavior(QAbstractItemView::SelectRows);
  d->table->setSelectionMode(QAbstractItemView::ExtendedSelection);
  d->table->verticalHeader()->setDefaultSectionSize(22);
  d->model = std::make_unique<CasesModel>(pipeline);
  d->table->setModel(d->model.get());
  // A view does not delete the selection model it is given, nor the one it replaces.
  QItemSelectionModel* first = d->table->selectionModel();
  d->table->setSelectionModel(new ReplacingSelectionModel(d->model.get(), d->table));
  delete first;
  // The column headers get a selection of their own, always empty: to draw the table's, a header
  // asks it about every row of its column on each paint, most of a second at a million rows.
  QHeaderView* columns = d->table->horizontalHeader();
  columns->setSelectionModel(new QItemSelectionModel(d->model.get(), columns));
  d->synchronizer = std::make_unique<TableViewSelectionSynchronizer>(
    context.selection, *d->table, boost::make_shared<RowConverter>(*d->model));
  Impl* impl = d.get();
  d->connections.add(context.selection->connectSignalSelectionChanged(
    [impl](const std::set<unsigned long long>&) { scrollToSelectionLater(*impl->table); }));
  d->connections.add(pipeline.connectSignalPipelineChanged(
    [impl]
    {
      impl->model->reload();
      impl->synchronizer->showMasterSelection();
    }));
}

CasesTableView::~CasesTableView()
{
  d->connections.clear();
  d->synchronizer.reset();
  if (d->table)
  {
    d->table->setModel(nullptr);
    delete d->table;
  }
}

QWidget* CasesTableView::widget() const
{
  return d->table;
}

void CasesTableView::accept(DataViewVisitorInterface& visitor)
{
  visitor.visit(boost::dynamic_pointer_cast<TableViewInterface>(shared_from_this()));
}

std::string CasesTableView::selectionSummary() const
{
  return std::to_string(selectedRows()) + " selected rows";
}

void CasesTableView::suspend()
{
  d->connections.block();
  d->synchronizer->suspend();
}

void CasesTableView::resume()
{
  d->connections.unblock();
  d->model->reload();
  d->synchronizer->resume();
}

void CasesTableView::refresh()
{
  d->table->viewport()->update();
}

QTableView& CasesTableView::table() const
{
  return *d->table;
}

int CasesTableView::selectedRows() const
{
  int rows = 0;
  for (const QItemSelectionRange& range : d->table->selectionModel()->selection())
    rows += range.height();
  return rows;
}

} // namespace explorer
