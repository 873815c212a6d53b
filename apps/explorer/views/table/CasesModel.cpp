#include "views/table/CasesModel.h"

#include "TableSorting.h"
#include "VariableNames.h"
#include "VariableRoles.h"

#include "analyzer_common/VariantDisplayText.h"
#include "common/Variant.h"
#include "datamanagement/ProjectBuilder.h"
#include "datapipeline/DataPipelineManagerInterface.h"
#include "properties/PropertyAbstract.h"

#include <vtkAbstractArray.h>
#include <vtkDoubleArray.h>
#include <vtkStringArray.h>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace explorer
{

CasesModel::CasesModel(const DataPipelineManagerInterface& pipeline,
                       std::shared_ptr<const VariableRoles> roles)
  : pipeline(pipeline)
  , roles(std::move(roles))
{
  connections.add(this->roles->said()->connectSignalPropertyChanged(
    [this] { Q_EMIT headerDataChanged(Qt::Horizontal, 0, std::max(columnCount() - 1, 0)); }));
  reload();
}

CasesModel::~CasesModel() = default;

void CasesModel::reload()
{
  beginResetModel();
  pipeline.output()->Update();
  table = vtkSmartPointer<vtkTable>::New();
  table->ShallowCopy(pipeline.output()->GetOutput());
  rowOfCase.assign(CaseIds(*table));
  arrange();
  endResetModel();
}

int CasesModel::rowCount(const QModelIndex& parent) const
{
  return parent.isValid() ? 0 : static_cast<int>(table->GetNumberOfRows());
}

int CasesModel::columnCount(const QModelIndex& parent) const
{
  return parent.isValid() ? 0 : static_cast<int>(table->GetNumberOfColumns());
}

QVariant CasesModel::data(const QModelIndex& index, int role) const
{
  if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::TextAlignmentRole))
    return {};
  vtkAbstractArray* column = table->GetColumn(index.column());
  if (role == Qt::TextAlignmentRole)
    return vtkStringArray::SafeDownCast(column) ? QVariant(Qt::AlignLeft | Qt::AlignVCenter)
                                                : QVariant(Qt::AlignRight | Qt::AlignVCenter);
  const vtkIdType row = tableRow(index.row());
  if (auto* numbers = vtkDoubleArray::SafeDownCast(column))
  {
    const double value = numbers->GetValue(row);
    return std::isnan(value) ? QString()
                             : QString::fromStdString(variantDisplayText(Variant(value)));
  }
  return QString::fromStdString(column->GetVariantValue(row).ToString());
}

QVariant CasesModel::headerData(int section, Qt::Orientation orientation, int role) const
{
  if (role != Qt::DisplayRole)
    return {};
  if (orientation == Qt::Horizontal && section < columnCount())
    return headerText(section);
  return section + 1;
}

QString CasesModel::headerText(int column) const
{
  const std::string name = table->GetColumn(column)->GetName();
  return headerName(name, roles->role(name));
}

std::string CasesModel::variableOf(int column) const
{
  if (column < 0 || column >= columnCount())
    return {};
  const std::string name = table->GetColumn(column)->GetName();
  return name == ProjectBuilder::caseIdName ? std::string() : name;
}

void CasesModel::sortBy(int column, bool descending)
{
  sortColumn = column;
  sortDescending = descending;
  beginResetModel();
  arrange();
  endResetModel();
}

unsigned long long CasesModel::caseOfRow(int row) const
{
  return rowOfCase.caseIds()[static_cast<std::size_t>(tableRow(row))];
}

void CasesModel::addCasesOfRows(int first, int last, std::vector<unsigned long long>& ids) const
{
  const CaseIds& caseIds = rowOfCase.caseIds();
  const auto from = static_cast<std::size_t>(std::max(first, 0));
  const auto to = std::min(static_cast<std::size_t>(std::max(last + 1, 0)),
                           order.empty() ? caseIds.size() : order.size());
  for (std::size_t row = from; row < to; ++row)
    ids.push_back(caseIds[order.empty() ? row : order[row]]);
}

std::vector<unsigned long long> CasesModel::sortedCases() const
{
  std::vector<unsigned long long> ids;
  ids.reserve(order.size());
  for (std::size_t row : order)
    ids.push_back(rowOfCase.caseIds()[row]);
  return ids;
}

unsigned long long CasesModel::largestCaseId() const
{
  return rowOfCase.largest();
}

std::vector<int> CasesModel::rowsOf(const std::vector<unsigned long long>& sortedIds) const
{
  std::vector<int> rows = rowOfCase.rowsOf(sortedIds);
  if (!order.empty())
    for (int& row : rows)
      row = shownRow[static_cast<std::size_t>(row)];
  return rows;
}

vtkIdType CasesModel::tableRow(int row) const
{
  return order.empty() ? row : static_cast<vtkIdType>(order[static_cast<std::size_t>(row)]);
}

void CasesModel::arrange()
{
  order.clear();
  shownRow.clear();
  vtkAbstractArray* column = sortColumn >= 0 && sortColumn < table->GetNumberOfColumns()
                               ? table->GetColumn(sortColumn)
                               : nullptr;
  if (!column)
    return;
  const auto rows = static_cast<std::size_t>(table->GetNumberOfRows());
  order.resize(rows);
  std::iota(order.begin(), order.end(), std::size_t(0));
  if (auto* texts = vtkStringArray::SafeDownCast(column))
  {
    std::vector<std::string> keys(rows);
    for (std::size_t row = 0; row < rows; ++row)
      keys[row] = texts->GetValue(static_cast<vtkIdType>(row));
    sortByTexts(order, keys, sortDescending);
  }
  else
  {
    std::vector<double> keys(rows);
    auto* numbers = vtkDoubleArray::SafeDownCast(column);
    for (std::size_t row = 0; row < rows; ++row)
      keys[row] = numbers ? numbers->GetValue(static_cast<vtkIdType>(row))
                          : column->GetVariantValue(static_cast<vtkIdType>(row)).ToDouble();
    sortByNumbers(order, keys, sortDescending);
  }
  shownRow.resize(rows);
  for (std::size_t row = 0; row < rows; ++row)
    shownRow[order[row]] = static_cast<int>(row);
}

} // namespace explorer
