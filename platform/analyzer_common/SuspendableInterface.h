#pragma once

#include "analyzer_common/quen_analyzer_common_export.h"

/// An object that can stop reacting to changes for a while (suspend) and start again (resume),
/// for instance while the host rebuilds its data.
class QUEN_ANALYZER_COMMON_EXPORT SuspendableInterface
{
public:
  virtual ~SuspendableInterface();
  virtual void suspend() = 0;
  virtual void resume() = 0;
};
