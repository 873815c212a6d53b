#pragma once

#include "quen_analyzer_dataviews_common_export.h"

#include <vtkVector.h>

class DataViewInterface;
class vtkAbstractArray;
class vtkAxis;
class vtkChart;
class vtkPlot;

/// Fitting and picking in the charts of the 2-D views. The chart must have its bottom and left
/// axes.
namespace vtkChartUtils
{

/// Fits both axes to the data, then asks the view to redraw. The axes keep their behaviour: a
/// FIXED axis stays FIXED, now at the fitted range.
QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT void fitData(vtkChart& chart, DataViewInterface& view);

/// Fits one axis to the data and leaves the bottom and left axes as they are otherwise, then
/// asks the view to redraw. The bottom and left axes get their behaviours back afterwards; any
/// other axis given here is left AUTO.
QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT void resetAxisRange(vtkChart& chart,
                                                          vtkAxis& axis,
                                                          DataViewInterface& view);

/// The case of the first point of the plot inside the box between the two corners (in the
/// plot's data coordinates), read from idArray (the case-id column of the plot's table) through
/// a 32-bit unsigned conversion, so ids above 4294967295 are truncated. The plot's selection is
/// left exactly as it was. Returns false, leaving caseId alone, when the box holds no point or
/// the point has no id.
QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT bool caseIDAtPoint(vtkPlot& plot,
                                                         vtkAbstractArray& idArray,
                                                         const vtkVector2f& minCorner,
                                                         const vtkVector2f& maxCorner,
                                                         unsigned long long& caseId);

} // namespace vtkChartUtils
