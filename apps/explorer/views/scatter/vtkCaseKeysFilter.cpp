#include "views/scatter/vtkCaseKeysFilter.h"

#include "CaseKeys.h"
#include "CaseRowIndex.h"

#include <vtkDoubleArray.h>
#include <vtkInformationVector.h>
#include <vtkIntArray.h>
#include <vtkObjectFactory.h>
#include <vtkTable.h>

#include <numeric>

namespace explorer
{

vtkStandardNewMacro(vtkCaseKeysFilter);

const char* vtkCaseKeysFilter::keyColumnName = "case key";
const char* vtkCaseKeysFilter::caseOrderColumnName = "case order";

void vtkCaseKeysFilter::PrintSelf(ostream& os, vtkIndent indent)
{
  this->Superclass::PrintSelf(os, indent);
  os << indent << "Columns: " << this->Columns.size() << "\n";
}

void vtkCaseKeysFilter::SetKeys(std::shared_ptr<const CaseKeys> keys)
{
  this->Keys = std::move(keys);
  this->KeyColumn = nullptr;
  this->OrderColumn = nullptr;
  this->Modified();
}

void vtkCaseKeysFilter::SetColumns(const std::vector<std::string>& names)
{
  if (names == this->Columns)
    return;
  this->Columns = names;
  this->Modified();
}

int vtkCaseKeysFilter::RequestData(vtkInformation*,
                                   vtkInformationVector** inputVector,
                                   vtkInformationVector* outputVector)
{
  vtkTable* input = vtkTable::GetData(inputVector[0], 0);
  vtkTable* output = vtkTable::GetData(outputVector, 0);
  auto table = vtkSmartPointer<vtkTable>::New();
  vtkAbstractArray* idColumn = input->GetColumnByName("case_id");
  const vtkIdType rows = input->GetNumberOfRows();
  if (!this->KeyColumn || !idColumn || idColumn != this->KeyedIds ||
      idColumn->GetMTime() != this->KeyedIdsTime || rows != this->KeyedRows)
  {
    const CaseIds ids(*input);
    auto keys = vtkSmartPointer<vtkIntArray>::New();
    keys->SetName(keyColumnName);
    keys->SetNumberOfValues(static_cast<vtkIdType>(ids.size()));
    // Every row of the pipeline is a case of the study; a row without one keeps its number.
    if (this->Keys)
      this->Keys->keysOfEach(ids.begin(), ids.size(), keys->GetPointer(0));
    else
      std::iota(keys->GetPointer(0), keys->GetPointer(0) + ids.size(), 0);
    this->KeyColumn = keys;
    this->OrderColumn = nullptr;
    this->KeyedIds = idColumn;
    this->KeyedIdsTime = idColumn ? idColumn->GetMTime() : 0;
    this->KeyedRows = rows;
  }
  vtkIntArray* keys = this->KeyColumn;
  table->AddColumn(keys);
  for (const std::string& name : this->Columns)
  {
    if (table->GetColumnByName(name.c_str()))
      continue;
    if (name == caseOrderColumnName)
    {
      if (!this->OrderColumn)
      {
        this->OrderColumn = vtkSmartPointer<vtkDoubleArray>::New();
        this->OrderColumn->SetName(name.c_str());
        this->OrderColumn->SetNumberOfValues(keys->GetNumberOfValues());
        for (vtkIdType row = 0; row < keys->GetNumberOfValues(); ++row)
          this->OrderColumn->SetValue(row, keys->GetValue(row) + 1.0);
      }
      table->AddColumn(this->OrderColumn);
    }
    else if (vtkAbstractArray* column = input->GetColumnByName(name.c_str()))
      table->AddColumn(column);
  }
  output->ShallowCopy(table);
  return 1;
}

} // namespace explorer
