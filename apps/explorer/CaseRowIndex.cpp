#include "CaseRowIndex.h"

#include <vtkTable.h>
#include <vtkTypeUInt64Array.h>

#include <algorithm>
#include <limits>
#include <numeric>

namespace explorer
{

std::vector<unsigned long long> caseIdsOf(vtkTable& table)
{
  const auto rows = static_cast<std::size_t>(table.GetNumberOfRows());
  std::vector<unsigned long long> ids(rows);
  vtkAbstractArray* column = table.GetColumnByName("case_id");
  if (auto* typed = vtkTypeUInt64Array::SafeDownCast(column))
    std::copy(typed->GetPointer(0), typed->GetPointer(0) + rows, ids.begin());
  else if (column)
    for (std::size_t row = 0; row < rows; ++row)
      ids[row] = column->GetVariantValue(static_cast<vtkIdType>(row)).ToTypeUInt64();
  else
    std::iota(ids.begin(), ids.end(), 0ULL);
  return ids;
}

void CaseRowIndex::assign(const std::vector<unsigned long long>& caseIds)
{
  rowOfCase.resize(caseIds.size());
  for (std::size_t row = 0; row < caseIds.size(); ++row)
    rowOfCase[row] = { caseIds[row], static_cast<int>(row) };
  // Rows usually come in case id order already.
  if (!std::is_sorted(rowOfCase.begin(), rowOfCase.end()))
    std::sort(rowOfCase.begin(), rowOfCase.end());
}

std::vector<int> CaseRowIndex::rowsOf(const std::vector<unsigned long long>& selection) const
{
  std::vector<int> rows;
  if (selection.size() < rowOfCase.size() / 64)
  {
    for (unsigned long long id : selection)
    {
      auto found = std::lower_bound(
        rowOfCase.begin(), rowOfCase.end(), std::make_pair(id, std::numeric_limits<int>::min()));
      for (; found != rowOfCase.end() && found->first == id; ++found)
        rows.push_back(found->second);
    }
    return rows;
  }
  auto id = selection.begin();
  for (const auto& [caseId, row] : rowOfCase)
  {
    while (id != selection.end() && *id < caseId)
      ++id;
    if (id == selection.end())
      break;
    if (*id == caseId)
      rows.push_back(row);
  }
  return rows;
}

} // namespace explorer
