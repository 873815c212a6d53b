// The explorer's window in-process, over a generated sample study: views made from the registry,
// selection linked between them, settings saved, loaded and refused.

#include "ExplorerWindow.h"
#include "CommandLine.h"
#include "MasterSelection.h"
#include "SampleStudy.h"
#include "StudyReading.h"
#include "ViewRegistry.h"
#include "views/ImageDiffView.h"
#include "views/ImageMatrixView.h"
#include "views/SelectedCasesView.h"
#include "views/SelectedImageView.h"
#include "views/parallel/ParallelCoordinatesView.h"
#include "views/scatter/ScatterPlotView.h"
#include "views/scatter3d/ScatterPlot3DView.h"
#include "views/table/CasesTableView.h"

#include "analyzer_common/UndoStack.h"
#include "charts/AxisDetailsInterface.h"
#include "charts/ChartXY.h"
#include "datamanagement/Project.h"
#include "datamanagement/StudyReader.h"
#include "datapipeline/DataPipelineManager.h"
#include "datapipeline/RangeFilter.h"
#include "images/ImageMatrixTableModelAdapter.h"
#include "images/ImageMatrixViewProperties.h"
#include "images/ImageTableModel.h"
#include "images/ImageTableView.h"
#include "images/QImageTableView.h"
#include "properties/PropertyAbstract.h"
#include "support/ChartEvents.h"
#include "support/RenderedView.h"
#include "support/SmallStudy.h"
#include "support/TemporaryFolder.h"

#include <QApplication>
#include <QCheckBox>
#include <QGroupBox>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QTabWidget>
#include <QTableView>
#include <QTableWidget>
#include <QTest>
#include <QUndoStack>
#include <QVTKOpenGLNativeWidget.h>
#include <gtest/gtest.h>
#include <vtkAxis.h>
#include <vtkCallbackCommand.h>
#include <vtkContextMouseEvent.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkPlotPoints.h>
#include <vtkTable.h>
#include <vtkTooltipItem.h>

#include <cmath>
#include <map>

using explorer::ExplorerWindow;
using testsupport::TemporaryFolder;

namespace
{

class ExplorerWindowTest : public ::testing::Test
{
protected:
  static void SetUpTestSuite()
  {
    testsupport::keepGraphicsDriverLoaded();
    study = new TemporaryFolder;
    explorer::SampleStudyOptions options;
    options.folder = study->path();
    options.runs = 48;
    explorer::writeSampleStudy(options);
  }
  static void TearDownTestSuite()
  {
    delete study;
    study = nullptr;
  }

  void SetUp() override
  {
    window = std::make_unique<ExplorerWindow>();
    window->showStudy(readStudy(study->path()));
    window->resize(1200, 800);
    window->show();
  }

  // Shows a study of `runs` generated runs without images.
  void showGeneratedStudy(int runs)
  {
    explorer::SampleStudyOptions options;
    options.folder = output.filePath("generated");
    options.runs = runs;
    options.images = false;
    explorer::writeSampleStudy(options);
    window->showStudy(readStudy(options.folder));
  }

  std::string savedSettings()
  {
    const std::string path = output.filePath("saved.xml");
    QString error;
    EXPECT_TRUE(window->saveSettings(QString::fromStdString(path), error)) << error.toStdString();
    return testsupport::readFile(path);
  }

  QString load(const std::string& xml)
  {
    QString error;
    const std::string path = output.write("load.xml", xml);
    window->loadSettings(QString::fromStdString(path), error);
    return error;
  }

  static TemporaryFolder* study;
  TemporaryFolder output;
  std::unique_ptr<ExplorerWindow> window;
};

TemporaryFolder* ExplorerWindowTest::study = nullptr;

} // namespace

TEST_F(ExplorerWindowTest, ShowsOneViewOfEachKindLinkedByOneSelection)
{
  ASSERT_EQ(window->views().size(), explorer::viewKinds().size());
  auto* scatter = window->view<explorer::ScatterPlotView>();
  auto* table = window->view<explorer::CasesTableView>();
  auto* images = window->view<explorer::ImageMatrixView>();
  ASSERT_TRUE(scatter && table && images);

  window->selection().setSelection({ 1003, 1008 });
  EXPECT_EQ(window->findChild<QLabel*>("selectionCount")->text(), "2 of 48 cases selected");
  EXPECT_EQ(scatter->highlightedPoints(), 2);
  EXPECT_EQ(table->selectedRows(), 2);
  EXPECT_EQ(images->selectionSummary(), "2 selected cells");

  // A cell picked in the matrix selects its cases everywhere.
  QTableView& matrix = images->imageTable().tableView();
  const auto& grid = static_cast<const ImageMatrixTableModelAdapter*>(matrix.model())->grid();
  const std::vector<unsigned long long>& inCell = grid.casesAt(0, 0);
  ASSERT_FALSE(inCell.empty());
  matrix.selectionModel()->select(matrix.model()->index(0, 0), QItemSelectionModel::ClearAndSelect);
  EXPECT_EQ(window->selection().getSelections(),
            std::set<unsigned long long>(inCell.begin(), inCell.end()));
  EXPECT_EQ(table->selectedRows(), static_cast<int>(inCell.size()));
  EXPECT_EQ(images->selectionSummary(), "1 selected cells");

  // Rows picked in the table become the master selection, and the chart follows.
  QTableView& rows = table->table();
  rows.selectionModel()->select(rows.model()->index(1, 0),
                                QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  EXPECT_EQ(window->selection().getSelections(), (std::set<unsigned long long>{ 1001 }));
  EXPECT_EQ(scatter->highlightedPoints(), 1);

  // Scattered rows from another view, then every row from the table itself.
  window->selection().setSelection({ 1001, 1002, 1003, 1010, 1020, 1021 });
  EXPECT_EQ(table->selectedRows(), 6);
  EXPECT_EQ(rows.selectionModel()->selection().size(), 3) << "one range per run of rows";
  rows.selectAll();
  EXPECT_EQ(window->selection().getSelections().size(), 48u);
  EXPECT_EQ(scatter->highlightedPoints(),
            static_cast<int>(scatter->points().GetInput()->GetNumberOfRows()));
  rows.selectionModel()->select(rows.model()->index(1, 0),
                                QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);

  // A case selected elsewhere is scrolled into sight in the table and the matrix.
  QTableView& cells = images->imageTable().tableView();
  rows.clearFocus();
  cells.clearFocus();
  window->selection().setSelection({ 1047 }); // the last run: last row, last matrix cell
  QApplication::processEvents();
  const int last = rows.model()->rowCount() - 1;
  EXPECT_GE(rows.rowViewportPosition(last), 0);
  EXPECT_LT(rows.rowViewportPosition(last), rows.viewport()->height());
  const QModelIndexList selectedCells = cells.selectionModel()->selectedIndexes();
  ASSERT_EQ(selectedCells.size(), 1);
  EXPECT_TRUE(cells.visualRect(selectedCells.front()).intersects(cells.viewport()->rect()));
  window->selection().setSelection({ 1001 });

  // Reloading the table after a filter keeps the selection shown without sending it back.
  EXPECT_TRUE(load(R"(<ExplorerSettings><Filters>
    <Filter variable="angle" min="10" max="30" enabled="1"/></Filters></ExplorerSettings>)")
                .isEmpty());
  EXPECT_EQ(window->selection().getSelections(), (std::set<unsigned long long>{ 1001 }));
  EXPECT_EQ(table->selectedRows(), 1);
  EXPECT_EQ(window->shownCases(), 16) << "angles 15 and 25 of six";
}

TEST_F(ExplorerWindowTest, SavedSettingsLoadBackToTheSameState)
{
  const QString error = load(R"(<?xml version="1.0"?>
<ExplorerSettings version="1">
  <ScatterPlot2D>
    <XVariable>speed</XVariable>
    <YVariable>apex_height</YVariable>
    <ColorVariable>angle</ColorVariable>
    <ColorLegend><Show>1</Show><NumLabels>7</NumLabels><RangeType>Custom</RangeType><Range Min="10" Max="70"/></ColorLegend>
    <XMin>0</XMin><XMax>100</XMax><XGridSpacing>25</XGridSpacing>
    <ColorLegendPlacement x="0.5" y="0.25" width="0.125" height="0.5"/>
  </ScatterPlot2D>
  <ImageMatrix>
    <DimensionRowsBy>Tag</DimensionRowsBy>
    <ColumnVariable>angle</ColumnVariable>
    <Zoom>20</Zoom>
  </ImageMatrix>
  <Filters><Filter variable="angle" min="20" max="50" enabled="1"/></Filters>
</ExplorerSettings>
)");
  ASSERT_TRUE(error.isEmpty()) << error.toStdString();
  auto* scatter = window->view<explorer::ScatterPlotView>();
  EXPECT_EQ(scatter->xVariable()->value().lock().name(), "speed");
  EXPECT_EQ(scatter->colorVariable()->value().lock().name(), "angle");
  // The angles sweep 15, 25, ..., 65: the filter keeps 25, 35 and 45, three in six.
  EXPECT_EQ(window->shownCases(), 24);

  const std::string saved = savedSettings();
  for (const char* expected : { "<XVariable>speed</XVariable>",
                                "<NumLabels>7</NumLabels>",
                                "<DimensionRowsBy>Tag</DimensionRowsBy>",
                                "<Zoom>20</Zoom>",
                                "<XGridSpacing>25</XGridSpacing>",
                                " x=\"0.5\"",
                                "width=\"0.125\"",
                                "min=\"20\"" })
    EXPECT_NE(saved.find(expected), std::string::npos) << expected << " in\n" << saved;

  // A fresh window that loads the saved file saves the same file.
  window = std::make_unique<ExplorerWindow>();
  window->showStudy(readStudy(study->path()));
  ASSERT_TRUE(load(saved).isEmpty());
  EXPECT_EQ(savedSettings(), saved);
}

TEST_F(ExplorerWindowTest, RefusedSettingsChangeNothingAndSayWhy)
{
  const std::string before = savedSettings();
  const struct
  {
    const char* what;
    std::string xml;
    const char* message;
  } cases[] = {
    { "malformed XML", "<ExplorerSettings><ScatterPlot2D>", "not well-formed" },
    { "another document", "<Other/>", "not explorer settings" },
    { "an unknown variable",
      "<ExplorerSettings><ScatterPlot2D><XVariable>mass2</XVariable></ScatterPlot2D>"
      "<ImageMatrix><RowVariable>nope</RowVariable></ImageMatrix></ExplorerSettings>",
      "\"mass2\", \"nope\"" },
    { "an unknown filter variable",
      "<ExplorerSettings><Filters><Filter variable=\"x\" min=\"0\" max=\"1\"/></Filters>"
      "</ExplorerSettings>",
      "\"x\"" },
    { "a refused value after accepted ones",
      "<ExplorerSettings><ScatterPlot2D><XVariable>speed</XVariable><ColorLegend>"
      "<NumLabels>99</NumLabels></ColorLegend></ScatterPlot2D></ExplorerSettings>",
      "nothing was changed" },
    { "a number that is not one",
      "<ExplorerSettings><ScatterPlot2D><XMin>abc</XMin></ScatterPlot2D></ExplorerSettings>",
      "ScatterPlot2D/XMin: 'abc' is not a number" },
    { "a legend placement outside the view",
      "<ExplorerSettings><ScatterPlot2D><ColorLegendPlacement x=\"2\" y=\"0\" width=\"0.1\" "
      "height=\"0.1\"/></ScatterPlot2D></ExplorerSettings>",
      "ScatterPlot2D/ColorLegendPlacement: '2' is not a fraction of the view" },
    { "a zoom beyond the slider's (Qt crashes scaling to 75,050 pixels)",
      "<ExplorerSettings><ImageMatrix><Zoom>10000</Zoom></ImageMatrix></ExplorerSettings>",
      "ImageMatrix/Zoom: '10000' is not a zoom level" },
    { "a filter that is not a number",
      "<ExplorerSettings><Filters><Filter variable=\"angle\" min=\"a\" max=\"1\"/></Filters>"
      "</ExplorerSettings>",
      "no number as min" },
  };
  for (const auto& c : cases)
  {
    const QString error = load(c.xml);
    EXPECT_NE(error.toStdString().find(c.message), std::string::npos)
      << c.what << ": " << error.toStdString();
    EXPECT_EQ(savedSettings(), before) << c.what;
  }
}

TEST(ExplorerCommandLine, ReadsOptionsAndRefusesBadOnes)
{
  using Mode = explorer::Options::Mode;
  const struct
  {
    QStringList arguments;
    bool accepted;
    Mode mode;
    int code;
    const char* message;
  } cases[] = {
    { {}, true, Mode::Open, 0, "" },
    { { "--help" }, true, Mode::Help, 0, "" },
    { { "study", "--select", "3, 1,2", "--screenshots", "out" }, true, Mode::Screenshots, 0, "" },
    { { "--generate-sample", "dir", "--runs", "5" }, true, Mode::GenerateSample, 0, "" },
    { { "--generate-sample", "dir", "--runs", "0" }, false, Mode::Open, 1, "at least 1" },
    { { "--generate-sample", "dir", "--runs", "x" }, false, Mode::Open, 1, "at least 1" },
    { { "study", "--select", "12,x" }, false, Mode::Open, 4, "--select takes case ids" },
    { { "--screenshots", "out" }, false, Mode::Open, 1, "needs a study" },
    { { "a", "b" }, false, Mode::Open, 1, "one study at most" },
    { { "--no-such-option" }, false, Mode::Open, 1, "no-such-option" },
    { { "db", "--rebase", "/old" }, false, Mode::Open, 1, "--rebase takes OLD=NEW" },
  };
  for (const auto& c : cases)
  {
    explorer::Options options;
    QString error;
    int code = -1;
    const std::string what = c.arguments.join(' ').toStdString();
    EXPECT_EQ(explorer::parseOptions(c.arguments, options, error, code), c.accepted) << what;
    if (c.accepted)
    {
      EXPECT_EQ(options.mode, c.mode) << what;
    }
    else
    {
      EXPECT_EQ(code, c.code) << what;
      EXPECT_NE(error.toStdString().find(c.message), std::string::npos)
        << what << ": " << error.toStdString();
    }
  }
  explorer::Options options;
  QString error;
  int code = 0;
  ASSERT_TRUE(explorer::parseOptions({ "s", "--select", "3, 1,2" }, options, error, code));
  EXPECT_EQ(options.select, (std::set<unsigned long long>{ 1, 2, 3 }));
}

TEST_F(ExplorerWindowTest, AFreshWindowHasNothingToUndoAndEachEditIsOneStep)
{
  QUndoStack& history = UndoStack().qUndoStack();
  EXPECT_FALSE(history.canUndo()) << "setting up the views is not an edit";

  // A range filter typed in the panel.
  auto* filters = window->findChild<QTableWidget*>("filtersTable");
  ASSERT_NE(filters, nullptr);
  int angle = 0;
  while (angle < filters->rowCount() && filters->item(angle, 0)->text() != "angle")
    ++angle;
  ASSERT_LT(angle, filters->rowCount());
  auto* minimum = qobject_cast<QLineEdit*>(filters->cellWidget(angle, 2));
  minimum->setText("30");
  Q_EMIT minimum->editingFinished();
  qobject_cast<QCheckBox*>(filters->cellWidget(angle, 1))->setChecked(true);
  EXPECT_EQ(window->shownCases(), 32) << "angles 35 to 65";
  history.undo();
  history.undo();
  EXPECT_EQ(window->shownCases(), 48);
  EXPECT_EQ(minimum->text(), "15") << "the editor follows the undo";

  // Loading settings is one step, which undo takes back whole.
  const std::string before = savedSettings();
  const int steps = history.index();
  ASSERT_TRUE(load("<ExplorerSettings><ScatterPlot2D><XVariable>speed</XVariable><ColorLegend>"
                   "<NumLabels>5</NumLabels></ColorLegend></ScatterPlot2D><Filters><Filter "
                   "variable=\"speed\" min=\"0\" max=\"30\"/></Filters></ExplorerSettings>")
                .isEmpty());
  EXPECT_EQ(history.index(), steps + 1);
  EXPECT_EQ(history.undoText(), "Load Settings");
  EXPECT_NE(savedSettings(), before);
  history.undo();
  EXPECT_EQ(savedSettings(), before);
  history.redo();
  EXPECT_EQ(window->view<explorer::ScatterPlotView>()->xVariable()->value().lock().name(), "speed");
}

TEST_F(ExplorerWindowTest, TheChartShowsEditsAtOnceWithWholePointsRingedSelectionAndLegendAside)
{
  auto* scatter = window->view<explorer::ScatterPlotView>();
  auto* widget = qobject_cast<QVTKOpenGLNativeWidget*>(scatter->widget());
  ASSERT_NE(widget, nullptr);
  ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
  scatter->fitToData();
  int renders = 0;
  auto counter = vtkSmartPointer<vtkCallbackCommand>::New();
  counter->SetClientData(&renders);
  counter->SetCallback([](vtkObject*, unsigned long, void* count, void*)
                       { ++*static_cast<int*>(count); });
  widget->renderWindow()->AddObserver(vtkCommand::EndEvent, counter);
  scatter->xAxis().max()->setValue(80); // as typed in the panel
  QApplication::processEvents();
  EXPECT_GE(renders, 1) << "an edit redraws the chart without waiting for the mouse";

  // Fit to Data leaves at least a marker between the outermost points and the axes' ends.
  scatter->fitToData();
  vtkPlotPoints& points = scatter->points();
  for (vtkAxis* axis : { points.GetXAxis(), points.GetYAxis() })
  {
    double bounds[4];
    points.GetBounds(bounds);
    const int i = axis == points.GetXAxis() ? 0 : 2;
    const double pixels = std::hypot(axis->GetPoint2()[0] - axis->GetPoint1()[0],
                                     axis->GetPoint2()[1] - axis->GetPoint1()[1]);
    const double perUnit = pixels / (axis->GetMaximum() - axis->GetMinimum());
    EXPECT_GE((bounds[i] - axis->GetMinimum()) * perUnit, points.GetMarkerSize() / 2);
    EXPECT_GE((axis->GetMaximum() - bounds[i + 1]) * perUnit, points.GetMarkerSize() / 2);
  }

  // A selected case is ringed in a dark colour no colour of the map has; the others are not.
  window->selection().setSelection({ 1008 });
  QApplication::processEvents();
  const QImage shown = widget->grabFramebuffer();
  const auto pixelOf = [&](unsigned long long id)
  {
    const auto [x, y] = testsupport::valuesAtRow(points, scatter->rowOfCase(id));
    return QPoint(qRound(testsupport::pixelOf(*points.GetXAxis(), 0, x)),
                  shown.height() - 1 - qRound(testsupport::pixelOf(*points.GetYAxis(), 1, y)));
  };
  const auto darkAround = [&](QPoint at)
  {
    // Among a few hundred points a marker ends at 4.5 pixels, a selected one at 5.5 in a ring
    // up to 8.
    int dark = 0;
    for (const QPoint direction : { QPoint(1, 0), QPoint(-1, 0), QPoint(0, 1), QPoint(0, -1) })
    {
      bool found = false;
      for (int radius : { 6, 7 })
        found = found || qGray(shown.pixel(at + radius * direction)) < 70;
      dark += found ? 1 : 0;
    }
    return dark;
  };
  EXPECT_GE(darkAround(pixelOf(1008)), 3) << "selected";
  EXPECT_EQ(darkAround(pixelOf(1012)), 0) << "not selected";

  // Translucent markers: a lone point's colour fades towards the white behind it.
  const int opaque = shown.pixelColor(pixelOf(1012)).saturation();
  scatter->pointOpacity()->setValue(0.25);
  QApplication::processEvents();
  EXPECT_LT(widget->grabFramebuffer().pixelColor(pixelOf(1012)).saturation(), opaque / 2);

  // The colour legend sits right of the plot, where no point can be.
  const int plotRight = qRound(points.GetXAxis()->GetPoint2()[0]);
  int coloured = 0;
  for (int y = 0; y < shown.height(); ++y)
  {
    const QColor c = shown.pixelColor(plotRight + 30, y);
    coloured += c.saturation() > 150 ? 1 : 0;
  }
  EXPECT_GT(coloured, shown.height() / 3) << "the colour bar beside the plot";
}

TEST_F(ExplorerWindowTest, KeysOfA3DViewerDoNothingHarmful)
{
  auto* scatter = window->view<explorer::ScatterPlotView>();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
  window->selection().setSelection({ 1003 });
  const double min = scatter->xAxis().min()->value();
  for (const char key : { '3', 'w', 's', 'r', 'f', 'p', 'e', 'q' })
    QTest::keyClick(scatter->widget(), key);
  for (explorer::ExplorerView* view : window->views())
    QTest::keyClick(view->widget(), Qt::Key_Escape);
  QApplication::processEvents();
  EXPECT_TRUE(window->isVisible());
  EXPECT_FALSE(
    qobject_cast<QVTKOpenGLNativeWidget*>(scatter->widget())->renderWindow()->GetStereoRender());
  EXPECT_EQ(scatter->xAxis().min()->value(), min);
  EXPECT_EQ(window->selection().getSelections(), (std::set<unsigned long long>{ 1003 }));
}

TEST_F(ExplorerWindowTest, AxisFieldsShowTheWholeShortestNumber)
{
  window->view<explorer::ScatterPlotView>()->xAxis().min()->setValue(0.1 + 0.2);
  QGroupBox* xAxis = nullptr;
  for (QGroupBox* box : window->findChildren<QGroupBox*>())
    if (box->title() == "X axis")
      xAxis = box;
  ASSERT_NE(xAxis, nullptr);
  auto* minimum = xAxis->findChild<QLineEdit*>();
  EXPECT_EQ(minimum->text(), "0.30000000000000004");
  EXPECT_LE(minimum->fontMetrics().horizontalAdvance(minimum->text()),
            minimum->contentsRect().width() - 4);
}

TEST_F(ExplorerWindowTest, ACinemaDatabaseOpensWithItsImagesLaidOutByItsParameters)
{
  TemporaryFolder db;
  std::string data = "phi,theta,FILE\n";
  for (int phi : { 0, 90 })
    for (int theta : { 0, 45, 90 })
    {
      const std::string name = std::to_string(phi) + "_" + std::to_string(theta) + ".png";
      for (int repeat = 0; repeat < 2; ++repeat) // discrete: each value seen twice or more
        data += std::to_string(phi) + "," + std::to_string(theta) + ",images/" + name + "\n";
      testsupport::writeImage(db, "images/" + name, 32, 24, QColor(phi, theta, 200));
    }
  db.write("data.csv", data);
  window->showStudy(explorer::readStudyWithProgress(db.path(), {}, window.get()));
  ASSERT_EQ(window->project()->numberOfRecords(), 12u);

  auto* images = window->view<explorer::ImageMatrixView>();
  const auto properties = images->properties();
  EXPECT_EQ(properties->rowVar()->value().lock().name(), "theta");
  EXPECT_EQ(properties->columnVar()->value().lock().name(), "phi");
  const QAbstractItemModel* cells = images->imageTable().tableView().model();
  ASSERT_EQ(cells->rowCount(), 3);
  ASSERT_EQ(cells->columnCount(), 2);
  const QImage corner = cells->index(2, 1).data(Qt::DecorationRole).value<QImage>();
  ASSERT_FALSE(corner.isNull());
  EXPECT_EQ(corner.pixelColor(corner.width() / 2, corner.height() - 4), QColor(90, 90, 200))
    << "the cell of phi 90, theta 90 shows that run's image";

  // A filter set while the matrix is behind another tab shows in its grid once it is shown.
  window->show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
  auto* tabs = window->findChild<QTabWidget*>("viewTabs");
  auto* other = tabs->widget(tabs->indexOf(images->widget()) == 0 ? 1 : 0);
  tabs->setCurrentWidget(other);
  window->pipeline().setRangeFilter(window->project()->variable("phi"), 0, 0);
  tabs->setCurrentWidget(images->widget());
  EXPECT_EQ(cells->columnCount(), 1) << "phi 0 alone";
  EXPECT_EQ(cells->rowCount(), 3);
}

TEST_F(ExplorerWindowTest, DensityAndMarkersSelectAndPickTheSameCases)
{
  ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
  auto* scatter = window->view<explorer::ScatterPlotView>();
  ChartXY& chart = scatter->chart();
  auto* widget = qobject_cast<QVTKOpenGLNativeWidget*>(scatter->widget());
  scatter->fitToData();
  const auto mouseAt = [&](double x, double y)
  { return testsupport::mouseAt(chart, widget->interactor(), x, y); };
  // A rubber band over the runs at 25 and 35 degrees with ranges up to 100, and a click on the
  // point of case 1008, in each mode.
  using explorer::Drawing;
  std::map<Drawing, std::set<unsigned long long>> banded;
  std::map<Drawing, std::set<unsigned long long>> clicked;
  for (const Drawing mode : { Drawing::Marks, Drawing::Density })
  {
    scatter->drawing()->setValue(mode);
    widget->renderWindow()->Render();
    window->selection().setSelection({});
    vtkAbstractContextItem& item = chart;
    item.MouseButtonPressEvent(mouseAt(20, 0));
    item.MouseMoveEvent(mouseAt(40, 100));
    item.MouseButtonReleaseEvent(mouseAt(40, 100));
    banded[mode] = window->selection().getSelections();

    window->selection().setSelection({});
    const auto [x, y] = testsupport::valuesAtRow(scatter->points(), scatter->rowOfCase(1008));
    item.MouseButtonPressEvent(mouseAt(x, y));
    item.MouseButtonReleaseEvent(mouseAt(x, y));
    clicked[mode] = window->selection().getSelections();

    vtkContextMouseEvent hover = mouseAt(x, y);
    hover.SetButton(vtkContextMouseEvent::NO_BUTTON);
    item.MouseMoveEvent(hover);
    EXPECT_EQ(QString::fromStdString(chart.GetTooltip()->GetText()).section(',', 0, 0),
              "case 1008\nangle 35")
      << "the tool tip names the case and its values";
  }
  EXPECT_GE(banded[Drawing::Marks].size(), 5u);
  EXPECT_EQ(banded[Drawing::Density], banded[Drawing::Marks]);
  EXPECT_EQ(clicked[Drawing::Marks], (std::set<unsigned long long>{ 1008 }));
  EXPECT_EQ(clicked[Drawing::Density], clicked[Drawing::Marks]);

  // The density image shows the points: coloured pixels inside the plot area.
  const QImage shown = widget->grabFramebuffer();
  int coloured = 0;
  for (int y = 0; y < shown.height(); ++y)
    for (int x = 0; x < qRound(chart.GetAxis(vtkAxis::BOTTOM)->GetPoint2()[0]); ++x)
      coloured += shown.pixelColor(x, y).saturation() > 150 ? 1 : 0;
  EXPECT_GT(coloured, 50);
}

// Picks in the scatter plot go to the master, with Control adding or toggling; the plot always
// shows the master's selection, also after a pick that added nothing.
TEST_F(ExplorerWindowTest, ScatterPicksWithControlAddAndToggle)
{
  ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
  auto* scatter = window->view<explorer::ScatterPlotView>();
  ChartXY& chart = scatter->chart();
  auto* widget = qobject_cast<QVTKOpenGLNativeWidget*>(scatter->widget());
  scatter->fitToData();
  widget->renderWindow()->Render();
  vtkAbstractContextItem& item = chart;
  const auto band = [&](double x0, double y0, double x1, double y1, bool control)
  {
    widget->interactor()->SetControlKey(control ? 1 : 0);
    item.MouseButtonPressEvent(testsupport::mouseAt(chart, widget->interactor(), x0, y0));
    item.MouseMoveEvent(testsupport::mouseAt(chart, widget->interactor(), x1, y1));
    item.MouseButtonReleaseEvent(testsupport::mouseAt(chart, widget->interactor(), x1, y1));
    widget->interactor()->SetControlKey(0);
    return window->selection().getSelections();
  };
  const std::set<unsigned long long> low = band(20, 0, 40, 100, false);
  ASSERT_GE(low.size(), 2u);
  const std::set<unsigned long long> high = band(50, 100, 90, 10000, false);
  ASSERT_FALSE(high.empty());
  std::set<unsigned long long> both = low;
  both.insert(high.begin(), high.end());
  band(20, 0, 40, 100, false);
  EXPECT_EQ(band(50, 100, 90, 10000, true), both) << "Control adds";
  EXPECT_EQ(band(20, 0, 40, 100, true), both) << "nothing new: unchanged";
  EXPECT_EQ(scatter->highlightedPoints(), int(both.size())) << "the plot shows the master's";

  // Control and a click on one selected point: it goes; again: it comes back.
  const unsigned long long one = *low.begin();
  const auto [x, y] = testsupport::valuesAtRow(scatter->points(), scatter->rowOfCase(one));
  std::set<unsigned long long> withoutOne = both;
  withoutOne.erase(one);
  EXPECT_EQ(band(x, y, x, y, true), withoutOne);
  EXPECT_EQ(band(x, y, x, y, true), both);
  EXPECT_EQ(band(x, y, x, y, false), std::set<unsigned long long>{ one });
  EXPECT_EQ(scatter->highlightedPoints(), 1);
}

TEST_F(ExplorerWindowTest, ManySelectedCasesInADensityAreADarkDensityOverTheOthers)
{
  showGeneratedStudy(12000); // more selected cases than are ringed one by one
  ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
  auto* scatter = window->view<explorer::ScatterPlotView>();
  scatter->drawing()->setValue(explorer::Drawing::Density);
  auto* widget = qobject_cast<QVTKOpenGLNativeWidget*>(scatter->widget());
  // How dark the plot area is: the points' bins, darkened where selected ones lie over them.
  const auto ink = [&]
  {
    widget->renderWindow()->Render();
    const QImage shown = widget->grabFramebuffer();
    vtkAxis& x = *scatter->chart().GetAxis(vtkAxis::BOTTOM);
    vtkAxis& y = *scatter->chart().GetAxis(vtkAxis::LEFT);
    double sum = 0;
    for (int row = qRound(y.GetPoint1()[1]) + 2; row < qRound(y.GetPoint2()[1]) - 2; ++row)
      for (int column = qRound(x.GetPoint1()[0]) + 2; column < qRound(x.GetPoint2()[0]) - 2;
           ++column)
        sum += 255 - qGray(shown.pixel(column, shown.height() - 1 - row));
    return sum;
  };
  const double unselected = ink();
  const std::vector<unsigned long long>& ids = window->project()->caseIds();
  window->selection().setSelection({ ids.begin(), ids.end() });
  EXPECT_GT(ink(), 1.5 * unselected);
}

TEST_F(ExplorerWindowTest, SelectedCasesImagesAndDifferencesFollowTheSelection)
{
  const testsupport::SmallStudy small;
  window->showStudy(small.project);
  window->selection().setSelection({ 3, 1, 2 });

  // The selected cases, sorted by a column: an undoable setting.
  auto* cases = window->view<explorer::SelectedCasesView>();
  EXPECT_TRUE(cases->shownText().startsWith("case_id\tangle\tspeed\tmaterial\n1\t30\t10\tsteel\n"));
  cases->sortColumn()->setValue(3);
  cases->sortDescending()->setValue(true);
  EXPECT_TRUE(cases->shownText().contains("material\n2\t30\t20\twood\n")) << "wood first";
  UndoStack().undo(); // ascending again, still by material: ties keep the case order
  EXPECT_TRUE(
    cases->shownText().contains("\n1\t30\t10\tsteel\n3\t45\t10\tsteel\n2\t30\t20\twood\n"));
  const std::string exported = output.filePath("selection.csv");
  cases->exportSelection(exported);
  EXPECT_EQ(testsupport::readFile(exported),
            "case_id,angle,speed,material\n1,30,10,steel\n3,45,10,steel\n2,30,20,wood\n");

  // Stepping through the cases (wrapping) and their images, by call and by key. The view's tab
  // was behind another when the selection changed: it takes the selection in when brought forward.
  auto* images = window->view<explorer::SelectedImageView>();
  const auto pixmapColour = [&](int pane)
  {
    const auto labels = images->widget()->findChildren<QLabel*>();
    std::vector<QColor> colours;
    for (QLabel* label : labels)
      if (!label->pixmap(Qt::ReturnByValue).isNull())
        colours.push_back(label->pixmap(Qt::ReturnByValue).toImage().pixelColor(5, 5));
    return pane < static_cast<int>(colours.size()) ? colours[static_cast<std::size_t>(pane)]
                                                   : QColor();
  };
  EXPECT_EQ(pixmapColour(0), QColor()) << "nothing taken in while hidden";
  window->findChild<QTabWidget*>("viewTabs")->setCurrentWidget(images->widget());
  EXPECT_EQ(pixmapColour(0), QColor(Qt::red)) << "case 1's first image, once shown";
  EXPECT_EQ(images->shownCases(), (std::vector<unsigned long long>{ 1 }));
  images->stepCases(-1);
  EXPECT_EQ(images->shownCases(), (std::vector<unsigned long long>{ 3 }));
  QTest::keyClick(images->widget(), Qt::Key_Right);
  EXPECT_EQ(images->shownCases(), (std::vector<unsigned long long>{ 1 }));
  images->sideBySide()->setValue(2);
  EXPECT_EQ(images->shownCases(), (std::vector<unsigned long long>{ 1, 2 }));
  EXPECT_TRUE(images->captions()[1].startsWith("case 2, angle 30, speed 20, material wood"));
  EXPECT_EQ(pixmapColour(0), QColor(Qt::red)) << "case 1's first image";
  QTest::keyClick(images->widget(), Qt::Key_Down);
  EXPECT_EQ(pixmapColour(0), QColor(Qt::green)) << "case 1's second image";
  EXPECT_EQ(pixmapColour(1), QColor(Qt::cyan)) << "case 2's second image";

  // Differences: the first two selected, or a pinned reference and another; reasons when an
  // image is missing.
  auto* difference = window->view<explorer::ImageDiffView>();
  EXPECT_EQ(difference->comparedCases(), (std::vector<unsigned long long>{ 1, 2 }));
  EXPECT_EQ(difference->largestDifference(), 255) << "red against blue";
  difference->pinReference(true);
  window->selection().setSelection({ 5 });
  EXPECT_EQ(difference->comparedCases(), (std::vector<unsigned long long>{ 1, 5 }));
  EXPECT_EQ(difference->message(), "case 5 has no images");
  window->selection().setSelection({ 4 });
  EXPECT_TRUE(difference->message().contains("largest difference 164"))
    << "red against grey (160, 160, 164): " << difference->message().toStdString();

  // Parallel coordinates over a text variable: its categories in order up the axis; a drag along
  // it is no range and filters nothing.
  auto* parallel = window->view<explorer::ParallelCoordinatesView>();
  ASSERT_EQ(parallel->axes()->value().at(2), small.project->variable("material"));
  EXPECT_FALSE(parallel->widget()->grab().isNull());
  const QPoint lead = parallel->pointOnAxis(2, 0);
  const QPoint wood = parallel->pointOnAxis(2, 2);
  EXPECT_GT(lead.y(), wood.y()) << "lead, steel, wood from the bottom";
  QTest::mousePress(parallel->widget(), Qt::LeftButton, {}, lead);
  QTest::mouseRelease(parallel->widget(), Qt::LeftButton, {}, wood);
  EXPECT_TRUE(window->pipeline().filters().empty());
}

TEST_F(ExplorerWindowTest, BrushingAnAxisFiltersEveryViewAndClicksSelectLinesAndPoints)
{
  auto* parallel = window->view<explorer::ParallelCoordinatesView>();
  auto* scatter3d = window->view<explorer::ScatterPlot3DView>();
  auto* table = window->view<explorer::CasesTableView>();
  auto* tabs = window->findChild<QTabWidget*>("viewTabs");
  tabs->setCurrentWidget(parallel->widget());
  QWidget* canvas = parallel->widget();
  const auto project = window->project();
  const auto angle = project->variable("angle");
  ASSERT_EQ(parallel->axes()->value().front(), angle);
  const auto& angles = *project->numericValues(angle.lock());
  const auto& ranges = *project->numericValues(project->variable("range").lock());
  // Cases with an angle in a range; in the 3-D plot, those that also have a range.
  const auto between = [&](double low, double high, bool in3d)
  {
    int n = 0;
    for (std::size_t i = 0; i < angles.size(); ++i)
      n += angles[i] >= low && angles[i] <= high && !(in3d && std::isnan(ranges[i]));
    return n;
  };

  // The settings' list of axes sets them and follows an undo.
  QListWidget* axesList = nullptr;
  for (auto* list : window->findChildren<QListWidget*>())
    if (list->dragDropMode() == QAbstractItemView::InternalMove)
      axesList = list;
  ASSERT_NE(axesList, nullptr);
  axesList->item(0)->setCheckState(Qt::Unchecked);
  EXPECT_EQ(parallel->axes()->value().front(), project->variable("speed"));
  UndoStack().undo();
  EXPECT_EQ(parallel->axes()->value().front(), angle);
  EXPECT_EQ(axesList->item(0)->checkState(), Qt::Checked);

  // Dragging from 50 down to 30 on the angle axis filters every view to angles 35 and 45.
  QTest::mousePress(canvas, Qt::LeftButton, {}, parallel->pointOnAxis(0, 50));
  QTest::mouseMove(canvas, parallel->pointOnAxis(0, 40));
  QTest::mouseRelease(canvas, Qt::LeftButton, {}, parallel->pointOnAxis(0, 30));
  const auto filter = boost::dynamic_pointer_cast<RangeFilter>(window->pipeline().filter(angle));
  ASSERT_TRUE(filter && window->pipeline().isFilterEnabled(angle));
  EXPECT_NEAR(filter->range().first, 30, 0.5);
  EXPECT_NEAR(filter->range().second, 50, 0.5);
  const int inside = between(30, 50, false);
  ASSERT_GT(inside, 0);
  ASSERT_LT(inside, 48);
  EXPECT_EQ(window->shownCases(), inside);
  EXPECT_EQ(table->table().model()->rowCount(), inside);
  EXPECT_EQ(scatter3d->shownPoints(), between(30, 50, true));
  UndoStack().undo();
  EXPECT_EQ(table->table().model()->rowCount(), 48) << "the brush is one undo step";
  UndoStack().redo();
  // A click on the axis without a drag takes the filter away.
  QTest::mouseClick(canvas, Qt::LeftButton, {}, parallel->pointOnAxis(0, 60));
  EXPECT_FALSE(window->pipeline().filter(angle));
  EXPECT_EQ(scatter3d->shownPoints(), between(0, 90, true));

  // A click on a line where it crosses the range axis selects its case; Ctrl+click adds one.
  const auto range = project->variable("range");
  const auto axes = parallel->axes()->value();
  const int rangeAxis = static_cast<int>(std::find(axes.begin(), axes.end(), range) - axes.begin());
  const auto ids = project->caseIds();
  const auto farthest = std::max_element(ranges.begin(),
                                         ranges.end(),
                                         [](double a, double b)
                                         { return std::isnan(a) || (!std::isnan(b) && a < b); }) -
                        ranges.begin();
  QTest::mouseClick(canvas,
                    Qt::LeftButton,
                    {},
                    parallel->pointOnAxis(rangeAxis, ranges[static_cast<std::size_t>(farthest)]));
  EXPECT_EQ(window->selection().getSelections(),
            (std::set<unsigned long long>{ ids[static_cast<std::size_t>(farthest)] }));
  EXPECT_EQ(parallel->highlightedLines(), 1);

  // The 3-D scatter plot: a click on a point selects its case, Ctrl+click adds another, a
  // click on empty space clears.
  tabs->setCurrentWidget(scatter3d->widget());
  ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
  scatter3d->widget()->repaint();
  QPoint first;
  QPoint second;
  ASSERT_TRUE(scatter3d->pointOfCase(ids[5], first));
  ASSERT_TRUE(scatter3d->pointOfCase(ids[40], second));
  QTest::mouseClick(scatter3d->widget(), Qt::LeftButton, {}, first);
  EXPECT_EQ(window->selection().getSelections(), (std::set<unsigned long long>{ ids[5] }));
  QTest::mouseClick(scatter3d->widget(), Qt::LeftButton, Qt::ControlModifier, second);
  EXPECT_EQ(window->selection().getSelections(), (std::set<unsigned long long>{ ids[5], ids[40] }));
  EXPECT_EQ(scatter3d->highlightedPoints(), 2);
  QTest::mouseClick(scatter3d->widget(), Qt::LeftButton, {}, QPoint(3, 3));
  EXPECT_TRUE(window->selection().getSelections().empty());
}

TEST_F(ExplorerWindowTest, TheCasesTableSortsByAnyColumnKeepsTheSelectionAndFindsACase)
{
  const testsupport::SmallStudy small;
  window->showStudy(small.project);
  auto* cases = window->view<explorer::CasesTableView>();
  const QAbstractItemModel& model = *cases->table().model();
  const auto column = [&](int c)
  {
    QStringList values;
    for (int row = 0; row < model.rowCount(); ++row)
      values << model.index(row, c).data().toString();
    return values.join(",");
  };
  window->selection().setSelection({ 2, 5 });
  QTest::mouseClick(cases->table().horizontalHeader()->viewport(),
                    Qt::LeftButton,
                    {},
                    QPoint(cases->table().horizontalHeader()->sectionViewportPosition(3) + 5, 5));
  EXPECT_EQ(column(3), "lead,steel,steel,wood,wood,wood") << "by material, ties in study order";
  EXPECT_EQ(column(0), "5,1,3,2,4,6");
  cases->sortDescending()->setValue(true);
  cases->sortColumn()->setValue(2);
  EXPECT_EQ(column(0), "2,4,1,3,5,6") << "by speed, descending";
  EXPECT_EQ(cases->selectedRows(), 2);
  QList<int> selectedRows;
  for (const QModelIndex& index : cases->table().selectionModel()->selectedRows())
    selectedRows << index.row();
  std::sort(selectedRows.begin(), selectedRows.end());
  EXPECT_EQ(selectedRows, (QList<int>{ 0, 4 })) << "cases 2 and 5 where they are now";
  UndoStack().undo();
  UndoStack().undo();
  EXPECT_EQ(column(0), "5,1,3,2,4,6") << "each sort is an undo step";

  auto* find = cases->widget()->findChild<QLineEdit*>("findCase");
  const auto typeAndFind = [&](const QString& text)
  {
    find->setText(text);
    QTest::keyClick(find, Qt::Key_Return);
  };
  typeAndFind("4");
  EXPECT_EQ(window->selection().getSelections(), (std::set<unsigned long long>{ 4 }));
  window->pipeline().setRangeFilter(small.project->variable("angle"), 40, 50);
  for (const auto& [text, message] :
       std::vector<std::pair<QString, QString>>{ { "x1", "'x1' is not a case id" },
                                                 { "99", "no case 99" },
                                                 { "1", "case 1 is filtered out" } })
  {
    typeAndFind(text);
    EXPECT_EQ(cases->widget()->findChild<QLabel*>()->text(), message);
  }
  EXPECT_EQ(window->selection().getSelections(), (std::set<unsigned long long>{ 4 }));
}

TEST_F(ExplorerWindowTest, ACrowdedSelectionFromAnotherViewIsDrawnAndChangedInTheTable)
{
  // Every other case of 600: 300 runs of rows, which the table keeps otherwise than Qt's
  // selection of a few runs.
  showGeneratedStudy(600);
  auto* cases = window->view<explorer::CasesTableView>();
  QTableView& table = cases->table();
  const auto caseOf = [&](int row) { return table.model()->index(row, 0).data().toULongLong(); };
  std::set<unsigned long long> everyOther;
  for (int row = 0; row < table.model()->rowCount(); row += 2)
    everyOther.insert(caseOf(row));
  window->selection().setSelection(everyOther);
  EXPECT_EQ(cases->selectedRows(), 300);

  QApplication::processEvents();
  const QImage drawn = table.viewport()->grab().toImage();
  const auto shade = [&](int row)
  {
    const QRect cell = table.visualRect(table.model()->index(row, 1));
    return drawn.pixelColor(cell.center().x(), cell.top() + 1);
  };
  EXPECT_NE(shade(0), shade(1)) << "selected rows are drawn as selected";
  EXPECT_EQ(shade(0), shade(2));
  EXPECT_EQ(shade(1), shade(3));

  const auto click = [&](int row, Qt::KeyboardModifiers modifiers)
  {
    QTest::mouseClick(table.viewport(),
                      Qt::LeftButton,
                      modifiers,
                      table.visualRect(table.model()->index(row, 1)).center());
  };
  click(0, Qt::ControlModifier);
  auto expected = everyOther;
  expected.erase(caseOf(0));
  EXPECT_EQ(window->selection().getSelections(), expected) << "Control+click takes one away";
  click(1, {});
  EXPECT_EQ(window->selection().getSelections(), (std::set<unsigned long long>{ caseOf(1) }));
  EXPECT_EQ(cases->selectedRows(), 1);
}

TEST(ImageDifference, IsTheLargestChannelDifferenceWhateverTheFormatsAndSizes)
{
  QImage red(4, 2, QImage::Format_RGB32);
  red.fill(QColor(255, 0, 0));
  QImage small(2, 1, QImage::Format_ARGB32);
  small.fill(QColor(200, 10, 0));
  int largest = -1;
  const QImage difference = explorer::ImageDiffView::absoluteDifference(red, small, largest);
  ASSERT_EQ(difference.size(), QSize(4, 2)) << "the second image is scaled to the first's size";
  EXPECT_EQ(largest, 55);
  EXPECT_EQ(qGray(difference.pixel(3, 1)), 55);

  QImage deep(3, 3, QImage::Format_Grayscale16);
  deep.fill(QColor(255, 255, 255));
  QImage white(3, 3, QImage::Format_Indexed8);
  white.setColorTable({ qRgb(255, 255, 255) });
  white.fill(0);
  EXPECT_EQ(explorer::ImageDiffView::absoluteDifference(deep, white, largest).size(), QSize(3, 3));
  EXPECT_EQ(largest, 0) << "16-bit grey against indexed white";
  EXPECT_TRUE(explorer::ImageDiffView::absoluteDifference(QImage(), white, largest).isNull());

  const QImage heat = explorer::ImageDiffView::heatMap(difference, 55);
  EXPECT_EQ(heat.pixelColor(0, 0), QColor(255, 255, 255)) << "the largest difference is white";
  QImage none(1, 1, QImage::Format_Grayscale8);
  none.fill(0);
  EXPECT_EQ(explorer::ImageDiffView::heatMap(none, 55).pixelColor(0, 0), QColor(0, 0, 0));
}
