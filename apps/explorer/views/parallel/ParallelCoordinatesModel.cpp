#include "views/parallel/ParallelCoordinatesModel.h"

#include "datamanagement/Project.h"

#include <vtkDoubleArray.h>
#include <vtkStringArray.h>
#include <vtkTable.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace explorer
{

namespace
{

ParallelAxis readAxis(vtkTable& shown,
                      const Project& project,
                      const WeakPtr<Variable>& handle,
                      bool log)
{
  const Variable variable = handle.lock();
  const vtkIdType rows = shown.GetNumberOfRows();
  ParallelAxis axis;
  axis.variable = handle;
  axis.name = variable.name();
  axis.position.assign(static_cast<std::size_t>(rows));
  vtkAbstractArray* column = shown.GetColumnByName(variable.name().c_str());
  if (auto* texts = vtkStringArray::SafeDownCast(column))
  {
    axis.text = true;
    if (const auto* all = project.textValues(variable))
    {
      axis.categories = *all;
      std::sort(axis.categories.begin(), axis.categories.end());
      axis.categories.erase(std::unique(axis.categories.begin(), axis.categories.end()),
                            axis.categories.end());
    }
    const double steps = std::max<double>(static_cast<double>(axis.categories.size()) - 1, 1);
    for (vtkIdType row = 0; row < rows; ++row)
    {
      const auto found =
        std::lower_bound(axis.categories.begin(), axis.categories.end(), texts->GetValue(row));
      if (found != axis.categories.end() && *found == texts->GetValue(row))
        axis.position.set(
          static_cast<std::size_t>(row),
          axis.categories.size() == 1
            ? 0.5f
            : static_cast<float>(static_cast<double>(found - axis.categories.begin()) / steps));
    }
  }
  else if (auto* numbers = vtkDoubleArray::SafeDownCast(column))
  {
    std::tie(axis.min, axis.max) = variable.range();
    axis.log = log;
    if (log && !(axis.min > 0))
    {
      // The range of the study's values above zero, so that the axis stays as filters change.
      axis.min = std::numeric_limits<double>::infinity();
      axis.max = -std::numeric_limits<double>::infinity();
      if (const auto* all = project.numericValues(variable))
        for (double value : *all)
          if (value > 0)
          {
            axis.min = std::min(axis.min, value);
            axis.max = std::max(axis.max, value);
          }
      if (!(axis.min <= axis.max))
        axis.min = axis.max = 1;
    }
    for (vtkIdType row = 0; row < rows; ++row)
    {
      const double value = numbers->GetValue(row);
      if (log && value <= 0)
        ++axis.notPositive;
      else
        axis.position.set(static_cast<std::size_t>(row), axis.place(value));
    }
  }
  return axis;
}

} // namespace

void ParallelCoordinatesModel::reload(vtkTable& shown,
                                      const Project& project,
                                      const std::vector<WeakPtr<Variable>>& axes,
                                      const WeakPtr<Variable>& colour,
                                      const std::vector<WeakPtr<Variable>>& logAxes)
{
  axesShown.clear();
  for (const auto& variable : axes)
    if (!variable.lock().isNull())
      axesShown.push_back(
        readAxis(shown,
                 project,
                 variable,
                 std::find(logAxes.begin(), logAxes.end(), variable) != logAxes.end()));

  rowOfCase.assign(CaseIds(shown));
  const CaseIds& ids = rowOfCase.caseIds();

  colours.assign(ids.size());
  const Variable colourVariable = colour.lock();
  auto* numbers =
    colourVariable.isNull()
      ? nullptr
      : vtkDoubleArray::SafeDownCast(shown.GetColumnByName(colourVariable.name().c_str()));
  if (numbers)
  {
    const auto range = colourVariable.range();
    const double span = range.second - range.first;
    for (std::size_t row = 0; row < ids.size(); ++row)
    {
      const double value = numbers->GetValue(static_cast<vtkIdType>(row));
      if (!std::isnan(value))
        colours.set(row, span > 0 ? static_cast<float>((value - range.first) / span) : 0.5f);
    }
  }
  selected.clear();
}

void ParallelCoordinatesModel::select(const std::vector<unsigned long long>& caseIds)
{
  selected = rowOfCase.rowsOf(caseIds);
}

float ParallelCoordinatesModel::positionOf(std::size_t axis, double value) const
{
  const ParallelAxis& a = axesShown.at(axis);
  if (std::isnan(value))
    return missing;
  if (a.text)
    return a.categories.size() <= 1
             ? 0.5f
             : static_cast<float>(value / static_cast<double>(a.categories.size() - 1));
  return a.place(value);
}

float ParallelAxis::place(double value) const
{
  if (std::isnan(value) || (log && value <= 0))
    return ParallelCoordinatesModel::missing;
  if (!(max > min))
    return 0.5f;
  return static_cast<float>(log ? (std::log10(value) - std::log10(min)) /
                                    (std::log10(max) - std::log10(min))
                                : (value - min) / (max - min));
}

double ParallelAxis::valueAt(double at) const
{
  return log ? std::pow(10.0, std::log10(min) + at * (std::log10(max) - std::log10(min)))
             : min + at * (max - min);
}

} // namespace explorer
