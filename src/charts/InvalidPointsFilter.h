#pragma once

#include "datamanagement/Variable.h"
#include "datamanagement/WeakPtr.h"
#include "properties/PropertyAbstract.h"
#include "signals/SignalConnectionCollection.h"

#include <boost/shared_ptr.hpp>
#include <vtkSmartPointer.h>
#include <vtkTableAlgorithm.h>

#include <memory>
#include <string>
#include <vector>

/// A table filter that drops the rows a chart cannot plot: rows in which one of the given
/// variables holds NaN, and rows marked invalid (0) in the input's "ValidPointsMask" char
/// column. Row order is kept.
///
/// Only double columns are checked (infinities count as valid, integers are never NaN). The
/// output has the input's columns, but only columns of type bit, char, int, double (one
/// component) and string are filled; columns of other types (float, among others) are left as
/// the row-count change left them, on purpose. A variable that no longer exists is ignored; a
/// variable without a column, or no checked column at all, passes the input through unchanged.
/// Choosing another variable re-runs the filter on the next update. With no row dropped, the
/// number columns are the input's own. A run that keeps the rows the one before kept outputs the
/// very columns of numbers that run copied from a column unchanged since, unmodified: a plot
/// given a new X sees its Y unchanged, and copies it again only when other rows are dropped.
/// Likewise the rows of NaN in the last few columns checked are kept until a column's modification
/// time changes.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT InvalidPointsFilter : public vtkTableAlgorithm
{
public:
  using VariableProperty = plexa::PropertyAbstract<WeakPtr<Variable, unsigned long long>>;

  /// The variable of a source property while a condition holds, the empty variable otherwise
  /// (for instance the colour variable only while points are coloured). Read-only: setting it
  /// does nothing; a change of either source is signalled as a change of this property.
  class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT RelevanceDependentVariableProperty
    : public virtual VariableProperty
  {
  public:
    RelevanceDependentVariableProperty(boost::shared_ptr<VariableProperty> variable,
                                       boost::shared_ptr<plexa::PropertyAbstract<bool>> relevant);
    ~RelevanceDependentVariableProperty() override;

  protected:
    void storeValue(const WeakPtr<Variable, unsigned long long>& value) override;

  private:
    WeakPtr<Variable, unsigned long long> retrieveValue() const override;

    boost::shared_ptr<VariableProperty> variable;
    boost::shared_ptr<plexa::PropertyAbstract<bool>> relevant;
    SignalConnectionCollection connections;
  };

  /// "ValidPointsMask": the optional char column whose 0 marks a row invalid.
  static const std::string validPointsArrayName;

  vtkAbstractTypeMacro(InvalidPointsFilter, vtkTableAlgorithm);
  static vtkSmartPointer<InvalidPointsFilter> New(
    std::vector<boost::shared_ptr<const VariableProperty>> variableProperties);
  void PrintSelf(ostream& os, vtkIndent indent) override;

protected:
  ~InvalidPointsFilter() override;
  /// A filter over the same variable properties.
  vtkObjectBase* NewInstanceInternal() const override;

  int RequestData(vtkInformation* request,
                  vtkInformationVector** inputVector,
                  vtkInformationVector* outputVector) override;

private:
  explicit InvalidPointsFilter(
    std::vector<boost::shared_ptr<const VariableProperty>> variableProperties);
  InvalidPointsFilter(const InvalidPointsFilter&) = delete;
  void operator=(const InvalidPointsFilter&) = delete;

  std::vector<boost::shared_ptr<const VariableProperty>> variableProperties;
  SignalConnectionCollection connections;
  // What the last run that dropped rows kept, and the numbers it copied.
  struct Kept;
  std::unique_ptr<Kept> lastKept;
  struct ScannedColumns;
  std::unique_ptr<ScannedColumns> scanned;
};
