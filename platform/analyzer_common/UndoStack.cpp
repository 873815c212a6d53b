#include "analyzer_common/UndoStack.h"

#include <QUndoStack>

#include <atomic>
#include <vector>

namespace
{

// Process-wide state of the one undo stack. The library is used from the GUI thread only.
struct UndoState
{
  QUndoStack stack;
  int suspended = 0;
  int replaying = 0;
  int pushing = 0;
  // Texts of the open Macro guards, innermost last, and how many of them opened a macro on the
  // stack (always the outermost ones, since a macro opens at its first push).
  std::vector<QString> macroTexts;
  std::size_t openedMacros = 0;
};

UndoState& state()
{
  static UndoState instance;
  return instance;
}

std::atomic<int> lastUndoId{ 1000 };

} // namespace

UndoStack::UndoStack() = default;

void UndoStack::push(QUndoCommand* command)
{
  UndoState& s = state();
  if (recordingIsSuspended())
  {
    delete command;
    return;
  }
  while (s.openedMacros < s.macroTexts.size())
  {
    s.stack.beginMacro(s.macroTexts[s.openedMacros]);
    ++s.openedMacros;
  }
  ++s.pushing;
  s.stack.push(command);
  --s.pushing;
}

void UndoStack::undo()
{
  ReplayScope replay;
  state().stack.undo();
}

void UndoStack::redo()
{
  ReplayScope replay;
  state().stack.redo();
}

bool UndoStack::canUndo() const
{
  return state().stack.canUndo();
}

bool UndoStack::canRedo() const
{
  return state().stack.canRedo();
}

int UndoStack::count() const
{
  return state().stack.count();
}

int UndoStack::index() const
{
  return state().stack.index();
}

QString UndoStack::text(int i) const
{
  return state().stack.text(i);
}

void UndoStack::clear()
{
  state().stack.clear();
}

QUndoStack& UndoStack::qUndoStack() const
{
  return state().stack;
}

bool UndoStack::recordingIsSuspended() const
{
  return state().suspended > 0 || state().replaying > 0;
}

bool UndoStack::undoOrRedoInProgress() const
{
  return state().replaying > 0;
}

int UndoStack::nextUndoID() const
{
  return ++lastUndoId;
}

bool UndoStack::isPushing() const
{
  return state().pushing > 0;
}

UndoStack::Macro::Macro(const QString& text)
{
  UndoState& s = state();
  if (UndoStack().recordingIsSuspended())
  {
    return;
  }
  s.macroTexts.push_back(text);
  opened = true;
}

UndoStack::Macro::~Macro()
{
  if (!opened)
  {
    return;
  }
  UndoState& s = state();
  if (s.openedMacros == s.macroTexts.size())
  {
    s.stack.endMacro();
    --s.openedMacros;
  }
  s.macroTexts.pop_back();
}

UndoStack::SuspendUndoRecording::SuspendUndoRecording()
{
  ++state().suspended;
}

UndoStack::SuspendUndoRecording::~SuspendUndoRecording()
{
  --state().suspended;
}

UndoStack::ReplayScope::ReplayScope()
{
  ++state().replaying;
}

UndoStack::ReplayScope::~ReplayScope()
{
  --state().replaying;
}
