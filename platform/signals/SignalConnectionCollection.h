#pragma once

#include "signals/quen_signals_export.h"

#include <boost/signals2/connection.hpp>
#include <boost/signals2/shared_connection_block.hpp>

#include <vector>

/// The signal connections an object made, owned by that object: blocking the collection mutes
/// them all (used to suspend an object), and destroying it disconnects them all.
///
/// A connection added while the collection is blocked is blocked at once, so block() followed by
/// add() never lets a notification through.
class QUEN_SIGNALS_EXPORT SignalConnectionCollection
{
public:
  SignalConnectionCollection();
  SignalConnectionCollection(const SignalConnectionCollection&) = delete;
  SignalConnectionCollection& operator=(const SignalConnectionCollection&) = delete;
  ~SignalConnectionCollection();

  void add(const boost::signals2::connection& connection);
  /// Mutes every connection until unblock(). Blocking twice needs only one unblock().
  void block();
  void unblock();
  bool isBlocked() const;
  /// Disconnects and forgets every connection; the blocked state is kept for later additions.
  void clear();
  std::size_t size() const;

private:
  struct Entry
  {
    boost::signals2::connection connection;
    boost::signals2::shared_connection_block blocker;
  };
  std::vector<Entry> entries;
  bool blocked = false;
};
