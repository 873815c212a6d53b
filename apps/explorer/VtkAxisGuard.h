#pragma once

#include <vtkSmartPointer.h>

class vtkAxis;
class vtkChartXY;

namespace explorer
{

/// An axis that places its ticks only over ranges where they can be placed. VTK 9.1 steps from
/// a nice start to the range by the tick interval, and over a range near the largest double (whose
/// nice end overflows to infinity), or one too narrow for its size to be stepped across, it loops
/// for ever: typing 1.7e308 into an axis field, or a study holding such a value, was enough. Such
/// an axis shows no ticks.
vtkSmartPointer<vtkAxis> tickGuardedAxis();

/// Gives a chart tick-guarded axes in place of its own; done before anything holds its axes.
void guardAxisTicks(vtkChartXY& chart);

} // namespace explorer
