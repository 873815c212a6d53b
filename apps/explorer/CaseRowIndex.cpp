#include "CaseRowIndex.h"

#include <vtkTable.h>
#include <vtkTypeUInt64Array.h>

#include <algorithm>
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
  rowOfSorted.clear();
  if (std::is_sorted(caseIds.begin(), caseIds.end()))
  {
    sortedIds = caseIds;
    return;
  }
  rowOfSorted.resize(caseIds.size());
  std::iota(rowOfSorted.begin(), rowOfSorted.end(), 0);
  std::stable_sort(rowOfSorted.begin(),
                   rowOfSorted.end(),
                   [&](int a, int b) { return caseIds[std::size_t(a)] < caseIds[std::size_t(b)]; });
  sortedIds.resize(caseIds.size());
  for (std::size_t i = 0; i < caseIds.size(); ++i)
    sortedIds[i] = caseIds[std::size_t(rowOfSorted[i])];
}

int CaseRowIndex::rowAt(std::size_t position) const
{
  return rowOfSorted.empty() ? static_cast<int>(position) : rowOfSorted[position];
}

std::vector<int> CaseRowIndex::rowsOf(const std::vector<unsigned long long>& selection) const
{
  std::vector<int> rows;
  if (selection.size() < sortedIds.size() / 64)
  {
    for (unsigned long long id : selection)
    {
      auto found = std::lower_bound(sortedIds.begin(), sortedIds.end(), id);
      for (; found != sortedIds.end() && *found == id; ++found)
        rows.push_back(rowAt(std::size_t(found - sortedIds.begin())));
    }
    return rows;
  }
  // Large selections take millions of rows: room for them at once, not grown by doubling.
  rows.reserve(std::min(selection.size(), sortedIds.size()));
  auto id = selection.begin();
  for (std::size_t position = 0; position < sortedIds.size(); ++position)
  {
    while (id != selection.end() && *id < sortedIds[position])
      ++id;
    if (id == selection.end())
      break;
    if (*id == sortedIds[position])
      rows.push_back(rowAt(position));
  }
  return rows;
}

} // namespace explorer
