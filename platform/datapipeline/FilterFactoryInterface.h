#pragma once

#include "datamanagement/Variable.h"
#include "datamanagement/WeakPtr.h"
#include "datapipeline/quen_analyzer_datapipeline_export.h"

#include <boost/shared_ptr.hpp>

class FilterInterface;

/// Creates the filters a user can put on a variable.
class QUEN_ANALYZER_DATAPIPELINE_EXPORT FilterFactoryInterface
{
public:
  /// The kinds of filter. Range keeps the cases whose value lies in [min, max]; ValueSet keeps
  /// the cases whose value is one of a set.
  enum FilterType : int
  {
    Range = 0,
    ValueSet = 1
  };

  virtual ~FilterFactoryInterface();
  /// A new filter of that kind on the variable: a range from -inf to +inf (every number
  /// passes), or an empty value set (nothing passes until values are chosen).
  virtual boost::shared_ptr<FilterInterface> createFilter(
    FilterType type,
    const WeakPtr<Variable>& variable) const = 0;
};

/// The factory of the filters of this library.
class QUEN_ANALYZER_DATAPIPELINE_EXPORT FilterFactory : public FilterFactoryInterface
{
public:
  boost::shared_ptr<FilterInterface> createFilter(FilterType type,
                                                  const WeakPtr<Variable>& variable) const override;
};
