#pragma once

#include "datapipeline/FilterFactoryInterface.h"

#include <boost/signals2/signal.hpp>

#include <vector>

class vtkAbstractArray;

/// A condition on the values of one variable that a case must meet to pass the data pipeline.
class QUEN_ANALYZER_DATAPIPELINE_EXPORT FilterInterface
{
public:
  using ChangedSignal = boost::signals2::signal<void()>;

  FilterInterface();
  FilterInterface(const FilterInterface&) = delete;
  FilterInterface& operator=(const FilterInterface&) = delete;
  virtual ~FilterInterface();

  virtual FilterFactoryInterface::FilterType type() const = 0;
  virtual WeakPtr<Variable> variable() const = 0;
  /// Clears keep[i] for every row i whose value in `column` (the variable's column of the cases
  /// table: doubles or strings) does not pass. `keep` has one entry per row.
  virtual void apply(vtkAbstractArray& column, std::vector<unsigned char>& keep) const = 0;

  /// Reports every change of the condition.
  boost::signals2::connection connectSignalFilterChanged(
    const ChangedSignal::slot_type& slot) const;

protected:
  void emitSignalFilterChanged() const;

private:
  mutable ChangedSignal signalFilterChanged;
};

/// The kind of a filter.
QUEN_ANALYZER_DATAPIPELINE_EXPORT FilterFactoryInterface::FilterType getFilterType(
  const FilterInterface& filter);
