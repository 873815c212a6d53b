#pragma once

#include "datapipeline/FilterInterface.h"

#include <utility>

/// Keeps the cases whose value of the variable lies in [min, max], both ends included. NaN and
/// text values never pass.
class QUEN_ANALYZER_DATAPIPELINE_EXPORT RangeFilter : public FilterInterface
{
public:
  RangeFilter(const WeakPtr<Variable>& variable, double min, double max);
  ~RangeFilter() override;

  FilterFactoryInterface::FilterType type() const override;
  WeakPtr<Variable> variable() const override;
  void apply(vtkAbstractArray& column, std::vector<unsigned char>& keep) const override;

  std::pair<double, double> range() const;
  /// Changes the range; signals only when it differs.
  void setRange(double min, double max);

private:
  WeakPtr<Variable> filteredVariable;
  double min;
  double max;
};
