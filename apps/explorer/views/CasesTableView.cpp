#include "views/CasesTableView.h"

#include "analyzer_common/SelectionModelInterface.h"
#include "analyzer_common/VariantDisplayText.h"
#include "datapipeline/DataPipelineManager.h"
#include "dataviews/RecordTableUtils.h"
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

#include <cmath>
#include <unordered_map>

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
    rowOfCase.clear();
    for (vtkIdType row = 0; row < table->GetNumberOfRows(); ++row)
      rowOfCase.emplace(RecordTableUtils::caseIDAtRow(*table, row), static_cast<int>(row));
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

  unsigned long long caseOfRow(int row) const { return RecordTableUtils::caseIDAtRow(*table, row); }
  int rowOf(unsigned long long id) const
  {
    const auto found = rowOfCase.find(id);
    return found == rowOfCase.end() ? -1 : found->second;
  }

private:
  const DataPipelineManagerInterface& pipeline;
  vtkSmartPointer<vtkTable> table;
  std::unordered_map<unsigned long long, int> rowOfCase;
};

// A row stands for its case.
class RowConverter : public SelectionConverterInterface
{
public:
  explicit RowConverter(const CasesModel& model)
    : model(model)
  {
  }

  std::set<unsigned long long> caseIDsFromSelection(
    const QItemSelectionModel& selection) const override
  {
    std::set<unsigned long long> ids;
    for (const QModelIndex& index : selection.selectedRows())
      ids.insert(model.caseOfRow(index.row()));
    return ids;
  }

  QItemSelection selectionFromCaseIDs(const std::set<unsigned long long>& ids) const override
  {
    QItemSelection selection;
    const int lastColumn = model.columnCount() - 1;
    for (unsigned long long id : ids)
    {
      const int row = model.rowOf(id);
      if (row >= 0)
        selection.select(model.index(row, 0), model.index(row, lastColumn));
    }
    return selection;
  }

private:
  const CasesModel& model;
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
  d->synchronizer = std::make_unique<TableViewSelectionSynchronizer>(
    context.selection, *d->table, boost::make_shared<RowConverter>(*d->model));
  Impl* impl = d.get();
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
  return d->table->selectionModel()->selectedRows().size();
}

} // namespace explorer
