#pragma once

#include <cstddef>
#include <memory>
#include <vector>

class Project;
class vtkTable;

namespace explorer
{

/// The case ids of a pipeline table's rows, in row order. Read in place from the table's
/// "case_id" column when it holds unsigned 64-bit numbers (the column is kept alive, and the
/// pipeline never writes a column it has handed out): every view reads the same column, and a
/// copy per view is 80 MB at ten million runs. Other columns are copied, and a table without one
/// numbers its rows. A study's ids are read in place too, the study kept. Copies share the ids.
class CaseIds
{
public:
  CaseIds() = default;
  explicit CaseIds(vtkTable& table);
  explicit CaseIds(std::vector<unsigned long long> ids);
  explicit CaseIds(const Project& study);

  const unsigned long long* begin() const { return first; }
  const unsigned long long* end() const { return first + count; }
  std::size_t size() const { return count; }
  bool empty() const { return count == 0; }
  unsigned long long operator[](std::size_t row) const { return first[row]; }

private:
  // Whatever holds the ids: the column, the study or a list of them.
  std::shared_ptr<const void> owner;
  const unsigned long long* first = nullptr;
  std::size_t count = 0;
};

/// Where the values of `wanted` (ascending) lie among `count` ascending values (`valueAt(i)`,
/// the i-th): `positionAt(i)` of each i whose value is wanted, in increasing order of i. By
/// binary search when few are wanted, by one merged walk when many are.
template<typename Position, typename ValueAt, typename Wanted, typename PositionAt>
std::vector<Position> positionsIn(std::size_t count,
                                  ValueAt valueAt,
                                  const std::vector<Wanted>& wanted,
                                  PositionAt positionAt)
{
  std::vector<Position> positions;
  if (wanted.size() < count / 64)
  {
    for (const Wanted& value : wanted)
    {
      // The first i whose value is not below `value`.
      std::size_t low = 0;
      std::size_t high = count;
      while (low < high)
      {
        const std::size_t middle = low + (high - low) / 2;
        if (valueAt(middle) < value)
          low = middle + 1;
        else
          high = middle;
      }
      for (; low < count && valueAt(low) == value; ++low)
        positions.push_back(positionAt(low));
    }
    return positions;
  }
  // Many wanted values take millions of positions: room for them at once.
  positions.reserve(wanted.size() < count ? wanted.size() : count);
  auto next = wanted.begin();
  for (std::size_t i = 0; i < count && next != wanted.end(); ++i)
  {
    while (next != wanted.end() && *next < valueAt(i))
      ++next;
    if (next != wanted.end() && *next == valueAt(i))
      positions.push_back(positionAt(i));
  }
  return positions;
}

/// The same among ascending values in memory, each at its own place.
template<typename Position, typename Value, typename Wanted>
std::vector<Position> positionsIn(const Value* values,
                                  std::size_t count,
                                  const std::vector<Wanted>& wanted)
{
  return positionsIn<Position>(
    count,
    [values](std::size_t i) { return static_cast<Wanted>(values[i]); },
    wanted,
    [](std::size_t i) { return static_cast<Position>(i); });
}

/// The case ids of a view's shown rows, and the rows by case id, for turning a selection into
/// rows: by binary search when the selection is small, by one merged walk when it is large, never
/// by a lookup in the selection per row. The view reads its rows' ids here too: one copy of them.
class CaseRowIndex
{
public:
  /// Indexes the case ids of the rows, in row order.
  void assign(CaseIds caseIds);
  /// The case ids of the rows, in row order.
  const CaseIds& caseIds() const { return ids; }
  /// The largest case id of the rows, 0 without rows; known from the index, without a pass.
  unsigned long long largest() const;
  /// The rows whose case is selected (case ids in increasing order), in case id order.
  std::vector<int> rowsOf(const std::vector<unsigned long long>& selection) const;

private:
  // The ids in row order, and the rows in increasing order of their ids when the rows are in
  // another order: rows usually come in case id order, and then the ids are all the index holds.
  CaseIds ids;
  std::vector<int> rowOfSorted;
};

} // namespace explorer
