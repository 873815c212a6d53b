#include "analyzer_common/SelectionModelInterface.h"
#include "dataviews/SelectionBroadcaster.h"
#include "dataviews/SelectionConverterInterface.h"
#include "dataviews/TableViewSelectionSynchronizer.h"

#include <QItemSelectionModel>
#include <QPalette>
#include <QTableView>

SelectionConverterInterface::~SelectionConverterInterface() = default;

TableViewSelectionSynchronizer::TableViewSelectionSynchronizer(
  boost::shared_ptr<SelectionModelInterface> master,
  QTableView& view,
  boost::shared_ptr<SelectionConverterInterface> converter)
  : QObject(nullptr)
  , masterSelectionModel(std::move(master))
  , tableView(&view)
  , converter(std::move(converter))
{
  QPalette palette = tableView->palette();
  palette.setColor(
    QPalette::Inactive, QPalette::Highlight, palette.color(QPalette::Active, QPalette::Highlight));
  tableView->setPalette(palette);

  if (QItemSelectionModel* selection = tableView->selectionModel())
  {
    selection->select(this->converter->selectionFromCaseIDs(masterSelectionModel->getSelections()),
                      QItemSelectionModel::ClearAndSelect);
  }
  beginLocalSelectionMonitoring();
  beginMasterSelectionMonitoring();
}

TableViewSelectionSynchronizer::~TableViewSelectionSynchronizer() = default;

void TableViewSelectionSynchronizer::suspend()
{
  connections.block();
}

void TableViewSelectionSynchronizer::resume()
{
  connections.unblock();
  updateLocalSelections();
}

void TableViewSelectionSynchronizer::beginLocalSelectionMonitoring()
{
  if (QItemSelectionModel* selection = tableView->selectionModel())
  {
    connect(selection,
            &QItemSelectionModel::selectionChanged,
            this,
            &TableViewSelectionSynchronizer::onLocalSelectionChanged);
  }
}

void TableViewSelectionSynchronizer::endLocalSelectionMonitoring()
{
  if (QItemSelectionModel* selection = tableView->selectionModel())
  {
    disconnect(selection, nullptr, this, nullptr);
  }
}

void TableViewSelectionSynchronizer::updateLocalSelections()
{
  setLocalSelectionsToMaster(masterSelectionModel->getSelections());
}

void TableViewSelectionSynchronizer::beginMasterSelectionMonitoring()
{
  connections.add(masterSelectionModel->connectSignalSelectionChanged(
    [this](const std::set<unsigned long long>& ids) { onMasterSelectionChanged(ids); }));
}

void TableViewSelectionSynchronizer::endMasterSelectionMonitoring()
{
  connections.clear();
}

void TableViewSelectionSynchronizer::setLocalSelectionsToMaster(
  const std::set<unsigned long long>& ids)
{
  if (QItemSelectionModel* selection = tableView->selectionModel())
  {
    selection->select(converter->selectionFromCaseIDs(ids), QItemSelectionModel::ClearAndSelect);
  }
}

void TableViewSelectionSynchronizer::onLocalSelectionChanged()
{
  QItemSelectionModel* selection = tableView->selectionModel();
  if (!selection)
  {
    return;
  }
  const std::set<unsigned long long> ids = converter->caseIDsFromSelection(*selection);
  endMasterSelectionMonitoring();
  masterSelectionModel->setSelection(ids);
  beginMasterSelectionMonitoring();
}

void TableViewSelectionSynchronizer::onMasterSelectionChanged(
  const std::set<unsigned long long>& ids)
{
  endLocalSelectionMonitoring();
  setLocalSelectionsToMaster(ids);
  beginLocalSelectionMonitoring();
}

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
