#include "vtkPlottableCaseIds.h"

#include <vtkDataArray.h>
#include <vtkDoubleArray.h>
#include <vtkInformationVector.h>
#include <vtkObjectFactory.h>
#include <vtkTable.h>

namespace explorer
{

vtkStandardNewMacro(vtkPlottableCaseIds);

int vtkPlottableCaseIds::RequestData(vtkInformation*,
                                     vtkInformationVector** inputVector,
                                     vtkInformationVector* outputVector)
{
  vtkTable* input = vtkTable::GetData(inputVector[0], 0);
  vtkTable* output = vtkTable::GetData(outputVector, 0);
  output->ShallowCopy(input);
  auto* ids =
    input->GetNumberOfColumns() > 0 ? vtkDataArray::SafeDownCast(input->GetColumn(0)) : nullptr;
  if (!ids || ids->GetDataType() == VTK_DOUBLE)
  {
    return 1;
  }
  auto converted = vtkSmartPointer<vtkDoubleArray>::New();
  converted->DeepCopy(ids);
  converted->SetName(ids->GetName());
  auto table = vtkSmartPointer<vtkTable>::New();
  table->AddColumn(converted);
  for (vtkIdType c = 1; c < input->GetNumberOfColumns(); ++c)
    table->AddColumn(input->GetColumn(c));
  output->ShallowCopy(table);
  return 1;
}

} // namespace explorer
