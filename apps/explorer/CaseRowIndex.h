#pragma once

#include <vector>

class vtkTable;

namespace explorer
{

/// The case ids of a pipeline table's rows, read from its "case_id" column; the row numbers
/// when it has none.
std::vector<unsigned long long> caseIdsOf(vtkTable& table);

/// The case ids of a view's shown rows, and the rows by case id, for turning a selection into
/// rows: by binary search when the selection is small, by one merged walk when it is large, never
/// by a lookup in the selection per row. The view reads its rows' ids here too: one copy of them.
class CaseRowIndex
{
public:
  /// Indexes the case ids of the rows, in row order.
  void assign(std::vector<unsigned long long> caseIds);
  /// The case ids of the rows, in row order.
  const std::vector<unsigned long long>& caseIds() const { return ids; }
  /// The rows whose case is selected (case ids in increasing order), in case id order.
  std::vector<int> rowsOf(const std::vector<unsigned long long>& selection) const;

private:
  // The id at a position of the ids in increasing order, and its row.
  unsigned long long idAt(std::size_t position) const;
  int rowAt(std::size_t position) const;

  // The ids in row order, and the rows in increasing order of their ids when the rows are in
  // another order: rows usually come in case id order, and then the ids are all the index holds.
  std::vector<unsigned long long> ids;
  std::vector<int> rowOfSorted;
};

} // namespace explorer
