#pragma once

#include "quen_analyzer_dataviews_common_export.h"

/// Shows the wait cursor while it lives (an application override cursor; guards nest).
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT PxWaitCursor
{
public:
  PxWaitCursor();
  virtual ~PxWaitCursor();
  PxWaitCursor(const PxWaitCursor&) = delete;
  PxWaitCursor& operator=(const PxWaitCursor&) = delete;
};
