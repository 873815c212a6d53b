#include "dataviews/TableViewSelectionSynchronizer.h"
#include "analyzer_common/SelectionModelInterface.h"
#include "common/ScopedGuards.h"
#include "dataviews/SelectionConverterInterface.h"

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
  const ScopeExit resume([this] { beginMasterSelectionMonitoring(); });
  masterSelectionModel->setSelection(ids);
}

void TableViewSelectionSynchronizer::onMasterSelectionChanged(
  const std::set<unsigned long long>& ids)
{
  endLocalSelectionMonitoring();
  const ScopeExit resume([this] { beginLocalSelectionMonitoring(); });
  setLocalSelectionsToMaster(ids);
}

void TableViewSelectionSynchronizer::showMasterSelection()
{
  onMasterSelectionChanged(masterSelectionModel->getSelections());
}
