#include "images/ImageTableModel.h"
#include "datamanagement/Project.h"
#include "datamanagement/ProjectBuilder.h"
#include "datapipeline/DataPipelineManager.h"
#include "images/ImageCache.h"
#include "images/ImageMatrixTableModelAdapter.h"
#include "images/ImageMatrixViewProperties.h"
#include "images/ScalingImageLoader.h"
#include "properties/PropertyAbstract.h"
#include "support/SmallStudy.h"

#include <QImage>
#include <gtest/gtest.h>
#include <vtkTableAlgorithm.h>

#include <cmath>
#include <map>
#include <set>
#include <stdexcept>
#include <string>

namespace
{

using Cases = std::vector<unsigned long long>;
using Matrix = ImageMatrixViewProperties;

class ImageGrid : public ::testing::Test
{
protected:
  ImageGrid()
  {
    Project::setProject(study.project);
    pipeline = std::make_unique<DataPipelineManager>(study.project);
    properties = std::make_shared<Matrix>();
    grid = std::make_shared<ImageTableModel>(pipeline->output(), properties);
  }
  ~ImageGrid() override { Project::setProject(nullptr); }

  std::vector<std::string> fileNames(int row, int column) const
  {
    std::vector<std::string> names;
    for (const auto& file : grid->auxFilesAt(row, column))
      names.push_back(file.lock().relativePath());
    return names;
  }

  testsupport::SmallStudy study;
  std::unique_ptr<DataPipelineManager> pipeline;
  std::shared_ptr<Matrix> properties;
  std::shared_ptr<ImageTableModel> grid;
};

// A grid over a study built in memory, rows and columns by the named variables; the study is
// the current project while the grid lives.
struct GridOver
{
  GridOver(std::shared_ptr<const Project> study,
           const std::string& rows,
           const std::string& columns)
    : project(std::move(study))
    , pipeline(project)
  {
    Project::setProject(project);
    properties->rowVar()->setValue(project->variable(rows));
    properties->columnVar()->setValue(project->variable(columns));
    grid = std::make_unique<ImageTableModel>(pipeline.output(), properties);
  }
  ~GridOver()
  {
    grid.reset();
    Project::setProject(nullptr);
  }
  GridOver(const GridOver&) = delete;
  GridOver& operator=(const GridOver&) = delete;

  std::shared_ptr<const Project> project;
  DataPipelineManager pipeline;
  std::shared_ptr<Matrix> properties = std::make_shared<Matrix>();
  std::unique_ptr<ImageTableModel> grid;
};

} // namespace

TEST_F(ImageGrid, WithoutVariablesOneCellHoldsEveryCase)
{
  properties->rowVar()->setValue(WeakPtr<Variable>());
  properties->columnVar()->setValue(WeakPtr<Variable>());
  ASSERT_EQ(grid->rowCount(), 1);
  ASSERT_EQ(grid->columnCount(), 1);
  EXPECT_EQ(grid->rowValue(0), Variant(0.0));
  EXPECT_EQ(grid->rowTitle(0), "All");
  EXPECT_EQ(grid->casesAt(0, 0), (Cases{ 1, 2, 3, 4, 5, 6 }));
  EXPECT_EQ(fileNames(0, 0).size(), 8u);
  EXPECT_THROW(grid->rowValue(1), std::out_of_range);
  EXPECT_TRUE(grid->auxFilesAt(-1, 0).empty());
}

TEST_F(ImageGrid, ByVariableCellsHoldTheCasesOfBothValues)
{
  // Columns by angle (30, 45), rows by speed (10, 20): the defaults on this study.
  ASSERT_EQ(grid->rowCount(), 2);
  ASSERT_EQ(grid->columnCount(), 2);
  EXPECT_EQ(grid->columnValue(1), Variant(45.0));
  EXPECT_EQ(grid->columnTitle(1), "45");
  EXPECT_EQ(grid->casesAt(0, 0), (Cases{ 1, 5 }));
  EXPECT_EQ(grid->casesAt(0, 1), (Cases{ 3, 6 }));
  EXPECT_EQ(grid->casesAt(1, 0), (Cases{ 2 }));
  EXPECT_EQ(grid->casesAt(1, 1), (Cases{ 4 }));
  EXPECT_EQ(
    fileNames(0, 1),
    (std::vector<std::string>{ "images/3_traj.png", "images/3_extra.png", "images/6_traj.png" }))
    << "cases ascending, each case's files in the study's order";

  pipeline->setRangeFilter(study.project->variable("speed"), 0, 15); // the input changes
  EXPECT_EQ(grid->rowCount(), 1) << "the grid follows the pipeline";
}

TEST_F(ImageGrid, TagAxesFilterTheFilesAndBothTagAxesUseTheDiagonal)
{
  properties->dimensionRowsBy()->setValue(Matrix::ByTag);
  ASSERT_EQ(grid->rowCount(), 2);
  EXPECT_EQ(grid->rowValue(0), Variant("plot:speed"));
  EXPECT_EQ(grid->casesAt(0, 0), (Cases{ 1, 2, 5 })) << "every case of angle 30 on each tag row";
  EXPECT_EQ(fileNames(0, 0),
            (std::vector<std::string>{ "images/1_speed.png", "images/2_speed.png" }));
  EXPECT_EQ(fileNames(1, 0),
            (std::vector<std::string>{ "images/1_traj.png", "images/2_traj.png" }));

  properties->dimensionColumnsBy()->setValue(Matrix::ByTag);
  ASSERT_EQ(grid->columnCount(), 2);
  EXPECT_EQ(grid->casesAt(0, 0), (Cases{ 1, 2, 3, 4, 5, 6 }));
  EXPECT_TRUE(grid->casesAt(0, 1).empty());
  EXPECT_EQ(fileNames(1, 1).size(), 5u) << "the trajectory files on the diagonal";

  properties->tagGroupsToShow()->setValue({});
  EXPECT_EQ(grid->rowCount(), 0) << "no tags to show: a tag axis has no entries";
}

TEST_F(ImageGrid, PagesRestrictCasesByVariableOrFilesByTag)
{
  properties->pageVar()->setValue(study.project->variable("material"));
  properties->pageValue()->setValue(Variant("wood"));
  properties->dimensionPagesBy()->setValue(Matrix::PageByVariable);
  EXPECT_EQ(grid->casesAt(0, 0), Cases{});
  EXPECT_EQ(grid->casesAt(0, 1), (Cases{ 6 }));
  EXPECT_EQ(grid->casesAt(1, 0), (Cases{ 2 }));

  properties->pageValue()->setValue(Variant("final"));
  properties->dimensionPagesBy()->setValue(Matrix::PageByTag);
  EXPECT_EQ(grid->casesAt(0, 1), (Cases{ 3, 6 }));
  EXPECT_EQ(fileNames(0, 1), std::vector<std::string>{ "images/6_traj.png" });
  EXPECT_TRUE(fileNames(0, 0).empty());
}

TEST_F(ImageGrid, AvailableTagsAreSortedWithoutRepeats)
{
  EXPECT_EQ(grid->availableTags(),
            (std::vector<std::string>{ "final", "plot:speed", "plot:trajectory" }));
}

TEST_F(ImageGrid, TheAdapterShowsImagesCaptionsAndToolTips)
{
  ImageCache cache;
  auto loader = std::make_shared<ScalingImageLoader>(cache.imageLoader(), QSize(40, 40));
  ImageMatrixTableModelAdapter adapter(grid, loader, properties);
  ASSERT_EQ(adapter.rowCount(), 2);
  const QModelIndex single = adapter.index(1, 1);  // case 4, one file
  const QModelIndex several = adapter.index(0, 1); // cases 3 and 6, three files

  EXPECT_EQ(adapter.data(single, Qt::DisplayRole).toString(), "") << "labels are off";
  EXPECT_EQ(adapter.data(single, Qt::ToolTipRole).toString().toStdString(),
            "Case ID: 4\nFile Name: " + study.folder.filePath("images/4_speed.png"));
  const QImage plain = adapter.data(single, Qt::DecorationRole).value<QImage>();
  EXPECT_EQ(plain, *loader->image(study.folder.filePath("images/4_speed.png")));
  EXPECT_EQ(plain.size(), QSize(40, 30));

  const QImage marked = adapter.data(several, Qt::DecorationRole).value<QImage>();
  EXPECT_NE(marked, *loader->image(study.folder.filePath("images/3_traj.png")))
    << "a cell of several files shows the stack marker";
  EXPECT_EQ(adapter.data(several, Qt::ToolTipRole).toString().toStdString(),
            "Case ID: 3\nFile Name: " + study.folder.filePath("images/3_traj.png") +
              "\n2 additional image(s) at this location.");

  properties->showLabels()->setValue(true);
  EXPECT_EQ(adapter.data(several, Qt::DisplayRole).toString(), "angle=45  speed=10");
  EXPECT_EQ(adapter.data(several, Qt::ToolTipRole).toString().toStdString(),
            "Case ID: 3\nFile Name: " + study.folder.filePath("images/3_traj.png") +
              "\n\nangle=45\nspeed=10\n2 additional image(s) at this location.");
  properties->variablesInLabel()->setValue({});
  EXPECT_EQ(adapter.data(single, Qt::DisplayRole).toString(), "");
  EXPECT_EQ(adapter.data(single, Qt::ToolTipRole).toString().toStdString(),
            "Case ID: 4\nFile Name: " + study.folder.filePath("images/4_speed.png"))
    << "no blank line without label text";

  EXPECT_EQ(adapter.headerData(1, Qt::Horizontal, Qt::DisplayRole).toString(), "45");
  EXPECT_EQ(adapter.headerData(0, Qt::Vertical, Qt::DisplayRole).toString(), "10");
  EXPECT_FALSE(adapter.data(single, Qt::EditRole).isValid());

  int resets = 0;
  QObject::connect(&adapter, &QAbstractItemModel::modelReset, [&] { ++resets; });
  properties->dimensionRowsBy()->setValue(Matrix::ByTag);
  EXPECT_GE(resets, 1);
  EXPECT_EQ(adapter.rowCount(), 2);
}

TEST(ImageGridIndex, CellsOfASelectionAreTheCellsHoldingItsCases)
{
  ProjectBuilder builder;
  std::vector<unsigned long long> ids;
  std::vector<double> a;
  std::vector<double> b;
  for (unsigned long long i = 0; i < 400; ++i)
  {
    ids.push_back(1000 + i);
    a.push_back(static_cast<double>(i % 4));
    b.push_back(static_cast<double>(i * 7 % 5));
  }
  builder.setCaseIds(ids);
  builder.addNumericVariable("a", a);
  builder.addNumericVariable("b", b);
  const GridOver over(builder.build(), "a", "b");
  const ImageTableModel& grid = *over.grid;
  ASSERT_EQ(grid.rowCount() * grid.columnCount(), 20);

  const auto scanned = [&](const std::set<unsigned long long>& selection)
  {
    std::vector<std::pair<int, int>> cells;
    for (int r = 0; r < grid.rowCount(); ++r)
      for (int c = 0; c < grid.columnCount(); ++c)
        for (unsigned long long id : grid.casesAt(r, c))
          if (selection.count(id) != 0)
          {
            cells.emplace_back(r, c);
            break;
          }
    return cells;
  };
  // Small selections are looked up one by one, large ones walked with the index.
  for (const std::set<unsigned long long>& selection : std::vector<std::set<unsigned long long>>{
         {},
         { 1000 },
         { 1003, 1017, 1399, 5 },
         std::set<unsigned long long>(ids.begin(), ids.begin() + 200),
         std::set<unsigned long long>(ids.begin(), ids.end()) })
  {
    EXPECT_EQ(grid.cellsOf(selection), scanned(selection)) << selection.size() << " cases";
    const std::vector<unsigned long long> sorted(selection.begin(), selection.end());
    EXPECT_EQ(grid.cellsOf(sorted), scanned(selection)) << selection.size() << " as a list";
  }
}

TEST(ImageGridValues, AxesGroupValuesAsVariantsCompareWhateverTheOrderOfTheIds)
{
  const double nan = std::nan("");
  using Ids = std::vector<unsigned long long>;
  // The same cases listed in ascending and in mixed case-id order.
  for (const Ids& ids : { Ids{ 1, 2, 3, 4, 5, 6, 7 }, Ids{ 7, 3, 5, 1, 6, 2, 4 } })
  {
    const std::map<unsigned long long, double> x{ { 1, nan }, { 2, 0.0 }, { 3, -0.0 }, { 4, 2.0 },
                                                  { 5, nan }, { 6, 1.0 }, { 7, 2.0 } };
    const std::map<unsigned long long, std::string> m{ { 1, "b" }, { 2, "a" }, { 3, "b" },
                                                       { 4, "B" }, { 5, "a" }, { 6, "c" },
                                                       { 7, "b" } };
    std::vector<double> xs;
    std::vector<std::string> ms;
    for (unsigned long long id : ids)
    {
      xs.push_back(x.at(id));
      ms.push_back(m.at(id));
    }
    ProjectBuilder builder;
    builder.setCaseIds(ids);
    builder.addNumericVariable("x", xs);
    builder.addTextVariable("m", ms);
    const GridOver over(builder.build(), "m", "x");
    const ImageTableModel& grid = *over.grid;
    const auto& project = over.project;
    const auto& properties = over.properties;

    // Both zeros are one column, every NaN one column after the numbers; texts byte by byte.
    ASSERT_EQ(grid.columnCount(), 4) << ids[1];
    EXPECT_EQ(grid.columnValue(1), Variant(1.0));
    EXPECT_TRUE(std::isnan(grid.columnValue(3).toDouble()));
    ASSERT_EQ(grid.rowCount(), 4);
    EXPECT_EQ(grid.rowTitle(0), "B");
    EXPECT_EQ(grid.rowTitle(3), "c");
    EXPECT_EQ(grid.casesAt(2, 0), (Cases{ 3 })) << "b and a zero";
    EXPECT_EQ(grid.casesAt(1, 0), (Cases{ 2 }));
    EXPECT_EQ(grid.casesAt(2, 2), (Cases{ 7 }));
    EXPECT_EQ(grid.casesAt(2, 3), (Cases{ 1 }));
    EXPECT_EQ(grid.casesAt(1, 3), (Cases{ 5 }));

    // A page of one value: the zeros are equal to 0 as Variants; a NaN page holds the NaNs.
    properties->pageVar()->setValue(project->variable("x"));
    properties->dimensionPagesBy()->setValue(Matrix::PageByVariable);
    properties->rowVar()->setValue(WeakPtr<Variable>());
    properties->columnVar()->setValue(WeakPtr<Variable>());
    properties->pageValue()->setValue(Variant(0));
    EXPECT_EQ(grid.casesAt(0, 0), (Cases{ 2, 3 }));
    properties->pageValue()->setValue(Variant(nan));
    EXPECT_EQ(grid.casesAt(0, 0), (Cases{ 1, 5 }));
    properties->pageValue()->setValue(Variant("2"));
    EXPECT_EQ(grid.casesAt(0, 0), Cases{}) << "a text is no number";

    // The case ids as an axis: one row per case, ascending.
    properties->dimensionPagesBy()->setValue(Matrix::NoPages);
    properties->rowVar()->setValue(project->caseIdVariable());
    ASSERT_EQ(grid.rowCount(), 7);
    EXPECT_EQ(grid.rowValue(6), Variant(7ull));
    EXPECT_EQ(grid.casesAt(6, 0), (Cases{ 7 }));
  }
}
