#include "views/line/LineGroups.h"

#include "analyzer_common/NiceNumber.h"

#include <vtkDoubleArray.h>
#include <vtkStringArray.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <numeric>
#include <sstream>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace explorer
{

namespace
{

const char* const missingLabel = "missing";

std::string numberText(double value)
{
  std::ostringstream text;
  text.precision(6);
  text << value;
  return text.str();
}

// A column's values as group numbers: each distinct key (`keyAt(row)`, for rows that are not
// `missing(row)`) found once, by a linear search while there are few (as sweeps have), then by
// a hash; then numbered in sorted order, with a label each.
template<typename KeyAt, typename Missing, typename LabelOf>
ColumnGroups groupsOfKeys(std::size_t rows, KeyAt keyAt, Missing missing, LabelOf labelOf)
{
  using Key = decltype(keyAt(std::size_t()));
  constexpr std::size_t searchedUpTo = 16;
  std::vector<Key> distinct;
  std::unordered_map<Key, int> index;
  ColumnGroups groups;
  groups.groupOfRow.assign(rows, -1);
  bool anyMissing = false;
  for (std::size_t row = 0; row < rows; ++row)
  {
    if (missing(row))
    {
      anyMissing = true;
      continue;
    }
    const Key key = keyAt(row);
    if (distinct.size() <= searchedUpTo)
    {
      const auto at = std::find(distinct.begin(), distinct.end(), key);
      groups.groupOfRow[row] = static_cast<int>(at - distinct.begin());
      if (at != distinct.end())
        continue;
      distinct.push_back(key);
      if (distinct.size() > searchedUpTo)
        for (std::size_t i = 0; i < distinct.size(); ++i)
          index.emplace(distinct[i], static_cast<int>(i));
      continue;
    }
    const auto [at, added] = index.emplace(key, static_cast<int>(distinct.size()));
    if (added)
      distinct.push_back(key);
    groups.groupOfRow[row] = at->second;
  }
  // The keys in sorted order; the missing group after them.
  std::vector<int> byKey(distinct.size());
  std::iota(byKey.begin(), byKey.end(), 0);
  std::sort(byKey.begin(), byKey.end(), [&](int a, int b) { return distinct[a] < distinct[b]; });
  std::vector<int> rank(distinct.size() + 1, static_cast<int>(distinct.size()));
  for (std::size_t i = 0; i < byKey.size(); ++i)
  {
    rank[static_cast<std::size_t>(byKey[i])] = static_cast<int>(i);
    groups.labels.push_back(labelOf(distinct[static_cast<std::size_t>(byKey[i])]));
  }
  if (anyMissing)
    groups.labels.emplace_back(missingLabel);
  const int missingIndex = static_cast<int>(distinct.size());
  for (int& group : groups.groupOfRow)
    group = rank[static_cast<std::size_t>(group < 0 ? missingIndex : group)];
  return groups;
}

} // namespace

std::vector<double> niceEdges(double min, double max, std::size_t most)
{
  if (!(max > min) || most == 0)
    return { min, max };
  double step = makeNiceNumber((max - min) / static_cast<double>(most));
  for (;;)
  {
    const double first = std::floor(min / step) * step;
    const auto pieces = static_cast<std::size_t>(std::floor((max - first) / step)) + 1;
    if (pieces <= most)
    {
      std::vector<double> edges;
      for (std::size_t i = 0; i <= pieces; ++i)
        edges.push_back(first + static_cast<double>(i) * step);
      return edges;
    }
    // The next nice number up: 1, 2, 5, 10...
    step = makeNiceNumber(step * 2.2);
  }
}

ColumnGroups groupsOf(vtkAbstractArray& column)
{
  const auto rows = static_cast<std::size_t>(column.GetNumberOfTuples());
  if (auto* texts = vtkStringArray::SafeDownCast(&column))
    return groupsOfKeys(
      rows,
      [texts](std::size_t row)
      { return std::string_view(texts->GetValue(static_cast<vtkIdType>(row))); },
      [](std::size_t) { return false; },
      [](std::string_view key) { return std::string(key); });
  auto* numbers = vtkDoubleArray::SafeDownCast(&column);
  if (!numbers)
    return { { "" }, std::vector<int>(rows, 0) };
  const double* values = numbers->GetPointer(0);
  const auto missing = [values](std::size_t row) { return !std::isfinite(values[row]); };

  std::vector<double> distinct;
  for (std::size_t row = 0; row < rows && distinct.size() <= LineGroups::maxGroupsPerVariable;
       ++row)
    if (!missing(row) && std::find(distinct.begin(), distinct.end(), values[row]) == distinct.end())
      distinct.push_back(values[row]);
  if (distinct.size() <= LineGroups::maxGroupsPerVariable)
    return groupsOfKeys(
      rows, [values](std::size_t row) { return values[row]; }, missing, numberText);

  // A continuous variable: its values by interval, the intervals' numbers as keys.
  double min = std::numeric_limits<double>::infinity();
  double max = -std::numeric_limits<double>::infinity();
  for (std::size_t row = 0; row < rows; ++row)
    if (!missing(row))
    {
      min = std::min(min, values[row]);
      max = std::max(max, values[row]);
    }
  const std::vector<double> edges = niceEdges(min, max, LineGroups::maxGroupsPerVariable);
  return groupsOfKeys(
    rows,
    [values, &edges](std::size_t row)
    {
      return static_cast<std::size_t>(std::upper_bound(edges.begin(), edges.end(), values[row]) -
                                      edges.begin() - 1);
    },
    missing,
    [&edges](std::size_t i)
    { return "[" + numberText(edges[i]) + ", " + numberText(edges[i + 1]) + ")"; });
}

bool fewValues(const double* x, std::size_t size, std::size_t most)
{
  std::unordered_set<double> seen;
  for (std::size_t i = 0; i < size && seen.size() <= most; ++i)
    if (std::isfinite(x[i]))
      seen.insert(x[i]);
  return seen.size() <= most;
}

bool intoIntervals(std::vector<double>& x, std::size_t most)
{
  if (fewValues(x.data(), x.size(), most))
    return false;
  double min = std::numeric_limits<double>::infinity();
  double max = -std::numeric_limits<double>::infinity();
  for (double value : x)
    if (std::isfinite(value))
    {
      min = std::min(min, value);
      max = std::max(max, value);
    }
  const std::vector<double> edges = niceEdges(min, max, most);
  for (double& value : x)
    if (std::isfinite(value))
    {
      const auto i = static_cast<std::size_t>(std::upper_bound(edges.begin(), edges.end(), value) -
                                              edges.begin() - 1);
      value = (edges[i] + edges[i + 1]) / 2;
    }
  return true;
}

LineGroups lineGroups(const std::vector<vtkAbstractArray*>& columns, std::size_t rows)
{
  LineGroups groups;
  if (columns.empty())
  {
    groups.labels = { "" };
    groups.groupOfRow.assign(rows, 0);
    return groups;
  }
  const ColumnGroups first = groupsOf(*columns[0]);
  if (columns.size() == 1)
    return { first.labels, first.groupOfRow };

  // Two variables: the pairs the rows hold, in the order of the first, then the second.
  const ColumnGroups second = groupsOf(*columns[1]);
  const std::size_t width = second.labels.size();
  const auto pairOf = [&](std::size_t row)
  {
    return static_cast<std::size_t>(first.groupOfRow[row]) * width +
           static_cast<std::size_t>(second.groupOfRow[row]);
  };
  std::vector<int> pairIndex(first.labels.size() * width, -1);
  for (std::size_t row = 0; row < rows; ++row)
    pairIndex[pairOf(row)] = 0;
  for (std::size_t pair = 0; pair < pairIndex.size(); ++pair)
    if (pairIndex[pair] == 0)
    {
      pairIndex[pair] = static_cast<int>(groups.labels.size());
      groups.labels.push_back(first.labels[pair / width] + ", " + second.labels[pair % width]);
    }
  groups.groupOfRow.resize(rows);
  for (std::size_t row = 0; row < rows; ++row)
    groups.groupOfRow[row] = pairIndex[pairOf(row)];
  return groups;
}

} // namespace explorer
