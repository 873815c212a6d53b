#include "charts/vtkChartUtils.h"

#include "dataviews/DataViewInterface.h"

#include <vtkAbstractArray.h>
#include <vtkAxis.h>
#include <vtkChart.h>
#include <vtkIdTypeArray.h>
#include <vtkPlot.h>
#include <vtkSmartPointer.h>
#include <vtkVariant.h>

namespace
{

// Restores the behaviours of the bottom and left axes when it goes, whatever happens between.
class AxisBehaviourGuard
{
public:
  explicit AxisBehaviourGuard(vtkChart& chart)
    : chart(chart)
    , bottom(chart.GetAxis(vtkAxis::BOTTOM)->GetBehavior())
    , left(chart.GetAxis(vtkAxis::LEFT)->GetBehavior())
  {
  }
  ~AxisBehaviourGuard()
  {
    chart.GetAxis(vtkAxis::BOTTOM)->SetBehavior(bottom);
    chart.GetAxis(vtkAxis::LEFT)->SetBehavior(left);
  }
  AxisBehaviourGuard(const AxisBehaviourGuard&) = delete;
  AxisBehaviourGuard& operator=(const AxisBehaviourGuard&) = delete;

private:
  vtkChart& chart;
  int bottom;
  int left;
};

} // namespace

namespace vtkChartUtils
{

void fitData(vtkChart& chart, DataViewInterface& view)
{
  AxisBehaviourGuard guard(chart);
  chart.GetAxis(vtkAxis::BOTTOM)->SetBehavior(vtkAxis::AUTO);
  chart.GetAxis(vtkAxis::LEFT)->SetBehavior(vtkAxis::AUTO);
  chart.RecalculateBounds();
  view.refresh();
}

void resetAxisRange(vtkChart& chart, vtkAxis& axis, DataViewInterface& view)
{
  AxisBehaviourGuard guard(chart);
  chart.GetAxis(vtkAxis::BOTTOM)->SetBehavior(vtkAxis::CUSTOM);
  chart.GetAxis(vtkAxis::LEFT)->SetBehavior(vtkAxis::CUSTOM);
  axis.SetBehavior(vtkAxis::AUTO);
  chart.RecalculateBounds();
  view.refresh();
}

bool caseIDAtPoint(vtkPlot& plot,
                   vtkAbstractArray& idArray,
                   const vtkVector2f& minCorner,
                   const vtkVector2f& maxCorner,
                   unsigned long long& caseId)
{
  auto saved = vtkSmartPointer<vtkIdTypeArray>::New();
  if (vtkIdTypeArray* current = plot.GetSelection())
  {
    saved->DeepCopy(current);
  }
  bool found = plot.SelectPoints(minCorner, maxCorner);
  if (found)
  {
    vtkIdTypeArray* selection = plot.GetSelection();
    const vtkIdType row =
      selection && selection->GetNumberOfTuples() > 0 ? selection->GetValue(0) : -1;
    if (row >= 0 && row < idArray.GetNumberOfTuples())
    {
      caseId = idArray.GetVariantValue(row).ToUnsignedInt();
    }
    else
    {
      found = false;
    }
  }
  plot.SetSelection(saved);
  return found;
}

} // namespace vtkChartUtils
