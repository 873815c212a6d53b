#pragma once

#include "analyzer_common/quen_analyzer_common_export.h"

#include <QUndoCommand>
#include <boost/function.hpp>
#include <boost/signals2/connection.hpp>

class DeleteSignaler;

/// An undo command made of two functions: redo() runs the first, undo() the second. Once the
/// object that made it (its DeleteSignaler) is destroyed, the command does nothing and lets go
/// of its functions and whatever they captured: a long history does not keep alive the studies
/// its finished steps referred to.
///
/// Commands with the same id (other than -1) and the same owner merge: the merged entry undoes
/// to the first command's old state and redoes to the last command's new state.
class QUEN_ANALYZER_COMMON_EXPORT GenericUndoCommand : public QUndoCommand
{
public:
  GenericUndoCommand(boost::function<void()> redoFunction,
                     boost::function<void()> undoFunction,
                     const DeleteSignaler& owner,
                     const QString& text,
                     int id,
                     QUndoCommand* parent);
  ~GenericUndoCommand() override;

  void redo() override;
  void undo() override;
  int id() const override;
  bool mergeWith(const QUndoCommand* other) override;

  /// False once the owner has been destroyed.
  bool ownerIsAlive() const;

private:
  // Marks a function running, so that an owner destroyed by it does not destroy the function
  // while it runs; the functions go when it returns.
  class Running
  {
  public:
    explicit Running(GenericUndoCommand& command);
    ~Running();
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

  private:
    GenericUndoCommand& command;
  };

  void releaseFunctions();

  boost::function<void()> redoFunction;
  boost::function<void()> undoFunction;
  const DeleteSignaler* owner;
  boost::signals2::scoped_connection ownerConnection;
  int mergeId;
  bool running = false;
};
