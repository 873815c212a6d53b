#pragma once

#include "datapipeline/DataPipelineManagerInterface.h"

#include <memory>

class Project;
class RangeFilter;

/// The data pipeline of one study. The cases table is built from the project once; filters are
/// kept per variable (one each) and can be switched on and off without losing their condition.
class QUEN_ANALYZER_DATAPIPELINE_EXPORT DataPipelineManager : public DataPipelineManagerInterface
{
public:
  explicit DataPipelineManager(std::shared_ptr<const Project> project);
  ~DataPipelineManager() override;
  DataPipelineManager(const DataPipelineManager&) = delete;
  DataPipelineManager& operator=(const DataPipelineManager&) = delete;

  /// Shows another study: a new cases table, no filters; signals the change.
  void setProject(std::shared_ptr<const Project> project);
  std::shared_ptr<const Project> project() const;

  vtkSmartPointer<vtkTable> cases() const override;
  vtkSmartPointer<vtkTableAlgorithm> output() const override;
  boost::shared_ptr<FilterInterface> filter(const WeakPtr<Variable>& variable) const override;
  std::vector<boost::shared_ptr<FilterInterface>> activeFilters() const override;
  boost::signals2::connection connectSignalPipelineChanged(
    const ChangedSignal::slot_type& slot) const override;

  /// Puts a filter on its variable, in effect, replacing the filter the variable had.
  void setFilter(const boost::shared_ptr<FilterInterface>& filter);
  /// The range filter of the variable with the new range, in effect; made when the variable has
  /// no filter or a filter of another kind.
  boost::shared_ptr<RangeFilter> setRangeFilter(const WeakPtr<Variable>& variable,
                                                double min,
                                                double max);
  void removeFilter(const WeakPtr<Variable>& variable);
  /// Switches a variable's filter on or off; does nothing for a variable without a filter.
  void setFilterEnabled(const WeakPtr<Variable>& variable, bool enabled);
  bool isFilterEnabled(const WeakPtr<Variable>& variable) const;
  /// Every filter, in effect or not, in the order they were set.
  std::vector<boost::shared_ptr<FilterInterface>> filters() const;

private:
  struct Impl;
  std::unique_ptr<Impl> d;
};
