#include "dataviews/RecordTableUtils.h"

#include "dataviews/CaseIdColumn_p.h"

#include <vtkAbstractArray.h>
#include <vtkTable.h>

#include <algorithm>

unsigned long long RecordTableUtils::caseIDAtRow(vtkTable& table, long long row)
{
  vtkAbstractArray* column = table.GetNumberOfColumns() > 0 ? table.GetColumn(0) : nullptr;
  if (!column || row < 0 || row >= column->GetNumberOfTuples())
  {
    return 0;
  }
  return caseids::caseIdAt(*column, static_cast<vtkIdType>(row));
}

std::set<unsigned long long> RecordTableUtils::caseIDs(vtkTable& table)
{
  vtkAbstractArray* column = table.GetNumberOfColumns() > 0 ? table.GetColumn(0) : nullptr;
  if (!column)
  {
    return {};
  }
  std::vector<unsigned long long> ids = caseids::allCaseIds(*column);
  ids.resize(std::min<std::size_t>(ids.size(), static_cast<std::size_t>(table.GetNumberOfRows())));
  std::sort(ids.begin(), ids.end());
  return std::set<unsigned long long>(ids.begin(), ids.end());
}
