#include "signals/SignalConnectionCollection.h"

#include <boost/signals2/signal.hpp>
#include <gtest/gtest.h>

TEST(SignalConnectionCollection, BlockMutesUnblockRestoresAndLateAdditionsFollowTheState)
{
  boost::signals2::signal<void()> signal;
  int early = 0;
  int late = 0;
  SignalConnectionCollection connections;
  connections.add(signal.connect([&] { ++early; }));

  signal();
  connections.block();
  connections.block(); // blocking twice needs one unblock only
  connections.add(signal.connect([&] { ++late; }));
  signal();
  EXPECT_EQ(early, 1);
  EXPECT_EQ(late, 0) << "a connection added while blocked must be blocked";

  connections.unblock();
  signal();
  EXPECT_EQ(early, 2);
  EXPECT_EQ(late, 1);
}
