#pragma once

#include <vtkDoubleArray.h>
#include <vtkIntArray.h>
#include <vtkSmartPointer.h>
#include <vtkTableAlgorithm.h>
#include <vtkWeakPointer.h>

#include <memory>
#include <string>
#include <vector>

namespace explorer
{

class CaseKeys;

/// Passes a table of cases on for a plot: column 0 ("case key") holds each row's case key as a
/// 32-bit integer in place of its case id (see CaseKeys), followed by the columns the plot shows.
/// Only those columns are passed: the invalid points filter after it copies every column it is
/// given, 8 MB each at a million cases.
///
/// A shown column named caseOrderColumnName is the case's order in the study (1 for the first
/// case), so that a variable can be plotted against it.
///
/// The keys are made again only when the input's rows change: another column shown (a new X)
/// passes the same key column on.
class vtkCaseKeysFilter : public vtkTableAlgorithm
{
public:
  static vtkCaseKeysFilter* New();
  vtkTypeMacro(vtkCaseKeysFilter, vtkTableAlgorithm);
  void PrintSelf(ostream& os, vtkIndent indent) override;

  /// The name of column 0 of the output.
  static const char* keyColumnName;
  /// The name of the case order's column.
  static const char* caseOrderColumnName;

  /// The keys of the study's cases; without them the rows are numbered from 0.
  void SetKeys(std::shared_ptr<const CaseKeys> keys);
  /// The columns passed on besides the keys, by name; names the table lacks are left out.
  void SetColumns(const std::vector<std::string>& names);

protected:
  vtkCaseKeysFilter() = default;
  ~vtkCaseKeysFilter() override = default;
  int RequestData(vtkInformation* request,
                  vtkInformationVector** inputVector,
                  vtkInformationVector* outputVector) override;

private:
  vtkCaseKeysFilter(const vtkCaseKeysFilter&) = delete;
  void operator=(const vtkCaseKeysFilter&) = delete;

  std::shared_ptr<const CaseKeys> Keys;
  std::vector<std::string> Columns;
  // The keys of the rows last keyed, and their order column once asked for; what they were
  // made from: the input's case id column (a new one is a new object, or the same one modified)
  // and its row count.
  vtkSmartPointer<vtkIntArray> KeyColumn;
  vtkSmartPointer<vtkDoubleArray> OrderColumn;
  vtkWeakPointer<vtkAbstractArray> KeyedIds;
  vtkMTimeType KeyedIdsTime = 0;
  vtkIdType KeyedRows = -1;
};

} // namespace explorer
