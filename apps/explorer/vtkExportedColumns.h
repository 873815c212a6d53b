#pragma once

#include <vtkTableAlgorithm.h>

#include <memory>

class Project;

namespace explorer
{

/// Passes a table of cases on with a text column per tag of the study's files: the path of each
/// case's file with that tag, as the study wrote it (empty for a case without one). An exported
/// table then keeps what a Cinema database's FILE columns said. A column is named after its tag,
/// or after the tag with " (file)" when a variable has the tag's name.
class vtkFilePathColumns : public vtkTableAlgorithm
{
public:
  static vtkFilePathColumns* New();
  vtkTypeMacro(vtkFilePathColumns, vtkTableAlgorithm);
  void PrintSelf(ostream& os, vtkIndent indent) override;

  void SetProject(std::shared_ptr<const Project> project);

protected:
  vtkFilePathColumns() = default;
  ~vtkFilePathColumns() override = default;
  int RequestData(vtkInformation* request,
                  vtkInformationVector** inputVector,
                  vtkInformationVector* outputVector) override;

private:
  vtkFilePathColumns(const vtkFilePathColumns&) = delete;
  void operator=(const vtkFilePathColumns&) = delete;

  std::shared_ptr<const Project> Study;
};

} // namespace explorer
