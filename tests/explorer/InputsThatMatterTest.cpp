// The inputs that matter in a real window over the sample study: the figures follow the range
// filters and the selection, inputs are those the study or the user marks, and a click on an
// input plots the output against it in the scatter plot as one undo step.

#include "FilterEdits.h"
#include "MasterSelection.h"
#include "SampleWindow.h"
#include "VariableRoles.h"
#include "views/importance/ImportanceView.h"
#include "views/scatter/ScatterPlotView.h"

#include "analyzer_common/DeleteSignaler.h"
#include "datamanagement/Project.h"
#include "datapipeline/DataPipelineManager.h"
#include "properties/PropertyAbstract.h"

#include <algorithm>
#include <cmath>

using explorer::ExplorerWindow;
using explorer::ImportanceView;

namespace
{

class InputsThatMatter : public testsupport::SampleWindow
{
protected:
  static void SetUpTestSuite() { writeStudy(96); }

  void SetUp() override
  {
    openWith([](ExplorerWindow& w) { return w.view<ImportanceView>()->widget(); });
    importance = window->view<ImportanceView>();
  }

  static const explorer::InputImportance* find(const std::vector<explorer::InputImportance>& all,
                                               const std::string& name)
  {
    const auto found =
      std::find_if(all.begin(), all.end(), [&](const auto& entry) { return entry.name == name; });
    return found == all.end() ? nullptr : &*found;
  }

  ImportanceView* importance = nullptr;
};

} // namespace

TEST_F(InputsThatMatter, TheFiguresFollowTheFiltersTheSelectionAndTheRoles)
{
  const auto project = window->project();
  EXPECT_EQ(importance->output()->value(), project->variable("range"));
  const auto& all = importance->overShown();
  ASSERT_EQ(all.size(), project->variables().size() - 1) << "no roles: every other variable";
  EXPECT_EQ(find(all, "angle")->cases, find(all, "speed")->cases) << "inputs have no gaps";
  EXPECT_GT(find(all, "speed")->correlationRatio, find(all, "angle")->correlationRatio)
    << "launch speed drives the range more than the launch angle over this sweep";
  EXPECT_GT(find(all, "speed")->rankCorrelation, 0.5);

  // A range filter on speed leaves one speed: it explains nothing of what is shown.
  const std::size_t before = find(importance->overShown(), "speed")->cases;
  const DeleteSignaler owner;
  explorer::changeFilter(
    window->pipeline(), project->variable("speed"), { true, 20, 20, true }, owner);
  const auto* speed = find(importance->overShown(), "speed");
  ASSERT_NE(speed, nullptr);
  EXPECT_LT(speed->cases, before);
  EXPECT_DOUBLE_EQ(speed->correlationRatio, 0.0);
  EXPECT_TRUE(std::isnan(speed->rankCorrelation));

  // The selected cases weighed beside the shown ones.
  importance->compareSelection()->setValue(true);
  EXPECT_TRUE(importance->overSelected().empty());
  window->selection().setSelection({ 1000, 1001, 1002, 1003, 1004, 1005 });
  const auto& selected = importance->overSelected();
  ASSERT_FALSE(selected.empty());
  // The six are of speed 20, so all shown; those of a failed run have no range.
  std::size_t withRange = 0;
  const auto& ranges = *project->numericValues(project->variable("range").lock());
  for (std::size_t row = 0; row < 6; ++row)
    withRange += std::isnan(ranges[row]) ? 0 : 1;
  ASSERT_EQ(project->caseIds()[0], 1000u);
  EXPECT_EQ(find(selected, "angle")->cases, withRange);

  // Once inputs are marked, only they are weighed.
  window->roles().setRole("angle", Variable::Input);
  window->roles().setRole("mass", Variable::Input);
  std::vector<std::string> names;
  for (const auto& entry : importance->overShown())
    names.push_back(entry.name);
  std::sort(names.begin(), names.end());
  EXPECT_EQ(names, (std::vector<std::string>{ "angle", "mass" }));
}

TEST_F(InputsThatMatter, AClickOnAnInputPlotsTheOutputAgainstItAsOneStep)
{
  const auto project = window->project();
  auto* scatter = window->view<explorer::ScatterPlotView>();
  const auto xBefore = scatter->xVariable()->value();
  const auto& all = importance->overShown();
  ASSERT_GT(all.size(), 2u);
  const std::string input = all[1].name;
  QTest::mouseClick(importance->widget(), Qt::LeftButton, {}, importance->rowPoint(1));
  EXPECT_EQ(scatter->xVariable()->value(), project->variable(input));
  EXPECT_EQ(scatter->yVariable()->value(), project->variable("range"));
  UndoStack undo;
  ASSERT_EQ(undo.count(), 1);
  EXPECT_EQ(undo.text(0).toStdString(), "Plot range against " + input);
  undo.undo();
  EXPECT_EQ(scatter->xVariable()->value(), xBefore);
}
