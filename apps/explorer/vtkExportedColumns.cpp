#include "vtkFilePathColumns.h"

#include "CaseRowIndex.h"
#include "datamanagement/Project.h"

#include <vtkInformationVector.h>
#include <vtkObjectFactory.h>
#include <vtkSmartPointer.h>
#include <vtkStringArray.h>
#include <vtkTable.h>

namespace explorer
{

vtkStandardNewMacro(vtkFilePathColumns);

void vtkFilePathColumns::PrintSelf(ostream& os, vtkIndent indent)
{
  this->Superclass::PrintSelf(os, indent);
  os << indent << "Study: " << (this->Study ? this->Study->folder() : std::string()) << "\n";
}

void vtkFilePathColumns::SetProject(std::shared_ptr<const Project> project)
{
  this->Study = std::move(project);
  this->Modified();
}

int vtkFilePathColumns::RequestData(vtkInformation*,
                                    vtkInformationVector** inputVector,
                                    vtkInformationVector* outputVector)
{
  vtkTable* input = vtkTable::GetData(inputVector[0], 0);
  vtkTable* output = vtkTable::GetData(outputVector, 0);
  output->ShallowCopy(input);
  if (!this->Study || this->Study->auxFiles().empty())
    return 1;
  const std::vector<unsigned long long> ids = caseIdsOf(*input);
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
          paths->SetValue(static_cast<vtkIdType>(row), file.lock().relativePath());
          break;
        }
      }
    }
    output->AddColumn(paths);
  }
  return 1;
}

} // namespace explorer
