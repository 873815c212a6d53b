#include "views/SelectedCasesView.h"

#include "ChangesWhileHidden.h"
#include "MasterSelection.h"
#include "PropertyEditors.h"
#include "TableSorting.h"
#include "VariableNames.h"
#include "VariableRoles.h"
#include "analyzer_common/VariantDisplayText.h"
#include "datamanagement/Project.h"
#include "datamanagement/Record.h"
#include "export/FullPrecisionCSVExporter.h"
#include "properties/BoundedValueValidator.h"
#include "properties/Property.h"
#include "properties/UndoablePropertyProxy.h"
#include "serialization/GenericSerializer.h"
#include "serialize/Serializer.h"
#include "signals/SignalConnectionCollection.h"

#include <QAbstractTableModel>
#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>
#include <boost/make_shared.hpp>
#include <vtkDoubleArray.h>
#include <vtkStringArray.h>
#include <vtkTable.h>
#include <vtkUnsignedLongLongArray.h>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace explorer
{

namespace
{

// The selected records, one row each: the case id, then every variable, in the order of a
// column. Sorting works on keys read once per row, not through data(): a selection can be every
// one of a million cases.
class SelectedCasesModel : public QAbstractTableModel
{
public:
  SelectedCasesModel(std::shared_ptr<const Project> project,
                     std::shared_ptr<const VariableRoles> roles)
    : project(std::move(project))
    , roles(std::move(roles))
    , variables(this->project->variables())
  {
  }

  void show(const std::vector<unsigned long long>& selected)
  {
    beginResetModel();
    records.clear();
    records.reserve(selected.size());
    for (unsigned long long id : selected)
    {
      Record record = project->record(id).lock();
      if (!record.isNull())
        records.push_back(std::move(record));
    }
    arrange();
    endResetModel();
  }

  // Numbers by value with NaN last, texts as text; ties keep the case id order.
  void sortBy(int column, bool descending)
  {
    sortColumn = column;
    sortDescending = descending;
    beginResetModel();
    arrange();
    endResetModel();
  }

  int rowCount(const QModelIndex& parent = QModelIndex()) const override
  {
    return parent.isValid() ? 0 : static_cast<int>(records.size());
  }
  int columnCount(const QModelIndex& parent = QModelIndex()) const override
  {
    return parent.isValid() ? 0 : static_cast<int>(variables.size()) + 1;
  }

  // The value shown in a row (in the sorted order) and column.
  Variant value(int row, int column) const
  {
    const Record& record = records[order[static_cast<std::size_t>(row)]];
    if (column == 0)
      return Variant(record.caseId());
    return record.data(variables[static_cast<std::size_t>(column - 1)]);
  }
  unsigned long long caseId(int row) const
  {
    return records[order[static_cast<std::size_t>(row)]].caseId();
  }

  QVariant data(const QModelIndex& index, int role) const override
  {
    if (!index.isValid())
      return {};
    const Variant v = value(index.row(), index.column());
    if (role == Qt::DisplayRole)
      return v.isNumber() && std::isnan(v.toDouble())
               ? QString()
               : QString::fromStdString(variantDisplayText(v));
    if (role == Qt::TextAlignmentRole)
      return v.isString() ? QVariant(Qt::AlignLeft | Qt::AlignVCenter)
                          : QVariant(Qt::AlignRight | Qt::AlignVCenter);
    return {};
  }

  QVariant headerData(int section, Qt::Orientation orientation, int role) const override
  {
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal)
      return QAbstractTableModel::headerData(section, orientation, role);
    if (section == 0)
      return QString("case_id");
    const std::string name = variables[static_cast<std::size_t>(section - 1)].lock().name();
    return headerName(name, roles->role(name));
  }

  const std::vector<WeakPtr<Variable>>& columns() const { return variables; }

private:
  void arrange()
  {
    order.resize(records.size());
    std::iota(order.begin(), order.end(), 0);
    // The records come in case id order already.
    if (sortColumn <= 0 || sortColumn >= columnCount())
    {
      if (sortColumn == 0 && sortDescending)
        std::reverse(order.begin(), order.end());
      return;
    }
    const WeakPtr<Variable>& variable = variables[static_cast<std::size_t>(sortColumn - 1)];
    if (variable.lock().nature() == Variable::Text)
    {
      std::vector<std::string> keys;
      keys.reserve(records.size());
      for (const Record& record : records)
        keys.push_back(record.data(variable).toString());
      sortByTexts(order, keys, sortDescending);
      return;
    }
    std::vector<double> keys;
    keys.reserve(records.size());
    for (const Record& record : records)
      keys.push_back(record.data(variable).toDouble());
    sortByNumbers(order, keys, sortDescending);
  }

  std::shared_ptr<const Project> project;
  std::shared_ptr<const VariableRoles> roles;
  std::vector<WeakPtr<Variable>> variables;
  std::vector<Record> records;
  std::vector<std::size_t> order;
  int sortColumn = 0;
  bool sortDescending = false;
};

} // namespace

struct SelectedCasesView::Impl
{
  std::shared_ptr<const Project> project;
  std::shared_ptr<const VariableRoles> roles;
  boost::shared_ptr<MasterSelection> selection;
  QPointer<QWidget> container;
  QTableView* table = nullptr;
  QLabel* count = nullptr;
  std::unique_ptr<SelectedCasesModel> model;
  boost::shared_ptr<plexa::UndoablePropertyProxy<short>> sortColumn;
  boost::shared_ptr<plexa::UndoablePropertyProxy<bool>> sortDescending;

  std::unique_ptr<ChangesWhileHidden> changes;

  void showSelection(const std::vector<unsigned long long>& ids)
  {
    model->show(ids);
    count->setText(QString("%1 cases").arg(model->rowCount()));
  }

  void applySort()
  {
    const int column = sortColumn->value();
    const Qt::SortOrder order = sortDescending->value() ? Qt::DescendingOrder : Qt::AscendingOrder;
    const QSignalBlocker blocker(table->horizontalHeader());
    table->horizontalHeader()->setSortIndicator(column, order);
    model->sortBy(column, sortDescending->value());
  }
};

SelectedCasesView::SelectedCasesView(const ViewContext& context)
  : ViewOfKind(std::make_unique<Serializer>("SelectedCases"), context.selection)
  , d(std::make_unique<Impl>())
{
  d->project = context.project;
  d->roles = context.roles;
  d->selection = context.selection;
  d->container = new QWidget();
  setWidget(d->container);
  d->container->setObjectName("selectedCases");
  auto* layout = new QVBoxLayout(d->container);
  layout->setContentsMargins(2, 2, 2, 2);
  auto* bar = new QHBoxLayout();
  d->count = new QLabel();
  auto* copy = new QPushButton("Copy");
  auto* exportButton = new QPushButton("Export selection as CSV...");
  bar->addWidget(d->count);
  bar->addStretch();
  bar->addWidget(copy);
  bar->addWidget(exportButton);
  layout->addLayout(bar);

  d->table = new QTableView();
  d->model = std::make_unique<SelectedCasesModel>(d->project, context.roles);
  connections().add(context.roles->said()->connectSignalPropertyChanged(
    [impl = d.get()]
    {
      Q_EMIT impl->model->headerDataChanged(
        Qt::Horizontal, 0, std::max(impl->model->columnCount() - 1, 0));
    }));
  d->table->setModel(d->model.get());
  d->table->setSortingEnabled(false);
  d->table->verticalHeader()->setDefaultSectionSize(22);
  layout->addWidget(d->table);

  const SortSettings sorting(d->model->columnCount(), 0);
  d->sortColumn = sorting.column;
  d->sortDescending = sorting.descending;
  sortOnHeaderClicks(*d->table->horizontalHeader(), d->sortColumn, d->sortDescending);
  Impl* impl = d.get();
  connections().add(d->sortColumn->connectSignalPropertyChanged([impl] { impl->applySort(); }));
  connections().add(d->sortDescending->connectSignalPropertyChanged([impl] { impl->applySort(); }));
  d->changes = std::make_unique<ChangesWhileHidden>(
    *d->container,
    *context.selection,
    ChangesWhileHidden::Steps{ {}, [impl](const auto& ids) { impl->showSelection(ids); }, {} });
  connections().add(context.selection->connectCasesChanged(
    [impl](const MasterSelection::SharedCases& ids) { impl->changes->selectionChanged(*ids); }));

  QObject::connect(copy,
                   &QPushButton::clicked,
                   d->container,
                   [this] { QApplication::clipboard()->setText(shownText()); });
  QObject::connect(
    exportButton,
    &QPushButton::clicked,
    d->container,
    [this]
    {
      const QString path = QFileDialog::getSaveFileName(
        d->container, "Export Selection", "selection.csv", "CSV (*.csv)");
      if (path.isEmpty())
        return;
      try
      {
        exportSelection(path.toStdString());
        // Said until the selection next changes.
        d->count->setText(QString("%1 cases exported to %2").arg(d->model->rowCount()).arg(path));
      }
      catch (const std::exception& e)
      {
        QMessageBox::critical(
          d->container, "Cannot export the selection", QString::fromStdString(e.what()));
      }
    });

  saveSetting(boost::make_shared<GenericSerializer<short>>("SortColumn", d->sortColumn),
              "a column");
  saveSetting(boost::make_shared<GenericSerializer<bool>>("SortDescending", d->sortDescending),
              "0 or 1");
  d->applySort();
}

SelectedCasesView::~SelectedCasesView()
{
  // The table lets go of the model before the model goes with the view's parts.
  connections().clear();
  if (d->container)
    d->table->setModel(nullptr);
}

std::vector<SettingsSection> SelectedCasesView::settingsSections(PropertyEditors&)
{
  return {};
}

std::string SelectedCasesView::selectionSummary() const
{
  d->changes->catchUp();
  return std::to_string(d->model->rowCount()) + " rows";
}

void SelectedCasesView::suspendParts() {}

void SelectedCasesView::resumeParts()
{
  d->changes->changed(false);
}

void SelectedCasesView::refresh()
{
  d->table->viewport()->update();
}

boost::shared_ptr<plexa::PropertyAbstract<short>> SelectedCasesView::sortColumn() const
{
  return d->sortColumn;
}

boost::shared_ptr<plexa::PropertyAbstract<bool>> SelectedCasesView::sortDescending() const
{
  return d->sortDescending;
}

QTableView& SelectedCasesView::table() const
{
  d->changes->catchUp();
  return *d->table;
}

QString SelectedCasesView::shownText() const
{
  d->changes->catchUp();
  QStringList lines;
  QStringList header;
  for (int c = 0; c < d->model->columnCount(); ++c)
    header << d->model->headerData(c, Qt::Horizontal, Qt::DisplayRole).toString();
  lines << header.join('\t');
  for (int r = 0; r < d->model->rowCount(); ++r)
  {
    QStringList cells;
    for (int c = 0; c < d->model->columnCount(); ++c)
      cells << d->model->index(r, c).data().toString();
    lines << cells.join('\t');
  }
  return lines.join('\n') + '\n';
}

void SelectedCasesView::exportSelection(const std::string& path) const
{
  d->changes->catchUp();
  auto table = vtkSmartPointer<vtkTable>::New();
  auto ids = vtkSmartPointer<vtkUnsignedLongLongArray>::New();
  ids->SetName("case_id");
  table->AddColumn(ids);
  for (const auto& variable : d->model->columns())
  {
    vtkSmartPointer<vtkAbstractArray> column;
    if (variable.lock().nature() == Variable::Text)
      column = vtkSmartPointer<vtkStringArray>::New();
    else
      column = vtkSmartPointer<vtkDoubleArray>::New();
    const std::string name = variable.lock().name();
    column->SetName(exportedName(name, d->roles->role(name)).c_str());
    table->AddColumn(column);
  }
  // In the order shown, so that the file matches the table.
  for (int row = 0; row < d->model->rowCount(); ++row)
  {
    ids->InsertNextValue(d->model->caseId(row));
    for (int c = 1; c < d->model->columnCount(); ++c)
    {
      const Variant v = d->model->value(row, c);
      vtkAbstractArray* column = table->GetColumn(c);
      if (auto* numbers = vtkDoubleArray::SafeDownCast(column))
        numbers->InsertNextValue(v.toDouble());
      else
        vtkStringArray::SafeDownCast(column)->InsertNextValue(v.toString());
    }
  }
  FullPrecisionCSVExporter().writeCSVFile(*table, path);
}

} // namespace explorer
