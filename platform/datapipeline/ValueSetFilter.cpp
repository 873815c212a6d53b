#include "datapipeline/ValueSetFilter.h"

#include <vtkDoubleArray.h>
#include <vtkStringArray.h>

ValueSetFilter::ValueSetFilter(const WeakPtr<Variable>& variable, std::set<Variant> values)
  : filteredVariable(variable)
  , allowed(std::move(values))
{
}

ValueSetFilter::~ValueSetFilter() = default;

FilterFactoryInterface::FilterType ValueSetFilter::type() const
{
  return FilterFactoryInterface::ValueSet;
}

WeakPtr<Variable> ValueSetFilter::variable() const
{
  return filteredVariable;
}

void ValueSetFilter::apply(vtkAbstractArray& column, std::vector<unsigned char>& keep) const
{
  const std::size_t rows = std::min<std::size_t>(keep.size(), column.GetNumberOfTuples());
  if (auto* numbers = vtkDoubleArray::SafeDownCast(&column))
  {
    for (std::size_t row = 0; row < rows; ++row)
      keep[row] &= static_cast<unsigned char>(
        allowed.count(Variant(numbers->GetValue(static_cast<vtkIdType>(row)))));
  }
  else if (auto* texts = vtkStringArray::SafeDownCast(&column))
  {
    for (std::size_t row = 0; row < rows; ++row)
      keep[row] &= static_cast<unsigned char>(
        allowed.count(Variant(texts->GetValue(static_cast<vtkIdType>(row)))));
  }
  else
  {
    std::fill(keep.begin(), keep.end(), 0);
  }
}

const std::set<Variant>& ValueSetFilter::values() const
{
  return allowed;
}

void ValueSetFilter::setValues(std::set<Variant> values)
{
  if (values == allowed)
  {
    return;
  }
  allowed = std::move(values);
  emitSignalFilterChanged();
}
