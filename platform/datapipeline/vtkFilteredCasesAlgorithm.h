#pragma once

#include "datapipeline/quen_analyzer_datapipeline_export.h"

#include <boost/shared_ptr.hpp>
#include <vtkSmartPointer.h>
#include <vtkTableAlgorithm.h>

#include <vector>

class FilterInterface;
class vtkTable;

/// The output stage of the data pipeline: a source whose output table holds the rows of the
/// cases table that pass every given filter, in the same columns and order. Without filters the
/// output shares the cases table's columns.
class QUEN_ANALYZER_DATAPIPELINE_EXPORT vtkFilteredCasesAlgorithm : public vtkTableAlgorithm
{
public:
  static vtkFilteredCasesAlgorithm* New();
  vtkTypeMacro(vtkFilteredCasesAlgorithm, vtkTableAlgorithm);
  void PrintSelf(ostream& os, vtkIndent indent) override;

  void SetCases(vtkTable* cases);
  vtkTable* GetCases();
  /// The filters to apply; each works on the column named after its variable. A filter whose
  /// variable has no column is ignored.
  void SetFilters(const std::vector<boost::shared_ptr<FilterInterface>>& filters);

protected:
  vtkFilteredCasesAlgorithm();
  ~vtkFilteredCasesAlgorithm() override;

  int RequestData(vtkInformation* request,
                  vtkInformationVector** inputVector,
                  vtkInformationVector* outputVector) override;

private:
  vtkFilteredCasesAlgorithm(const vtkFilteredCasesAlgorithm&) = delete;
  void operator=(const vtkFilteredCasesAlgorithm&) = delete;

  vtkSmartPointer<vtkTable> Cases;
  std::vector<boost::shared_ptr<FilterInterface>> Filters;
};
