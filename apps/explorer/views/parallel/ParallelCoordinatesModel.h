#pragma once

#include "CaseRowIndex.h"

#include "datamanagement/Variable.h"
#include "datamanagement/WeakPtr.h"

#include <limits>
#include <set>
#include <string>
#include <vector>

class Project;
class vtkTable;

namespace explorer
{

/// One axis of parallel coordinates: its variable, and where each shown case lies on it, from 0
/// (bottom) to 1 (top), NaN for a missing value. A text variable's categories (from the whole
/// study, sorted, so that they stay in place as filters change) are spread evenly.
/// A numeric axis may be logarithmic: its range is then that of the values above zero, and the
/// values at or below zero sit with the missing ones, counted.
struct ParallelAxis
{
  WeakPtr<Variable> variable;
  std::string name;
  bool text = false;
  bool log = false;
  double min = 0;
  double max = 1;
  std::vector<std::string> categories;
  std::vector<float> position;
  /// Shown cases at or below zero on a logarithmic axis.
  std::size_t notPositive = 0;

  /// Where a number lies on the axis, from 0 to 1; NaN where it cannot be placed.
  float place(double value) const;
  /// The number at a place on the axis.
  double valueAt(double place) const;
};

/// What parallel coordinates show of the shown cases: one line per case across the axes, its
/// colour's place on the colour scale, and which lines are selected. No widget.
class ParallelCoordinatesModel
{
public:
  static constexpr float missing = std::numeric_limits<float>::quiet_NaN();

  /// Reads the shown cases (a table of the pipeline's output) for these axes and colour; the
  /// axes of the variables in `logAxes` are logarithmic.
  void reload(vtkTable& shown,
              const Project& project,
              const std::vector<WeakPtr<Variable>>& axes,
              const WeakPtr<Variable>& colour,
              const std::vector<WeakPtr<Variable>>& logAxes = {});
  /// The rows of the selected cases.
  void select(const std::vector<unsigned long long>& caseIds);

  const std::vector<ParallelAxis>& axes() const { return axesShown; }
  const CaseIds& caseIds() const { return rowOfCase.caseIds(); }
  /// Each line's place on the colour scale, from 0 to 1; NaN without a colour value.
  const std::vector<float>& colour() const { return colours; }
  const std::vector<int>& selectedRows() const { return selected; }

  /// Where a value lies on an axis, from 0 to 1 (a category's index on a text axis); NaN for a
  /// missing value.
  float positionOf(std::size_t axis, double value) const;

private:
  std::vector<ParallelAxis> axesShown;
  std::vector<float> colours;
  CaseRowIndex rowOfCase;
  std::vector<int> selected;
};

} // namespace explorer
