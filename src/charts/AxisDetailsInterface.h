#pragma once

#include "quen_analyzer_dataviews_common_export.h"

#include <boost/shared_ptr.hpp>
#include <boost/signals2/signal.hpp>

namespace plexa
{
template<typename T>
class PropertyAbstract;
}

/// The user-editable settings of one chart axis, as a settings panel binds to them: minimum and
/// maximum, whether a custom grid spacing is used, and that spacing.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT AxisDetailsInterface
{
public:
  using AxisDetailsChangedSignal = boost::signals2::signal<void()>;

  AxisDetailsInterface();
  AxisDetailsInterface(const AxisDetailsInterface&) = delete;
  AxisDetailsInterface& operator=(const AxisDetailsInterface&) = delete;
  virtual ~AxisDetailsInterface();

  virtual boost::shared_ptr<plexa::PropertyAbstract<double>> min() const = 0;
  virtual boost::shared_ptr<plexa::PropertyAbstract<double>> max() const = 0;
  virtual boost::shared_ptr<plexa::PropertyAbstract<bool>> useCustomGridSpacing() const = 0;
  virtual boost::shared_ptr<plexa::PropertyAbstract<double>> gridSpacing() const = 0;
  /// Bounds settings of implementations that have them; may be empty.
  virtual boost::shared_ptr<plexa::PropertyAbstract<double>> boundsMin() const = 0;
  virtual boost::shared_ptr<plexa::PropertyAbstract<double>> boundsMax() const = 0;

  /// Fires whenever any of the four settings changes.
  boost::signals2::connection connectSignalAxisDetailsChanged(
    const AxisDetailsChangedSignal::slot_type& slot) const;

protected:
  void emitSignalAxisDetailsChanged() const;

private:
  /// Runs each time a listener connects; does nothing here.
  virtual void signalAxisDetailsChangedConnected() const;

  mutable AxisDetailsChangedSignal signalAxisDetailsChanged;
};
