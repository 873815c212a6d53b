// Axes over ranges VTK 9.1 cannot step across (near the largest double, or too narrow for their
// size) show no ticks instead of looping for ever; ordinary ranges keep theirs.

#include "VtkAxisGuard.h"

#include <gtest/gtest.h>
#include <vtkAxis.h>
#include <vtkContextScene.h>
#include <vtkDoubleArray.h>
#include <vtkNew.h>

#include <vector>

TEST(AxisGuard, TicksOnlyWhereTheyCanBeStepped)
{
  struct Range
  {
    double low;
    double high;
    bool log;
    bool ticks;
  };
  // Without the guard the first two loop for ever inside vtkAxis::RecalculateTickSpacing.
  const std::vector<Range> ranges{
    { 1e308, 1.7976931348623157e308, false, false },
    { -1.7976931348623157e308, -1e308, false, false },
    { 1e17, 1e17 + 1e2, false, false },
    { 0, 10, false, true },
    { -5, 1e300, false, true },
    { 1e-3, 1e6, true, true },
    { 1e20, 1e20, false, true }, // equal ends are widened by VTK itself
  };
  for (const Range& range : ranges)
  {
    const vtkSmartPointer<vtkAxis> axis = explorer::tickGuardedAxis();
    vtkNew<vtkContextScene> scene;
    scene->AddItem(axis);
    axis->SetPoint1(0, 0);
    axis->SetPoint2(500, 0);
    axis->SetPosition(vtkAxis::BOTTOM);
    axis->SetBehavior(vtkAxis::FIXED);
    axis->SetLogScale(range.log);
    axis->SetUnscaledRange(range.low, range.high);
    axis->Update();
    EXPECT_EQ(axis->GetTickPositions()->GetNumberOfTuples() > 0, range.ticks)
      << range.low << " to " << range.high;
  }
}
