#pragma once

#include <vtkTableAlgorithm.h>

#include <memory>
#include <string>

class Project;

namespace explorer
{

class VariableRoles;

/// Passes a table of cases on as an exported table of runs should have it, so that the explorer
/// opens the export as the same study:
/// - a text column per tag of the study's files: the path of each case's file with that tag
///   (empty for a case without one), named after the tag, or after the tag with " (file)" when
///   a variable has the tag's name. A file inside the export's folder is written relative to
///   it, any other by its full path or URL;
/// - the column of a variable with a role named with its "in:" or "out:" prefix.
class vtkExportedColumns : public vtkTableAlgorithm
{
public:
  static vtkExportedColumns* New();
  vtkTypeMacro(vtkExportedColumns, vtkTableAlgorithm);
  void PrintSelf(ostream& os, vtkIndent indent) override;

  void SetProject(std::shared_ptr<const Project> project);
  /// The roles to write; without them, the roles the study gave.
  void SetRoles(std::shared_ptr<const VariableRoles> roles);
  /// The folder the table is exported to.
  void SetExportFolder(const std::string& folder);

protected:
  vtkExportedColumns() = default;
  ~vtkExportedColumns() override = default;
  int RequestData(vtkInformation* request,
                  vtkInformationVector** inputVector,
                  vtkInformationVector* outputVector) override;

private:
  vtkExportedColumns(const vtkExportedColumns&) = delete;
  void operator=(const vtkExportedColumns&) = delete;

  std::shared_ptr<const Project> Study;
  std::shared_ptr<const VariableRoles> Roles;
  std::string ExportFolder;
};

} // namespace explorer
