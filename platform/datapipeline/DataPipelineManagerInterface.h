#pragma once

#include "datamanagement/Variable.h"
#include "datamanagement/WeakPtr.h"
#include "datapipeline/quen_analyzer_datapipeline_export.h"

#include <boost/shared_ptr.hpp>
#include <boost/signals2/signal.hpp>
#include <vtkSmartPointer.h>

#include <vector>

class FilterInterface;
class vtkTable;
class vtkTableAlgorithm;

/// The data pipeline of a study: the cases as a table, and filters on variables that decide
/// which cases the views show.
class QUEN_ANALYZER_DATAPIPELINE_EXPORT DataPipelineManagerInterface
{
public:
  using ChangedSignal = boost::signals2::signal<void()>;

  virtual ~DataPipelineManagerInterface();

  /// Every case: column 0 "case_id" (unsigned 64-bit integers), then one column per variable
  /// named after it, doubles for numeric variables and strings for text variables.
  virtual vtkSmartPointer<vtkTable> cases() const = 0;
  /// The algorithm whose output holds, in the same columns and order, the cases that pass every
  /// filter in effect. It re-executes on its next update after any change.
  virtual vtkSmartPointer<vtkTableAlgorithm> output() const = 0;
  /// The filter on a variable, in effect or not; empty when the variable has none.
  virtual boost::shared_ptr<FilterInterface> filter(const WeakPtr<Variable>& variable) const = 0;
  /// The filters in effect.
  virtual std::vector<boost::shared_ptr<FilterInterface>> activeFilters() const = 0;
  /// Connects a listener told of every change of the pipeline's data: new cases, a filter
  /// added, removed, switched on or off, or changed.
  virtual boost::signals2::connection connectSignalPipelineChanged(
    const ChangedSignal::slot_type& slot) const = 0;
};
