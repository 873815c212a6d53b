#pragma once

#include "property/plexa_property_export.h"

#include <boost/signals2/signal.hpp>

namespace plexa
{

/// Untyped root of every property: one signal without arguments that fires when the property's
/// value changed, for listeners that do not care about the value's type.
class PLEXA_PROPERTY_EXPORT PropertyItemInterface
{
public:
  using PropertyChangedSignal = boost::signals2::signal<void()>;

  PropertyItemInterface();
  PropertyItemInterface(const PropertyItemInterface&) = delete;
  PropertyItemInterface& operator=(const PropertyItemInterface&) = delete;
  virtual ~PropertyItemInterface();

  /// Connects a listener to signalPropertyChanged, then runs signalPropertyChangedConnected().
  boost::signals2::connection connectSignalPropertyChanged(
    const PropertyChangedSignal::slot_type& slot) const;

protected:
  void emitSignalPropertyChanged() const;
  bool signalPropertyChangedHasListeners() const;

private:
  /// Runs each time a listener connects to signalPropertyChanged; does nothing here.
  virtual void signalPropertyChangedConnected() const;

  mutable PropertyChangedSignal signalPropertyChanged;
};

} // namespace plexa
