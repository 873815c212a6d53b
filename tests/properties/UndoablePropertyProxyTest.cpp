#include "properties/UndoablePropertyProxy.h"
#include "analyzer_common/UndoStack.h"
#include "properties/BoundedValueValidator.h"
#include "properties/Property.h"

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

class UndoablePropertyProxyTest : public ::testing::Test
{
protected:
  void SetUp() override { UndoStack().clear(); }
  void TearDown() override { UndoStack().clear(); }

  UndoStack stack;
};

} // namespace

TEST_F(UndoablePropertyProxyTest, OneChangeIsOneEntryThatUndoAndRedoReplayWithoutNewEntries)
{
  auto target = boost::make_shared<plexa::Property<double>>(1.0);
  plexa::UndoablePropertyProxy<double> proxy("X Min", target);
  std::vector<double> heard;
  boost::signals2::scoped_connection connection =
    proxy.connectSignalValueChanged([&](const double& v) { heard.push_back(v); });

  proxy.setValue(4.0);
  EXPECT_EQ(target->value(), 4.0);
  EXPECT_EQ(proxy.value(), 4.0);
  ASSERT_EQ(stack.count(), 1);
  EXPECT_EQ(stack.text(0), "Change X Min");
  EXPECT_EQ(heard, (std::vector<double>{ 4.0, 4.0 })) << "once from the target, once from setValue";

  heard.clear();
  stack.undo();
  EXPECT_EQ(target->value(), 1.0);
  EXPECT_EQ(heard, (std::vector<double>{ 1.0, 1.0 })) << "once from the target, once from undo";
  stack.redo();
  EXPECT_EQ(target->value(), 4.0);
  EXPECT_EQ(stack.count(), 1) << "undo and redo record nothing";
  EXPECT_EQ(stack.index(), 1);
}

TEST_F(UndoablePropertyProxyTest, EqualValuesAndDirectTargetChangesRecordNothing)
{
  auto target = boost::make_shared<plexa::Property<std::vector<std::string>>>();
  plexa::UndoablePropertyProxy<std::vector<std::string>> proxy("Tags to Show", target);
  std::vector<std::vector<std::string>> heard;
  boost::signals2::scoped_connection connection =
    proxy.connectSignalValueChanged([&](const std::vector<std::string>& v) { heard.push_back(v); });

  proxy.setValue({});
  EXPECT_EQ(stack.count(), 0);
  target->setValue({ "plot:speed" });
  EXPECT_EQ(stack.count(), 0);
  ASSERT_EQ(heard.size(), 1u) << "listeners hear changes made on the target";
  EXPECT_EQ(heard[0], std::vector<std::string>{ "plot:speed" });
}

TEST_F(UndoablePropertyProxyTest, InvalidValuesThrowBeforeAnythingIsRecorded)
{
  using Bounded = plexa::BoundedValueValidator<short>;
  auto target = boost::make_shared<plexa::Property<short>>(
    short(15),
    boost::make_shared<Bounded>(short(3), Bounded::Inclusive, short(40), Bounded::Inclusive));
  plexa::UndoablePropertyProxy<short> proxy("Number of Labels", target);
  EXPECT_EQ(proxy.validator(), target->validator());
  EXPECT_THROW(proxy.setValue(41), plexa::InvalidPropertyValueException);
  EXPECT_EQ(target->value(), 15);
  EXPECT_EQ(stack.count(), 0);
}

TEST_F(UndoablePropertyProxyTest, AMergeIdFoldsSuccessiveChangesIntoOneEntry)
{
  auto target = boost::make_shared<plexa::Property<unsigned long long>>(25);
  plexa::UndoablePropertyProxy<unsigned long long> zoom("Zoom", target);
  zoom.setMergeId(stack.nextUndoID());
  zoom.setValue(30);
  zoom.setValue(40);
  zoom.setValue(50);
  ASSERT_EQ(stack.count(), 1);
  EXPECT_EQ(stack.text(0), "Change Zoom");
  stack.undo();
  EXPECT_EQ(target->value(), 25u);
  stack.redo();
  EXPECT_EQ(target->value(), 50u);
}

TEST_F(UndoablePropertyProxyTest, LinkedChangesAreOneEntryAndReplayWithoutRecording)
{
  auto target = boost::make_shared<plexa::Property<double>>(0.0);
  auto follower = boost::make_shared<plexa::Property<double>>(0.0);
  plexa::UndoablePropertyProxy<double> proxy("Min", target);
  plexa::UndoablePropertyProxy<double> followerProxy("Max", follower);
  // A listener that keeps another undoable setting in step, as linked settings do.
  boost::signals2::scoped_connection connection =
    proxy.connectSignalValueChanged([&](const double& v) { followerProxy.setValue(v + 10); });

  proxy.setValue(1.0);
  EXPECT_EQ(follower->value(), 11.0);
  ASSERT_EQ(stack.count(), 1) << "the follower's change belongs to the user's one action";
  EXPECT_EQ(stack.text(0), "Change Min");

  stack.undo();
  EXPECT_EQ(target->value(), 0.0);
  EXPECT_EQ(follower->value(), 0.0);
  EXPECT_EQ(stack.count(), 1) << "what listeners do during an undo is not recorded";
  stack.redo();
  EXPECT_EQ(target->value(), 1.0);
  EXPECT_EQ(follower->value(), 11.0);
  EXPECT_EQ(stack.count(), 1);
}

TEST_F(UndoablePropertyProxyTest, EntriesOfADestroyedProxyDoNothing)
{
  auto target = boost::make_shared<plexa::Property<bool>>(false);
  {
    plexa::UndoablePropertyProxy<bool> proxy("Show Color Legend", target);
    proxy.setValue(true);
  }
  stack.undo();
  EXPECT_TRUE(target->value()) << "the proxy is gone; its entry must not touch the target";
  stack.redo();
  EXPECT_EQ(stack.count(), 1);
}
