#pragma once

#include <QPointer>
#include <QWidget>

#include <functional>
#include <set>

class QWidget;
class SelectionModelInterface;

namespace explorer
{

/// What changed while a view was hidden, taken in when it is shown or asked: a view in a tab
/// behind another then costs nothing while the study, the filters or the selection change.
class ChangesWhileHidden
{
public:
  using Selection = std::set<unsigned long long>;

  struct Steps
  {
    /// Reads the view's data again and shows the current selection over it; empty for a view
    /// that shows only the selection.
    std::function<void()> reload;
    /// Shows a selection over the data the view has.
    std::function<void(const Selection&)> reselect;
    /// Asks for a draw once something was taken in; may be empty.
    std::function<void()> redraw;
  };

  /// Watches `widget` being shown; reads `selection` when a selection change was left pending.
  ChangesWhileHidden(QWidget& widget, const SelectionModelInterface& selection, Steps steps);
  ChangesWhileHidden(const ChangesWhileHidden&) = delete;
  ChangesWhileHidden& operator=(const ChangesWhileHidden&) = delete;
  ~ChangesWhileHidden();

  /// The data changed (`data`), or only what follows the selection; taken in now if the view is
  /// shown.
  void changed(bool data);
  /// The data changed; taken in when the view next draws or is asked (catchUp), not now.
  void changedLater();
  /// A new selection: shown at once when the view is shown and nothing else is pending.
  void selectionChanged(const Selection& ids);
  /// Takes in whatever is pending, shown or not: before the view answers for what it shows.
  void catchUp();

private:
  QPointer<QWidget> widget;
  const SelectionModelInterface& selection;
  Steps steps;
  QPointer<QObject> watcher;
  bool dataStale;
  bool selectionStale = true;
};

} // namespace explorer
