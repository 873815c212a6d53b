// The 3-D scatter plot without its widget: points in the unit box, labels on round numbers, and
// the point under the mouse through a projection.

#include "views/scatter3d/ScatterPlot3DModel.h"

#include "datamanagement/Project.h"
#include "datamanagement/ProjectBuilder.h"
#include "datapipeline/DataPipelineManager.h"

#include <gtest/gtest.h>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <limits>

using explorer::ScatterPlot3DModel;

TEST(ScatterPlot3DModel, PointsInTheBoxOnRoundAxes)
{
  using Range = std::pair<double, double>;
  EXPECT_EQ(ScatterPlot3DModel::niceRange({ 0, 7 }), (Range{ 0, 8 }));
  EXPECT_EQ(ScatterPlot3DModel::niceRange({ 0.0058, 0.991 }), (Range{ 0, 1 }));
  EXPECT_EQ(ScatterPlot3DModel::niceRange({ 0, 0 }), (Range{ -1, 1 }));
  const Range constant = ScatterPlot3DModel::niceRange({ 255, 255 });
  EXPECT_DOUBLE_EQ((constant.first + constant.second) / 2, 255);

  ProjectBuilder builder;
  builder.setCaseIds({ 1, 2, 3 });
  builder.addNumericVariable("u", { 0, 4, 8 });
  builder.addNumericVariable("v", { 1, std::numeric_limits<double>::quiet_NaN(), 3 });
  builder.addNumericVariable("w", { 5, 5, 5 });
  const auto project = builder.build();
  DataPipelineManager pipeline(project);
  pipeline.output()->Update();
  ScatterPlot3DModel model;
  model.reload(*pipeline.output()->GetOutput(),
               { project->variable("u"), project->variable("v"), project->variable("w") },
               {});
  const explorer::CaseIds& ids = model.caseIds();
  ASSERT_EQ(std::vector<unsigned long long>(ids.begin(), ids.end()),
            (std::vector<unsigned long long>{ 1, 3 }))
    << "case 2 has no v";
  EXPECT_FLOAT_EQ(model.positions()[1][0], 1.0f);
  EXPECT_FLOAT_EQ(model.positions()[0][2], 0.5f) << "a constant in the middle of the box";
  EXPECT_FALSE(model.coloured());
  EXPECT_EQ(model.labels(0), (std::vector<std::string>{ "0", "2", "4", "6", "8" }));
  EXPECT_EQ(model.labels(1), (std::vector<std::string>{ "", "1.5", "2", "2.5", "3" }))
    << "Y's first label, at the corner where X ends, left out";

  // A projection that maps the unit box's x and y onto a 100 x 100 view, depth from z.
  ScatterPlot3DModel::Projection flat{};
  flat.matrix[0][0] = 2;
  flat.matrix[0][3] = -1;
  flat.matrix[1][1] = 2;
  flat.matrix[1][3] = -1;
  flat.matrix[2][2] = 1;
  flat.matrix[3][3] = 1;
  flat.size[0] = 100;
  flat.size[1] = 100;
  // Case 3 lies at (1, 1) of the box: the top right corner.
  EXPECT_EQ(model.pointAt(flat, 98, 97), 1);
  EXPECT_EQ(model.pointAt(flat, 50, 50), -1);
  model.select({ 3, 2 });
  EXPECT_EQ(model.selected(), std::vector<int>{ 1 });
}

TEST(ScatterPlot3DModel, LabelsAlongAShortAxisNeverRunTogether)
{
  // Each range's labels: one at each round step, every other one left out until their
  // characters fit.
  const struct
  {
    double lowest;
    double highest;
    std::vector<std::string> labels;
  } cases[] = {
    { 0, 491, { "0", "", "200", "", "400", "" } },
    { 0, 0.99, { "0", "", "0.4", "", "0.8", "" } },
    { 21, 69, { "20", "", "40", "", "60", "" } },
    { 1, 9, { "0", "2", "4", "6", "8", "10" } },
    { 0, 4900, { "0", "", "2000", "", "4000", "" } },
    { -1e6, 1e6, { "-1e+06", "", "0", "", "1e+06" } },
    { 1e6, 1e7, { "0", "", "4e+06", "", "8e+06", "" } },
  };
  for (const auto& c : cases)
  {
    ProjectBuilder builder;
    builder.setCaseIds({ 1, 2 });
    builder.addNumericVariable("u", { c.lowest, c.highest });
    const auto project = builder.build();
    DataPipelineManager pipeline(project);
    pipeline.output()->Update();
    ScatterPlot3DModel model;
    model.reload(*pipeline.output()->GetOutput(),
                 { project->variable("u"), project->variable("u"), project->variable("u") },
                 {});
    EXPECT_EQ(model.labels(2), c.labels) << c.lowest << " to " << c.highest;
    // Y starts where X ends: its first label goes where X's last is shown.
    std::vector<std::string> y = c.labels;
    if (!c.labels.back().empty())
      y.front().clear();
    EXPECT_EQ(model.labels(1), y) << c.lowest << " to " << c.highest;
  }
}
