#include "signals/SignalConnectionCollection.h"

SignalConnectionCollection::SignalConnectionCollection() = default;

SignalConnectionCollection::~SignalConnectionCollection()
{
  clear();
}

void SignalConnectionCollection::add(const boost::signals2::connection& connection)
{
  entries.push_back({ connection, boost::signals2::shared_connection_block(connection, blocked) });
}

void SignalConnectionCollection::block()
{
  blocked = true;
  for (auto& entry : entries)
  {
    entry.blocker.block();
  }
}

void SignalConnectionCollection::unblock()
{
  blocked = false;
  for (auto& entry : entries)
  {
    entry.blocker.unblock();
  }
}

bool SignalConnectionCollection::isBlocked() const
{
  return blocked;
}

void SignalConnectionCollection::clear()
{
  for (auto& entry : entries)
  {
    entry.blocker.unblock();
    entry.connection.disconnect();
  }
  entries.clear();
}

std::size_t SignalConnectionCollection::size() const
{
  return entries.size();
}
