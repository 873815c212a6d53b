#include "StudyHistory.h"

#include "analyzer_common/GenericUndoCommand.h"
#include "analyzer_common/UndoStack.h"

#include <QUndoStack>

#include <algorithm>

namespace explorer
{

StudyHistory::StudyHistory(std::function<QString()> state,
                           std::function<void(const QString&)> restore)
  : state(std::move(state))
  , restore(std::move(restore))
{
  connect(&UndoStack().qUndoStack(),
          &QUndoStack::indexChanged,
          this,
          [this](int index) { indexChanged(index); });
}

StudyHistory::~StudyHistory() = default;

void StudyHistory::restart()
{
  const QUndoStack& stack = UndoStack().qUndoStack();
  entries.clear();
  for (int i = 0; i < stack.count(); ++i)
    entries.push_back({ stack.command(i), generation, false });
  lastIndex = stack.index();
  // Only the present is known: a stack taken over keeps the present for every index, and its
  // steps undo themselves as long as the views they were made in live.
  states.assign(entries.size() + 1, packedState());
}

void StudyHistory::viewsRemade()
{
  ++generation;
}

void StudyHistory::pushStudyStep(const QString& text, const DeleteSignaler& owner)
{
  UndoStack stack;
  const int before = stack.count();
  const QUndoCommand* top = before > 0 ? stack.qUndoStack().command(before - 1) : nullptr;
  // Its undo and redo do nothing: restoring the kept documents does the work (indexChanged).
  stack.push(new GenericUndoCommand([] {}, [] {}, owner, text, -1, nullptr));
  const int after = stack.count();
  if (after > 0 && stack.qUndoStack().command(after - 1) != top && !entries.empty())
    entries.back().studyStep = true;
}

QString StudyHistory::stateAt(int index) const
{
  if (index < 0 || std::size_t(index) >= states.size())
    return {};
  return QString::fromUtf8(qUncompress(states[std::size_t(index)]));
}

QByteArray StudyHistory::packedState() const
{
  return qCompress(state().toUtf8());
}

void StudyHistory::indexChanged(int index)
{
  if (restoring)
    return;
  const QUndoStack& stack = UndoStack().qUndoStack();
  const int count = stack.count();
  // Where the stack's commands part from the ones recorded: a new step was pushed there (and the
  // steps that could be redone were dropped).
  std::size_t same = 0;
  while (same < entries.size() && int(same) < count &&
         entries[same].command == stack.command(int(same)))
    ++same;
  if (same < entries.size() || int(entries.size()) < count)
  {
    entries.resize(same);
    states.resize(same + 1);
    for (int i = int(same); i < count; ++i)
    {
      entries.push_back({ stack.command(i), generation, false });
      states.push_back(packedState());
    }
    lastIndex = index;
    return;
  }
  if (index == lastIndex)
  {
    // A step merged into the last one, or a macro closed: the present is its state.
    if (std::size_t(index) < states.size())
      states[std::size_t(index)] = packedState();
    return;
  }
  // Undone or redone: the steps crossed restore themselves unless their views are gone.
  const int from = std::min(index, lastIndex);
  const int to = std::max(index, lastIndex);
  lastIndex = index;
  const bool kept = std::all_of(entries.begin() + from,
                                entries.begin() + to,
                                [this](const Entry& entry)
                                { return entry.generation == generation && !entry.studyStep; });
  if (kept || std::size_t(index) >= states.size())
    return;
  const QByteArray& wanted = states[std::size_t(index)];
  if (packedState() == wanted)
    return;
  restoring = true;
  restore(stateAt(index));
  restoring = false;
}

} // namespace explorer
