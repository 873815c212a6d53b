#pragma once

#include "datamanagement/Variable.h"
#include "datamanagement/WeakPtr.h"

#include <boost/shared_ptr.hpp>
#include <vtkSmartPointer.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

class DataPipelineManagerInterface;
class Project;
class vtkIdTypeArray;
class vtkTable;

namespace plexa
{
template<typename T>
class PropertyAbstract;
}

namespace explorer
{

class CaseKeys;

/// What the scatter plot shows of a study: the rows it plots, what it leaves out and why, and
/// the ranges and ticks its axes take. It has no widget and draws nothing.
///
/// The plotted table holds the shown cases that have a value of X and of Y: column 0 their case
/// keys (see CaseKeys), then X (the case order when no X is chosen), Y and the colour. A case
/// without a colour value is plotted (and drawn grey).
class ScatterPlotModel
{
public:
  using VariableProperty = plexa::PropertyAbstract<WeakPtr<Variable>>;

  /// The column X reads without an X variable: each case's place in the study, from 1.
  static const char* const caseOrder;

  ScatterPlotModel(const DataPipelineManagerInterface& pipeline,
                   std::shared_ptr<const Project> project,
                   std::shared_ptr<const CaseKeys> keys,
                   boost::shared_ptr<const VariableProperty> x,
                   boost::shared_ptr<const VariableProperty> y,
                   boost::shared_ptr<const VariableProperty> colour);
  ~ScatterPlotModel();
  ScatterPlotModel(const ScatterPlotModel&) = delete;
  ScatterPlotModel& operator=(const ScatterPlotModel&) = delete;

  /// Leaves out, from the next update on, the cases whose X (or Y) is at or below zero, which a
  /// logarithmic axis cannot place.
  void setLogAxes(bool x, bool y);
  /// Reads the plotted table again from the pipeline and the variables; null without a Y.
  vtkSmartPointer<vtkTable> update();
  /// The table of the last update, or null.
  vtkTable* table() const;
  /// The names of the plotted table's X and Y columns.
  std::string xColumn() const;
  std::string yColumn() const;

  /// What the plot says over its points: how many shown cases it leaves out for want of X or Y,
  /// or why it plots nothing; empty when it shows every case.
  std::string leftOutNote() const;
  /// How many plotted cases have no value of the colour variable; 0 without one.
  std::size_t withoutColour() const;

  /// The row of the plotted table that shows a case, or -1; and the case of a row.
  long long rowOfCase(unsigned long long caseId) const;
  /// The rows that show the cases (ids in increasing order), in increasing order; and the cases
  /// of rows, in the rows' order (rows the table lacks are left out).
  std::vector<int> rowsOfCases(const std::vector<unsigned long long>& sortedCaseIds) const;
  std::vector<unsigned long long> caseIdsOfRows(const vtkIdTypeArray& rows) const;
  bool caseOfKey(long long key, unsigned long long& caseId) const;

  /// Half the mean gap between the values of a discrete variable, 0 for others: the first and
  /// last values of a sweep then sit as far from the ends of the axis as from their neighbours.
  double halfGap(const Variable& variable) const;

  /// The range an axis takes to show values from `min` to `max` whole: widened by a few
  /// percent, by at least a marker (`markerShare` of the axis's length), and by `halfGap`, then
  /// rounded outwards to a hundredth of the span on a nice number. A single value is centred,
  /// with a tenth of itself (or 1 around 0) on each side. False for non-finite values.
  static bool axisRange(double min,
                        double max,
                        double markerShare,
                        double halfGap,
                        double& from,
                        double& to);
  /// The ticks of a custom grid spacing: every multiple of `spacing` from `min` to `max`, none
  /// of them "-0"; empty for a spacing that is not positive or would make over 10,000 ticks.
  static std::vector<double> customTicks(double min, double max, double spacing);
  /// The listed rows of a table, with the named columns only (those it has), in that order.
  static vtkSmartPointer<vtkTable> rowsOf(vtkTable& table,
                                          vtkIdTypeArray& rows,
                                          const std::vector<std::string>& names);

private:
  struct Impl;
  std::unique_ptr<Impl> d;
};

} // namespace explorer
