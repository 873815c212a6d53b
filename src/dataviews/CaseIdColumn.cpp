#include "dataviews/CaseIdColumn_p.h"

#include <vtkAbstractArray.h>
#include <vtkDataArray.h>
#include <vtkTable.h>
#include <vtkVariant.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

namespace caseids
{

namespace
{

unsigned long long widen(int value)
{
  return static_cast<unsigned long long>(static_cast<long long>(value));
}

// vtkVariant::ToInt() is a static_cast<int> of the stored number. For integers that keeps the
// low 32 bits. For floating values outside the int range (and NaN) the cast is undefined in
// C++; x86-64 gives INT_MIN, which is what VTK's own conversion yields on this platform, so the
// typed path answers that without running the undefined cast.
template<typename T>
int toInt(T value)
{
  if constexpr (std::is_floating_point_v<T>)
  {
    if (!(value >= static_cast<T>(std::numeric_limits<int>::min()) &&
          value < static_cast<T>(2147483648.0)))
    {
      return std::numeric_limits<int>::min();
    }
    return static_cast<int>(value);
  }
  else
  {
    return static_cast<int>(static_cast<std::uint32_t>(value));
  }
}

template<typename T>
void convert(const T* values, vtkIdType count, int components, std::vector<unsigned long long>& out)
{
  out.resize(static_cast<std::size_t>(count));
  for (vtkIdType i = 0; i < count; ++i)
  {
    out[static_cast<std::size_t>(i)] = widen(toInt(values[i * components]));
  }
}

} // namespace

unsigned long long caseIdAt(vtkAbstractArray& column, vtkIdType index)
{
  auto* data = vtkDataArray::SafeDownCast(&column);
  if (data && data->HasStandardMemoryLayout())
  {
    const vtkIdType value = index * data->GetNumberOfComponents();
    switch (data->GetDataType())
    {
      vtkTemplateMacro(
        return widen(toInt(static_cast<const VTK_TT*>(data->GetVoidPointer(0))[value])));
    }
  }
  return widen(column.GetVariantValue(index).ToInt());
}

std::vector<unsigned long long> allCaseIds(vtkAbstractArray& column)
{
  std::vector<unsigned long long> ids;
  const vtkIdType count = column.GetNumberOfTuples();
  auto* data = vtkDataArray::SafeDownCast(&column);
  if (data && data->HasStandardMemoryLayout())
  {
    switch (data->GetDataType())
    {
      vtkTemplateMacro(convert(static_cast<const VTK_TT*>(data->GetVoidPointer(0)),
                               count,
                               data->GetNumberOfComponents(),
                               ids);
                       return ids);
    }
  }
  ids.reserve(static_cast<std::size_t>(count));
  for (vtkIdType i = 0; i < count; ++i)
  {
    ids.push_back(caseIdAt(column, i));
  }
  return ids;
}

void RowIndex::refresh(vtkTable& table)
{
  vtkAbstractArray* column = table.GetNumberOfColumns() > 0 ? table.GetColumn(0) : nullptr;
  const vtkMTimeType time = std::max(table.GetMTime(), column ? column->GetMTime() : 0);
  if (indexedTable == &table && indexedColumn == column && indexedTime == time)
  {
    return;
  }
  indexedTable = &table;
  indexedColumn = column;
  indexedTime = time;
  idOfRow = column ? allCaseIds(*column) : std::vector<unsigned long long>();
  // A column may be longer than the table says; only the table's rows count.
  idOfRow.resize(
    std::min<std::size_t>(idOfRow.size(), static_cast<std::size_t>(table.GetNumberOfRows())));
  rowsById.resize(idOfRow.size());
  for (std::size_t row = 0; row < idOfRow.size(); ++row)
  {
    rowsById[row] = { idOfRow[row], static_cast<vtkIdType>(row) };
  }
  std::sort(rowsById.begin(), rowsById.end());

  denseIndex.clear();
  if (!rowsById.empty())
  {
    firstId = rowsById.front().first;
    const unsigned long long span = rowsById.back().first - firstId;
    if (span < 4 * static_cast<unsigned long long>(rowsById.size()) + 64)
    {
      denseIndex.assign(static_cast<std::size_t>(span) + 1, -1);
      for (std::size_t i = 0; i < rowsById.size();)
      {
        std::size_t next = i + 1;
        while (next < rowsById.size() && rowsById[next].first == rowsById[i].first)
          ++next;
        denseIndex[static_cast<std::size_t>(rowsById[i].first - firstId)] =
          next == i + 1 ? static_cast<std::int64_t>(rowsById[i].second)
                        : -2 - static_cast<std::int64_t>(i);
        i = next;
      }
    }
  }
}

const std::vector<unsigned long long>& RowIndex::caseIdsOf(vtkTable& table)
{
  refresh(table);
  return idOfRow;
}

const std::vector<vtkIdType>& RowIndex::rowsOf(vtkTable& table,
                                               const std::set<unsigned long long>& ids)
{
  refresh(table);
  // The buffer is kept between calls: large selections then reuse memory already mapped.
  std::vector<vtkIdType>& rows = selectedRows;
  rows.clear();
  if (ids.empty() || rowsById.empty())
  {
    return rows;
  }
  // The rows of the selected ids are gathered in id order. Tables are usually ordered by case
  // id, and then that is row order already; otherwise the rows are marked and collected in row
  // order in one pass, rather than sorted.
  rows.reserve(std::min(ids.size(), rowsById.size()));
  const auto collectFrom = [&](std::size_t position, unsigned long long id)
  {
    for (; position < rowsById.size() && rowsById[position].first == id; ++position)
      rows.push_back(rowsById[position].second);
  };
  if (!denseIndex.empty())
  {
    const unsigned long long lastId = firstId + denseIndex.size() - 1;
    for (auto id = ids.lower_bound(firstId); id != ids.end() && *id <= lastId; ++id)
    {
      const std::int64_t entry = denseIndex[static_cast<std::size_t>(*id - firstId)];
      if (entry >= 0)
        rows.push_back(static_cast<vtkIdType>(entry));
      else if (entry < -1)
        collectFrom(static_cast<std::size_t>(-2 - entry), *id);
    }
  }
  else
  {
    // Sparse ids: a few are looked up one by one, many are merged in one pass.
    const bool fewIds = ids.size() * 24 < rowsById.size();
    auto position = rowsById.begin();
    for (unsigned long long id : ids)
    {
      if (fewIds)
        position = std::lower_bound(position, rowsById.end(), std::make_pair(id, vtkIdType(0)));
      else
        while (position != rowsById.end() && position->first < id)
          ++position;
      if (position == rowsById.end())
        break;
      collectFrom(static_cast<std::size_t>(position - rowsById.begin()), id);
    }
  }
  if (!std::is_sorted(rows.begin(), rows.end()))
  {
    std::vector<unsigned char> marked(idOfRow.size(), 0);
    for (vtkIdType row : rows)
      marked[static_cast<std::size_t>(row)] = 1;
    rows.clear();
    for (std::size_t row = 0; row < marked.size(); ++row)
    {
      if (marked[row])
        rows.push_back(static_cast<vtkIdType>(row));
    }
  }
  return rows;
}

} // namespace caseids
