// Studies of shapes other than our sample study's, each opened in a real window: the first screen
// is full, no tab grows the window, and a case is the same case in every view whatever its id.

#include "ExplorerWindow.h"
#include "FileLocator.h"
#include "MasterSelection.h"
#include "views/ImageDiffView.h"
#include "views/ImageMatrixView.h"
#include "views/SelectedCasesView.h"
#include "views/SelectedImageView.h"
#include "views/parallel/ParallelCoordinatesView.h"
#include "views/scatter/ScatterPlotView.h"
#include "views/scatter3d/ScatterPlot3DView.h"
#include "views/table/CasesTableView.h"

#include "charts/AxisDetailsInterface.h"
#include "charts/ChartXY.h"
#include "datamanagement/Project.h"
#include "datamanagement/ProjectBuilder.h"
#include "images/ImageMatrixViewProperties.h"
#include "images/ImageTableView.h"
#include "images/QImageTableView.h"
#include "properties/PropertyAbstract.h"
#include "support/ChartEvents.h"
#include "support/RenderedView.h"
#include "support/SmallStudy.h"
#include "support/TemporaryFolder.h"

#include <QApplication>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QSplitter>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QVTKOpenGLNativeWidget.h>
#include <gtest/gtest.h>
#include <vtkIdTypeArray.h>
#include <vtkPlotPoints.h>
#include <vtkRenderWindow.h>
#include <vtkTable.h>
#include <vtkTooltipItem.h>

#include <cmath>
#include <functional>
#include <limits>

using explorer::ExplorerWindow;
using testsupport::TemporaryFolder;

namespace
{

constexpr unsigned long long top = std::numeric_limits<unsigned long long>::max();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

std::vector<double> wave(std::size_t n, double scale)
{
  std::vector<double> values(n);
  for (std::size_t i = 0; i < n; ++i)
    values[i] = scale * std::sin(static_cast<double>(i) * 1.3 + scale);
  return values;
}

std::vector<unsigned long long> firstIds(std::size_t n)
{
  std::vector<unsigned long long> ids(n);
  for (std::size_t i = 0; i < n; ++i)
    ids[i] = i + 1;
  return ids;
}

struct Shape
{
  const char* name;
  std::function<std::shared_ptr<const Project>(const TemporaryFolder&)> make;
};

const std::vector<Shape>& shapes()
{
  static const std::vector<Shape> all = {
    { "all continuous",
      [](const TemporaryFolder&)
      {
        ProjectBuilder b;
        b.setCaseIds(firstIds(200));
        for (int v = 1; v <= 4; ++v)
          b.addNumericVariable("x" + std::to_string(v), wave(200, v));
        return b.build();
      } },
    { "all discrete",
      [](const TemporaryFolder&)
      {
        ProjectBuilder b;
        b.setCaseIds(firstIds(60));
        std::vector<double> a, c, e;
        for (int i = 0; i < 60; ++i)
        {
          a.push_back(1 + i % 3);
          const int group = i / 15; // fifteen runs per value
          c.push_back(10.0 * (1 + group));
          e.push_back(0.1 * (1 + i % 5));
        }
        b.addNumericVariable("a", a);
        b.addNumericVariable("b", c);
        b.addNumericVariable("c", e);
        return b.build();
      } },
    { "one variable",
      [](const TemporaryFolder&)
      {
        ProjectBuilder b;
        b.setCaseIds(firstIds(50));
        b.addNumericVariable("only", wave(50, 3));
        return b.build();
      } },
    { "constants",
      [](const TemporaryFolder&)
      {
        ProjectBuilder b;
        b.setCaseIds(firstIds(80));
        b.addNumericVariable("always255", std::vector<double>(80, 255));
        b.addNumericVariable("zero", std::vector<double>(80, 0));
        b.addNumericVariable("p", wave(80, 1));
        b.addNumericVariable("q", wave(80, 2));
        return b.build();
      } },
    { "texts only",
      [](const TemporaryFolder&)
      {
        ProjectBuilder b;
        b.setCaseIds(firstIds(30));
        std::vector<std::string> material;
        material.reserve(30);
        for (int i = 0; i < 30; ++i)
          material.push_back("alloy-" + std::to_string(i % 7));
        b.addTextVariable("material", material);
        return b.build();
      } },
    { "mostly missing colours",
      [](const TemporaryFolder&)
      {
        ProjectBuilder b;
        b.setCaseIds(firstIds(20));
        std::vector<double> colour = wave(20, 5);
        std::vector<double> y = wave(20, 2);
        for (int i = 0; i < 20; ++i)
          if (i % 4 != 0)
            colour[static_cast<std::size_t>(i)] = nan;
        y[3] = nan; // one case without Y
        b.addNumericVariable("x", wave(20, 1));
        b.addNumericVariable("y", y);
        b.addNumericVariable("colour", colour);
        return b.build();
      } },
    { "ids at the top of the range",
      [](const TemporaryFolder&)
      {
        ProjectBuilder b;
        b.setCaseIds({ 2147483647ULL,
                       2147483648ULL,
                       4294967295ULL,
                       4294967296ULL,
                       9223372036854775808ULL,
                       top,
                       5,
                       12345678901234567890ULL });
        std::vector<double> u, v, w;
        for (int k = 0; k < 8; ++k)
        {
          u.push_back(k);
          v.push_back((k * 7) % 5);
          w.push_back(k * k);
        }
        b.addNumericVariable("u", u);
        b.addNumericVariable("v", v);
        b.addNumericVariable("w", w);
        return b.build();
      } },
    { "data files before images, and large images",
      [](const TemporaryFolder& folder)
      {
        ProjectBuilder b;
        b.setFolder(folder.path());
        b.setCaseIds({ 1, 2, 3 });
        b.addNumericVariable("load", { 1, 2, 3 });
        b.addNumericVariable("stress", { 10, 25, 40 });
        for (unsigned long long id = 1; id <= 3; ++id)
        {
          const std::string stem = "run" + std::to_string(id);
          folder.write(stem + ".csv", "t,x\n0,1\n");
          testsupport::writeImage(
            folder, stem + ".png", 2400, 1800, QColor(60 * static_cast<int>(id), 80, 120));
          b.addAuxFile(id, stem + ".csv", { "FILE_table" });
          b.addAuxFile(id, stem + ".png", { "FILE_picture" });
        }
        return b.build();
      } },
  };
  return all;
}

class StudyShapes : public ::testing::Test
{
protected:
  static void SetUpTestSuite() { testsupport::keepGraphicsDriverLoaded(); }

  void SetUp() override
  {
    window = std::make_unique<ExplorerWindow>();
    window->resize(1600, 1000);
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
  }

  void open(const std::shared_ptr<const Project>& project)
  {
    window->showStudy(project);
    settle();
  }

  static void settle()
  {
    for (int i = 0; i < 3; ++i)
      QApplication::processEvents();
  }

  // The width of every pane: the main splitter's and the side column's.
  std::vector<int> paneWidths() const
  {
    auto* main = qobject_cast<QSplitter*>(window->centralWidget());
    std::vector<int> widths;
    for (int i = 0; main && i < main->count(); ++i)
      widths.push_back(main->widget(i)->width());
    return widths;
  }

  QTabWidget* tabs() const { return window->findChild<QTabWidget*>("viewTabs"); }

  std::unique_ptr<ExplorerWindow> window;
};

} // namespace

TEST_F(StudyShapes, TheFirstScreenIsFullAndNoTabGrowsTheWindow)
{
  for (const Shape& shape : shapes())
  {
    TemporaryFolder folder;
    const auto project = shape.make(folder);
    open(project);
    auto* scatter = window->view<explorer::ScatterPlotView>();

    // Every case with a value of X and of Y is a point; the others are counted in the plot.
    const Variable x = scatter->xVariable()->value().lock();
    const Variable y = scatter->yVariable()->value().lock();
    vtkIdType plottable = 0;
    for (const auto& record : project->records())
    {
      const auto valueOf = [&](const Variable& v)
      { return v.isNull() ? 0.0 : record.lock().data(v).toDouble(); };
      plottable += !y.isNull() && std::isfinite(valueOf(x)) && std::isfinite(valueOf(y)) ? 1 : 0;
    }
    vtkTable* plotted = scatter->points().GetInput();
    EXPECT_EQ(plotted ? plotted->GetNumberOfRows() : 0, plottable) << shape.name;
    const auto cases = static_cast<vtkIdType>(project->numberOfRecords());
    if (y.isNull())
    {
      EXPECT_NE(scatter->notes().find("Nothing to plot"), std::string::npos)
        << shape.name << ": an empty plot says why";
    }
    else if (plottable < cases)
    {
      EXPECT_NE(scatter->notes().find(std::to_string(cases - plottable) + " of "),
                std::string::npos)
        << shape.name << ": " << scatter->notes();
    }
    EXPECT_FALSE(x == y && !x.isNull()) << shape.name << ": X and Y differ";

    // The image matrix says why it is empty; with images it shows them, never a data file.
    auto* matrix = window->view<explorer::ImageMatrixView>();
    auto* reason = matrix->widget()->findChild<QLabel*>("imageMatrixMessage");
    if (project->auxFiles().empty())
    {
      ASSERT_NE(reason, nullptr) << shape.name;
      EXPECT_TRUE(reason->isVisible()) << shape.name;
    }
    else
    {
      EXPECT_EQ(reason, nullptr) << shape.name;
      QAbstractItemModel* cells = matrix->imageTable().tableView().model();
      ASSERT_GT(cells->rowCount(), 0) << shape.name;
      ASSERT_GT(cells->columnCount(), 0) << shape.name;
      const QVariant image = cells->data(cells->index(0, 0), Qt::DecorationRole);
      EXPECT_FALSE(image.value<QImage>().isNull()) << shape.name << ": an image, not a table";
    }

    // Two cases selected, every tab brought forward in turn: the window and its panes keep
    // their sizes, however large the images.
    const auto ids = project->caseIds();
    window->selection().setSelection({ ids[0], ids[1] });
    settle();
    const QSize size = window->size();
    const std::vector<int> widths = paneWidths();
    for (int tab = 0; tab < tabs()->count(); ++tab)
    {
      tabs()->setCurrentIndex(tab);
      settle();
      EXPECT_EQ(window->size(), size) << shape.name << ", tab " << tab;
      EXPECT_EQ(paneWidths(), widths) << shape.name << ", tab " << tab;
    }
    // Shown once, the grid selects the cells of the two cases; behind the message of a study
    // without images it lays out no case at all.
    EXPECT_EQ(matrix->imageTable().numSelections() > 0, !project->auxFiles().empty()) << shape.name;
    window->selection().setSelection({});
  }
}

TEST_F(StudyShapes, ACaseIsTheSameInEveryViewWhateverItsId)
{
  TemporaryFolder folder;
  const auto project = shapes()[6].make(folder);
  open(project);
  auto* scatter = window->view<explorer::ScatterPlotView>();
  auto* table = window->view<explorer::CasesTableView>();
  auto* parallel = window->view<explorer::ParallelCoordinatesView>();
  auto* cloud = window->view<explorer::ScatterPlot3DView>();
  auto* selectedCases = window->view<explorer::SelectedCasesView>();
  auto* widget = qobject_cast<QVTKOpenGLNativeWidget*>(scatter->widget());
  scatter->fitToData();
  widget->renderWindow()->Render();

  const auto shownEverywhere = [&](unsigned long long id, const std::string& how)
  {
    settle();
    EXPECT_EQ(window->selection().getSelections(), std::set<unsigned long long>{ id }) << how;
    EXPECT_EQ(scatter->highlightedPoints(), 1) << how;
    vtkIdTypeArray* rows = scatter->points().GetSelection();
    ASSERT_TRUE(rows && rows->GetNumberOfTuples() == 1) << how;
    EXPECT_EQ(rows->GetValue(0), scatter->rowOfCase(id)) << how << ": the point of that case";
    EXPECT_EQ(table->selectedRows(), 1) << how;
    EXPECT_EQ(parallel->highlightedLines(), 1) << how;
    EXPECT_EQ(cloud->highlightedPoints(), 1) << how;
    EXPECT_EQ(selectedCases->table().model()->rowCount(), 1) << how;
    EXPECT_NE(selectedCases->shownText().toStdString().find(std::to_string(id)), std::string::npos)
      << how << ": the whole id, not cut";
  };

  for (unsigned long long id : { top, 9223372036854775808ULL, 4294967296ULL, 2147483648ULL })
  {
    const std::string text = std::to_string(id);
    // By the table's search.
    window->selection().setSelection({});
    auto* find = table->widget()->findChild<QLineEdit*>("findCase");
    find->setText(QString::fromStdString(text));
    Q_EMIT find->returnPressed();
    shownEverywhere(id, "found " + text);

    // By a row of the table.
    window->selection().setSelection({});
    QTableView& rows = table->table();
    int row = -1;
    for (int r = 0; r < rows.model()->rowCount(); ++r)
      if (rows.model()->index(r, 0).data().toString().toStdString() == text)
        row = r;
    ASSERT_GE(row, 0) << "the table shows the whole id " << text;
    rows.selectionModel()->select(rows.model()->index(row, 0),
                                  QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    shownEverywhere(id, "row of " + text);

    // By a click on its point.
    window->selection().setSelection({});
    const auto [x, y] = testsupport::valuesAtRow(scatter->points(), scatter->rowOfCase(id));
    vtkAbstractContextItem& chart = scatter->chart();
    chart.MouseButtonPressEvent(testsupport::mouseAt(scatter->chart(), widget->interactor(), x, y));
    chart.MouseButtonReleaseEvent(
      testsupport::mouseAt(scatter->chart(), widget->interactor(), x, y));
    shownEverywhere(id, "click on " + text);
  }

  // The tool tip names the whole id.
  const auto [x, y] = testsupport::valuesAtRow(scatter->points(), scatter->rowOfCase(top));
  vtkContextMouseEvent hover = testsupport::mouseAt(scatter->chart(), widget->interactor(), x, y);
  hover.SetButton(vtkContextMouseEvent::NO_BUTTON);
  static_cast<vtkAbstractContextItem&>(scatter->chart()).MouseMoveEvent(hover);
  EXPECT_NE(std::string(scatter->chart().GetTooltip()->GetText()).find(std::to_string(top)),
            std::string::npos);
}

TEST_F(StudyShapes, ImageViewsShowImagesOnlyAndFilesAtURLsOnceLocated)
{
  TemporaryFolder folder;
  testsupport::writeImage(folder, "local/run1.png", 40, 30, Qt::red);
  testsupport::writeImage(folder, "local/run2.png", 40, 30, Qt::blue);
  folder.write("run1.csv", "t,x\n0,1\n");
  ProjectBuilder b;
  b.setFolder(folder.path());
  b.setCaseIds({ 1, 2 });
  b.addNumericVariable("load", { 1, 2 });
  b.addAuxFile(1, "run1.csv", { "table" });
  b.addAuxFile(1, "https://host/study/run1.png", { "img" });
  b.addAuxFile(2, "https://host/study/run2.png", { "img" });
  open(b.build());
  auto* note = window->findChild<QLabel*>("filesNote");
  ASSERT_NE(note, nullptr);
  EXPECT_TRUE(note->text().contains("2 of 3 files not found (2 are URLs)"))
    << note->text().toStdString();

  auto* image = window->view<explorer::SelectedImageView>();
  auto* difference = window->view<explorer::ImageDiffView>();
  window->selection().setSelection({ 1, 2 });
  EXPECT_EQ(difference->message().toStdString().find("case 1: not found: https://host/study/"), 0u)
    << "the URL is named, not the table before it: " << difference->message().toStdString();

  window->files().addLocation({ "https://host/study/", folder.path() + "/local" });
  settle();
  EXPECT_FALSE(note->isVisible()) << note->text().toStdString();
  EXPECT_EQ(difference->comparedCases(), (std::vector<unsigned long long>{ 1, 2 }));
  EXPECT_GT(difference->largestDifference(), 100) << "red against blue, read from the folder";
  EXPECT_EQ(image->shownCases(), (std::vector<unsigned long long>{ 1 }));
}

TEST_F(StudyShapes, AnAxisOverAConstantIsCentredOnItWithAMargin)
{
  TemporaryFolder folder;
  open(shapes()[3].make(folder));
  auto* scatter = window->view<explorer::ScatterPlotView>();
  for (const auto& [name, value] :
       { std::make_pair("always255", 255.0), std::make_pair("zero", 0.0) })
  {
    scatter->yVariable()->setValue(window->project()->variable(name));
    scatter->fitToData();
    const double min = scatter->yAxis().min()->value();
    const double max = scatter->yAxis().max()->value();
    EXPECT_LT(min, value) << name;
    EXPECT_GT(max, value) << name;
    EXPECT_NEAR((min + max) / 2, value, 1e-9) << name << ": centred";
    EXPECT_LE(max - min, std::max(1.0, std::abs(value)) * 2) << name << ": a margin, not 0 to 6.66";
  }
}
