#include "analyzer_common/DeleteSignaler.h"

DeleteSignaler::DeleteSignaler() = default;

DeleteSignaler::DeleteSignaler(const DeleteSignaler&) {}

DeleteSignaler& DeleteSignaler::operator=(const DeleteSignaler&)
{
  return *this;
}

DeleteSignaler::~DeleteSignaler()
{
  signalDeleted();
}

boost::signals2::connection DeleteSignaler::connectSignalDeleted(
  const DeletedSignal::slot_type& slot) const
{
  auto connection = signalDeleted.connect(slot);
  signalDeletedConnected();
  return connection;
}

void DeleteSignaler::signalDeletedConnected() const {}
