// The history kept across views made again: steps whose commands died with their views, and
// steps that change the study itself, are restored from the state kept after each step; steps of
// the living views undo themselves.

#include "StudyHistory.h"

#include "analyzer_common/DeleteSignaler.h"
#include "analyzer_common/GenericUndoCommand.h"
#include "analyzer_common/UndoStack.h"

#include <QUndoStack>
#include <gtest/gtest.h>

#include <memory>

using explorer::StudyHistory;

namespace
{

class History : public ::testing::Test
{
protected:
  void SetUp() override
  {
    UndoStack().clear();
    history.restart();
  }
  void TearDown() override { UndoStack().clear(); }

  // A step of a view: sets the state, and puts it back when undone.
  void step(const QString& to, const DeleteSignaler& owner)
  {
    const QString from = state;
    UndoStack().push(new GenericUndoCommand([this, to] { state = to; },
                                            [this, from] { state = from; },
                                            owner,
                                            "Step to " + to,
                                            -1,
                                            nullptr));
  }

  QString state = "start";
  int restored = 0;
  StudyHistory history{ [this] { return state; },
                        [this](const QString& kept)
                        {
                          state = kept;
                          ++restored;
                        } };
};

} // namespace

TEST_F(History, StepsOfViewsGoneAndStudyStepsAreRestoredFromTheStatesKept)
{
  auto oldViews = std::make_unique<DeleteSignaler>();
  step("1", *oldViews);
  step("2", *oldViews);
  // The study changes: new views, and the old views' steps do nothing from now on.
  state = "3";
  oldViews.reset();
  history.viewsRemade();
  const DeleteSignaler window;
  history.pushStudyStep("New Derived Variable", window);
  const DeleteSignaler newViews;
  step("4", newViews);
  ASSERT_EQ(UndoStack().count(), 4);
  EXPECT_EQ(history.stateAt(3), "3");

  const std::vector<QString> back{ "3", "2", "1", "start" };
  const std::vector<int> restoresBack{ 0, 1, 2, 3 }; // the living step undoes itself
  for (std::size_t i = 0; i < back.size(); ++i)
  {
    UndoStack().qUndoStack().undo();
    EXPECT_EQ(state, back[i]) << i;
    EXPECT_EQ(restored, restoresBack[i]) << i;
  }
  const std::vector<QString> forward{ "1", "2", "3", "4" };
  for (const QString& expected : forward)
  {
    UndoStack().qUndoStack().redo();
    EXPECT_EQ(state, expected);
  }
  EXPECT_EQ(restored, 6);

  // A new step drops the steps that could be redone, and their states.
  UndoStack().qUndoStack().undo();
  UndoStack().qUndoStack().undo();
  EXPECT_EQ(state, "2");
  step("5", newViews);
  EXPECT_EQ(UndoStack().count(), 3);
  EXPECT_EQ(history.stateAt(3), "5");
  EXPECT_EQ(history.stateAt(4), "");
  UndoStack().qUndoStack().undo();
  UndoStack().qUndoStack().undo();
  EXPECT_EQ(state, "1") << "restored: the step to 2 died with the old views";

  // Jumping several steps at once restores the state where the history lands.
  UndoStack().qUndoStack().setIndex(3);
  EXPECT_EQ(state, "5");
}

TEST_F(History, MergedStepsAndMacrosKeepTheStateAfterThem)
{
  auto views = std::make_unique<DeleteSignaler>();
  const int id = UndoStack().nextUndoID();
  const auto merging = [&](const QString& to)
  {
    const QString from = state;
    UndoStack().push(new GenericUndoCommand(
      [this, to] { state = to; }, [this, from] { state = from; }, *views, "Drag", id, nullptr));
  };
  merging("a");
  merging("b");
  ASSERT_EQ(UndoStack().count(), 1);
  EXPECT_EQ(history.stateAt(1), "b");
  {
    const UndoStack::Macro macro("Two at once");
    step("c", *views);
    step("d", *views);
  }
  ASSERT_EQ(UndoStack().count(), 2);
  EXPECT_EQ(history.stateAt(2), "d");
  // Their views gone, the merged step and the macro are restored whole.
  views.reset();
  history.viewsRemade();
  UndoStack().qUndoStack().undo();
  EXPECT_EQ(state, "b");
  UndoStack().qUndoStack().undo();
  EXPECT_EQ(state, "start");
  EXPECT_EQ(restored, 2);
}
