#include "analyzer_common/UndoStack.h"
#include "charts/AxisDetailsCharts.h"
#include "charts/ChartXY.h"
#include "datamanagement/Project.h"
#include "datamanagement/ProjectBuilder.h"
#include "properties/Property.h"
#include "support/RenderedView.h"

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>
#include <vtkAxis.h>
#include <vtkContextScene.h>
#include <vtkContextView.h>
#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkPlot.h>
#include <vtkTable.h>

#include <vector>

namespace
{

// The bottom axis of a chart in a rendered view, with undoable settings named "X".
class AxisDetails : public ::testing::Test
{
protected:
  AxisDetails()
    : rendered(400, 300)
    , axis(chart->GetAxis(vtkAxis::BOTTOM))
  {
    rendered.view().GetScene()->AddItem(chart);
    // A plot makes the chart show its axes; hidden axes compute no ticks.
    auto table = vtkSmartPointer<vtkTable>::New();
    for (const char* name : { "x", "y" })
    {
      auto column = vtkSmartPointer<vtkDoubleArray>::New();
      column->SetName(name);
      column->InsertNextValue(1);
      column->InsertNextValue(2);
      table->AddColumn(column);
    }
    chart->AddPlot(vtkChart::POINTS)->SetInputData(table, 0, 1);
  }

  void SetUp() override
  {
    UndoStack().clear();
    rendered.render();
    axis->SetBehavior(vtkAxis::FIXED);
    axis->SetRange(0, 10);
    details = std::make_unique<AxisDetailsCharts>("X", variable, axis);
  }
  void TearDown() override { UndoStack().clear(); }

  std::pair<double, double> range() const { return { axis->GetMinimum(), axis->GetMaximum() }; }

  // The tick positions the chart draws.
  std::vector<double> ticks()
  {
    rendered.render();
    std::vector<double> positions;
    vtkDoubleArray* array = axis->GetTickPositions();
    for (vtkIdType i = 0; array && i < array->GetNumberOfTuples(); ++i)
      positions.push_back(array->GetValue(i));
    return positions;
  }

  void useCustomSpacing(double spacing)
  {
    details->useCustomGridSpacing()->setValue(true);
    details->gridSpacing()->setValue(spacing);
  }

  testsupport::RenderedView rendered;
  vtkNew<ChartXY> chart;
  vtkAxis* axis;
  plexa::Property<WeakPtr<Variable>> variable;
  std::unique_ptr<AxisDetailsCharts> details;
  UndoStack stack;
};

} // namespace

TEST_F(AxisDetails, MinimumAndMaximumNeverCrossAndKeepTheSpan)
{
  const struct
  {
    bool setMin;
    double value;
    std::pair<double, double> expected;
  } cases[] = {
    { true, 12, { 12, 22 } }, { false, -3, { -13, -3 } },
    { true, 10, { 10, 20 } }, // equal counts as crossing
    { true, 4, { 4, 10 } },   { false, 0.5, { 0, 0.5 } },
    { false, 0, { -10, 0 } },
  };
  for (const auto& c : cases)
  {
    axis->SetRange(0, 10);
    (c.setMin ? details->min() : details->max())->setValue(c.value);
    EXPECT_EQ(range(), c.expected) << (c.setMin ? "min " : "max ") << c.value;
    EXPECT_EQ(details->min()->value(), c.expected.first);
    EXPECT_EQ(details->max()->value(), c.expected.second);
  }
}

TEST_F(AxisDetails, OneUndoRestoresBothEnds)
{
  details->min()->setValue(12);
  ASSERT_EQ(range(), std::make_pair(12.0, 22.0));
  ASSERT_EQ(stack.count(), 1);
  EXPECT_EQ(stack.text(0), "Change X Min");
  stack.undo();
  EXPECT_EQ(range(), std::make_pair(0.0, 10.0));
  stack.redo();
  EXPECT_EQ(range(), std::make_pair(12.0, 22.0));
}

TEST_F(AxisDetails, ChangesOnTheAxisReachTheSettings)
{
  int changes = 0;
  std::vector<double> heard;
  boost::signals2::scoped_connection any =
    details->connectSignalAxisDetailsChanged([&] { ++changes; });
  boost::signals2::scoped_connection minimum =
    details->min()->connectSignalValueChanged([&](const double& v) { heard.push_back(v); });
  axis->SetMinimum(-4); // a zoom or pan on the VTK side
  EXPECT_EQ(heard, std::vector<double>{ -4 });
  EXPECT_GE(changes, 1);
  EXPECT_EQ(stack.count(), 0) << "changes made on the axis are not recorded";
}

TEST_F(AxisDetails, CustomSpacingMustLieBetweenAFiftiethAndTenTimesTheRange)
{
  details->useCustomGridSpacing()->setValue(true);
  EXPECT_EQ(axis->GetBehavior(), vtkAxis::CUSTOM);
  for (double accepted : { 0.2, 100.0, 3.0 })
  {
    EXPECT_NO_THROW(details->gridSpacing()->setValue(accepted)) << accepted;
    EXPECT_EQ(details->gridSpacing()->value(), accepted);
  }
  for (double refused : { 0.19, 100.1 })
  {
    try
    {
      details->gridSpacing()->setValue(refused);
      ADD_FAILURE() << refused << " was accepted";
    }
    catch (const plexa::InvalidPropertyValueException& e)
    {
      EXPECT_STREQ(e.what(), "Invalid grid spacing. Allowed value is between 0.2 and 100.");
    }
    EXPECT_EQ(details->gridSpacing()->value(), 3.0);
  }
}

TEST_F(AxisDetails, CustomTicksStartAtTheTruncatedMultipleAndFollowTheRange)
{
  axis->SetRange(2.5, 7.5);
  useCustomSpacing(1);
  EXPECT_EQ(ticks(), (std::vector<double>{ 2, 3, 4, 5, 6, 7 }));
  details->max()->setValue(9.5);
  EXPECT_EQ(ticks(), (std::vector<double>{ 2, 3, 4, 5, 6, 7, 8, 9 }));
  details->min()->setValue(-2.5);
  EXPECT_EQ(ticks(), (std::vector<double>{ -2, -1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10 }))
    << "a negative minimum starts above it; the count is the range over the spacing";
}

TEST_F(AxisDetails, ARangeThatInvalidatesTheSpacingSwitchesCustomSpacingOff)
{
  useCustomSpacing(2);
  {
    UndoStack::SuspendUndoRecording replaying;
    details->max()->setValue(200);
  }
  EXPECT_TRUE(details->useCustomGridSpacing()->value()) << "not while history is replayed";
  details->max()->setValue(10);
  int switchedOff = 0;
  boost::signals2::scoped_connection connection =
    details->useCustomGridSpacing()->connectSignalValueChanged([&](const bool& custom)
                                                               { switchedOff += custom ? 0 : 1; });
  details->max()->setValue(200); // 2 is not within 4 and 2000
  EXPECT_FALSE(details->useCustomGridSpacing()->value());
  EXPECT_GE(switchedOff, 1);
  EXPECT_EQ(axis->GetBehavior(), vtkAxis::FIXED);
  const auto automatic = ticks();
  ASSERT_GE(automatic.size(), 2u);
  EXPECT_GT(automatic[1] - automatic[0], 2.0) << "the tick spacing was recalculated";
}

TEST_F(AxisDetails, ANewVariableSwitchesCustomSpacingOff)
{
  ProjectBuilder builder;
  builder.setCaseIds({ 1, 2 });
  builder.addNumericVariable("speed", { 1, 2 });
  const auto project = builder.build();

  useCustomSpacing(2);
  variable.setValue(WeakPtr<Variable>()); // unchanged: nothing happens
  EXPECT_TRUE(details->useCustomGridSpacing()->value());
  {
    UndoStack::SuspendUndoRecording replaying;
    variable.setValue(project->variable("speed"));
  }
  EXPECT_TRUE(details->useCustomGridSpacing()->value()) << "not while history is replayed";
  variable.setValue(WeakPtr<Variable>());
  EXPECT_FALSE(details->useCustomGridSpacing()->value());
  EXPECT_EQ(axis->GetBehavior(), vtkAxis::FIXED);
}

TEST_F(AxisDetails, SpacingWhileCustomSpacingIsOffIsTheNiceAutomaticDistance)
{
  axis->SetRange(0, 10);
  const auto automatic = ticks();
  ASSERT_GE(automatic.size(), 2u);
  EXPECT_DOUBLE_EQ(details->gridSpacing()->value(), automatic[1] - automatic[0]);
  details->gridSpacing()->setValue(3.7); // dropped: custom spacing is off
  EXPECT_EQ(ticks(), automatic);
  EXPECT_EQ(axis->GetBehavior(), vtkAxis::FIXED);
  EXPECT_EQ(details->boundsMin(), nullptr);
  EXPECT_EQ(details->boundsMax(), nullptr);
}
