#include "datapipeline/RangeFilter.h"

#include <vtkDoubleArray.h>

RangeFilter::RangeFilter(const WeakPtr<Variable>& variable, double min, double max)
  : filteredVariable(variable)
  , min(min)
  , max(max)
{
}

RangeFilter::~RangeFilter() = default;

FilterFactoryInterface::FilterType RangeFilter::type() const
{
  return FilterFactoryInterface::Range;
}

WeakPtr<Variable> RangeFilter::variable() const
{
  return filteredVariable;
}

void RangeFilter::apply(vtkAbstractArray& column, std::vector<unsigned char>& keep) const
{
  auto* numbers = vtkDoubleArray::SafeDownCast(&column);
  if (!numbers)
  {
    std::fill(keep.begin(), keep.end(), 0);
    return;
  }
  const double* values = numbers->GetPointer(0);
  const std::size_t rows = std::min<std::size_t>(keep.size(), numbers->GetNumberOfTuples());
  for (std::size_t row = 0; row < rows; ++row)
  {
    // Written so that NaN fails both comparisons.
    keep[row] &= static_cast<unsigned char>(values[row] >= min && values[row] <= max);
  }
}

std::pair<double, double> RangeFilter::range() const
{
  return { min, max };
}

void RangeFilter::setRange(double newMin, double newMax)
{
  if (newMin == min && newMax == max)
  {
    return;
  }
  min = newMin;
  max = newMax;
  emitSignalFilterChanged();
}
