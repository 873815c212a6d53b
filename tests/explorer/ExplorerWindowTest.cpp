// The explorer's window in-process, over a generated sample study: views made from the registry,
// selection linked between them, settings saved, loaded and refused.

#include "CommandLine.h"
#include "ExplorerWindow.h"
#include "SampleStudy.h"
#include "ViewRegistry.h"
#include "views/CasesTableView.h"
#include "views/ImageMatrixView.h"
#include "views/ScatterPlotView.h"

#include "analyzer_common/SelectionModel.h"
#include "analyzer_common/UndoStack.h"
#include "datamanagement/Project.h"
#include "datamanagement/StudyReader.h"
#include "properties/PropertyAbstract.h"
#include "support/RenderedView.h"
#include "support/TemporaryFolder.h"

#include <QItemSelectionModel>
#include <QTableView>
#include <QUndoStack>
#include <gtest/gtest.h>

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
  EXPECT_EQ(scatter->highlightedPoints(), 2);
  EXPECT_EQ(table->selectedRows(), 2);
  EXPECT_EQ(images->selectionSummary(), "2 selected cells");

  // Rows picked in the table become the master selection, and the chart follows.
  QTableView& rows = table->table();
  rows.selectionModel()->select(rows.model()->index(1, 0),
                                QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  EXPECT_EQ(window->selection().getSelections(), (std::set<unsigned long long>{ 1001 }));
  EXPECT_EQ(scatter->highlightedPoints(), 1);

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
  EXPECT_EQ(UndoStack().qUndoStack().count(), 0) << "loading starts the undo history afresh";

  const std::string saved = savedSettings();
  for (const char* expected : { "<XVariable>speed</XVariable>",
                                "<NumLabels>7</NumLabels>",
                                "<DimensionRowsBy>Tag</DimensionRowsBy>",
                                "<Zoom>20</Zoom>",
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
    { { "--screenshots", "out" }, false, Mode::Open, 1, "needs a study folder" },
    { { "a", "b" }, false, Mode::Open, 1, "one study folder at most" },
    { { "--no-such-option" }, false, Mode::Open, 1, "no-such-option" },
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
