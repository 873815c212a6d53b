#pragma once

#include <vector>

class vtkTable;

namespace explorer
{

/// The case ids of a pipeline table's rows, read from its "case_id" column; the row numbers
/// when it has none.
std::vector<unsigned long long> caseIdsOf(vtkTable& table);

/// The rows of a view's shown cases by case id, for turning a selection into rows: by binary
/// search when the selection is small, by one merged walk when it is large, never by a lookup
/// in the selection per row.
class CaseRowIndex
{
public:
  /// Indexes the case ids of the rows, in row order.
  void assign(const std::vector<unsigned long long>& caseIds);
  /// The rows whose case is selected (case ids in increasing order), in case id order.
  std::vector<int> rowsOf(const std::vector<unsigned long long>& selection) const;

private:
  int rowAt(std::size_t position) const;

  // The case ids in increasing order, and their rows when the rows are in another order: rows
  // usually come in case id order, and then the ids are all the index holds.
  std::vector<unsigned long long> sortedIds;
  std::vector<int> rowOfSorted;
};

} // namespace explorer
