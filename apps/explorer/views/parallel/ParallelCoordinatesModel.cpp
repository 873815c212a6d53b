#include "views/parallel/ParallelCoordinatesModel.h"

#include "datamanagement/Project.h"

#include <vtkDoubleArray.h>
#include <vtkStringArray.h>
#include <vtkTable.h>

#include <algorithm>
#include <cmath>

namespace explorer
{

namespace
{

ParallelAxis readAxis(vtkTable& shown, const Project& project, const WeakPtr<Variable>& handle)
{
  const Variable variable = handle.lock();
  const vtkIdType rows = shown.GetNumberOfRows();
  ParallelAxis axis;
  axis.variable = handle;
  axis.name = variable.name();
  axis.position.assign(static_cast<std::size_t>(rows), ParallelCoordinatesModel::missing);
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
        axis.position[static_cast<std::size_t>(row)] =
          axis.categories.size() == 1
            ? 0.5f
            : static_cast<float>(static_cast<double>(found - axis.categories.begin()) / steps);
    }
  }
  else if (auto* numbers = vtkDoubleArray::SafeDownCast(column))
  {
    std::tie(axis.min, axis.max) = variable.range();
    const double span = axis.max - axis.min;
    for (vtkIdType row = 0; row < rows; ++row)
    {
      const double value = numbers->GetValue(row);
      if (!std::isnan(value))
        axis.position[static_cast<std::size_t>(row)] =
          span > 0 ? static_cast<float>((value - axis.min) / span) : 0.5f;
    }
  }
  return axis;
}

} // namespace

void ParallelCoordinatesModel::reload(vtkTable& shown,
                                      const Project& project,
                                      const std::vector<WeakPtr<Variable>>& axes,
                                      const WeakPtr<Variable>& colour)
{
  axesShown.clear();
  for (const auto& variable : axes)
    if (!variable.lock().isNull())
      axesShown.push_back(readAxis(shown, project, variable));

  ids = caseIdsOf(shown);
  rowOfCase.assign(ids);

  colours.assign(ids.size(), missing);
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
        colours[row] = span > 0 ? static_cast<float>((value - range.first) / span) : 0.5f;
    }
  }
  selected.clear();
}

void ParallelCoordinatesModel::select(const std::set<unsigned long long>& caseIds)
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
  return a.max > a.min ? static_cast<float>((value - a.min) / (a.max - a.min)) : 0.5f;
}

} // namespace explorer
