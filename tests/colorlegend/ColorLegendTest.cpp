#include "ColorLegendFixture.h"

#include <vtkScalarBarActor.h>

using ColorLegendTest = ColorLegendFixture;

TEST_F(ColorLegendTest, TheTableFollowsTheVariableTheCustomRangeAndTheLabelCount)
{
  const struct
  {
    const char* change;
    std::function<void()> act;
    std::pair<double, double> table;
    int labels;
  } steps[] = {
    { "label count 3", [&] { legend->numLabels()->setValue(3); }, { 0, 100 }, 3 },
    { "a custom range is ignored while Auto",
      [&] {
        legend->range()->setValue({ -1, 1 });
      },
      { 0, 100 },
      3 },
    { "Custom", [&] { legend->rangeType()->setValue(ColorLegend::Custom); }, { -1, 1 }, 3 },
    { "a custom range of 0.05 to 0.95 in 5 labels",
      [&]
      {
        legend->numLabels()->setValue(5);
        legend->range()->setValue({ 0.05, 0.95 });
      },
      { 0, 1 },
      6 },
    { "another colour variable resets to Auto with 15 labels",
      [&] { colorVariable->setValue(project->variable("speed")); },
      { 0, 1 },
      11 },
  };
  for (const auto& step : steps)
  {
    step.act();
    EXPECT_NEAR(tableRange().first, step.table.first, 1e-12) << step.change;
    EXPECT_NEAR(tableRange().second, step.table.second, 1e-12) << step.change;
    EXPECT_EQ(labels(), step.labels) << step.change;
  }
  EXPECT_EQ(legend->rangeType()->value(), ColorLegend::Auto);
  EXPECT_EQ(legend->range()->value(), (ValueRange_s<double>{ 0, 1 }));
  EXPECT_STREQ(widget->GetScalarBarActor()->GetTitle(), "speed");
}

TEST_F(ColorLegendTest, AnUndoThatRestoresTheVariableKeepsTheRestoredSettings)
{
  legend->numLabels()->setValue(7);
  legend->rangeType()->setValue(ColorLegend::Custom);
  colorVariable->setValue(project->variable("speed"));
  EXPECT_EQ(legend->numLabels()->value(), 15);
  EXPECT_EQ(legend->rangeType()->value(), ColorLegend::Auto);

  stack.undo();
  EXPECT_EQ(colorVariable->value(), project->variable("range"));
  EXPECT_EQ(legend->numLabels()->value(), 7) << "the undo must not reset the restored settings";
  EXPECT_EQ(legend->rangeType()->value(), ColorLegend::Custom);
  EXPECT_STREQ(widget->GetScalarBarActor()->GetTitle(), "range");
}

TEST_F(ColorLegendTest, RefusedSettingsLeaveTheLegendAsItWas)
{
  EXPECT_THROW(legend->numLabels()->setValue(2), plexa::InvalidPropertyValueException);
  EXPECT_THROW(legend->numLabels()->setValue(41), plexa::InvalidPropertyValueException);
  try
  {
    legend->range()->setValue({ 2, 1 });
    ADD_FAILURE() << "a reversed range was accepted";
  }
  catch (const plexa::InvalidPropertyValueException& e)
  {
    EXPECT_STREQ(e.what(), "Minimum cannot be greater than maximum.");
  }
  EXPECT_EQ(legend->numLabels()->value(), 15);
  EXPECT_EQ(labels(), 11);
}

TEST_F(ColorLegendTest, DrawnExactlyWhileTheViewIsVisibleAndShowIsOn)
{
  const struct
  {
    bool view, show, visible;
  } cases[] = {
    { true, true, true }, { false, true, false }, { true, false, false }, { true, true, true }
  };
  for (const auto& c : cases)
  {
    viewVisible->setValue(c.view);
    legend->show()->setValue(c.show);
    EXPECT_EQ(legend->visible()->value(), c.visible);
    EXPECT_EQ(widget->GetEnabled() != 0, c.visible);
  }
}

TEST_F(ColorLegendTest, SuspendedLegendIgnoresChangesAndANullVariableKeepsTheTitle)
{
  legend->suspend();
  legend->numLabels()->setValue(3);
  EXPECT_EQ(labels(), 11);
  legend->resume();
  EXPECT_EQ(labels(), 11) << "resume does not catch up";
  pipeline->setRangeFilter(project->variable("range"), 0, 50); // the pipeline's change
  EXPECT_EQ(labels(), 3);

  colorVariable->setValue(WeakPtr<Variable>());
  EXPECT_STREQ(widget->GetScalarBarActor()->GetTitle(), "range");
  EXPECT_EQ(tableRange(), std::make_pair(0.0, 0.0));
  EXPECT_EQ(labels(), 1);
}
