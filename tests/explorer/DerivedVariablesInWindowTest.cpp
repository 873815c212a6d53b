// Derived variables in a real window over the sample study: made, changed and removed as undo
// steps that keep the history made before them, the selection kept, settings that follow a
// renamed variable, and settings files that carry them (or are refused whole).

#include "MasterSelection.h"
#include "SampleWindow.h"
#include "views/line/LinePlotView.h"
#include "views/scatter/ScatterPlotView.h"

#include "datamanagement/Project.h"
#include "datamanagement/SeriesReader.h"
#include "properties/PropertyAbstract.h"

#include <QUndoStack>

#include <algorithm>
#include <cmath>

using explorer::DerivedVariable;
using explorer::DerivedVariables;
using explorer::ExplorerWindow;
using explorer::ScatterPlotView;

namespace
{

class DerivedVariablesInWindow : public testsupport::SampleWindow
{
protected:
  static void SetUpTestSuite() { writeStudy(96); }

  void SetUp() override
  {
    openWith([](ExplorerWindow& w) { return w.view<ScatterPlotView>()->widget(); });
  }

  ScatterPlotView& scatter() const { return *window->view<ScatterPlotView>(); }

  // The scatter plot's axes and the derived variables, as one text to compare.
  std::string shown() const
  {
    std::string text = scatter().xVariable()->value().lock().name() + " / " +
                       scatter().yVariable()->value().lock().name() + " |";
    for (const auto& variable : window->derivedVariables())
      text += " " + variable.name + "=" + variable.expression;
    return text;
  }

  void plot(const char* axis, const std::string& name) const
  {
    const auto variable = window->project()->variable(name);
    ASSERT_FALSE(variable.lock().isNull()) << name;
    (std::string(axis) == "x" ? scatter().xVariable() : scatter().yVariable())->setValue(variable);
  }

  std::string saved(const std::string& name) const
  {
    std::string path = files.filePath(name + ".xml");
    QString error;
    EXPECT_TRUE(window->saveSettings(QString::fromStdString(path), error)) << error.toStdString();
    return path;
  }

  testsupport::TemporaryFolder files;
};

} // namespace

TEST_F(DerivedVariablesInWindow, MadeChangedAndRemovedAsUndoStepsKeepingTheHistoryBefore)
{
  const std::string start = shown();
  const std::size_t variables = window->project()->variables().size();
  window->selection().setSelection({ 1003, 1010 });
  plot("x", "speed");

  QString error;
  ASSERT_TRUE(window->addDerivedVariable({ "per speed", "range / speed ^ 2" }, error))
    << error.toStdString();
  const auto project = window->project();
  ASSERT_EQ(project->variables().size(), variables + 1);
  const auto& range = *project->numericValues(project->variable("range").lock());
  const auto& speed = *project->numericValues(project->variable("speed").lock());
  const auto& perSpeed = *project->numericValues(project->variable("per speed").lock());
  for (std::size_t row = 0; row < range.size(); ++row)
  {
    if (std::isnan(range[row]))
      EXPECT_TRUE(std::isnan(perSpeed[row])) << row;
    else
      EXPECT_DOUBLE_EQ(perSpeed[row], range[row] / (speed[row] * speed[row])) << row;
  }
  EXPECT_EQ(window->selection().getSelections(), (std::set<unsigned long long>{ 1003, 1010 }));
  EXPECT_EQ(scatter().xVariable()->value().lock().name(), "speed") << "the settings are kept";

  plot("y", "per speed");
  ASSERT_TRUE(window->editDerivedVariable("per speed", { "ratio", "range / speed" }, error))
    << error.toStdString();
  EXPECT_EQ(scatter().yVariable()->value().lock().name(), "ratio") << "the plot follows the name";
  EXPECT_FALSE(window->removeDerivedVariable("ratio", error));
  EXPECT_EQ(error.toStdString(),
            "\"ratio\" is still used by Scatter plot; choose another variable there first");
  plot("y", "range");
  ASSERT_TRUE(window->removeDerivedVariable("ratio", error)) << error.toStdString();
  EXPECT_EQ(window->project()->variables().size(), variables);

  // Refused changes are no steps and change nothing.
  EXPECT_FALSE(window->addDerivedVariable({ "bad", "range ^" }, error));
  EXPECT_EQ(error.toStdString(), "bad: a value is expected after '^' (column 7)");
  EXPECT_FALSE(window->removeDerivedVariable("nothing", error));

  // Each state of the history, newest first, and back.
  const std::vector<std::string> states{
    "speed / range |",
    "speed / range | ratio=range / speed",
    "speed / ratio | ratio=range / speed",
    "speed / per speed | per speed=range / speed ^ 2",
    "speed / range | per speed=range / speed ^ 2",
    "speed / range |",
    start,
  };
  ASSERT_EQ(UndoStack().count(), 6);
  EXPECT_EQ(UndoStack().text(1).toStdString(), "New Derived Variable per speed");
  EXPECT_EQ(UndoStack().text(3).toStdString(), "Edit Derived Variable per speed");
  EXPECT_EQ(UndoStack().text(5).toStdString(), "Remove Derived Variable ratio");
  for (std::size_t step = 0; step < states.size(); ++step)
  {
    EXPECT_EQ(shown(), states[step]) << "after undoing " << step << " steps";
    if (step + 1 < states.size())
      UndoStack().qUndoStack().undo();
  }
  for (std::size_t step = states.size(); step-- > 0;)
  {
    EXPECT_EQ(shown(), states[step]) << "redone up to " << step << " steps from the end";
    if (step > 0)
      UndoStack().qUndoStack().redo();
  }
  EXPECT_EQ(window->selection().getSelections(), (std::set<unsigned long long>{ 1003, 1010 }));
}

TEST_F(DerivedVariablesInWindow, SettingsFilesCarryThemOrAreRefusedWhole)
{
  QString error;
  ASSERT_TRUE(window->addDerivedVariable({ "per speed", "range / speed ^ 2" }, error));
  plot("y", "per speed");
  const std::string withDerived = saved("derived");

  // A window on the same study takes them from the file, as one step.
  openWith([](ExplorerWindow& w) { return w.view<ScatterPlotView>()->widget(); });
  const std::string start = shown();
  ASSERT_TRUE(window->loadSettings(QString::fromStdString(withDerived), error))
    << error.toStdString();
  EXPECT_EQ(shown(), "angle / per speed | per speed=range / speed ^ 2");
  EXPECT_EQ(UndoStack().count(), 1);
  UndoStack().qUndoStack().undo();
  EXPECT_EQ(shown(), start);
  UndoStack().qUndoStack().redo();
  EXPECT_EQ(shown(), "angle / per speed | per speed=range / speed ^ 2");

  // Spoilt files change nothing.
  int spoiltFiles = 0;
  const auto spoilt = [&](const std::string& from, const std::string& to)
  {
    std::string text = testsupport::readFile(withDerived);
    text.replace(text.find(from), from.size(), to);
    return QString::fromStdString(
      files.write("spoilt" + std::to_string(++spoiltFiles) + ".xml", text));
  };
  openWith([](ExplorerWindow& w) { return w.view<ScatterPlotView>()->widget(); });
  const std::vector<std::pair<QString, std::string>> refused{
    { spoilt("range / speed ^ 2", "range / speed ^"),
      "derived variable per speed: a value is expected after '^' (column 15)" },
    { spoilt("<YVariable>per speed<", "<YVariable>per sped<"),
      "the settings name variables this study does not have: \"per sped\"" },
    { spoilt("name=\"per speed\"", "name=\"\""), "a derived variable has no name" },
  };
  for (const auto& [path, message] : refused)
  {
    EXPECT_FALSE(window->loadSettings(path, error)) << message;
    EXPECT_NE(error.toStdString().find(message), std::string::npos) << error.toStdString();
    EXPECT_EQ(shown(), start) << message;
    EXPECT_EQ(UndoStack().count(), 0) << message;
  }
}

TEST_F(DerivedVariablesInWindow, FiguresOfEachRunsSeriesAreVariablesOfTheCase)
{
  auto* tabs = window->findChild<QTabWidget*>("viewTabs");
  tabs->setCurrentWidget(window->view<explorer::LinePlotView>()->widget());
  QString error;
  ASSERT_TRUE(window->addDerivedVariable(
    { "top speed", "series_max(`series:flight`, speed) - series_final(`series:flight`, speed)" },
    error))
    << error.toStdString();
  const auto project = window->project();
  const auto& values = *project->numericValues(project->variable("top speed").lock());
  const auto records = project->records();
  int checked = 0;
  for (std::size_t row = 0; row < records.size(); ++row)
  {
    for (const auto& handle : records[row].lock().auxFiles())
    {
      const AuxFile file = handle.lock();
      if (!file.hasTag("series:flight"))
        continue;
      const SeriesTable table = readSeriesTable(file.filePath());
      const auto& speed = *table.column("speed");
      EXPECT_DOUBLE_EQ(values[row], *std::max_element(speed.begin(), speed.end()) - speed.back())
        << file.filePath();
      ++checked;
    }
  }
  EXPECT_GT(checked, 0);
  EXPECT_EQ(window->findChild<QTabWidget*>("viewTabs")->currentWidget(),
            window->view<explorer::LinePlotView>()->widget())
    << "the views made again keep the tab brought forward";
  EXPECT_FALSE(window->addDerivedVariable({ "bad", "series_max(`series:flight`, spd)" }, error));
  EXPECT_EQ(error.toStdString(), "bad: no series tagged \"series:flight\" has the column \"spd\"");
}

TEST_F(DerivedVariablesInWindow, AStudyReplacedIsLetGoWhileItsStepsStayInTheHistory)
{
  // A loaded settings file is a step whose undo knew the study it was taken on; a study given up
  // for one with a new variable must not live on in it.
  const std::string start = shown();
  const std::string settings = saved("before");
  QString error;
  ASSERT_TRUE(window->loadSettings(QString::fromStdString(settings), error)) << error.toStdString();
  plot("x", "speed");
  const std::weak_ptr<const Project> first = window->project();
  ASSERT_TRUE(window->addDerivedVariable({ "twice", "range * 2" }, error)) << error.toStdString();
  const std::weak_ptr<const Project> second = window->project();
  ASSERT_TRUE(window->removeDerivedVariable("twice", error)) << error.toStdString();
  QCoreApplication::processEvents();
  EXPECT_TRUE(first.expired());
  EXPECT_TRUE(second.expired());
  ASSERT_EQ(UndoStack().count(), 4);

  for (int step = 0; step < 4; ++step)
    UndoStack().qUndoStack().undo();
  EXPECT_EQ(shown(), start) << "the first steps still undo";
}
