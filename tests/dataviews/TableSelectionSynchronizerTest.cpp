#include "analyzer_common/SelectionModel.h"
#include "dataviews/SelectionBroadcaster.h"
#include "dataviews/SelectionConverterInterface.h"
#include "dataviews/TableViewSelectionSynchronizer.h"

#include <QItemSelectionModel>
#include <QStandardItemModel>
#include <QTableView>
#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

namespace
{

using Ids = std::set<unsigned long long>;

// A table of one column whose row r shows case 100 + r.
class RowConverter : public SelectionConverterInterface
{
public:
  explicit RowConverter(const QAbstractItemModel& model)
    : model(model)
  {
  }
  Ids caseIDsFromSelection(const QItemSelectionModel& selection) const override
  {
    Ids ids;
    for (const QModelIndex& index : selection.selectedIndexes())
      ids.insert(100 + static_cast<unsigned long long>(index.row()));
    return ids;
  }
  QItemSelection selectionFromCaseIDs(const Ids& ids) const override
  {
    QItemSelection selection;
    for (unsigned long long id : ids)
    {
      const QModelIndex index = model.index(static_cast<int>(id - 100), 0);
      if (index.isValid())
        selection.select(index, index);
    }
    return selection;
  }

private:
  const QAbstractItemModel& model;
};

// The master selection, counting every call to setSelection, changed or not.
class CountingSelectionModel : public SelectionModel
{
public:
  void setSelection(const Selection& ids) override
  {
    ++calls;
    SelectionModel::setSelection(ids);
  }
  int calls = 0;
};

Ids viewSelection(QTableView& view)
{
  Ids rows;
  for (const QModelIndex& index : view.selectionModel()->selectedIndexes())
    rows.insert(100 + static_cast<unsigned long long>(index.row()));
  return rows;
}

class TableSelectionTest : public ::testing::Test
{
protected:
  TableSelectionTest()
    : items(5, 1)
  {
    view.setModel(&items);
    view.setSelectionMode(QAbstractItemView::ExtendedSelection);
    master = boost::make_shared<CountingSelectionModel>();
    converter = boost::make_shared<RowConverter>(items);
  }

  void selectRowsInView(std::initializer_list<int> rows)
  {
    QItemSelection selection;
    for (int row : rows)
      selection.select(items.index(row, 0), items.index(row, 0));
    view.selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
  }

  QStandardItemModel items;
  QTableView view;
  boost::shared_ptr<CountingSelectionModel> master;
  boost::shared_ptr<RowConverter> converter;
};

} // namespace

TEST_F(TableSelectionTest, StartsFromTheMastersSelectionAndKeepsTheHighlightWithoutFocus)
{
  selectRowsInView({ 4 });
  master->setSelection({ 101, 102 });
  TableViewSelectionSynchronizer synchronizer(master, view, converter);
  EXPECT_EQ(viewSelection(view), (Ids{ 101, 102 }));
  EXPECT_EQ(view.palette().color(QPalette::Inactive, QPalette::Highlight),
            view.palette().color(QPalette::Active, QPalette::Highlight));
}

TEST_F(TableSelectionTest, BothDirectionsWithoutEcho)
{
  TableViewSelectionSynchronizer synchronizer(master, view, converter);
  master->calls = 0;
  selectRowsInView({ 0, 3 });
  EXPECT_EQ(master->getSelections(), (Ids{ 100, 103 }));
  EXPECT_EQ(master->calls, 1);

  master->setSelection({ 104 });
  EXPECT_EQ(viewSelection(view), Ids{ 104 });
  EXPECT_EQ(master->calls, 2) << "showing the master's change does not set it again";
  EXPECT_EQ(master->getSelections(), Ids{ 104 });

  // A view selection that converts to what the master already holds is still passed on once.
  synchronizer.suspend();
  master->setSelection({ 102 });
  master->calls = 0;
  selectRowsInView({ 2 });
  EXPECT_EQ(master->calls, 1);
  EXPECT_EQ(master->getSelections(), Ids{ 102 });
}

TEST_F(TableSelectionTest, SuspendStopsOnlyTheMasterDirectionAndResumeCatchesUp)
{
  TableViewSelectionSynchronizer synchronizer(master, view, converter);
  synchronizer.suspend();
  master->setSelection({ 102 });
  EXPECT_EQ(viewSelection(view), Ids{}) << "master changes are not shown while suspended";
  selectRowsInView({ 1 });
  EXPECT_EQ(master->getSelections(), Ids{ 101 }) << "local selections still reach the master";
  master->setSelection({ 103 });
  EXPECT_EQ(viewSelection(view), Ids{ 101 });
  synchronizer.resume();
  EXPECT_EQ(viewSelection(view), Ids{ 103 });
  master->setSelection({ 100 });
  EXPECT_EQ(viewSelection(view), Ids{ 100 });
}

TEST_F(TableSelectionTest, BroadcasterSignalsSelectionChangesAndOnlyRealChangesOnReset)
{
  SelectionBroadcaster broadcaster(*view.selectionModel());
  int signals = 0;
  boost::signals2::scoped_connection connection =
    broadcaster.connectSignalSelectedImagesChanged([&] { ++signals; });

  selectRowsInView({ 1 });
  EXPECT_EQ(signals, 1);
  Q_EMIT items.layoutChanged(); // the same index stays selected
  EXPECT_EQ(signals, 1);
  items.insertRow(0); // row 1 moves to row 2: the selected index changed
  Q_EMIT items.layoutChanged();
  EXPECT_EQ(signals, 2);
  items.clear(); // a reset that clears the selection
  EXPECT_EQ(signals, 3);
  Q_EMIT items.layoutChanged();
  EXPECT_EQ(signals, 3);
}
