#include "images/ImageTableView.h"
#include "analyzer_common/SelectionModel.h"
#include "datamanagement/Project.h"
#include "datapipeline/DataPipelineManager.h"
#include "images/ImageCache.h"
#include "images/ImageMatrixViewProperties.h"
#include "images/ImageViewItemDelegate.h"
#include "images/ImageViewStylesheets.h"
#include "images/QImageTableView.h"
#include "properties/PropertyAbstract.h"
#include "qxt/QxtLabel.h"
#include "support/SmallStudy.h"

#include <QFile>
#include <QHeaderView>
#include <QLayout>
#include <QPainter>
#include <QScrollBar>
#include <QSettings>
#include <QTemporaryDir>
#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

namespace
{

using Cases = std::set<unsigned long long>;
using Matrix = ImageMatrixViewProperties;

class ImageTableViewTest : public ::testing::Test
{
protected:
  ImageTableViewTest()
  {
    Project::setProject(study.project);
    pipeline = std::make_shared<DataPipelineManager>(study.project);
    master = boost::make_shared<SelectionModel>();
    properties = std::make_shared<Matrix>();
    properties->zoom()->setValue(0); // 50 x 50 pixel images
    view =
      std::make_unique<ImageTableView>(parent, pipeline, master, cache.imageLoader(), properties);
  }
  ~ImageTableViewTest() override
  {
    view.reset();
    Project::setProject(nullptr);
  }

  Cases selectedCells()
  {
    Cases cells;
    for (const QModelIndex& index : view->tableView().selectionModel()->selectedIndexes())
      cells.insert(static_cast<unsigned long long>(index.row() * 10 + index.column()));
    return cells;
  }

  testsupport::SmallStudy study;
  ImageCache cache;
  std::shared_ptr<DataPipelineManager> pipeline;
  boost::shared_ptr<SelectionModel> master;
  std::shared_ptr<Matrix> properties;
  QWidget parent;
  std::unique_ptr<ImageTableView> view;
};

} // namespace

TEST_F(ImageTableViewTest, CellsAreSizedFromTheDelegateAtTheZoom)
{
  QImageTableView& table = view->tableView();
  ASSERT_EQ(table.model()->rowCount(), 2);
  const int grid = table.showGrid() ? 1 : 0;
  EXPECT_EQ(table.rowHeight(0), 50 + 8 + grid) << "an image of 50 pixels, no caption";
  EXPECT_EQ(table.columnWidth(1), 50 + 8 + grid);
  EXPECT_EQ(view->width(), 2 * (58 + grid));
  EXPECT_EQ(view->height(), 2 * (58 + grid));

  properties->zoom()->setValue(10); // 125 pixels
  EXPECT_EQ(table.rowHeight(1), 125 + 8 + grid);
  EXPECT_EQ(table.imageDelegate()->imageSize(), QSize(125, 125));

  properties->showLabels()->setValue(true);
  EXPECT_GT(table.rowHeight(0), 125 + 8 + grid) << "captions add their height";
  const QSize hint =
    table.imageDelegate()->sizeHint(QStyleOptionViewItem(), table.model()->index(0, 0));
  EXPECT_EQ(table.rowHeight(0), hint.height() + grid);

  ImageViewItemDelegate noCaption(nullptr);
  noCaption.setImageSize(QSize(10, 20));
  EXPECT_EQ(noCaption.sizeHint(QStyleOptionViewItem(), QModelIndex()), QSize(18, 28));
}

TEST_F(ImageTableViewTest, SelectionIsTheMasterSelectionBothWays)
{
  // Rows by tag: case 1 is shown in the cells (0, 0) and (1, 0).
  properties->dimensionRowsBy()->setValue(Matrix::ByTag);
  int changes = 0;
  boost::signals2::scoped_connection connection =
    view->connectSignalSelectedImagesChanged([&] { ++changes; });

  master->setSelection({ 1 });
  EXPECT_EQ(selectedCells(), (Cases{ 0, 10 })) << "every cell showing the case";
  EXPECT_GE(changes, 1);
  EXPECT_EQ(view->numSelections(), 2);

  QImageTableView& table = view->tableView();
  table.selectionModel()->select(table.model()->index(1, 1), QItemSelectionModel::ClearAndSelect);
  EXPECT_EQ(master->getSelections(), (Cases{ 3, 4, 6 }));
  const auto images = view->selectedImages();
  ASSERT_EQ(images.size(), 3u);
  EXPECT_EQ(images[0]->caseId, 3u);
  EXPECT_EQ(images[0]->image->size(), QSize(40, 30)) << "selected images come at full size";
  EXPECT_EQ(view->selectedAuxFiles().size(), 3u);
  EXPECT_EQ(view->displayedAuxFiles().size(), 8u);

  properties->dimensionRowsBy()->setValue(Matrix::ByVariable);
  EXPECT_EQ(selectedCells(), (Cases{ 1, 11 })) << "a rebuilt grid shows the master's selection";
  EXPECT_EQ(master->getSelections(), (Cases{ 3, 4, 6 }));
}

TEST_F(ImageTableViewTest, ACellHoldingASelectedCaseShowsThatCasesImageFirst)
{
  // Speed 10 and angle 45: case 3 (magenta, then yellow) and case 6 (dark red).
  const QModelIndex cell = view->tableView().model()->index(0, 1);
  const auto shown = [&]
  { return cell.data(Qt::DecorationRole).value<QImage>().pixelColor(25, 25); };
  EXPECT_EQ(shown(), QColor(Qt::magenta));
  master->setSelection({ 6 });
  EXPECT_EQ(shown(), QColor(Qt::darkRed));
  EXPECT_TRUE(cell.data(Qt::ToolTipRole).toString().startsWith("Case ID: 6")) << "tip follows";
  master->setSelection({ 1, 3, 6 });
  EXPECT_EQ(shown(), QColor(Qt::magenta)) << "the smallest selected case of the cell";
}

TEST_F(ImageTableViewTest, ASelectionToldAsASortedListIsShownUntilTheMasterChanges)
{
  // Rows by speed (10, 20), columns by angle (30, 45).
  const QModelIndex cell = view->tableView().model()->index(0, 1);
  const auto shown = [&]
  { return cell.data(Qt::DecorationRole).value<QImage>().pixelColor(25, 25); };
  int sent = 0;
  boost::signals2::scoped_connection counting =
    master->connectSignalSelectionChanged([&](const Cases&) { ++sent; });

  using List = std::vector<unsigned long long>;
  view->showSelectedCases(std::make_shared<const List>(List{ 2, 6 }));
  EXPECT_EQ(selectedCells(), (Cases{ 1, 10 }));
  EXPECT_EQ(shown(), QColor(Qt::darkRed)) << "the told cases' images first";
  EXPECT_EQ(sent, 0) << "what the view is told is not sent back";
  EXPECT_TRUE(master->getSelections().empty());
  int cellChanges = 0;
  const QMetaObject::Connection counted = QObject::connect(view->tableView().selectionModel(),
                                                           &QItemSelectionModel::selectionChanged,
                                                           [&] { ++cellChanges; });
  view->showSelectedCases(std::make_shared<const List>(List{ 2, 3, 6 }));
  EXPECT_EQ(cellChanges, 0) << "the same cells: left as they are (a drag may be under way)";
  QObject::disconnect(counted);

  properties->dimensionColumnsBy()->setValue(Matrix::ByTag);
  EXPECT_EQ(selectedCells(), (Cases{ 0, 1, 10, 11 })) << "shown again after a rebuild";

  properties->dimensionColumnsBy()->setValue(Matrix::ByVariable);
  master->setSelection({ 4 });
  EXPECT_EQ(selectedCells(), (Cases{ 11 })) << "the selection model's change replaces it";
  properties->dimensionRowsBy()->setValue(Matrix::ByTag);
  EXPECT_EQ(selectedCells(), (Cases{ 1, 11 })) << "and it is the model's selection that is kept";

  properties->dimensionRowsBy()->setValue(Matrix::ByVariable);
  view->showSelectedCases(nullptr);
  EXPECT_TRUE(selectedCells().empty());
  EXPECT_EQ(shown(), QColor(Qt::magenta));
}

TEST_F(ImageTableViewTest, ACellWhoseImageCannotBeShownSaysWhy)
{
  QFile::remove(QString::fromStdString(study.folder.filePath("images/4_speed.png")));
  testsupport::writeImage(study.folder, "images/1_traj.png", 400, 300, Qt::red);
  cache.setPixelBudget(100000);
  study.folder.write("images/2_traj.png", "not a picture");
  const QAbstractItemModel& model = *view->tableView().model();
  const auto problem = [&](int row, int column)
  { return model.index(row, column).data(ImageViewItemDelegate::ProblemRole).toString(); };
  EXPECT_EQ(problem(0, 1), "") << "case 3's image is there";
  EXPECT_EQ(problem(0, 0), "image too large or damaged") << "case 1's, over the pixel budget";
  EXPECT_EQ(problem(1, 0), "unreadable image") << "case 2";
  EXPECT_EQ(problem(1, 1), "missing file") << "case 4";
  EXPECT_TRUE(model.index(1, 1).data(Qt::DecorationRole).isNull());
  QImage drawn(58, 58, QImage::Format_RGB32);
  drawn.fill(Qt::white);
  QPainter painter(&drawn);
  QStyleOptionViewItem option;
  option.rect = drawn.rect();
  view->tableView().imageDelegate()->paint(&painter, option, model.index(1, 1));
  EXPECT_EQ(drawn.pixelColor(10, 50), QColor(235, 235, 235)) << "a grey frame for the image";
}

TEST_F(ImageTableViewTest, SuspendedViewsCatchUpOnResume)
{
  view->suspend();
  pipeline->setRangeFilter(study.project->variable("speed"), 0, 15);
  EXPECT_EQ(view->tableView().model()->rowCount(), 2);
  view->resume();
  EXPECT_EQ(view->tableView().model()->rowCount(), 1);
}
