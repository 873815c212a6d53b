#pragma once

#include <vtkTableAlgorithm.h>

#include <string>
#include <vector>

namespace explorer
{

/// Passes a table on with its case-id column (column 0) as doubles, and of its other columns
/// only those a plot shows. The invalid points filter copies only bit, char, int, double and
/// string columns, and the case ids of the pipeline are unsigned 64-bit integers; as doubles they
/// survive the filter exactly up to 2^53, more than the 32 bits the chart's selection reads of
/// them. The filter copies every column it is given: at a million cases each is 8 MB.
class vtkPlottableCaseIds : public vtkTableAlgorithm
{
public:
  static vtkPlottableCaseIds* New();
  vtkTypeMacro(vtkPlottableCaseIds, vtkTableAlgorithm);

  /// The columns passed on besides the case ids, by name; names the table lacks are left out.
  void SetColumns(const std::vector<std::string>& names);

protected:
  vtkPlottableCaseIds() = default;
  ~vtkPlottableCaseIds() override = default;
  int RequestData(vtkInformation* request,
                  vtkInformationVector** inputVector,
                  vtkInformationVector* outputVector) override;

private:
  vtkPlottableCaseIds(const vtkPlottableCaseIds&) = delete;
  void operator=(const vtkPlottableCaseIds&) = delete;

  std::vector<std::string> columns;
};

} // namespace explorer
