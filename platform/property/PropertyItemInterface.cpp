#include "property/PropertyItemInterface.h"

namespace plexa
{

PropertyItemInterface::PropertyItemInterface() = default;

PropertyItemInterface::~PropertyItemInterface() = default;

boost::signals2::connection PropertyItemInterface::connectSignalPropertyChanged(
  const PropertyChangedSignal::slot_type& slot) const
{
  auto connection = signalPropertyChanged.connect(slot);
  signalPropertyChangedConnected();
  return connection;
}

void PropertyItemInterface::emitSignalPropertyChanged() const
{
  signalPropertyChanged();
}

bool PropertyItemInterface::signalPropertyChangedHasListeners() const
{
  return !signalPropertyChanged.empty();
}

void PropertyItemInterface::signalPropertyChangedConnected() const {}

} // namespace plexa
