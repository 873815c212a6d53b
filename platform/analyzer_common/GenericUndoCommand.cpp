#include "analyzer_common/GenericUndoCommand.h"

#include "analyzer_common/DeleteSignaler.h"
#include "analyzer_common/UndoStack.h"

GenericUndoCommand::GenericUndoCommand(boost::function<void()> redoFunction,
                                       boost::function<void()> undoFunction,
                                       const DeleteSignaler& owner,
                                       const QString& text,
                                       int id,
                                       QUndoCommand* parent)
  : QUndoCommand(text, parent)
  , redoFunction(std::move(redoFunction))
  , undoFunction(std::move(undoFunction))
  , owner(&owner)
  , mergeId(id)
{
  ownerConnection = owner.connectSignalDeleted(
    [this]
    {
      this->owner = nullptr;
      if (!running)
        releaseFunctions();
    });
}

GenericUndoCommand::~GenericUndoCommand() = default;

void GenericUndoCommand::redo()
{
  if (!owner || !redoFunction)
  {
    return;
  }
  const Running run(*this);
  UndoStack stack;
  if (stack.isPushing())
  {
    // The first run, as the command is recorded: not a replay of history.
    redoFunction();
    return;
  }
  UndoStack::ReplayScope replay;
  redoFunction();
}

void GenericUndoCommand::undo()
{
  if (!owner || !undoFunction)
  {
    return;
  }
  const Running run(*this);
  UndoStack::ReplayScope replay;
  undoFunction();
}

int GenericUndoCommand::id() const
{
  return mergeId;
}

bool GenericUndoCommand::mergeWith(const QUndoCommand* other)
{
  const auto* command = dynamic_cast<const GenericUndoCommand*>(other);
  if (!command || command->mergeId != mergeId || !owner || command->owner != owner)
  {
    return false;
  }
  redoFunction = command->redoFunction;
  return true;
}

void GenericUndoCommand::releaseFunctions()
{
  redoFunction.clear();
  undoFunction.clear();
}

GenericUndoCommand::Running::Running(GenericUndoCommand& command)
  : command(command)
{
  command.running = true;
}

GenericUndoCommand::Running::~Running()
{
  command.running = false;
  // The owner went while a function ran: the functions go now that none of them runs.
  if (!command.owner)
    command.releaseFunctions();
}

bool GenericUndoCommand::ownerIsAlive() const
{
  return owner != nullptr;
}
