#pragma once

#include <string>
#include <vector>

class vtkAbstractArray;

namespace explorer
{

/// The groups a line plot draws one line each for: the cases split by the values of zero, one or
/// two variables. A text variable, or a number of at most `maxGroupsPerVariable` values, gives
/// one group per value; a continuous number is cut into at most that many intervals on nice
/// numbers ("[0, 20)"). Missing values form a group of their own, "missing", listed last.
struct LineGroups
{
  static constexpr std::size_t maxGroupsPerVariable = 8;

  /// Each group's label: values of two variables are joined by ", ". One empty label without
  /// variables.
  std::vector<std::string> labels;
  /// Each row's group, an index into labels.
  std::vector<int> groupOfRow;
};

/// How a column of a variable splits its rows: a label per group and each row's group.
struct ColumnGroups
{
  std::vector<std::string> labels;
  std::vector<int> groupOfRow;
};

/// The groups of one column, a vtkDoubleArray or a vtkStringArray.
ColumnGroups groupsOf(vtkAbstractArray& column);

/// The intervals on nice numbers that cut [min, max] into at most `most` pieces: the edges, from
/// a multiple of the step at or below min to one above max.
std::vector<double> niceEdges(double min, double max, std::size_t most);

/// A continuous X of a response curve, cut into at most `most` intervals on nice numbers: each
/// value becomes its interval's middle, so that the cases of an interval make one point with
/// their spread, instead of a line through every case. An X of at most `most` values (a sweep) is
/// left as it is; the result says whether it was cut.
bool intoIntervals(std::vector<double>& x, std::size_t most);
/// Whether x has at most `most` finite values, and would be left as it is by intoIntervals.
bool fewValues(const double* x, std::size_t size, std::size_t most);

/// The groups of the rows by the columns given (none, one or two), only the combinations the
/// rows hold, in the order of the first column's groups, then the second's.
LineGroups lineGroups(const std::vector<vtkAbstractArray*>& columns, std::size_t rows);

} // namespace explorer
