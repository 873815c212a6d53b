#include "VtkAxisGuard.h"

#include <vtkAxis.h>
#include <vtkChartXY.h>
#include <vtkDoubleArray.h>
#include <vtkObjectFactory.h>
#include <vtkStringArray.h>

#include <algorithm>
#include <cmath>

namespace explorer
{

namespace
{

class TickGuardedAxis : public vtkAxis
{
public:
  static TickGuardedAxis* New();
  vtkTypeMacro(TickGuardedAxis, vtkAxis);

  void RecalculateTickSpacing() override
  {
    const double low = GetUnscaledMinimum();
    const double high = GetUnscaledMaximum();
    const double span = std::abs(high - low);
    const double size = std::max(std::abs(low), std::abs(high));
    // Ticks step by at least a fiftieth of the range; beyond these bounds a step either does not
    // move a double of this size or the range's nice ends overflow.
    const bool steppable =
      std::isfinite(span) && size <= 1e300 && (span == 0.0 || span > size * 1e-12);
    if (steppable)
    {
      vtkAxis::RecalculateTickSpacing();
      return;
    }
    TickPositions->SetNumberOfTuples(0);
    TickLabels->SetNumberOfTuples(0);
  }
};

vtkStandardNewMacro(TickGuardedAxis);

} // namespace

vtkSmartPointer<vtkAxis> tickGuardedAxis()
{
  return vtkSmartPointer<TickGuardedAxis>::New();
}

void guardAxisTicks(vtkChartXY& chart)
{
  for (int position : { vtkAxis::LEFT, vtkAxis::BOTTOM, vtkAxis::RIGHT, vtkAxis::TOP })
  {
    const vtkSmartPointer<vtkAxis> old = chart.GetAxis(position);
    const vtkSmartPointer<vtkAxis> guarded = tickGuardedAxis();
    guarded->SetPosition(old->GetPosition());
    guarded->SetVisible(old->GetVisible());
    guarded->SetTitle(old->GetTitle());
    // The chart owns one reference of each of its axes (it deletes them when it goes): it is
    // given one of the new axis, and the one it held of the old axis is given up here, since
    // SetAxis only takes the old axis out of the scene.
    guarded->Register(nullptr);
    chart.SetAxis(position, guarded);
    if (old->GetReferenceCount() > 1)
      old->UnRegister(nullptr);
  }
}

} // namespace explorer
