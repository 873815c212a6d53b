#pragma once

#include "quen_analyzer_dataviews_common_export.h"

#include <vtkScalarBarActor.h>

/// A scalar bar whose tick labels are evenly spaced over the lookup table's range, formatted
/// with the label format, with a value that should read zero snapped to exactly zero (no "1e-17"
/// residue). With the range and label count chosen by ColorLegend every label falls on a nice
/// number. An indexed lookup table gets no labels. In vertical orientation the labels get more
/// padding while there are at most 17 of them.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT NiceLabelsColorLegendActor : public vtkScalarBarActor
{
public:
  static NiceLabelsColorLegendActor* New();
  vtkTypeMacro(NiceLabelsColorLegendActor, vtkScalarBarActor);
  void PrintSelf(ostream& os, vtkIndent indent) override;

  /// The value of label i of n over [min, max] (the midpoint for one label), on a log scale
  /// when asked, with the zero snapping described above.
  static double labelValue(int i, int n, double min, double max, bool logScale);

protected:
  NiceLabelsColorLegendActor();
  ~NiceLabelsColorLegendActor() override;

  void LayoutTicks() override;

private:
  NiceLabelsColorLegendActor(const NiceLabelsColorLegendActor&) = delete;
  void operator=(const NiceLabelsColorLegendActor&) = delete;
};
