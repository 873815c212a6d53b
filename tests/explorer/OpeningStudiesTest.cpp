// Opening what users already have: a table of runs opened by its path, the studies opened last,
// each coming back with the settings it was left with, and an export that opens as the same
// study.

#include "ExplorerWindow.h"
#include "MasterSelection.h"
#include "StudySessions.h"
#include "views/SelectedCasesView.h"
#include "views/scatter/ScatterPlotView.h"
#include "views/table/CasesTableView.h"

#include "analyzer_common/UndoStack.h"
#include "datamanagement/AuxFile.h"
#include "datamanagement/Project.h"
#include "datamanagement/Record.h"
#include "datamanagement/TableReader.h"
#include "datamanagement/Variable.h"
#include "properties/PropertyAbstract.h"
#include "support/RenderedView.h"
#include "support/TemporaryFolder.h"

#include <QAction>
#include <QApplication>
#include <QHeaderView>
#include <QImage>
#include <QMenu>
#include <QTableView>
#include <QUndoStack>
#include <gtest/gtest.h>

#include <string>

using explorer::ExplorerWindow;
using explorer::StudySessions;
using testsupport::TemporaryFolder;

namespace
{

int columnNamed(const QTableView& table, const QString& header)
{
  for (int column = 0; column < table.model()->columnCount(); ++column)
    if (table.model()->headerData(column, Qt::Horizontal, Qt::DisplayRole).toString() == header)
      return column;
  return -1;
}

// Chooses a role in the header menu of the column shown as `header`.
void sayRole(ExplorerWindow& window, const QString& header, const QString& role)
{
  QTableView& table = window.view<explorer::CasesTableView>()->table();
  QHeaderView* columns = table.horizontalHeader();
  const int column = columnNamed(table, header);
  ASSERT_GE(column, 0) << header.toStdString();
  Q_EMIT columns->customContextMenuRequested(
    QPoint(columns->sectionViewportPosition(column) + 4, 4));
  auto* menu = columns->findChild<QMenu*>("roleMenu");
  ASSERT_NE(menu, nullptr);
  for (QAction* action : menu->actions())
    if (action->text() == role)
      action->trigger();
  menu->close();
  delete menu;
}

class OpeningStudies : public ::testing::Test
{
protected:
  void SetUp() override { testsupport::keepGraphicsDriverLoaded(); }

  // A design study's table: inputs and outputs, a text column, ids up to 2^64-1, images beside
  // it and one run without an image.
  QString writeDesignTable()
  {
    for (const char* image : { "images/r1.png", "images/r2.png", "images/r3.png" })
    {
      QImage picture(8, 6, QImage::Format_RGB32);
      picture.fill(Qt::darkCyan);
      const std::string path = study.write(image, "");
      picture.save(QString::fromStdString(path));
    }
    return QString::fromStdString(
      study.write("runs.csv",
                  "case_id,in:Depth [ft],in:Angle,out:Rate [m/s],out:Cost,material,img\n"
                  "0,10,0.1,0.30000000000000004,1e-300,steel,images/r1.png\n"
                  "2147483648,20,0.2,0.7,2.5,\"steel, cast\",images/r2.png\n"
                  "18446744073709551615,30,0.3,1.1,-3,wood,\n"
                  "7,40,0.4,1.9,4,wood,images/r3.png\n"));
  }

  testsupport::TemporarySettings settings;
  TemporaryFolder study;
};

TEST_F(OpeningStudies, RecentStudiesAreTheLastTenEachOnceAndEachKeepsSettingsOfItsOwn)
{
  StudySessions sessions;
  for (int i = 0; i < 12; ++i)
    sessions.remember(QString::fromStdString(study.filePath("s" + std::to_string(i))));
  QStringList recent = sessions.recent();
  ASSERT_EQ(recent.size(), StudySessions::maximumRecent);
  EXPECT_EQ(recent.front(), QString::fromStdString(study.filePath("s11")));
  EXPECT_EQ(recent.back(), QString::fromStdString(study.filePath("s2")));

  sessions.remember(QString::fromStdString(study.path() + "/other/../s5"));
  recent = sessions.recent();
  EXPECT_EQ(recent.front(), QString::fromStdString(study.filePath("s5")))
    << "a study opened again comes first";
  EXPECT_EQ(recent.count(recent.front()), 1) << "however its path was spelled";
  EXPECT_EQ(recent.size(), StudySessions::maximumRecent);
  sessions.forget(recent.front());
  EXPECT_FALSE(sessions.recent().contains(QString::fromStdString(study.filePath("s5"))));

  const QString a = QString::fromStdString(study.filePath("a.csv"));
  const QString b = QString::fromStdString(study.filePath("b.csv"));
  EXPECT_NE(sessions.settingsFile(a), sessions.settingsFile(b)) << "two tables in one folder";
  EXPECT_EQ(sessions.settingsFile(a),
            sessions.settingsFile(QString::fromStdString(study.path() + "/./x/../a.csv")));
  EXPECT_TRUE(sessions.settingsFile(a).startsWith(QString::fromStdString(settings.path())))
    << "kept in the application's settings, not beside the user's files: "
    << sessions.settingsFile(a).toStdString();
}

TEST_F(OpeningStudies, ATableReopensAsItWasLeftAndOneThatDoesNotReadChangesNothing)
{
  const QString table = writeDesignTable();
  QString error;
  {
    ExplorerWindow first;
    first.rememberBetweenRuns();
    first.show();
    ASSERT_TRUE(first.openStudy(table, error)) << error.toStdString();
    auto* scatter = first.view<explorer::ScatterPlotView>();
    ASSERT_NE(scatter, nullptr);
    EXPECT_EQ(scatter->xVariable()->value().lock().role(), Variable::Input);
    EXPECT_EQ(scatter->yVariable()->value().lock().role(), Variable::Output);
    scatter->xVariable()->setValue(first.project()->variable("Angle"));

    // The user says that Angle is an output, in the table's header menu.
    sayRole(first, "in: Angle", "Output");
    EXPECT_GE(columnNamed(first.view<explorer::CasesTableView>()->table(), "out: Angle"), 0);
    first.close();
  }
  EXPECT_EQ(StudySessions().recent().value(0), StudySessions::key(table));

  ExplorerWindow second;
  second.rememberBetweenRuns();
  second.show();
  ASSERT_TRUE(second.openStudy(table, error)) << error.toStdString();
  auto* scatter = second.view<explorer::ScatterPlotView>();
  EXPECT_EQ(scatter->xVariable()->value().lock().name(), "Angle");
  EXPECT_GE(columnNamed(second.view<explorer::CasesTableView>()->table(), "out: Angle"), 0)
    << "what the user said of a variable comes back";
  EXPECT_FALSE(UndoStack().qUndoStack().canUndo()) << "the study's history starts as it was left";

  const auto shown = second.project();
  EXPECT_FALSE(
    second.openStudy(QString::fromStdString(study.write("ragged.csv", "a,b\n1\n")), error));
  EXPECT_NE(error.indexOf("ragged.csv:2:"), -1) << error.toStdString();
  EXPECT_EQ(second.project(), shown) << "the study shown stays";
  EXPECT_EQ(second.view<explorer::ScatterPlotView>(), scatter);
  second.close();

  // Settings spoilt between runs (a crash while writing, a disk that filled): the study opens
  // with its first screen instead.
  study.write("spoilt.xml", "<ExplorerSettings><ScatterPlot2D><XVariable>");
  QFile::remove(StudySessions().settingsFile(table));
  QFile::copy(QString::fromStdString(study.filePath("spoilt.xml")),
              StudySessions().settingsFile(table));
  ExplorerWindow third;
  third.rememberBetweenRuns();
  ASSERT_TRUE(third.openStudy(table, error)) << error.toStdString();
  EXPECT_EQ(third.view<explorer::ScatterPlotView>()->xVariable()->value().lock().name(),
            "Depth [ft]");
}

TEST_F(OpeningStudies, ExportedCasesOpenAsTheSameStudy)
{
  const QString table = writeDesignTable();
  ExplorerWindow window;
  QString error;
  ASSERT_TRUE(window.openStudy(table, error)) << error.toStdString();
  const auto original = window.project();
  const std::string exported = study.filePath("exported.csv");
  ASSERT_TRUE(window.exportCases(QString::fromStdString(exported), true, error))
    << error.toStdString();
  const auto reopened = readRunTable(exported, {});

  EXPECT_EQ(reopened->caseIds(), original->caseIds());
  ASSERT_EQ(reopened->variables().size(), original->variables().size());
  for (const auto& handle : original->variables())
  {
    const Variable variable = handle.lock();
    const Variable again = reopened->variable(variable.name()).lock();
    ASSERT_FALSE(again.isNull()) << variable.name();
    EXPECT_EQ(again.role(), variable.role()) << variable.name();
    EXPECT_EQ(again.nature(), variable.nature()) << variable.name();
    if (const auto* numbers = original->numericValues(variable))
    {
      ASSERT_NE(reopened->numericValues(again), nullptr) << variable.name();
      EXPECT_EQ(*reopened->numericValues(again), *numbers) << variable.name();
    }
    else
    {
      ASSERT_NE(reopened->textValues(again), nullptr) << variable.name();
      EXPECT_EQ(*reopened->textValues(again), *original->textValues(variable)) << variable.name();
    }
  }
  for (unsigned long long id : original->caseIds())
  {
    const auto before = original->record(id).lock().auxFiles();
    const auto after = reopened->record(id).lock().auxFiles();
    ASSERT_EQ(after.size(), before.size()) << "case " << id;
    for (std::size_t i = 0; i < before.size(); ++i)
    {
      EXPECT_EQ(after[i].lock().filePath(), before[i].lock().filePath());
      EXPECT_EQ(after[i].lock().tags(), before[i].lock().tags());
    }
  }

  // What the user says of a variable is what the export writes.
  sayRole(window, "material", "Input");
  ASSERT_TRUE(window.exportCases(QString::fromStdString(exported), true, error))
    << error.toStdString();
  EXPECT_EQ(readRunTable(exported, {})->variable("material").lock().role(), Variable::Input);

  // The selected cases show the roles in their header, and export them.
  window.selection().setSelection({ 7, 18446744073709551615ull });
  auto* selected = window.view<explorer::SelectedCasesView>();
  EXPECT_TRUE(selected->shownText().startsWith(
    "case_id\tin: Depth [ft]\tin: Angle\tout: Rate [m/s]\tout: Cost\tin: material\n"))
    << selected->shownText().toStdString();
  const std::string selection = study.filePath("selection.csv");
  selected->exportSelection(selection);
  const auto selectedAgain = readRunTable(selection, {});
  EXPECT_EQ(selectedAgain->caseIds(),
            (std::vector<unsigned long long>{ 7, 18446744073709551615ull }))
    << testsupport::readFile(selection);
  EXPECT_EQ(selectedAgain->variable("Cost").lock().role(), Variable::Output);
}

} // namespace
