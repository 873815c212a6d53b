// The line plot in a real window over the sample study: response curves by default, picking a
// point or a curve selects its cases in every view (the same cases whether the curves are lines
// or a density), edits are undo steps saved with the settings, and each run's series is read
// from its file, a broken file named with its case.

#include "MasterSelection.h"
#include "SampleWindow.h"
#include "views/line/LinePlotView.h"

#include "analyzer_common/UndoStack.h"
#include "datamanagement/Project.h"
#include "datamanagement/StudyReader.h"
#include "properties/PropertyAbstract.h"
#include "support/RenderedView.h"
#include "support/TemporaryFolder.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTabWidget>
#include <QTest>
#include <QUndoStack>
#include <gtest/gtest.h>

#include <fstream>

using explorer::ExplorerWindow;
using explorer::LineMode;
using explorer::LinePlotView;
using testsupport::TemporaryFolder;

namespace
{

class LinePlotTest : public testsupport::SampleWindow
{
protected:
  static void SetUpTestSuite()
  {
    // One run's series is spoilt: text where a number belongs.
    writeStudy(48,
               [](const std::string& folder) {
                 std::ofstream(folder + "/series/1005_flight.csv")
                   << "time,x,y,speed\n0,0,0,1\n1,2,high,1\n";
               });
  }

  void SetUp() override
  {
    openWith([](ExplorerWindow& w) { return w.view<LinePlotView>()->widget(); });
    line = window->view<LinePlotView>();
  }

  void waitForSeries()
  {
    QElapsedTimer timer;
    timer.start();
    while (line->working() && timer.elapsed() < 10000)
      QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    QCoreApplication::processEvents();
  }

  std::set<unsigned long long> clickAt(const QPoint& point, Qt::KeyboardModifiers keys = {})
  {
    QTest::mouseMove(line->widget(), point);
    QTest::mousePress(line->widget(), Qt::LeftButton, keys, point);
    QTest::mouseRelease(line->widget(), Qt::LeftButton, keys, point);
    return window->selection().getSelections();
  }

  LinePlotView* line = nullptr;
};

} // namespace

TEST_F(LinePlotTest, AClickOnAPointSelectsItsCasesWhetherDrawnAsLinesOrDensity)
{
  const auto project = window->project();
  EXPECT_EQ(line->mode()->value(), LineMode::Response);
  EXPECT_EQ(line->xVariable()->value(), project->variable("angle"));
  EXPECT_EQ(line->yVariable()->value(), project->variable("range"));
  ASSERT_EQ(line->linesBy()->value().size(), 1u);
  EXPECT_EQ(line->linesBy()->value().front(), project->variable("speed"));
  const auto& curves = line->curves().curves;
  ASSERT_EQ(curves.size(), 4u) << "48 runs sweep four launch speeds";

  // The cases behind the second point of the first line: those of its speed and angle.
  const explorer::Curve& first = curves.front();
  const auto [from, to] = first.rowsAt(1);
  const QPoint point = line->pointOf(0, 1);
  const auto picked = clickAt(point);
  EXPECT_EQ(picked.size(), static_cast<std::size_t>(to - from));
  const auto& angles = *project->numericValues(project->variable("angle").lock());
  const auto& ids = project->caseIds();
  for (unsigned long long id : picked)
  {
    const auto row = static_cast<std::size_t>(std::find(ids.begin(), ids.end(), id) - ids.begin());
    EXPECT_EQ(angles[row], first.x[1]) << "case " << id;
  }
  EXPECT_EQ(line->highlightedCases(), picked.size());

  line->drawing()->setValue(explorer::Drawing::Density);
  EXPECT_TRUE(line->drawsDensity());
  EXPECT_FALSE(line->widget()->grab().isNull());
  window->selection().setSelection({});
  EXPECT_EQ(clickAt(point), picked) << "the density picks what the lines pick";

  // Control adds another point's cases, and a second Control click takes them away.
  const auto more = clickAt(line->pointOf(1, 0), Qt::ControlModifier);
  EXPECT_GT(more.size(), picked.size());
  EXPECT_EQ(clickAt(line->pointOf(1, 0), Qt::ControlModifier), picked);

  // A rubber band over the whole plot picks every case drawn, even when no move came between
  // the press and the release.
  const QSize size = line->widget()->size();
  QTest::mousePress(line->widget(), Qt::LeftButton, {}, QPoint(2, 2));
  QTest::mouseRelease(
    line->widget(), Qt::LeftButton, {}, QPoint(size.width() - 2, size.height() - 2));
  std::size_t drawn = 0;
  for (const auto& curve : line->curves().curves)
    drawn += curve.rows.size();
  EXPECT_EQ(window->selection().getSelections().size(), drawn);
}

TEST_F(LinePlotTest, EditsAreUndoStepsAndComeBackWithTheSettings)
{
  const auto project = window->project();
  line->yVariable()->setValue(project->variable("apex_height"));
  line->linesBy()->setValue({ project->variable("speed"), project->variable("drag_coefficient") });
  line->aggregate()->setValue(explorer::Aggregate::Median);
  line->logY()->setValue(true);
  EXPECT_EQ(line->curves().curves.size(), 8u) << "four speeds by two drag coefficients";
  EXPECT_EQ(line->curves().curves.front().label, "20, 0.1");

  TemporaryFolder output;
  const QString saved = QString::fromStdString(output.path() + "/settings.xml");
  QString error;
  ASSERT_TRUE(window->saveSettings(saved, error)) << error.toStdString();

  UndoStack undo;
  ASSERT_GE(undo.count(), 4);
  for (int i = 0; i < 4; ++i)
    undo.undo();
  EXPECT_EQ(line->yVariable()->value(), project->variable("range"));
  EXPECT_EQ(line->linesBy()->value().size(), 1u);
  EXPECT_FALSE(line->logY()->value());
  EXPECT_EQ(line->curves().curves.size(), 4u);

  ASSERT_TRUE(window->loadSettings(saved, error)) << error.toStdString();
  EXPECT_EQ(line->yVariable()->value(), project->variable("apex_height"));
  EXPECT_EQ(line->aggregate()->value(), explorer::Aggregate::Median);
  EXPECT_TRUE(line->logY()->value());
  EXPECT_EQ(line->curves().curves.size(), 8u);

  // A spoilt value is refused with its place, and nothing changes.
  QFile file(saved);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  QString text = QString::fromUtf8(file.readAll());
  file.close();
  text.replace("<Band>minmax</Band>", "<Band>wide</Band>");
  ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
  file.write(text.toUtf8());
  file.close();
  line->aggregate()->setValue(explorer::Aggregate::Max);
  EXPECT_FALSE(window->loadSettings(saved, error));
  EXPECT_TRUE(error.contains("LinePlot/Band")) << error.toStdString();
  EXPECT_EQ(line->aggregate()->value(), explorer::Aggregate::Max);
}

TEST_F(LinePlotTest, EachRunsSeriesIsReadFromItsFileAndABrokenFileIsNamed)
{
  line->mode()->setValue(LineMode::Series);
  EXPECT_EQ(line->seriesTag()->value(), "series:flight");
  line->seriesX()->setValue("x");
  line->seriesY()->setValue("y");
  waitForSeries();
  const auto& curves = line->curves().curves;
  EXPECT_EQ(curves.size(), 47u) << "48 runs, one spoilt";
  const auto notes = line->notes();
  const auto named =
    std::find_if(notes.begin(),
                 notes.end(),
                 [](const std::string& note) { return note.find("case 1005: ") == 0; });
  ASSERT_NE(named, notes.end());
  EXPECT_NE(named->find("1005_flight.csv:3:5: \"high\" in column \"y\" is not a number"),
            std::string::npos)
    << *named;

  // A click on a flight selects its run; the run's curve starts at the origin and rises.
  const explorer::Curve& flight = curves.at(3);
  const QPoint point = line->pointOf(3, flight.points() / 3);
  const auto picked = clickAt(point);
  ASSERT_EQ(picked.size(), 1u);
  EXPECT_EQ(line->highlightedCases(), 1u);
  const auto again = clickAt(point);
  EXPECT_EQ(again, picked);

  // A column the files lack is named, not drawn from another one.
  line->seriesY()->setValue("altitude");
  waitForSeries();
  EXPECT_TRUE(line->curves().curves.empty());
  const auto lacking = line->notes();
  EXPECT_NE(std::find_if(lacking.begin(),
                         lacking.end(),
                         [](const std::string& note)
                         { return note.find("has no column \"altitude\"") != std::string::npos; }),
            lacking.end());

  // A tag no file of the study has: nothing to read, nothing to plot.
  line->seriesTag()->setValue("series:none");
  waitForSeries();
  EXPECT_TRUE(line->curves().curves.empty());
  EXPECT_EQ(line->notes(), std::vector<std::string>{ "Nothing to plot" });
  line->seriesTag()->setValue("series:flight");
  line->seriesY()->setValue("y");
  waitForSeries();
  EXPECT_EQ(line->curves().curves.size(), 47u) << "back to the flights";
}
