#pragma once

#include "analyzer_common/quen_analyzer_common_export.h"

/// Rounds a step to the nearest "nice" number, 1, 2 or 5 times a power of ten: 0.13 gives 0.1,
/// 0.27 gives 0.2, 4 gives 5, 8 gives 10. A negative step is rounded by its magnitude and keeps
/// its sign; zero, NaN and infinities are returned unchanged.
QUEN_ANALYZER_COMMON_EXPORT double makeNiceNumber(double step);
