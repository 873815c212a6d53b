#include "analyzer_common/SelectionModel.h"
#include "dataviews/DataView2DSelectionSynchronizer.h"
#include "dataviews/PlotSelectionModel.h"

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>
#include <vtkChartXY.h>
#include <vtkCommand.h>
#include <vtkDoubleArray.h>
#include <vtkIdTypeArray.h>
#include <vtkIntArray.h>
#include <vtkNew.h>
#include <vtkPlotPoints.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkTable.h>

#include <vector>

namespace
{

using Ids = std::set<unsigned long long>;
using Rows = std::vector<vtkIdType>;

vtkSmartPointer<vtkTable> caseTable(const std::vector<int>& ids)
{
  auto caseIds = vtkSmartPointer<vtkIntArray>::New();
  caseIds->SetName("case_id");
  auto x = vtkSmartPointer<vtkDoubleArray>::New();
  x->SetName("x");
  auto y = vtkSmartPointer<vtkDoubleArray>::New();
  y->SetName("y");
  for (std::size_t i = 0; i < ids.size(); ++i)
  {
    caseIds->InsertNextValue(ids[i]);
    x->InsertNextValue(static_cast<double>(i));
    y->InsertNextValue(static_cast<double>(i * i));
  }
  auto table = vtkSmartPointer<vtkTable>::New();
  table->AddColumn(caseIds);
  table->AddColumn(x);
  table->AddColumn(y);
  return table;
}

Rows selectedRows(vtkPlot& plot)
{
  Rows rows;
  if (vtkIdTypeArray* selection = plot.GetSelection())
  {
    for (vtkIdType i = 0; i <= selection->GetMaxId(); ++i)
      rows.push_back(selection->GetValue(i));
  }
  return rows;
}

// A chart with two synchronised plots over the case ids 10..14 and 12..16, one plot outside
// the synchronised set, a real interactor for the modifier key, and the master selection.
class ChartSelectionTest : public ::testing::Test
{
protected:
  void SetUp() override
  {
    master = boost::make_shared<SelectionModel>();
    connection = master->connectSignalSelectionChanged([this](const Ids&) { ++masterChanges; });
    interactor = vtkSmartPointer<vtkRenderWindowInteractor>::New();
    chart = vtkSmartPointer<vtkChartXY>::New();
    first = addPlot({ 10, 11, 12, 13, 14 });
    second = addPlot({ 12, 13, 14, 15, 16 });
    other = addPlot({ 10, 11, 12 });
    model = boost::make_shared<PlotSelectionModel>(interactor, master);
    synchronizer = std::make_unique<DataView2DSelectionSynchronizer>(chart, interactor, model);
    synchronizer->setPlotsToSynchronize({ first, second });
  }

  vtkSmartPointer<vtkPlot> addPlot(const std::vector<int>& ids)
  {
    vtkSmartPointer<vtkPlot> plot = chart->AddPlot(vtkChart::POINTS);
    plot->SetInputData(caseTable(ids), 1, 2);
    return plot;
  }

  // What the chart does when the user picks rows of one plot: that plot selects them, the
  // others are cleared, and the chart reports the change.
  void pick(vtkPlot& plot, const Rows& rows, bool modifier)
  {
    for (vtkIdType p = 0; p < chart->GetNumberOfPlots(); ++p)
      chart->GetPlot(p)->SetSelection(vtkSmartPointer<vtkIdTypeArray>::New());
    auto selection = vtkSmartPointer<vtkIdTypeArray>::New();
    for (vtkIdType row : rows)
      selection->InsertNextValue(row);
    plot.SetSelection(selection);
    interactor->SetControlKey(modifier ? 1 : 0);
    chart->InvokeEvent(vtkCommand::SelectionChangedEvent);
    interactor->SetControlKey(0);
  }

  boost::shared_ptr<SelectionModel> master;
  boost::signals2::scoped_connection connection;
  int masterChanges = 0;
  vtkSmartPointer<vtkRenderWindowInteractor> interactor;
  vtkSmartPointer<vtkChartXY> chart;
  vtkSmartPointer<vtkPlot> first;
  vtkSmartPointer<vtkPlot> second;
  vtkSmartPointer<vtkPlot> other;
  boost::shared_ptr<PlotSelectionModel> model;
  std::unique_ptr<DataView2DSelectionSynchronizer> synchronizer;
};

} // namespace

TEST_F(ChartSelectionTest, ModifierKeyDecidesBetweenReplaceToggleAndUnion)
{
  const struct
  {
    const char* pick;
    Ids before;
    Rows rows; // of the first plot
    bool modifier;
    Ids after;
    bool masterChanges;
  } cases[] = {
    { "a plain pick replaces", { 14 }, { 0, 1 }, false, { 10, 11 }, true },
    { "a plain empty pick clears", { 14 }, {}, false, {}, true },
    { "a modified single new case is added", { 14 }, { 0 }, true, { 10, 14 }, true },
    { "a modified single selected case is removed", { 10, 14 }, { 0 }, true, { 14 }, true },
    { "a modified band adds", { 14 }, { 0, 1, 4 }, true, { 10, 11, 14 }, true },
    { "a modified band of selected cases changes nothing",
      { 10, 11, 14 },
      { 0, 1 },
      true,
      { 10, 11, 14 },
      false },
    { "a modified empty pick changes nothing", { 10 }, {}, true, { 10 }, false },
  };
  for (const auto& c : cases)
  {
    master->setSelection(c.before);
    masterChanges = 0;
    pick(*first, c.rows, c.modifier);
    EXPECT_EQ(master->getSelections(), c.after) << c.pick;
    EXPECT_EQ(masterChanges, c.masterChanges ? 1 : 0) << c.pick;
    // Whether the master changed or not, the plot shows the master's selection afterwards.
    Rows expected;
    for (unsigned long long id : c.after)
      expected.push_back(static_cast<vtkIdType>(id - 10));
    EXPECT_EQ(selectedRows(*first), expected) << c.pick;
  }
}

TEST_F(ChartSelectionTest, APickThatBringsNothingNewRestoresTheHighlight)
{
  master->setSelection({ 10, 11, 14 });
  EXPECT_EQ(selectedRows(*first), (Rows{ 0, 1, 4 }));
  masterChanges = 0;
  // A modified rubber band over two of the three selected cases: the chart's own selection now
  // shows only those two.
  pick(*first, { 0, 1 }, true);
  EXPECT_EQ(masterChanges, 0);
  EXPECT_EQ(selectedRows(*first), (Rows{ 0, 1, 4 })) << "the master's rows are shown again";
  EXPECT_EQ(selectedRows(*second), (Rows{ 2 }));
}

TEST_F(ChartSelectionTest, MasterChangesSelectRowsInEverySynchronisedPlotAndClearTheOthers)
{
  auto stale = vtkSmartPointer<vtkIdTypeArray>::New();
  stale->InsertNextValue(2);
  other->SetSelection(stale);
  int updates = 0;
  boost::signals2::scoped_connection updated =
    synchronizer->connectSignalSelectionsUpdated([&] { ++updates; });

  master->setSelection({ 16, 12, 99 });
  EXPECT_EQ(selectedRows(*first), (Rows{ 2 }));
  EXPECT_EQ(selectedRows(*second), (Rows{ 0, 4 })) << "rows in row order";
  EXPECT_EQ(selectedRows(*other), Rows{}) << "a plot outside the set loses its selection";
  EXPECT_EQ(updates, 1);

  // A pick in one plot shows in the other through the master's echo.
  pick(*first, { 3 }, false);
  EXPECT_EQ(master->getSelections(), Ids{ 13 });
  EXPECT_EQ(selectedRows(*second), (Rows{ 1 }));
}

TEST_F(ChartSelectionTest, PicksInPlotsOutsideTheSetAreIgnored)
{
  synchronizer->setPlotsToSynchronize({});
  master->setSelection({ 12 });
  pick(*first, { 0, 1 }, false);
  EXPECT_EQ(master->getSelections(), Ids{}) << "no synchronised plot: the pick is empty";
}

TEST_F(ChartSelectionTest, SuspendStopsBothDirectionsAndResumeDoesNotCatchUp)
{
  master->setSelection({ 10 });
  synchronizer->suspend();
  master->setSelection({ 11 });
  EXPECT_EQ(selectedRows(*first), (Rows{ 0 })) << "master changes are not shown while suspended";
  pick(*first, { 4 }, false);
  EXPECT_EQ(master->getSelections(), Ids{ 11 }) << "chart changes are not sent while suspended";

  synchronizer->resume();
  EXPECT_EQ(selectedRows(*first), (Rows{ 4 })) << "resume does not resynchronise";
  synchronizer->updateChartSelections();
  EXPECT_EQ(selectedRows(*first), (Rows{ 1 }));
  pick(*first, { 2 }, false);
  EXPECT_EQ(master->getSelections(), Ids{ 12 });
}

TEST_F(ChartSelectionTest, CaseIdMinusOneIsTheLargestUnsignedId)
{
  vtkSmartPointer<vtkPlot> negative = addPlot({ -1, 3 });
  synchronizer->setPlotsToSynchronize({ negative });
  pick(*negative, { 0 }, false);
  EXPECT_EQ(master->getSelections(), Ids{ 18446744073709551615ULL });
  master->setSelection({ 18446744073709551615ULL, 3 });
  EXPECT_EQ(selectedRows(*negative), (Rows{ 0, 1 }));
}

TEST_F(ChartSelectionTest, ChangedPlotTablesAreReadAfresh)
{
  master->setSelection({ 12 });
  EXPECT_EQ(selectedRows(*first), (Rows{ 2 }));
  first->SetInputData(caseTable({ 20, 12 }), 1, 2);
  master->setSelection({ 12, 20 });
  EXPECT_EQ(selectedRows(*first), (Rows{ 0, 1 }));
}

TEST_F(ChartSelectionTest, MasterIdsFindTheirRowsWhateverTheOrderAndRepeatsOfTheColumn)
{
  struct Case
  {
    std::vector<int> column;
    Ids selected;
    Rows rows;
  };
  const Case cases[] = {
    { { 10, 11, 12, 13 }, { 11, 13, 99 }, { 1, 3 } },                // ordered, dense
    { { 13, 10, 12, 11 }, { 10, 13 }, { 0, 1 } },                    // unordered, dense
    { { 12, 20, 12, 15, 20 }, { 12, 20 }, { 0, 1, 2, 4 } },          // repeated, dense
    { { 7, 900000, 7, 3 }, { 3, 7 }, { 0, 2, 3 } },                  // repeated, sparse
    { { 900000, 5, 2000000 }, { 5, 900000, 2000000 }, { 0, 1, 2 } }, // sparse, all selected
  };
  for (const Case& c : cases)
  {
    first->SetInputData(caseTable(c.column), 1, 2);
    master->setSelection(c.selected);
    EXPECT_EQ(selectedRows(*first), c.rows)
      << "column of " << c.column.size() << " ids, first " << c.column.front();
  }
}
