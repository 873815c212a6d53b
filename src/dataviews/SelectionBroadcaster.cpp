#include "dataviews/SelectionBroadcaster.h"

#include <QItemSelectionModel>

SelectionBroadcaster::SelectionBroadcaster(const QItemSelectionModel& model)
  : QObject(nullptr)
  , lastSelection(model.selectedIndexes())
  , itemSelectionModel(&model)
{
  connect(
    &model, &QItemSelectionModel::selectionChanged, this, &SelectionBroadcaster::selectionChanged);
  if (const QAbstractItemModel* items = model.model())
  {
    connect(items,
            &QAbstractItemModel::modelReset,
            this,
            &SelectionBroadcaster::signalIfSelectionChanged);
    connect(items,
            &QAbstractItemModel::layoutChanged,
            this,
            &SelectionBroadcaster::signalIfSelectionChanged);
  }
}

SelectionBroadcaster::~SelectionBroadcaster() = default;

boost::signals2::connection SelectionBroadcaster::connectSignalSelectedImagesChanged(
  const SelectedImagesChangedSignal::slot_type& slot) const
{
  return signalSelectedImagesChanged.connect(slot);
}

void SelectionBroadcaster::selectionChanged() const
{
  lastSelection = itemSelectionModel->selectedIndexes();
  signalSelectedImagesChanged();
}

void SelectionBroadcaster::signalIfSelectionChanged() const
{
  const QList<QModelIndex> selected = itemSelectionModel->selectedIndexes();
  if (selected == lastSelection)
  {
    return;
  }
  lastSelection = selected;
  signalSelectedImagesChanged();
}
