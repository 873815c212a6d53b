#include "views/CasesTableView.h"

#include "CaseOrder.h"
#include "CaseRowIndex.h"
#include "TableSorting.h"

#include "analyzer_common/SelectionModelInterface.h"
#include "analyzer_common/VariantDisplayText.h"
#include "datamanagement/Project.h"
#include "datapipeline/DataPipelineManager.h"
#include "dataviews/SelectionConverterInterface.h"
#include "dataviews/TableViewSelectionSynchronizer.h"
#include "properties/BoundedValueValidator.h"
#include "properties/Property.h"
#include "properties/UndoablePropertyProxy.h"
#include "serialization/GenericSerializer.h"
#include "serialize/Serializer.h"
#include "signals/SignalConnectionCollection.h"

#include <QAbstractTableModel>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPointer>
#include <QSignalBlocker>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QVBoxLayout>
#include <boost/make_shared.hpp>
#include <vtkAbstractArray.h>
#include <vtkDoubleArray.h>
#include <vtkStringArray.h>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>

namespace explorer
{

namespace
{

// The pipeline's output table as a Qt model, read again on every pipeline change, in the order
// of a column when sorted. Rows of the model are "shown rows"; rows of the table "table rows".
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
    arrange();
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
    const vtkIdType row = tableRow(index.row());
    if (auto* numbers = vtkDoubleArray::SafeDownCast(column))
    {
      const double value = numbers->GetValue(row);
      return std::isnan(value) ? QString()
                               : QString::fromStdString(variantDisplayText(Variant(value)));
    }
    return QString::fromStdString(column->GetVariantValue(row).ToString());
  }

  QVariant headerData(int section, Qt::Orientation orientation, int role) const override
  {
    if (role != Qt::DisplayRole)
      return {};
    if (orientation == Qt::Horizontal && section < columnCount())
      return QString::fromUtf8(table->GetColumn(section)->GetName());
    return section + 1;
  }

  // Sorts by a column (none below 0), numbers with NaN last, texts as text; ties keep the
  // table's order.
  void sortBy(int column, bool descending)
  {
    sortColumn = column;
    sortDescending = descending;
    beginResetModel();
    arrange();
    endResetModel();
  }

  unsigned long long caseOfRow(int row) const
  {
    return caseIds[static_cast<std::size_t>(tableRow(row))];
  }
  // The shown cases in the shown order when sorted; empty in the study's order.
  std::vector<unsigned long long> sortedCases() const
  {
    std::vector<unsigned long long> ids;
    ids.reserve(order.size());
    for (std::size_t row : order)
      ids.push_back(caseIds[row]);
    return ids;
  }
  // The largest case id shown, whose text is the widest of the case id column.
  unsigned long long largestCaseId() const
  {
    return caseIds.empty() ? 0 : *std::max_element(caseIds.begin(), caseIds.end());
  }
  // The shown rows of the cases.
  std::vector<int> rowsOf(const std::set<unsigned long long>& ids) const
  {
    std::vector<int> rows = rowOfCase.rowsOf(ids);
    if (!order.empty())
      for (int& row : rows)
        row = shownRow[static_cast<std::size_t>(row)];
    return rows;
  }

private:
  const DataPipelineManagerInterface& pipeline;
  vtkIdType tableRow(int row) const
  {
    return order.empty() ? row : static_cast<vtkIdType>(order[static_cast<std::size_t>(row)]);
  }

  void arrange()
  {
    order.clear();
    shownRow.clear();
    vtkAbstractArray* column = sortColumn >= 0 && sortColumn < table->GetNumberOfColumns()
                                 ? table->GetColumn(sortColumn)
                                 : nullptr;
    if (!column)
      return;
    const auto rows = static_cast<std::size_t>(table->GetNumberOfRows());
    order.resize(rows);
    std::iota(order.begin(), order.end(), std::size_t(0));
    if (auto* texts = vtkStringArray::SafeDownCast(column))
    {
      std::vector<std::string> keys(rows);
      for (std::size_t row = 0; row < rows; ++row)
        keys[row] = texts->GetValue(static_cast<vtkIdType>(row));
      sortByTexts(order, keys, sortDescending);
    }
    else
    {
      std::vector<double> keys(rows);
      auto* numbers = vtkDoubleArray::SafeDownCast(column);
      for (std::size_t row = 0; row < rows; ++row)
        keys[row] = numbers ? numbers->GetValue(static_cast<vtkIdType>(row))
                            : column->GetVariantValue(static_cast<vtkIdType>(row)).ToDouble();
      sortByNumbers(order, keys, sortDescending);
    }
    shownRow.resize(rows);
    for (std::size_t row = 0; row < rows; ++row)
      shownRow[order[row]] = static_cast<int>(row);
  }

  vtkSmartPointer<vtkTable> table;
  std::vector<unsigned long long> caseIds;
  CaseRowIndex rowOfCase;
  int sortColumn = -1;
  bool sortDescending = false;
  // Empty when unsorted: the table row of each shown row, and the shown row of each table row.
  std::vector<std::size_t> order;
  std::vector<int> shownRow;
};

// Past this many runs of rows, a selection is "many scattered rows": the table keeps it as flags
// (CasesSelectionModel) and repaints it whole.
constexpr std::size_t manyRuns = 256;

// A selection of many scattered rows repaints the whole viewport: finding the region of each of
// its ranges costs more than painting the rows in sight. A press with Control adds to the
// selection or takes from it: Qt decides which from its own selection, which must then hold the
// rows kept as flags.
class CasesTable : public QTableView
{
public:
  std::function<void()> beforeAddingToSelection;

protected:
  void mousePressEvent(QMouseEvent* event) override
  {
    if ((event->modifiers() & Qt::ControlModifier) && beforeAddingToSelection)
      beforeAddingToSelection();
    QTableView::mousePressEvent(event);
  }

  void keyPressEvent(QKeyEvent* event) override
  {
    if ((event->modifiers() & Qt::ControlModifier) && beforeAddingToSelection)
      beforeAddingToSelection();
    QTableView::keyPressEvent(event);
  }

  QRegion visualRegionForSelection(const QItemSelection& selection) const override
  {
    return static_cast<std::size_t>(selection.size()) > manyRuns
             ? QRegion(viewport()->rect())
             : QTableView::visualRegionForSelection(selection);
  }
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
    // Rows in the study's order hold their cases in order: nothing to sort then.
    if (!std::is_sorted(ids.begin(), ids.end()))
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

// The table's selection. To report a change, Qt compares the old selection with the new one
// range by range, which is quadratic; a selection that replaces another is therefore made in two
// steps that Qt reports without comparing: the old one goes, then the new one comes.
//
// A selection made in another view can be many scattered rows (a tenth of a million cases is
// 1e5 runs of rows), and Qt keeps two persistent indexes per run: most of a second to take in.
// Such a selection is kept here as a flag per row instead, drawn by the table's delegate, while
// Qt's own selection stays empty. A change made in the table replaces the flags; a change that
// adds to them (Control held) first makes them Qt's selection.
class CasesSelectionModel : public QItemSelectionModel
{
public:
  CasesSelectionModel(QAbstractItemModel* model, QAbstractItemView* view)
    : QItemSelectionModel(model, view)
    , view(view)
  {
    // The flags name rows of the model as it was.
    connect(model, &QAbstractItemModel::modelAboutToBeReset, this, [this] { dropFlags(); });
    connect(model, &QAbstractItemModel::layoutAboutToBeChanged, this, [this] { dropFlags(); });
  }

  using QItemSelectionModel::select;

  void select(const QItemSelection& selection, SelectionFlags command) override
  {
    if (flaggedCount > 0)
    {
      if (command & Clear)
        dropFlags();
      else
        adoptFlags();
    }
    if ((command & Clear) && (command & Select) && hasSelection())
    {
      QItemSelectionModel::select(QItemSelection(), Clear);
      QItemSelectionModel::select(selection, command & ~Clear);
      return;
    }
    QItemSelectionModel::select(selection, command);
  }

  // Shows these rows, sorted, as the selection in place of any other.
  void show(std::vector<int> rows)
  {
    dropFlags();
    std::size_t runs = 0;
    for (std::size_t i = 0; i < rows.size() && runs <= manyRuns; ++i)
      runs += i == 0 || rows[i] > rows[i - 1] + 1 ? 1 : 0;
    if (runs <= manyRuns)
    {
      select(rowRanges(*model(), rows), ClearAndSelect);
      return;
    }
    if (hasSelection())
      QItemSelectionModel::select(QItemSelection(), Clear);
    flags.assign(static_cast<std::size_t>(model()->rowCount()), false);
    for (int row : rows)
      flags[static_cast<std::size_t>(row)] = true;
    flaggedCount = rows.size();
    firstFlagged = rows.front();
    view->viewport()->update();
  }

  bool flagged(int row) const
  {
    return flaggedCount > 0 && row >= 0 && static_cast<std::size_t>(row) < flags.size() &&
           flags[static_cast<std::size_t>(row)];
  }

  std::size_t flaggedRows() const { return flaggedCount; }

  // The first selected row, flagged or Qt's; -1 without a selection.
  int firstRow() const
  {
    if (flaggedCount > 0)
      return firstFlagged;
    const QItemSelection ranges = selection();
    return ranges.isEmpty() ? -1 : ranges.first().top();
  }

  // Makes the flags Qt's selection, quietly: they were drawn as selected already.
  void adoptFlags()
  {
    if (flaggedCount == 0)
      return;
    std::vector<int> rows;
    rows.reserve(flaggedCount);
    for (std::size_t row = 0; row < flags.size(); ++row)
      if (flags[row])
        rows.push_back(static_cast<int>(row));
    dropFlags();
    const QSignalBlocker quiet(this);
    QItemSelectionModel::select(rowRanges(*model(), rows), Select);
  }

private:
  void dropFlags()
  {
    if (flaggedCount == 0)
      return;
    flags.clear();
    flaggedCount = 0;
    view->viewport()->update();
  }

  QPointer<QAbstractItemView> view;
  std::vector<bool> flags;
  std::size_t flaggedCount = 0;
  int firstFlagged = -1;
};

// Draws the flagged rows of the selection as selected.
class CasesDelegate : public QStyledItemDelegate
{
public:
  CasesDelegate(const CasesSelectionModel& selection, QObject* parent)
    : QStyledItemDelegate(parent)
    , selection(selection)
  {
  }

  void paint(QPainter* painter,
             const QStyleOptionViewItem& option,
             const QModelIndex& index) const override
  {
    if (!selection.flagged(index.row()))
    {
      QStyledItemDelegate::paint(painter, option, index);
      return;
    }
    QStyleOptionViewItem selected = option;
    selected.state |= QStyle::State_Selected;
    QStyledItemDelegate::paint(painter, selected, index);
  }

private:
  const CasesSelectionModel& selection;
};

// Shows the master selection through the selection model, which keeps many runs of rows as flags.
class CasesSelectionSynchronizer : public TableViewSelectionSynchronizer
{
public:
  CasesSelectionSynchronizer(boost::shared_ptr<SelectionModelInterface> master,
                             QTableView& view,
                             const CasesModel& model,
                             CasesSelectionModel& selection)
    : TableViewSelectionSynchronizer(std::move(master),
                                     view,
                                     boost::make_shared<RowConverter>(model))
    , model(model)
    , selection(selection)
  {
  }

private:
  void setLocalSelectionsToMaster(const std::set<unsigned long long>& ids) override
  {
    std::vector<int> rows = model.rowsOf(ids);
    std::sort(rows.begin(), rows.end());
    selection.show(std::move(rows));
  }

  const CasesModel& model;
  CasesSelectionModel& selection;
};

} // namespace

struct CasesTableView::Impl
{
  std::shared_ptr<const Project> project;
  boost::shared_ptr<SelectionModelInterface> selection;
  QPointer<QWidget> container;
  CasesTable* table = nullptr;
  CasesSelectionModel* rows = nullptr;
  QLineEdit* find = nullptr;
  QLabel* findMessage = nullptr;
  std::unique_ptr<CasesModel> model;
  std::unique_ptr<TableViewSelectionSynchronizer> synchronizer;
  boost::shared_ptr<plexa::UndoablePropertyProxy<short>> sortColumn;
  boost::shared_ptr<plexa::UndoablePropertyProxy<bool>> sortDescending;
  std::shared_ptr<CaseOrder> order;

  void applySort()
  {
    const QSignalBlocker blocker(table->horizontalHeader());
    table->horizontalHeader()->setSortIndicator(
      sortColumn->value(), sortDescending->value() ? Qt::DescendingOrder : Qt::AscendingOrder);
    model->sortBy(sortColumn->value(), sortDescending->value());
    fitCaseIdColumn();
    synchronizer->showMasterSelection();
    order->setOrder(model->sortedCases());
  }

  // Case ids are shown whole, the longest 20 digits.
  void fitCaseIdColumn()
  {
    const QString widest = QString::number(model->largestCaseId());
    table->setColumnWidth(0,
                          std::max(table->horizontalHeader()->defaultSectionSize(),
                                   table->fontMetrics().horizontalAdvance(widest) + 16));
  }

  // Selects the case whose id was typed, or says why it cannot.
  void findCase()
  {
    const QString text = find->text().trimmed();
    bool number = false;
    const unsigned long long id = text.toULongLong(&number);
    const std::vector<int> rows = number ? model->rowsOf({ id }) : std::vector<int>();
    QString message;
    if (!number)
      message = "'" + text + "' is not a case id";
    else if (project->record(id).lock().isNull())
      message = "no case " + text;
    else if (rows.empty())
      message = "case " + text + " is filtered out";
    findMessage->setText(message);
    findMessage->setVisible(!message.isEmpty());
    if (!message.isEmpty())
      return;
    selection->setSelection({ id });
    table->scrollTo(model->index(rows.front(), 0));
  }
};

CasesTableView::CasesTableView(const ViewContext& context)
  : ViewOfKind(std::make_unique<Serializer>("CasesTable"), context.selection)
  , d(std::make_unique<Impl>())
{
  const DataPipelineManagerInterface& pipeline = *context.pipeline;
  d->project = context.project;
  d->selection = context.selection;
  d->order = context.order;
  d->container = new QWidget();
  setWidget(d->container);
  d->container->setObjectName("cases");
  auto* layout = new QVBoxLayout(d->container);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(2);
  auto* bar = new QHBoxLayout();
  d->find = new QLineEdit();
  d->find->setObjectName("findCase");
  d->find->setPlaceholderText("Find case id");
  d->find->setMaximumWidth(160);
  d->findMessage = new QLabel();
  d->findMessage->setStyleSheet("color: #a00000");
  d->findMessage->hide();
  bar->addWidget(d->find);
  bar->addWidget(d->findMessage);
  bar->addStretch();
  layout->addLayout(bar);
  d->table = new CasesTable();
  d->table->setObjectName("casesTable");
  layout->addWidget(d->table);
  d->table->setSelectionBehavior(QAbstractItemView::SelectRows);
  d->table->setSelectionMode(QAbstractItemView::ExtendedSelection);
  d->table->verticalHeader()->setDefaultSectionSize(22);
  d->model = std::make_unique<CasesModel>(pipeline);
  d->table->setModel(d->model.get());
  // A view does not delete the selection model it is given, nor the one it replaces.
  QItemSelectionModel* first = d->table->selectionModel();
  auto* rows = new CasesSelectionModel(d->model.get(), d->table);
  d->table->setSelectionModel(rows);
  delete first;
  d->table->setItemDelegate(new CasesDelegate(*rows, d->table));
  d->table->beforeAddingToSelection = [rows] { rows->adoptFlags(); };
  d->rows = rows;
  // The headers get a selection of their own, always empty: to draw the table's, a column header
  // asks it about every row of its column on each paint, most of a second at a million rows; and
  // a row header could not show the rows kept as flags, so it shows none.
  QHeaderView* columns = d->table->horizontalHeader();
  for (QHeaderView* header : { columns, d->table->verticalHeader() })
    header->setSelectionModel(new QItemSelectionModel(d->model.get(), header));
  d->synchronizer =
    std::make_unique<CasesSelectionSynchronizer>(context.selection, *d->table, *d->model, *rows);

  using Bounded = plexa::BoundedValueValidator<short>;
  d->sortColumn = boost::make_shared<plexa::UndoablePropertyProxy<short>>(
    "Sort Column",
    boost::make_shared<plexa::Property<short>>(
      -1,
      boost::make_shared<Bounded>(-1,
                                  Bounded::Inclusive,
                                  static_cast<short>(d->model->columnCount() - 1),
                                  Bounded::Inclusive)));
  d->sortDescending = boost::make_shared<plexa::UndoablePropertyProxy<bool>>(
    "Sort Descending", boost::make_shared<plexa::Property<bool>>(false));
  sortOnHeaderClicks(*columns, d->sortColumn, d->sortDescending);
  columns->setSortIndicator(-1, Qt::AscendingOrder); // in the study's order until a click
  Impl* impl = d.get();
  connections().add(d->sortColumn->connectSignalPropertyChanged([impl] { impl->applySort(); }));
  connections().add(d->sortDescending->connectSignalPropertyChanged([impl] { impl->applySort(); }));
  QObject::connect(d->find, &QLineEdit::returnPressed, d->container, [impl] { impl->findCase(); });

  connections().add(context.selection->connectSignalSelectionChanged(
    [impl](const std::set<unsigned long long>&)
    { scrollToSelectionLater(*impl->table, [impl] { return impl->rows->firstRow(); }); }));
  connections().add(pipeline.connectSignalPipelineChanged(
    [impl]
    {
      impl->model->reload();
      impl->fitCaseIdColumn();
      impl->synchronizer->showMasterSelection();
      if (impl->sortColumn->value() >= 0)
        impl->order->setOrder(impl->model->sortedCases());
    }));
  d->fitCaseIdColumn();
  saveSetting(boost::make_shared<GenericSerializer<short>>("SortColumn", d->sortColumn),
              "a column, or -1");
  saveSetting(boost::make_shared<GenericSerializer<bool>>("SortDescending", d->sortDescending),
              "0 or 1");
}

CasesTableView::~CasesTableView()
{
  // The table lets go of the model before the model goes with the view's parts.
  connections().clear();
  d->synchronizer.reset();
  if (d->container)
    d->table->setModel(nullptr);
}

std::string CasesTableView::selectionSummary() const
{
  return std::to_string(selectedRows()) + " selected rows";
}

void CasesTableView::suspendParts()
{
  d->synchronizer->suspend();
}

void CasesTableView::resumeParts()
{
  d->model->reload();
  d->fitCaseIdColumn();
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

boost::shared_ptr<plexa::PropertyAbstract<short>> CasesTableView::sortColumn() const
{
  return d->sortColumn;
}

boost::shared_ptr<plexa::PropertyAbstract<bool>> CasesTableView::sortDescending() const
{
  return d->sortDescending;
}

int CasesTableView::selectedRows() const
{
  auto rows = static_cast<int>(d->rows->flaggedRows());
  for (const QItemSelectionRange& range : d->table->selectionModel()->selection())
    rows += range.height();
  return rows;
}

} // namespace explorer
