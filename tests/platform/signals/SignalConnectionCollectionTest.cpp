#include "signals/SignalConnectionCollection.h"

#include <boost/signals2/signal.hpp>
#include <gtest/gtest.h>

#include <memory>

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

TEST(SignalConnectionCollection, ClearingWhileBlockedReleasesTheSignal)
{
  auto signal = std::make_unique<boost::signals2::signal<void()>>();
  SignalConnectionCollection connections;
  connections.add(signal->connect([] {}));
  connections.block();
  connections.clear();
  EXPECT_TRUE(connections.isBlocked());
  signal.reset(); // no dangling block keeps anything alive
  SUCCEED();
}
