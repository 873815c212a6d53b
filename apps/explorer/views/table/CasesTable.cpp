#include "views/table/CasesTable.h"

#include "MasterSelection.h"
#include "views/table/CasesModel.h"

#include "common/ScopedGuards.h"

#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPalette>
#include <QPointer>
#include <QSignalBlocker>
#include <QStyledItemDelegate>
#include <boost/signals2/connection.hpp>

#include <algorithm>

namespace explorer
{

namespace
{

// Past this many runs of rows, a selection is "many scattered rows": the table keeps it as flags
// (CasesSelectionModel) and repaints it whole.
constexpr std::size_t manyRuns = 256;

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

} // namespace

// The table's selection (see CasesTable). A selection that replaces another is made in two steps
// that Qt reports without comparing: the old one goes, then the new one comes.
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

namespace
{

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

} // namespace

// Keeps the table's selection and the master's list of cases in step, and never through a set: a
// selection of every row is a million cases. Each direction is off while the other writes.
class TableSelection
{
public:
  TableSelection(boost::shared_ptr<MasterSelection> master,
                 QTableView& view,
                 const CasesModel& model,
                 CasesSelectionModel& selection)
    : master(std::move(master))
    , model(model)
    , selection(selection)
  {
    // The selected rows keep their colour while the focus is elsewhere: they are the selection
    // every view shows.
    QPalette palette = view.palette();
    palette.setColor(QPalette::Inactive,
                     QPalette::Highlight,
                     palette.color(QPalette::Active, QPalette::Highlight));
    view.setPalette(palette);
    showMaster();
    fromMaster = this->master->connectCasesChanged(
      [this](const MasterSelection::SharedCases&)
      {
        if (!suspended && !writing)
          showMaster();
      });
    fromTable = QObject::connect(&selection,
                                 &QItemSelectionModel::selectionChanged,
                                 [this]
                                 {
                                   if (!writing)
                                     toMaster();
                                 });
  }

  ~TableSelection() { QObject::disconnect(fromTable); }

  void suspend() { suspended = true; }

  void resume()
  {
    suspended = false;
    showMaster();
  }

  void showMaster()
  {
    std::vector<int> rows = model.rowsOf(*master->cases());
    std::sort(rows.begin(), rows.end());
    const ScopedValue<bool> quiet(writing, true);
    selection.show(std::move(rows));
  }

private:
  // The cases of the selected rows, from the ranges themselves: QItemSelectionModel's
  // selectedRows() asks every range about every row, quadratic in scattered selections.
  void toMaster()
  {
    MasterSelection::Cases ids;
    for (const QItemSelectionRange& range : selection.selection())
      model.addCasesOfRows(range.top(), range.bottom(), ids);
    const ScopedValue<bool> quiet(writing, true);
    master->setCases(std::move(ids));
  }

  boost::shared_ptr<MasterSelection> master;
  const CasesModel& model;
  CasesSelectionModel& selection;
  boost::signals2::scoped_connection fromMaster;
  QMetaObject::Connection fromTable;
  bool suspended = false;
  bool writing = false;
};

CasesTable::CasesTable(CasesModel& model, boost::shared_ptr<MasterSelection> master)
{
  setObjectName("casesTable");
  // The table owns its model: the table's selection refers to it until the table goes.
  model.setParent(this);
  setSelectionBehavior(QAbstractItemView::SelectRows);
  setSelectionMode(QAbstractItemView::ExtendedSelection);
  verticalHeader()->setDefaultSectionSize(22);
  setModel(&model);
  // A view does not delete the selection model it is given, nor the one it replaces.
  QItemSelectionModel* first = selectionModel();
  rows = new CasesSelectionModel(&model, this);
  setSelectionModel(rows);
  delete first;
  setItemDelegate(new CasesDelegate(*rows, this));
  // The headers get a selection of their own, always empty: to draw the table's, a column header
  // asks it about every row of its column on each paint, most of a second at a million rows; and
  // a row header could not show the rows kept as flags, so it shows none.
  for (QHeaderView* header : { horizontalHeader(), verticalHeader() })
    header->setSelectionModel(new QItemSelectionModel(&model, header));
  synchronizer = std::make_unique<TableSelection>(std::move(master), *this, model, *rows);
}

CasesTable::~CasesTable()
{
  synchronizer.reset();
  setModel(nullptr);
}

void CasesTable::showMasterSelection()
{
  synchronizer->showMaster();
}

void CasesTable::suspend()
{
  synchronizer->suspend();
}

void CasesTable::resume()
{
  synchronizer->resume();
}

int CasesTable::firstSelectedRow() const
{
  return rows->firstRow();
}

int CasesTable::selectedRowCount() const
{
  auto count = static_cast<int>(rows->flaggedRows());
  for (const QItemSelectionRange& range : selectionModel()->selection())
    count += range.height();
  return count;
}

// A press with Control adds to the selection or takes from it: Qt decides which from its own
// selection, which must then hold the rows kept as flags.
void CasesTable::mousePressEvent(QMouseEvent* event)
{
  if (event->modifiers() & Qt::ControlModifier)
    rows->adoptFlags();
  QTableView::mousePressEvent(event);
}

void CasesTable::keyPressEvent(QKeyEvent* event)
{
  if (event->modifiers() & Qt::ControlModifier)
    rows->adoptFlags();
  QTableView::keyPressEvent(event);
}

// A selection of many scattered rows repaints the whole viewport: finding the region of each of
// its ranges costs more than painting the rows in sight.
QRegion CasesTable::visualRegionForSelection(const QItemSelection& selection) const
{
  return static_cast<std::size_t>(selection.size()) > manyRuns
           ? QRegion(viewport()->rect())
           : QTableView::visualRegionForSelection(selection);
}

} // namespace explorer
