#include "views/line/LineGroups.h"

#include "analyzer_common/NiceNumber.h"

#include <vtkDoubleArray.h>
#include <vtkStringArray.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <sstream>

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

// A column's values as group numbers, through sorted distinct keys and a label per key.
template<typename Key, typename LabelOf>
ColumnGroups groupsOfKeys(const std::vector<Key>& keys,
                          const std::vector<bool>& missing,
                          LabelOf labelOf)
{
  std::vector<Key> distinct;
  for (std::size_t row = 0; row < keys.size(); ++row)
    if (!missing[row])
      distinct.push_back(keys[row]);
  std::sort(distinct.begin(), distinct.end());
  distinct.erase(std::unique(distinct.begin(), distinct.end()), distinct.end());
  ColumnGroups groups;
  for (const Key& key : distinct)
    groups.labels.push_back(labelOf(key));
  const bool anyMissing = std::find(missing.begin(), missing.end(), true) != missing.end();
  if (anyMissing)
    groups.labels.emplace_back(missingLabel);
  groups.groupOfRow.resize(keys.size());
  for (std::size_t row = 0; row < keys.size(); ++row)
    groups.groupOfRow[row] =
      missing[row]
        ? static_cast<int>(distinct.size())
        : static_cast<int>(std::lower_bound(distinct.begin(), distinct.end(), keys[row]) -
                           distinct.begin());
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
  std::vector<bool> missing(rows, false);
  if (auto* texts = vtkStringArray::SafeDownCast(&column))
  {
    std::vector<std::string> keys(rows);
    for (std::size_t row = 0; row < rows; ++row)
      keys[row] = texts->GetValue(static_cast<vtkIdType>(row));
    return groupsOfKeys(keys, missing, [](const std::string& key) { return key; });
  }
  auto* numbers = vtkDoubleArray::SafeDownCast(&column);
  if (!numbers)
    return { { "" }, std::vector<int>(rows, 0) };
  const double* values = numbers->GetPointer(0);
  std::vector<double> keys(values, values + rows);
  for (std::size_t row = 0; row < rows; ++row)
    missing[row] = !std::isfinite(keys[row]);

  std::vector<double> distinct;
  for (std::size_t row = 0; row < rows && distinct.size() <= LineGroups::maxGroupsPerVariable;
       ++row)
    if (!missing[row] && std::find(distinct.begin(), distinct.end(), keys[row]) == distinct.end())
      distinct.push_back(keys[row]);
  if (distinct.size() <= LineGroups::maxGroupsPerVariable)
    return groupsOfKeys(keys, missing, numberText);

  // A continuous variable: its values by interval. Keys are the intervals' numbers.
  double min = INFINITY;
  double max = -INFINITY;
  for (std::size_t row = 0; row < rows; ++row)
    if (!missing[row])
    {
      min = std::min(min, keys[row]);
      max = std::max(max, keys[row]);
    }
  const std::vector<double> edges = niceEdges(min, max, LineGroups::maxGroupsPerVariable);
  for (std::size_t row = 0; row < rows; ++row)
    if (!missing[row])
      keys[row] = static_cast<double>(std::upper_bound(edges.begin(), edges.end(), keys[row]) -
                                      edges.begin() - 1);
  return groupsOfKeys(keys,
                      missing,
                      [&edges](double key)
                      {
                        const auto i = static_cast<std::size_t>(key);
                        return "[" + numberText(edges[i]) + ", " + numberText(edges[i + 1]) + ")";
                      });
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
  const auto width = static_cast<int>(second.labels.size());
  std::vector<int> pairIndex(first.labels.size() * second.labels.size(), -1);
  for (std::size_t row = 0; row < rows; ++row)
    pairIndex[static_cast<std::size_t>(first.groupOfRow[row] * width + second.groupOfRow[row])] = 0;
  for (std::size_t pair = 0; pair < pairIndex.size(); ++pair)
    if (pairIndex[pair] == 0)
    {
      pairIndex[pair] = static_cast<int>(groups.labels.size());
      groups.labels.push_back(first.labels[pair / static_cast<std::size_t>(width)] + ", " +
                              second.labels[pair % static_cast<std::size_t>(width)]);
    }
  groups.groupOfRow.resize(rows);
  for (std::size_t row = 0; row < rows; ++row)
    groups.groupOfRow[row] =
      pairIndex[static_cast<std::size_t>(first.groupOfRow[row] * width + second.groupOfRow[row])];
  return groups;
}

} // namespace explorer
