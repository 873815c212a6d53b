#include "views/table/CasesTableView.h"

#include "CaseOrder.h"
#include "MasterSelection.h"
#include "TableSorting.h"
#include "VariableRoles.h"
#include "views/table/CasesModel.h"
#include "views/table/CasesTable.h"

#include "datamanagement/Project.h"
#include "datapipeline/DataPipelineManager.h"
#include "properties/BoundedValueValidator.h"
#include "properties/Property.h"
#include "properties/UndoablePropertyProxy.h"
#include "serialization/GenericSerializer.h"
#include "serialize/Serializer.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPointer>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <boost/make_shared.hpp>

#include <algorithm>

namespace explorer
{

struct CasesTableView::Impl
{
  std::shared_ptr<const Project> project;
  boost::shared_ptr<MasterSelection> selection;
  QPointer<QWidget> container;
  // Both owned by the view's widget.
  CasesTable* table = nullptr;
  CasesModel* model = nullptr;
  QLineEdit* find = nullptr;
  QLabel* findMessage = nullptr;
  boost::shared_ptr<plexa::UndoablePropertyProxy<short>> sortColumn;
  boost::shared_ptr<plexa::UndoablePropertyProxy<bool>> sortDescending;
  std::shared_ptr<CaseOrder> order;
  std::shared_ptr<VariableRoles> roles;

  // The header's menu: whether the variable of a column is an input or an output of the runs.
  void showRoleMenu(const QPoint& at)
  {
    QHeaderView* header = table->horizontalHeader();
    const std::string variable = model->variableOf(header->logicalIndexAt(at));
    if (variable.empty())
      return;
    auto* menu = new QMenu(header);
    menu->setObjectName("roleMenu");
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const Variable::Role current = roles->role(variable);
    const std::pair<const char*, Variable::Role> choices[] = { { "Input", Variable::Input },
                                                               { "Output", Variable::Output },
                                                               { "Neither", Variable::Unknown } };
    for (const auto& [text, role] : choices)
    {
      QAction* action = menu->addAction(text);
      action->setCheckable(true);
      action->setChecked(role == current);
      QObject::connect(action,
                       &QAction::triggered,
                       menu,
                       [roles = roles, variable, role = role] { roles->setRole(variable, role); });
    }
    menu->popup(header->mapToGlobal(at));
  }

  void applySort()
  {
    const QSignalBlocker blocker(table->horizontalHeader());
    table->horizontalHeader()->setSortIndicator(
      sortColumn->value(), sortDescending->value() ? Qt::DescendingOrder : Qt::AscendingOrder);
    model->sortBy(sortColumn->value(), sortDescending->value());
    fitCaseIdColumn();
    table->showMasterSelection();
    order->setOrder(model->sortedCases());
  }

  // Case ids are shown whole, the longest 20 digits.
  void fitCaseIdColumn()
  {
    const QString widest = QString::number(model->largestCaseId());
    table->setColumnWidth(0,
                          std::max(table->horizontalHeader()->defaultSectionSize(),
                                   table->fontMetrics().horizontalAdvance(widest) + 16));
  }

  // Selects the case whose id was typed, or says why it cannot.
  void findCase()
  {
    const QString text = find->text().trimmed();
    bool number = false;
    const unsigned long long id = text.toULongLong(&number);
    const std::vector<int> rows = number ? model->rowsOf({ id }) : std::vector<int>();
    QString message;
    if (!number)
      message = "'" + text + "' is not a case id";
    else if (project->record(id).lock().isNull())
      message = "no case " + text;
    else if (rows.empty())
      message = "case " + text + " is filtered out";
    findMessage->setText(message);
    findMessage->setVisible(!message.isEmpty());
    if (!message.isEmpty())
      return;
    selection->setSelection({ id });
    table->scrollTo(model->index(rows.front(), 0));
  }
};

CasesTableView::CasesTableView(const ViewContext& context)
  : ViewOfKind(std::make_unique<Serializer>("CasesTable"), context.selection)
  , d(std::make_unique<Impl>())
{
  const DataPipelineManagerInterface& pipeline = *context.pipeline;
  d->project = context.project;
  d->selection = context.selection;
  d->order = context.order;
  d->container = new QWidget();
  setWidget(d->container);
  d->container->setObjectName("cases");
  auto* layout = new QVBoxLayout(d->container);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(2);
  auto* bar = new QHBoxLayout();
  d->find = new QLineEdit();
  d->find->setObjectName("findCase");
  d->find->setPlaceholderText("Find case id");
  d->find->setMaximumWidth(160);
  d->findMessage = new QLabel();
  d->findMessage->setStyleSheet("color: #a00000");
  d->findMessage->hide();
  bar->addWidget(d->find);
  bar->addWidget(d->findMessage);
  bar->addStretch();
  layout->addLayout(bar);
  d->roles = context.roles;
  d->model = new CasesModel(pipeline, context.roles);
  d->table = new CasesTable(*d->model, context.selection);
  layout->addWidget(d->table);
  QHeaderView* columns = d->table->horizontalHeader();

  const SortSettings sorting(d->model->columnCount(), -1);
  d->sortColumn = sorting.column;
  d->sortDescending = sorting.descending;
  sortOnHeaderClicks(*columns, d->sortColumn, d->sortDescending);
  columns->setContextMenuPolicy(Qt::CustomContextMenu);
  columns->setSortIndicator(-1, Qt::AscendingOrder); // in the study's order until a click
  Impl* impl = d.get();
  connections().add(d->sortColumn->connectSignalPropertyChanged([impl] { impl->applySort(); }));
  connections().add(d->sortDescending->connectSignalPropertyChanged([impl] { impl->applySort(); }));
  QObject::connect(d->find, &QLineEdit::returnPressed, d->container, [impl] { impl->findCase(); });
  QObject::connect(columns,
                   &QHeaderView::customContextMenuRequested,
                   d->container,
                   [impl](const QPoint& at) { impl->showRoleMenu(at); });

  connections().add(context.selection->connectCasesChanged(
    [impl](const MasterSelection::SharedCases&)
    { scrollToSelectionLater(*impl->table, [impl] { return impl->table->firstSelectedRow(); }); }));
  connections().add(pipeline.connectSignalPipelineChanged(
    [impl]
    {
      impl->model->reload();
      impl->fitCaseIdColumn();
      impl->table->showMasterSelection();
      if (impl->sortColumn->value() >= 0)
        impl->order->setOrder(impl->model->sortedCases());
    }));
  d->fitCaseIdColumn();
  saveSetting(boost::make_shared<GenericSerializer<short>>("SortColumn", d->sortColumn),
              "a column, or -1");
  saveSetting(boost::make_shared<GenericSerializer<bool>>("SortDescending", d->sortDescending),
              "0 or 1");
}

CasesTableView::~CasesTableView() = default;

std::string CasesTableView::selectionSummary() const
{
  return std::to_string(selectedRows()) + " selected rows";
}

void CasesTableView::suspendParts()
{
  d->table->suspend();
}

void CasesTableView::resumeParts()
{
  d->model->reload();
  d->fitCaseIdColumn();
  d->table->resume();
}

void CasesTableView::refresh()
{
  d->table->viewport()->update();
}

QTableView& CasesTableView::table() const
{
  return *d->table;
}

boost::shared_ptr<plexa::PropertyAbstract<short>> CasesTableView::sortColumn() const
{
  return d->sortColumn;
}

boost::shared_ptr<plexa::PropertyAbstract<bool>> CasesTableView::sortDescending() const
{
  return d->sortDescending;
}

int CasesTableView::selectedRows() const
{
  return d->table->selectedRowCount();
}

} // namespace explorer
