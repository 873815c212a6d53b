#include "datapipeline/FilterRangeFinder.h"

#include "datapipeline/RangeFilter.h"
#include "datapipeline/ValueSetFilter.h"

#include <cmath>
#include <limits>

FilterRangeFinder::FilterRangeFinder(const FilterInterface& filter)
  : found(std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::quiet_NaN())
{
  if (const auto* range = dynamic_cast<const RangeFilter*>(&filter))
  {
    found = range->range();
  }
  else if (const auto* set = dynamic_cast<const ValueSetFilter*>(&filter))
  {
    for (const auto& value : set->values())
    {
      const double number = value.toDouble();
      if (std::isnan(number))
        continue;
      if (std::isnan(found.first) || number < found.first)
        found.first = number;
      if (std::isnan(found.second) || number > found.second)
        found.second = number;
    }
  }
}

std::pair<double, double> FilterRangeFinder::range() const
{
  return found;
}
