#pragma once

#include "common/Variant.h"
#include "datapipeline/FilterInterface.h"

#include <set>

/// Keeps the cases whose value of the variable is one of a set of values (compared as Variant:
/// numbers by value, texts byte by byte).
class QUEN_ANALYZER_DATAPIPELINE_EXPORT ValueSetFilter : public FilterInterface
{
public:
  ValueSetFilter(const WeakPtr<Variable>& variable, std::set<Variant> values);
  ~ValueSetFilter() override;

  FilterFactoryInterface::FilterType type() const override;
  WeakPtr<Variable> variable() const override;
  void apply(vtkAbstractArray& column, std::vector<unsigned char>& keep) const override;

  const std::set<Variant>& values() const;
  /// Changes the set; signals only when it differs.
  void setValues(std::set<Variant> values);

private:
  WeakPtr<Variable> filteredVariable;
  std::set<Variant> allowed;
};
