#pragma once

#include <vtkTableAlgorithm.h>

namespace explorer
{

/// Passes a table on with its case-id column (column 0) as doubles. The invalid points filter
/// copies only bit, char, int, double and string columns, and the case ids of the pipeline are
/// unsigned 64-bit integers; as doubles they survive the filter exactly up to 2^53, more than the
/// 32 bits the chart's selection reads of them.
class vtkPlottableCaseIds : public vtkTableAlgorithm
{
public:
  static vtkPlottableCaseIds* New();
  vtkTypeMacro(vtkPlottableCaseIds, vtkTableAlgorithm);

protected:
  vtkPlottableCaseIds() = default;
  ~vtkPlottableCaseIds() override = default;
  int RequestData(vtkInformation* request,
                  vtkInformationVector** inputVector,
                  vtkInformationVector* outputVector) override;

private:
  vtkPlottableCaseIds(const vtkPlottableCaseIds&) = delete;
  void operator=(const vtkPlottableCaseIds&) = delete;
};

} // namespace explorer
