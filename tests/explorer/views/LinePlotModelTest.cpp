// The line plot's model without its widget: response curves over a text X, the notes it says,
// the case order without X, and the rows of a selection.

#include "views/line/LinePlotModel.h"

#include "datamanagement/Project.h"
#include "datamanagement/ProjectBuilder.h"
#include "datapipeline/DataPipelineManager.h"

#include <gtest/gtest.h>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <cmath>
#include <limits>

using namespace explorer;

namespace
{

constexpr double missing = std::numeric_limits<double>::quiet_NaN();

struct Shown
{
  std::shared_ptr<const Project> project;
  std::unique_ptr<DataPipelineManager> pipeline;
  LinePlotModel model;

  explicit Shown(std::shared_ptr<const Project> built)
    : project(std::move(built))
    , pipeline(std::make_unique<DataPipelineManager>(project))
    , model(project, nullptr)
  {
  }

  void reload(const LineSettings& settings)
  {
    pipeline->output()->Update();
    model.reload(*pipeline->output()->GetOutput(), settings, nullptr, {});
  }
};

std::shared_ptr<const Project> study()
{
  ProjectBuilder builder;
  builder.setCaseIds({ 5, 6, 7, 8, 9 });
  builder.addTextVariable("material", { "wood", "steel", "wood", "lead", "steel" });
  builder.addNumericVariable("seed", { 1, 1, 2, 2, 3 }, Variable::Discrete);
  builder.addNumericVariable("range", { 1, 2, 3, missing, -4 });
  return builder.build();
}

} // namespace

TEST(LinePlotModel, ResponseCurvesOverATextXSayWhatTheyLeaveOut)
{
  Shown shown(study());
  LineSettings settings;
  settings.x = shown.project->variable("material");
  settings.y = shown.project->variable("range");
  shown.reload(settings);
  const auto& look = shown.model.look();
  EXPECT_EQ(look.x.categories, (std::vector<std::string>{ "lead", "steel", "wood" }));
  EXPECT_EQ(look.x.title, "material");
  EXPECT_FALSE(look.legend) << "one line, no legend";
  ASSERT_EQ(shown.model.curves().curves.size(), 1u);
  const Curve& line = shown.model.curves().curves.front();
  EXPECT_EQ(line.x, (std::vector<double>{ 1, 2 })) << "lead has no range";
  EXPECT_DOUBLE_EQ(line.y[0], -1.0) << "steel: mean of 2 and -4";
  EXPECT_DOUBLE_EQ(line.y[1], 2.0) << "wood: mean of 1 and 3";
  EXPECT_EQ(shown.model.notes(false),
            (std::vector<std::string>{ "1 case without a value, left out" }));

  // On a logarithmic Y, -4 is left out too, and said.
  settings.log.y = true;
  shown.reload(settings);
  const auto notes = shown.model.notes(true);
  ASSERT_EQ(notes.size(), 3u);
  EXPECT_EQ(notes[0], "1 curve, drawn as density");
  EXPECT_EQ(notes[2], "1 case at or below zero on a logarithmic axis, left out");
}

TEST(LinePlotModel, WithoutXTheCasesComeInOrderAndASelectionNamesItsRows)
{
  Shown shown(study());
  LineSettings settings;
  settings.y = shown.project->variable("range");
  settings.linesBy = { shown.project->variable("seed") };
  shown.reload(settings);
  EXPECT_EQ(shown.model.look().x.title, "case order");
  EXPECT_EQ(shown.model.look().legendTitle, "seed");
  ASSERT_EQ(shown.model.curves().curves.size(), 3u);
  EXPECT_EQ(shown.model.curves().curves[0].x, (std::vector<double>{ 1, 2 }));
  EXPECT_EQ(shown.model.curves().curves[2].label, "3");

  shown.model.select({ 6, 9, 1234 });
  EXPECT_EQ(shown.model.selectedCount(), 2u);
  EXPECT_EQ(shown.model.selectedRows(), (std::vector<char>{ 0, 1, 0, 0, 1 }));

  // Nothing numeric as Y: nothing to plot, and said so.
  settings.y = {};
  shown.reload(settings);
  EXPECT_TRUE(shown.model.curves().curves.empty());
  EXPECT_EQ(shown.model.notes(false).front(), "Nothing to plot");
}
