#include "datapipeline/FilterFactoryInterface.h"

#include "datapipeline/RangeFilter.h"
#include "datapipeline/ValueSetFilter.h"

#include <boost/make_shared.hpp>

#include <limits>

FilterFactoryInterface::~FilterFactoryInterface() = default;

boost::shared_ptr<FilterInterface> FilterFactory::createFilter(
  FilterType type,
  const WeakPtr<Variable>& variable) const
{
  switch (type)
  {
    case Range:
      return boost::make_shared<RangeFilter>(variable,
                                             -std::numeric_limits<double>::infinity(),
                                             std::numeric_limits<double>::infinity());
    case ValueSet:
      return boost::make_shared<ValueSetFilter>(variable, std::set<Variant>());
  }
  return {};
}
