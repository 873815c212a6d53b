#include "analyzer_common/UndoStack.h"
#include "analyzer_common/DeleteSignaler.h"
#include "analyzer_common/GenericUndoCommand.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace
{

// A value with undoable changes, the way a property proxy drives the stack.
class UndoableValue : public DeleteSignaler
{
public:
  explicit UndoableValue(int mergeId = -1)
    : mergeId(mergeId)
  {
  }

  void change(int newValue)
  {
    const int oldValue = value;
    value = newValue;
    UndoStack().push(new GenericUndoCommand([this, newValue] { value = newValue; },
                                            [this, oldValue] { value = oldValue; },
                                            *this,
                                            "Change value",
                                            mergeId,
                                            nullptr));
  }

  int value = 0;
  int mergeId;
};

class UndoStackTest : public ::testing::Test
{
protected:
  void SetUp() override { UndoStack().clear(); }
  void TearDown() override { UndoStack().clear(); }
};

} // namespace

TEST_F(UndoStackTest, ReplayingHistorySuspendsRecordingAndIsReported)
{
  UndoStack stack;
  std::vector<std::pair<bool, bool>> seen; // (in progress, suspended) at each run
  DeleteSignaler owner;
  auto record = [&]
  { seen.emplace_back(stack.undoOrRedoInProgress(), stack.recordingIsSuspended()); };
  stack.push(new GenericUndoCommand(record, record, owner, "Probe", -1, nullptr));
  stack.undo();
  stack.redo();
  stack.qUndoStack().undo(); // as an Edit menu action does, bypassing the handle
  ASSERT_EQ(seen.size(), 4u);
  EXPECT_EQ(seen[0], std::make_pair(false, false)) << "the first run is not a replay";
  EXPECT_EQ(seen[1], std::make_pair(true, true));
  EXPECT_EQ(seen[2], std::make_pair(true, true));
  EXPECT_EQ(seen[3], std::make_pair(true, true));
  EXPECT_FALSE(stack.undoOrRedoInProgress());
}

TEST_F(UndoStackTest, CommandsWithTheSameIdAndOwnerMerge)
{
  UndoStack stack;
  const int id = stack.nextUndoID();
  EXPECT_NE(stack.nextUndoID(), id);
  UndoableValue zoom(id);
  UndoableValue other(id);
  zoom.change(10);
  zoom.change(20);
  zoom.change(30);
  EXPECT_EQ(stack.count(), 1);
  other.change(1); // same id, other owner: no merge
  EXPECT_EQ(stack.count(), 2);
  stack.undo();
  stack.undo();
  EXPECT_EQ(zoom.value, 0) << "the merged entry undoes to the first old value";

  UndoableValue unmerged;
  stack.clear();
  unmerged.change(1);
  unmerged.change(2);
  EXPECT_EQ(stack.count(), 2) << "id -1 never merges";
}

TEST_F(UndoStackTest, ACommandWhoseOwnerIsGoneLetsGoOfWhatItHolds)
{
  UndoStack stack;
  auto study = std::make_shared<int>(1);
  const std::weak_ptr<int> watched = study;
  auto owner = std::make_unique<DeleteSignaler>();
  stack.push(new GenericUndoCommand([study] {}, [study] {}, *owner, "Step", -1, nullptr));
  study.reset();
  EXPECT_FALSE(watched.expired()) << "a live step keeps what it needs";
  owner.reset();
  EXPECT_TRUE(watched.expired());
  EXPECT_EQ(stack.count(), 1) << "the step stays in the history";
  stack.undo();
  stack.redo();

  // A step whose undo destroys its own owner (as making the views again does) runs to its end
  // before its functions go.
  auto ownerOfSelf = std::make_unique<DeleteSignaler>();
  auto captured = std::make_shared<int>(2);
  const std::weak_ptr<int> watchedToo = captured;
  int seenAfter = 0;
  stack.push(new GenericUndoCommand([] {},
                                    [&ownerOfSelf, &seenAfter, captured]
                                    {
                                      ownerOfSelf.reset();
                                      seenAfter = *captured;
                                    },
                                    *ownerOfSelf,
                                    "Remake",
                                    -1,
                                    nullptr));
  captured.reset();
  stack.undo();
  EXPECT_EQ(seenAfter, 2);
  EXPECT_TRUE(watchedToo.expired());
}
