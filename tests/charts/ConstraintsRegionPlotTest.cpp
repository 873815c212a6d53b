#include "charts/ConstraintsRegionPlot.h"
#include "charts/ChartXY.h"
#include "datamanagement/Project.h"
#include "datamanagement/ProjectBuilder.h"
#include "datapipeline/DataPipelineManager.h"
#include "properties/Property.h"
#include "support/RenderedView.h"

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>
#include <vtkAxis.h>
#include <vtkContextScene.h>
#include <vtkContextView.h>
#include <vtkPlot.h>
#include <vtkPlotPoints.h>
#include <vtkTable.h>

#include <array>

namespace
{

using Rgb = std::array<int, 3>;
const Rgb tint = { 247, 232, 222 };

std::shared_ptr<const Project> study()
{
  ProjectBuilder builder;
  std::vector<unsigned long long> ids;
  std::vector<double> x;
  std::vector<double> y;
  for (int i = 0; i <= 10; ++i)
  {
    ids.push_back(static_cast<unsigned long long>(i));
    x.push_back(i);
    y.push_back(0.9);
  }
  builder.setCaseIds(ids);
  builder.addNumericVariable("x", x);
  builder.addNumericVariable("y", y);
  return builder.build();
}

// A scatter plot of the study with the constraints region behind it, in a 400 x 300 view.
class ConstraintsRegion : public ::testing::Test
{
protected:
  ConstraintsRegion()
    : project(study())
    , pipeline(project)
    , rendered(400, 300)
  {
    xVariable->setValue(project->variable("x"));
    yVariable->setValue(project->variable("y"));
    rendered.view().GetScene()->AddItem(chart);
  }

  void TearDown() override
  {
    if (HasFailure())
      ADD_FAILURE() << "rendered image: "
                    << rendered.save(
                         ::testing::UnitTest::GetInstance()->current_test_info()->name());
  }

  // Adds the region (first, so that it is behind) and the points; x from 0 to 10 and y from 0
  // to 1 unless `fixedAxes` is false.
  void buildChart(bool withRegion, bool fixedAxes)
  {
    points = vtkSmartPointer<vtkPlotPoints>::New();
    points->SetInputData(pipeline.cases(), "x", "y");
    if (withRegion)
    {
      region = ConstraintsRegionPlot::New(pipeline, xVariable, yVariable, points);
      chart->AddPlot(region);
    }
    chart->AddPlot(points);
    if (fixedAxes)
    {
      chart->GetAxis(vtkAxis::BOTTOM)->SetBehavior(vtkAxis::FIXED);
      chart->GetAxis(vtkAxis::BOTTOM)->SetRange(0, 10);
      chart->GetAxis(vtkAxis::LEFT)->SetBehavior(vtkAxis::FIXED);
      chart->GetAxis(vtkAxis::LEFT)->SetRange(0, 1);
    }
    rendered.render();
  }

  // The colour at a point given in data units.
  Rgb colourAt(double x, double y)
  {
    const auto pixel = [](vtkAxis* axis, int component, double value)
    {
      const float start = axis->GetPoint1()[component];
      const float end = axis->GetPoint2()[component];
      return static_cast<int>(start + (value - axis->GetMinimum()) /
                                        (axis->GetMaximum() - axis->GetMinimum()) * (end - start));
    };
    return rendered.pixel(pixel(chart->GetAxis(vtkAxis::BOTTOM), 0, x),
                          pixel(chart->GetAxis(vtkAxis::LEFT), 1, y));
  }

  std::shared_ptr<const Project> project;
  DataPipelineManager pipeline;
  boost::shared_ptr<plexa::Property<WeakPtr<Variable>>> xVariable =
    boost::make_shared<plexa::Property<WeakPtr<Variable>>>();
  boost::shared_ptr<plexa::Property<WeakPtr<Variable>>> yVariable =
    boost::make_shared<plexa::Property<WeakPtr<Variable>>>();
  testsupport::RenderedView rendered;
  vtkNew<ChartXY> chart;
  vtkSmartPointer<vtkPlotPoints> points;
  vtkSmartPointer<ConstraintsRegionPlot> region;
};

} // namespace

TEST_F(ConstraintsRegion, BandsOutsideAnActiveRangeAreTintedAndTheRegionInsideIsNot)
{
  pipeline.setRangeFilter(project->variable("x"), 2, 5);
  buildChart(true, true);
  EXPECT_EQ(colourAt(1, 0.5), tint) << "left of the x range";
  EXPECT_EQ(colourAt(7.5, 0.2), tint) << "right of the x range";
  EXPECT_NE(colourAt(3.5, 0.5), tint) << "inside the range";

  pipeline.setRangeFilter(project->variable("y"), 0.3, 2); // wider than the view at the top
  rendered.render();
  EXPECT_EQ(colourAt(3.5, 0.1), tint) << "below the y range";
  EXPECT_NE(colourAt(3.5, 0.5), tint);
  EXPECT_NE(colourAt(3.5, 0.98), tint) << "no band where the range reaches past the view";
}

TEST_F(ConstraintsRegion, AFilterNotInEffectPaintsNothing)
{
  pipeline.setRangeFilter(project->variable("x"), 2, 5);
  pipeline.setFilterEnabled(project->variable("x"), false);
  buildChart(true, true);
  EXPECT_NE(colourAt(1, 0.5), tint);
  EXPECT_NE(colourAt(7.5, 0.5), tint);

  pipeline.setFilterEnabled(project->variable("x"), true);
  rendered.render();
  EXPECT_EQ(colourAt(1, 0.5), tint) << "the pipeline's change signal is followed";
  xVariable->setValue(project->variable("y"));
  rendered.render();
  EXPECT_NE(colourAt(1, 0.5), tint) << "a filter on another variable than x paints nothing";
}

TEST_F(ConstraintsRegion, TheAutomaticAxisRangesAreTheSameWithAndWithoutThePlot)
{
  pipeline.setRangeFilter(project->variable("x"), 2, 5);
  buildChart(false, false);
  const double without[4] = { chart->GetAxis(vtkAxis::BOTTOM)->GetMinimum(),
                              chart->GetAxis(vtkAxis::BOTTOM)->GetMaximum(),
                              chart->GetAxis(vtkAxis::LEFT)->GetMinimum(),
                              chart->GetAxis(vtkAxis::LEFT)->GetMaximum() };

  testsupport::RenderedView other(400, 300);
  vtkNew<ChartXY> withRegion;
  other.view().GetScene()->AddItem(withRegion);
  auto otherPoints = vtkSmartPointer<vtkPlotPoints>::New();
  otherPoints->SetInputData(pipeline.cases(), "x", "y");
  withRegion->AddPlot(ConstraintsRegionPlot::New(pipeline, xVariable, yVariable, otherPoints));
  withRegion->AddPlot(otherPoints);
  other.render();
  EXPECT_EQ(withRegion->GetAxis(vtkAxis::BOTTOM)->GetMinimum(), without[0]);
  EXPECT_EQ(withRegion->GetAxis(vtkAxis::BOTTOM)->GetMaximum(), without[1]);
  EXPECT_EQ(withRegion->GetAxis(vtkAxis::LEFT)->GetMinimum(), without[2]);
  EXPECT_EQ(withRegion->GetAxis(vtkAxis::LEFT)->GetMaximum(), without[3]);

  double bounds[4];
  ConstraintsRegionPlot::New(pipeline, xVariable, yVariable, otherPoints)->GetBounds(bounds);
  EXPECT_GT(bounds[0], bounds[1]);
  EXPECT_GT(bounds[2], bounds[3]);
}
