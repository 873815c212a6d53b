#include "ChangesWhileHidden.h"

#include "analyzer_common/SelectionModelInterface.h"

#include <QEvent>

namespace explorer
{

namespace
{

class ShowWatcher : public QObject
{
public:
  ShowWatcher(QWidget& widget, std::function<void()> call)
    : QObject(&widget)
    , call(std::move(call))
  {
    widget.installEventFilter(this);
  }

  bool eventFilter(QObject*, QEvent* event) override
  {
    if (event->type() == QEvent::Show)
      call();
    return false;
  }

private:
  std::function<void()> call;
};

} // namespace

ChangesWhileHidden::ChangesWhileHidden(QWidget& widget,
                                       const SelectionModelInterface& selection,
                                       Steps steps)
  : widget(&widget)
  , selection(selection)
  , steps(std::move(steps))
  , dataStale(static_cast<bool>(this->steps.reload))
{
  // The watcher is the widget's child; it must not outlive this object, which a view may
  // destroy before its widget.
  watcher = new ShowWatcher(widget,
                            [this]
                            {
                              catchUp();
                              if (this->steps.redraw)
                                this->steps.redraw();
                            });
}

ChangesWhileHidden::~ChangesWhileHidden()
{
  delete watcher;
}

void ChangesWhileHidden::changed(bool data)
{
  dataStale = dataStale || (data && steps.reload);
  selectionStale = true;
  if (!widget || !widget->isVisible())
    return;
  catchUp();
  if (steps.redraw)
    steps.redraw();
}

void ChangesWhileHidden::changedLater()
{
  dataStale = dataStale || static_cast<bool>(steps.reload);
  selectionStale = true;
  if (widget && widget->isVisible() && steps.redraw)
    steps.redraw();
}

void ChangesWhileHidden::selectionChanged(const Selection& ids)
{
  if (dataStale || !widget || !widget->isVisible())
  {
    changed(false);
    return;
  }
  steps.reselect(ids);
  selectionStale = false;
  if (steps.redraw)
    steps.redraw();
}

void ChangesWhileHidden::catchUp()
{
  if (dataStale)
    steps.reload();
  else if (selectionStale)
    steps.reselect(selection.getSelections());
  dataStale = false;
  selectionStale = false;
}

} // namespace explorer
