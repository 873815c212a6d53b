#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

#include <functional>
#include <vector>

class DeleteSignaler;
class QUndoCommand;

namespace explorer
{

/// Keeps the undo history whole when the views are made again (a derived variable added to the
/// study gives a new study, and new views over it). The steps the old views recorded would then do
/// nothing, so this keeps the settings document after every step of the application's undo stack
/// and, when a step made before the views were made again is undone or redone, restores the
/// document kept for where the history now stands. Steps of the current views undo themselves.
///
/// A step that changes the study itself (pushStudyStep) has no command of its own: undoing or
/// redoing it restores the kept document, which names the study's derived variables.
class StudyHistory : public QObject
{
public:
  /// `state` writes the settings document of the study shown; `restore` applies one (and may make
  /// the views again, calling viewsRemade()).
  StudyHistory(std::function<QString()> state, std::function<void(const QString&)> restore);
  ~StudyHistory() override;

  /// Starts over from the undo stack as it is, with the settings now as the state at its index.
  void restart();
  /// The views were made again: every step recorded so far is restored from its document.
  void viewsRemade();
  /// Pushes a step named `text` that changes the study: the state before is the one kept for the
  /// present index, the state after is taken once the step is on the stack.
  void pushStudyStep(const QString& text, const DeleteSignaler& owner);

  /// The document kept for an index of the stack (for tests).
  QString stateAt(int index) const;

private:
  struct Entry
  {
    const QUndoCommand* command = nullptr;
    int generation = 0;
    bool studyStep = false;
  };

  void indexChanged(int index);
  QByteArray packedState() const;

  std::function<QString()> state;
  std::function<void(const QString&)> restore;
  std::vector<Entry> entries;
  // states[i] is the document after entries [0, i): one more than the entries. Kept compressed:
  // a document is a few kilobytes, a long session thousands of steps.
  std::vector<QByteArray> states;
  int lastIndex = 0;
  int generation = 0;
  bool restoring = false;
};

} // namespace explorer
