#pragma once

#include "datapipeline/quen_analyzer_datapipeline_export.h"

#include <utility>

class FilterInterface;

/// The numeric range a filter lets through: [min, max] of a range filter, the smallest and
/// largest number of a value-set filter, and (NaN, NaN) when the filter admits no number.
class QUEN_ANALYZER_DATAPIPELINE_EXPORT FilterRangeFinder
{
public:
  explicit FilterRangeFinder(const FilterInterface& filter);

  std::pair<double, double> range() const;

private:
  std::pair<double, double> found;
};
