#include "datapipeline/FilterInterface.h"

FilterInterface::FilterInterface() = default;

FilterInterface::~FilterInterface() = default;

boost::signals2::connection FilterInterface::connectSignalFilterChanged(
  const ChangedSignal::slot_type& slot) const
{
  return signalFilterChanged.connect(slot);
}

void FilterInterface::emitSignalFilterChanged() const
{
  signalFilterChanged();
}

FilterFactoryInterface::FilterType getFilterType(const FilterInterface& filter)
{
  return filter.type();
}
