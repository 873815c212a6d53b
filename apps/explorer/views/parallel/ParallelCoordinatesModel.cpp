#include "views/parallel/ParallelCoordinatesModel.h"

#include "datamanagement/Project.h"
#include "views/parallel/Shares.h"

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

// An axis of the shown cases, its places still to be filled by placeRows.
struct AxisToPlace
{
  ParallelAxis axis;
  vtkStringArray* texts = nullptr;
  vtkDoubleArray* numbers = nullptr;
  // Numbers on a linear axis: each row has a place (NaN among them), set in one pass.
  bool linear() const { return numbers && !axis.log && axis.max > axis.min; }
};

// An axis's range or categories, and its column; read on the calling thread.
AxisToPlace readAxis(vtkTable& shown,
                     const Project& project,
                     const WeakPtr<Variable>& handle,
                     bool log)
{
  const Variable variable = handle.lock();
  AxisToPlace read;
  ParallelAxis& axis = read.axis;
  axis.variable = handle;
  axis.name = variable.name();
  vtkAbstractArray* column = shown.GetColumnByName(variable.name().c_str());
  if ((read.texts = vtkStringArray::SafeDownCast(column)))
  {
    axis.text = true;
    if (const auto* all = project.textValues(variable))
    {
      axis.categories = *all;
      std::sort(axis.categories.begin(), axis.categories.end());
      axis.categories.erase(std::unique(axis.categories.begin(), axis.categories.end()),
                            axis.categories.end());
    }
  }
  else if ((read.numbers = vtkDoubleArray::SafeDownCast(column)))
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
  }
  const auto rows = static_cast<std::size_t>(shown.GetNumberOfRows());
  read.linear() ? axis.position.allocate(rows) : axis.position.assign(rows);
  return read;
}

// Places the rows from `first` to `last` on an axis; returns how many of them are at or below
// zero on a logarithmic axis.
std::size_t placeRows(AxisToPlace& read, std::size_t first, std::size_t last)
{
  ParallelAxis& axis = read.axis;
  std::size_t notPositive = 0;
  if (read.texts)
  {
    const double steps = std::max<double>(static_cast<double>(axis.categories.size()) - 1, 1);
    for (std::size_t row = first; row < last; ++row)
    {
      const std::string& text = read.texts->GetValue(static_cast<vtkIdType>(row));
      const auto found = std::lower_bound(axis.categories.begin(), axis.categories.end(), text);
      if (found != axis.categories.end() && *found == text)
        axis.position.set(
          row,
          axis.categories.size() == 1
            ? 0.5f
            : static_cast<float>(static_cast<double>(found - axis.categories.begin()) / steps));
    }
  }
  else if (read.numbers && !read.linear())
  {
    for (std::size_t row = first; row < last; ++row)
    {
      const double value = read.numbers->GetValue(static_cast<vtkIdType>(row));
      if (axis.log && value <= 0)
        ++notPositive;
      else
        axis.position.set(row, axis.place(value));
    }
  }
  else if (read.numbers)
  {
    // A linear axis places each value by one multiplication rather than a division.
    const double* values = read.numbers->GetPointer(0);
    const double from = axis.min;
    const double scale = 1.0 / (axis.max - axis.min);
    axis.position.set(first,
                      last,
                      [=](std::size_t row)
                      { return static_cast<float>((values[row] - from) * scale); });
  }
  return notPositive;
}

} // namespace

void ParallelCoordinatesModel::reload(vtkTable& shown,
                                      const Project& project,
                                      const std::vector<WeakPtr<Variable>>& axes,
                                      const WeakPtr<Variable>& colour,
                                      const std::vector<WeakPtr<Variable>>& logAxes)
{
  std::vector<AxisToPlace> read;
  for (const auto& variable : axes)
    if (!variable.lock().isNull())
      read.push_back(
        readAxis(shown,
                 project,
                 variable,
                 std::find(logAxes.begin(), logAxes.end(), variable) != logAxes.end()));
  // Ten million rows on eight axes are placed by several threads, each over its share of rows.
  const auto rows = static_cast<std::size_t>(shown.GetNumberOfRows());
  const std::size_t shares = sharesOf(rows * read.size());
  std::vector<std::vector<std::size_t>> notPositive(shares, std::vector<std::size_t>(read.size()));
  eachShare(shares,
            [&](std::size_t share)
            {
              for (std::size_t a = 0; a < read.size(); ++a)
                notPositive[share][a] = placeRows(
                  read[a], shareStart(rows, shares, share), shareStart(rows, shares, share + 1));
            });
  axesShown.clear();
  for (std::size_t a = 0; a < read.size(); ++a)
  {
    for (std::size_t share = 0; share < shares; ++share)
      read[a].axis.notPositive += notPositive[share][a];
    axesShown.push_back(std::move(read[a].axis));
  }

  rowOfCase.assign(CaseIds(shown));
  const CaseIds& ids = rowOfCase.caseIds();

  const Variable colourVariable = colour.lock();
  auto* numbers =
    colourVariable.isNull()
      ? nullptr
      : vtkDoubleArray::SafeDownCast(shown.GetColumnByName(colourVariable.name().c_str()));
  if (!numbers || static_cast<std::size_t>(numbers->GetNumberOfValues()) < ids.size())
    colours.assign(ids.size());
  else
  {
    colours.allocate(ids.size());
    // Like the axes, ten million colours are placed by several threads.
    const auto range = colourVariable.range();
    const double from = range.first;
    const double span = range.second - range.first;
    const double* values = numbers->GetPointer(0);
    const std::size_t count = ids.size();
    const std::size_t colourShares = sharesOf(count);
    eachShare(colourShares,
              [&](std::size_t share)
              {
                colours.set(
                  shareStart(count, colourShares, share),
                  shareStart(count, colourShares, share + 1),
                  [=](std::size_t row)
                  {
                    const double value = values[row];
                    const float place = span > 0 ? static_cast<float>((value - from) / span) : 0.5f;
                    return value == value ? place : std::numeric_limits<float>::quiet_NaN();
                  });
              });
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
