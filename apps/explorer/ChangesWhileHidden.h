#pragma once

#include "analyzer_common/SelectionModelInterface.h"
#include "signals/SignalConnectionCollection.h"

#include <QPointer>
#include <QWidget>

#include <boost/shared_ptr.hpp>

#include <functional>
#include <vector>

class QWidget;

namespace explorer
{

class MasterSelection;

/// What changed while a view was hidden, taken in when it is shown or asked: a view in a tab
/// behind another then costs nothing while the study, the filters or the selection change.
class ChangesWhileHidden
{
public:
  /// Selected case ids in increasing order (see MasterSelection).
  using Selection = std::vector<unsigned long long>;

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
  ChangesWhileHidden(QWidget& widget, const MasterSelection& selection, Steps steps);
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
  const MasterSelection& selection;
  Steps steps;
  QPointer<QObject> watcher;
  bool dataStale;
  bool selectionStale = true;
};

/// The master selection as a library class inside a view sees it: as a set, and only while the
/// view's widget is shown. A change made while it is hidden reaches the class once, when the widget
/// is shown, so that no set is made for views nobody sees.
class ShownViewSelection : public virtual SelectionModelInterface
{
public:
  ShownViewSelection(boost::shared_ptr<MasterSelection> master, QWidget& widget);
  ~ShownViewSelection() override;

  Selection getSelections() const override;
  void setSelection(const Selection& selection) override;

private:
  void tell();

  boost::shared_ptr<MasterSelection> master;
  QPointer<QWidget> widget;
  QPointer<QObject> watcher;
  bool stale = false;
  SignalConnectionCollection connections;
};

/// The master selection for a library class whose showing of the selection its view drives
/// itself, from the master's sorted list: the class's picks go to the master and it may ask what
/// the master holds, but no change is signalled to it as a set.
class MasterPicks : public virtual SelectionModelInterface
{
public:
  explicit MasterPicks(boost::shared_ptr<MasterSelection> master);

  Selection getSelections() const override;
  void setSelection(const Selection& selection) override;

private:
  boost::shared_ptr<MasterSelection> master;
};

} // namespace explorer
