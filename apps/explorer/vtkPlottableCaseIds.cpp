#include "vtkPlottableCaseIds.h"

#include <vtkDataArray.h>
#include <vtkDoubleArray.h>
#include <vtkInformationVector.h>
#include <vtkObjectFactory.h>
#include <vtkTable.h>

namespace explorer
{

vtkStandardNewMacro(vtkPlottableCaseIds);

void vtkPlottableCaseIds::SetColumns(const std::vector<std::string>& names)
{
  if (names == columns)
    return;
  columns = names;
  Modified();
}

int vtkPlottableCaseIds::RequestData(vtkInformation*,
                                     vtkInformationVector** inputVector,
                                     vtkInformationVector* outputVector)
{
  vtkTable* input = vtkTable::GetData(inputVector[0], 0);
  vtkTable* output = vtkTable::GetData(outputVector, 0);
  auto table = vtkSmartPointer<vtkTable>::New();
  if (input->GetNumberOfColumns() > 0)
  {
    vtkAbstractArray* ids = input->GetColumn(0);
    auto* numbers = vtkDataArray::SafeDownCast(ids);
    if (numbers && numbers->GetDataType() != VTK_DOUBLE)
    {
      auto converted = vtkSmartPointer<vtkDoubleArray>::New();
      converted->DeepCopy(numbers);
      converted->SetName(ids->GetName());
      table->AddColumn(converted);
    }
    else
      table->AddColumn(ids);
  }
  for (const std::string& name : columns)
  {
    vtkAbstractArray* column = input->GetColumnByName(name.c_str());
    if (column && column != input->GetColumn(0) && !table->GetColumnByName(name.c_str()))
      table->AddColumn(column);
  }
  output->ShallowCopy(table);
  return 1;
}

} // namespace explorer
