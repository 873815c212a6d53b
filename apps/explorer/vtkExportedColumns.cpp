#include "vtkExportedColumns.h"

#include "CaseRowIndex.h"
#include "VariableNames.h"
#include "VariableRoles.h"
#include "datamanagement/AuxFile.h"
#include "datamanagement/Project.h"
#include "datamanagement/Variable.h"

#include <vtkAbstractArray.h>
#include <vtkDataArray.h>
#include <vtkInformationVector.h>
#include <vtkObjectFactory.h>
#include <vtkSmartPointer.h>
#include <vtkStringArray.h>
#include <vtkTable.h>

#include <filesystem>

namespace explorer
{

namespace
{

// The column under a name of its own: the pipeline's array keeps its name.
vtkSmartPointer<vtkAbstractArray> renamed(vtkAbstractArray* column, const std::string& name)
{
  vtkSmartPointer<vtkAbstractArray> copy;
  copy.TakeReference(column->NewInstance());
  if (auto* numbers = vtkDataArray::SafeDownCast(column))
    vtkDataArray::SafeDownCast(copy)->ShallowCopy(numbers);
  else
    copy->DeepCopy(column);
  copy->SetName(name.c_str());
  return copy;
}

std::string exportedPath(const AuxFile& file, const std::filesystem::path& folder)
{
  std::string path = file.filePath();
  if (folder.empty() || AuxFile::isUrl(path))
    return path;
  const std::filesystem::path relative =
    std::filesystem::path(path).lexically_normal().lexically_relative(folder);
  if (relative.empty() || *relative.begin() == "..")
    return path;
  return relative.generic_string();
}

} // namespace

vtkStandardNewMacro(vtkExportedColumns);

void vtkExportedColumns::PrintSelf(ostream& os, vtkIndent indent)
{
  this->Superclass::PrintSelf(os, indent);
  os << indent << "Study: " << (this->Study ? this->Study->folder() : std::string()) << "\n";
  os << indent << "ExportFolder: " << this->ExportFolder << "\n";
}

void vtkExportedColumns::SetProject(std::shared_ptr<const Project> project)
{
  this->Study = std::move(project);
  this->Modified();
}

void vtkExportedColumns::SetRoles(std::shared_ptr<const VariableRoles> roles)
{
  this->Roles = std::move(roles);
  this->Modified();
}

void vtkExportedColumns::SetExportFolder(const std::string& folder)
{
  this->ExportFolder = folder;
  this->Modified();
}

int vtkExportedColumns::RequestData(vtkInformation*,
                                    vtkInformationVector** inputVector,
                                    vtkInformationVector* outputVector)
{
  vtkTable* input = vtkTable::GetData(inputVector[0], 0);
  vtkTable* output = vtkTable::GetData(outputVector, 0);
  if (!this->Study)
  {
    output->ShallowCopy(input);
    return 1;
  }
  output->Initialize();
  for (vtkIdType c = 0; c < input->GetNumberOfColumns(); ++c)
  {
    vtkAbstractArray* column = input->GetColumn(c);
    const Variable variable =
      this->Study->variable(column->GetName() ? column->GetName() : "").lock();
    const Variable::Role role = variable.isNull() ? Variable::Unknown
                                : this->Roles     ? this->Roles->role(variable.name())
                                                  : variable.role();
    if (role == Variable::Unknown)
      output->AddColumn(column);
    else
      output->AddColumn(renamed(column, exportedName(variable.name(), role)));
  }

  const CaseIds ids(*input);
  const std::filesystem::path folder =
    this->ExportFolder.empty() ? std::filesystem::path()
                               : std::filesystem::path(this->ExportFolder).lexically_normal();
  for (const std::string& tag : this->Study->tags())
  {
    auto paths = vtkSmartPointer<vtkStringArray>::New();
    const std::string name = this->Study->variable(tag).lock().isNull() ? tag : tag + " (file)";
    paths->SetName(name.c_str());
    paths->SetNumberOfValues(static_cast<vtkIdType>(ids.size()));
    for (std::size_t row = 0; row < ids.size(); ++row)
    {
      for (const auto& file : this->Study->record(ids[row]).lock().auxFiles())
      {
        if (file.lock().hasTag(tag))
        {
          paths->SetValue(static_cast<vtkIdType>(row), exportedPath(file.lock(), folder));
          break;
        }
      }
    }
    output->AddColumn(paths);
  }
  return 1;
}

} // namespace explorer
