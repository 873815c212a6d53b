#pragma once

#include "analyzer_common/quen_analyzer_common_export.h"

#include <boost/signals2/signal.hpp>

/// A base class that announces its object's destruction, so that objects referring to it (undo
/// commands that outlive the property they change) can stop using it.
class QUEN_ANALYZER_COMMON_EXPORT DeleteSignaler
{
public:
  using DeletedSignal = boost::signals2::signal<void()>;

  DeleteSignaler();
  /// A copy is a new object: it starts without listeners.
  DeleteSignaler(const DeleteSignaler&);
  DeleteSignaler& operator=(const DeleteSignaler&);
  /// Fires the deleted signal.
  virtual ~DeleteSignaler();

  boost::signals2::connection connectSignalDeleted(const DeletedSignal::slot_type& slot) const;

private:
  /// Runs each time a listener connects; does nothing here.
  virtual void signalDeletedConnected() const;

  mutable DeletedSignal signalDeleted;
};
