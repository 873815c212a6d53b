// The master selection kept as a sorted list that views read without copying, and as a set only
// for the library's classes that ask for one.

#include "MasterSelection.h"
#include "CaseKeys.h"
#include "ChangesWhileHidden.h"

#include <QApplication>
#include <QWidget>
#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include <string>
#include <vector>

using explorer::MasterSelection;
using Cases = MasterSelection::Cases;
using Set = SelectionModelInterface::Selection;

namespace
{

constexpr unsigned long long top = 18446744073709551615ULL;

} // namespace

TEST(MasterSelection, KeepsCasesSortedOnceAndSignalsOnlyChanges)
{
  const struct
  {
    Cases given;
    Cases kept;
    bool heard;
  } steps[] = {
    { { 5, 3, 3, top, 0 }, { 0, 3, 5, top }, true },
    { { top, 5, 0, 3 }, { 0, 3, 5, top }, false },
    { { 0, 3, 5, top }, { 0, 3, 5, top }, false },
    { { 7 }, { 7 }, true },
    { { 7, 7, 7 }, { 7 }, false },
    { {}, {}, true },
    { {}, {}, false },
  };
  MasterSelection master;
  int lists = 0;
  int sets = 0;
  const auto listConnection =
    master.connectCasesChanged([&](const MasterSelection::SharedCases&) { ++lists; });
  const auto setConnection = master.connectSignalSelectionChanged([&](const Set&) { ++sets; });
  for (const auto& step : steps)
  {
    const int listsBefore = lists;
    const int setsBefore = sets;
    master.setCases(step.given);
    EXPECT_EQ(*master.cases(), step.kept);
    EXPECT_EQ(master.getSelections(), Set(step.kept.begin(), step.kept.end()));
    EXPECT_EQ(master.selectedSet(), Set(step.kept.begin(), step.kept.end()));
    EXPECT_EQ(lists - listsBefore, step.heard ? 1 : 0) << step.given.size();
    EXPECT_EQ(sets - setsBefore, step.heard ? 1 : 0) << step.given.size();
    // Through the set as well: the same selection again is no change.
    master.setSelection(Set(step.kept.begin(), step.kept.end()));
    EXPECT_EQ(lists - listsBefore, step.heard ? 1 : 0);
  }
  listConnection.disconnect();
  setConnection.disconnect();
}

TEST(MasterSelection, AListHeldStaysAsItWasAndToggleFlipsOneCase)
{
  MasterSelection master;
  master.setCases({ 1, 4, 9 });
  const MasterSelection::SharedCases held = master.cases();
  master.toggle(4);
  EXPECT_EQ(*master.cases(), (Cases{ 1, 9 }));
  master.toggle(top);
  master.toggle(0);
  EXPECT_EQ(*master.cases(), (Cases{ 0, 1, 9, top }));
  EXPECT_EQ(*held, (Cases{ 1, 4, 9 })) << "a list once given out never changes";
  EXPECT_EQ(master.size(), 4u);
}

// A pick in a chart: replaces without Control; with it toggles one case or adds several, and
// adding nothing new leaves the selection (and says so, for the chart to show it again).
TEST(MasterSelection, PicksReplaceOrWithControlToggleOneAndAddSeveral)
{
  const struct
  {
    Cases was;
    Cases picked;
    bool control;
    Cases now;
    bool changed;
  } picks[] = {
    { { 1, 2 }, { 9, 3, 9 }, false, { 3, 9 }, true },
    { { 1, 2 }, {}, false, {}, true },
    { { 3, 9 }, { 9, 3 }, false, { 3, 9 }, false },
    { { 1, 2 }, { 2 }, true, { 1 }, true },
    { { 1, 2 }, { top }, true, { 1, 2, top }, true },
    { {}, { 5 }, true, { 5 }, true },
    { { 1, 2 }, { 4, 0, 2 }, true, { 0, 1, 2, 4 }, true },
    { { 1, 2, 3 }, { 3, 1 }, true, { 1, 2, 3 }, false },
    { { 1, 2 }, {}, true, { 1, 2 }, false },
  };
  for (const auto& pick : picks)
  {
    MasterSelection master;
    master.setCases(pick.was);
    int heard = 0;
    const auto connection =
      master.connectCasesChanged([&](const MasterSelection::SharedCases&) { ++heard; });
    EXPECT_EQ(master.pick(pick.picked, pick.control), pick.changed)
      << pick.picked.size() << (pick.control ? " with Control" : "");
    EXPECT_EQ(*master.cases(), pick.now) << pick.picked.size();
    EXPECT_EQ(heard, pick.changed ? 1 : 0);
    connection.disconnect();
  }
}

// Listeners of the list hear first; a set handed in reaches the set's listeners as it is; and a
// listener that selects something else while being told stops the older selection from
// reaching anyone after it.
TEST(MasterSelection, ListenersHearTheListFirstAndOnlyTheLatestSelection)
{
  MasterSelection master;
  std::vector<std::string> heard;
  const Set* setHeard = nullptr;
  const auto first = master.connectCasesChanged(
    [&](const MasterSelection::SharedCases& ids)
    {
      heard.push_back("list " + std::to_string(ids->size()));
      if (ids->size() == 3)
        master.setCases({ 42 });
    });
  const auto second = master.connectSignalSelectionChanged(
    [&](const Set& ids)
    {
      heard.push_back("set " + std::to_string(ids.size()));
      setHeard = &ids;
    });

  const Set two = { 8, 9 };
  master.setSelection(two);
  EXPECT_EQ(heard, (std::vector<std::string>{ "list 2", "set 2" }));
  EXPECT_EQ(setHeard, &two) << "the set handed in is passed on, not copied";

  heard.clear();
  master.setCases({ 1, 2, 3 });
  EXPECT_EQ(heard, (std::vector<std::string>{ "list 3", "list 1", "set 1" }));
  EXPECT_EQ(*master.cases(), (Cases{ 42 }));
  first.disconnect();
  second.disconnect();
}

// A library class in a hidden view hears nothing until the view is shown, then the latest
// selection once.
TEST(ShownViewSelection, AHiddenViewHearsTheLatestSelectionWhenShown)
{
  auto master = boost::make_shared<MasterSelection>();
  QWidget widget;
  explorer::ShownViewSelection shown(master, widget);
  std::vector<Set> heard;
  const auto connection =
    shown.connectSignalSelectionChanged([&](const Set& ids) { heard.push_back(ids); });

  master->setCases({ 1 });
  master->setCases({ 2, 3 });
  EXPECT_TRUE(heard.empty());
  widget.show();
  QApplication::processEvents();
  ASSERT_EQ(heard.size(), 1u);
  EXPECT_EQ(heard.back(), (Set{ 2, 3 }));

  master->setCases({ 4 });
  ASSERT_EQ(heard.size(), 2u) << "a shown view hears at once";
  EXPECT_EQ(heard.back(), (Set{ 4 }));
  widget.hide();
  widget.show();
  EXPECT_EQ(heard.size(), 2u) << "nothing new, nothing told";

  shown.setSelection({ 5, 6 });
  EXPECT_EQ(*master->cases(), (Cases{ 5, 6 }));
  EXPECT_EQ(shown.getSelections(), (Set{ 5, 6 }));
  connection.disconnect();
}
