#pragma once

// Typed, cached access to the case-id column of a plot table, for the hot paths of selection
// synchronisation. The conversion is RecordTableUtils': vtkVariant::ToInt() of the value, widened
// with its sign.

#include <vtkType.h>
#include <vtkWeakPointer.h>

#include <cstdint>
#include <set>
#include <utility>
#include <vector>

class vtkAbstractArray;
class vtkTable;

namespace caseids
{

/// The case id vtkVariant(value).ToInt() gives for one value of the column, widened.
unsigned long long caseIdAt(vtkAbstractArray& column, vtkIdType index);

/// The case ids of a whole column, in row order.
std::vector<unsigned long long> allCaseIds(vtkAbstractArray& column);

/// The rows of one table, sorted by case id, rebuilt only when the table or its case-id column
/// changed. Finds the rows whose case id is in a selection without looking at every row when
/// the selection is small.
class RowIndex
{
public:
  /// The rows of `table` whose case id is in `ids`, in ascending row order; valid until the
  /// next call.
  const std::vector<vtkIdType>& rowsOf(vtkTable& table, const std::set<unsigned long long>& ids);
  /// The case id of each row of `table`, in row order.
  const std::vector<unsigned long long>& caseIdsOf(vtkTable& table);

private:
  void refresh(vtkTable& table);

  vtkWeakPointer<vtkTable> indexedTable;
  vtkAbstractArray* indexedColumn = nullptr;
  vtkMTimeType indexedTime = 0;
  std::vector<unsigned long long> idOfRow;
  std::vector<std::pair<unsigned long long, vtkIdType>> rowsById;
  // When the ids are dense (their span at most four times the rows, as sequential case ids
  // are), by id - firstId: the row of an id on one row, -1 for an id on no row, and for an id
  // on several rows -2 - the position in rowsById of its first row.
  std::vector<std::int64_t> denseIndex;
  unsigned long long firstId = 0;
  std::vector<vtkIdType> selectedRows;
};

} // namespace caseids
