#include "ChangesWhileHidden.h"

#include "MasterSelection.h"

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
                                       const MasterSelection& selection,
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
    steps.reselect(*selection.cases());
  dataStale = false;
  selectionStale = false;
}

ShownViewSelection::ShownViewSelection(boost::shared_ptr<MasterSelection> master, QWidget& widget)
  : master(std::move(master))
  , widget(&widget)
{
  watcher = new ShowWatcher(widget,
                            [this]
                            {
                              if (stale)
                                tell();
                            });
  connections.add(this->master->connectCasesChanged(
    [this](const MasterSelection::SharedCases&)
    {
      stale = true;
      if (this->widget && this->widget->isVisible())
        tell();
    }));
}

ShownViewSelection::~ShownViewSelection()
{
  delete watcher;
}

SelectionModelInterface::Selection ShownViewSelection::getSelections() const
{
  return master->getSelections();
}

void ShownViewSelection::setSelection(const Selection& selection)
{
  master->setSelection(selection);
}

void ShownViewSelection::tell()
{
  stale = false;
  emitSignalSelectionChanged(master->selectedSet());
}

MasterPicks::MasterPicks(boost::shared_ptr<MasterSelection> master)
  : master(std::move(master))
{
}

SelectionModelInterface::Selection MasterPicks::getSelections() const
{
  return master->getSelections();
}

void MasterPicks::setSelection(const Selection& selection)
{
  master->setSelection(selection);
}

} // namespace explorer
