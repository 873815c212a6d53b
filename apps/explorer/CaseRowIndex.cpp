#include "CaseRowIndex.h"

#include "datamanagement/Project.h"

#include <vtkTable.h>
#include <vtkTypeUInt64Array.h>

#include <algorithm>
#include <numeric>

namespace explorer
{

CaseIds::CaseIds(vtkTable& table)
{
  const auto rows = static_cast<std::size_t>(table.GetNumberOfRows());
  vtkAbstractArray* found = table.GetColumnByName("case_id");
  auto* typed = vtkTypeUInt64Array::SafeDownCast(found);
  if (typed && typed->GetNumberOfComponents() == 1 &&
      static_cast<std::size_t>(typed->GetNumberOfValues()) >= rows)
  {
    typed->Register(nullptr);
    owner =
      std::shared_ptr<const void>(typed, [](vtkTypeUInt64Array* ids) { ids->UnRegister(nullptr); });
    first = rows > 0 ? typed->GetPointer(0) : nullptr;
    count = rows;
    return;
  }
  std::vector<unsigned long long> ids(rows);
  std::iota(ids.begin(), ids.end(), 0ULL);
  const auto values = found ? static_cast<std::size_t>(found->GetNumberOfValues()) : 0;
  for (std::size_t row = 0; row < std::min(rows, values); ++row)
    ids[row] = found->GetVariantValue(static_cast<vtkIdType>(row)).ToTypeUInt64();
  *this = CaseIds(std::move(ids));
}

CaseIds::CaseIds(std::vector<unsigned long long> ids)
{
  auto owned = std::make_shared<const std::vector<unsigned long long>>(std::move(ids));
  first = owned->data();
  count = owned->size();
  owner = std::move(owned);
}

CaseIds::CaseIds(const Project& study)
  : owner(study.shared_from_this())
  , first(study.caseIds().data())
  , count(study.caseIds().size())
{
}

void CaseRowIndex::assign(CaseIds caseIds)
{
  ids = std::move(caseIds);
  rowOfSorted.clear();
  if (std::is_sorted(ids.begin(), ids.end()))
    return;
  rowOfSorted.resize(ids.size());
  std::iota(rowOfSorted.begin(), rowOfSorted.end(), 0);
  std::stable_sort(rowOfSorted.begin(),
                   rowOfSorted.end(),
                   [&](int a, int b) { return ids[std::size_t(a)] < ids[std::size_t(b)]; });
}

unsigned long long CaseRowIndex::largest() const
{
  if (ids.empty())
    return 0;
  return rowOfSorted.empty() ? ids[ids.size() - 1]
                             : ids[static_cast<std::size_t>(rowOfSorted.back())];
}

std::vector<int> CaseRowIndex::rowsOf(const std::vector<unsigned long long>& selection) const
{
  // Read in place, with no call per row: a selection of ten million is walked against as many
  // ids.
  if (rowOfSorted.empty())
    return positionsIn<int>(ids.begin(), ids.size(), selection);
  const unsigned long long* id = ids.begin();
  const int* row = rowOfSorted.data();
  return positionsIn<int>(
    ids.size(),
    [id, row](std::size_t position) { return id[row[position]]; },
    selection,
    [row](std::size_t position) { return row[position]; });
}

} // namespace explorer
