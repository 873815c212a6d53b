#pragma once

#include "analyzer_common/quen_analyzer_common_export.h"

#include <QString>

class QUndoCommand;
class QUndoStack;

/// A handle on the application's one undo stack (a QUndoStack shared by every handle).
///
/// Recording can be suspended: while an UndoStack::SuspendUndoRecording guard lives, and while a
/// command is being undone or redone, pushed commands are dropped (deleted without running), so
/// that replaying history never records new history.
class QUEN_ANALYZER_COMMON_EXPORT UndoStack
{
public:
  UndoStack();

  /// Takes ownership of the command. Runs its redo() and records it, merging it with the top
  /// entry when both carry the same id (other than -1) and the top entry accepts; while
  /// recording is suspended the command is deleted without running.
  void push(QUndoCommand* command);
  /// Undoes or redoes the current entry; the commands run with recording suspended.
  void undo();
  void redo();
  bool canUndo() const;
  bool canRedo() const;
  /// Number of entries, and the index of the next entry to redo.
  int count() const;
  int index() const;
  /// The text of entry i (a macro's text for a macro).
  QString text(int i) const;
  /// Forgets every entry.
  void clear();
  /// The shared QUndoStack, for menus and views (QUndoStack::createUndoAction, QUndoView).
  QUndoStack& qUndoStack() const;

  /// True while a SuspendUndoRecording guard lives or an undo or redo runs.
  bool recordingIsSuspended() const;
  /// True while an entry is being undone or redone (not while a new command is first run).
  bool undoOrRedoInProgress() const;
  /// A new merge id, different from every id handed out before in this process.
  int nextUndoID() const;

  /// Groups the commands pushed while it lives into one entry named by its text. The entry is
  /// opened by the first push, so a macro in which nothing is pushed (or recording is suspended)
  /// leaves no empty entry behind. Macros nest.
  class QUEN_ANALYZER_COMMON_EXPORT Macro
  {
  public:
    explicit Macro(const QString& text);
    ~Macro();
    Macro(const Macro&) = delete;
    Macro& operator=(const Macro&) = delete;

  private:
    bool opened = false;
  };

  /// Suspends recording while it lives; guards nest.
  class QUEN_ANALYZER_COMMON_EXPORT SuspendUndoRecording
  {
  public:
    SuspendUndoRecording();
    ~SuspendUndoRecording();
    SuspendUndoRecording(const SuspendUndoRecording&) = delete;
    SuspendUndoRecording& operator=(const SuspendUndoRecording&) = delete;
  };

  /// Marks the scope of a replayed undo or redo: recording is suspended and
  /// undoOrRedoInProgress() is true. Used by commands and by undo()/redo().
  class QUEN_ANALYZER_COMMON_EXPORT ReplayScope
  {
  public:
    ReplayScope();
    ~ReplayScope();
    ReplayScope(const ReplayScope&) = delete;
    ReplayScope& operator=(const ReplayScope&) = delete;
  };

  /// True while push() runs a new command's first redo().
  bool isPushing() const;
};
