#include "datapipeline/vtkFilteredCasesAlgorithm.h"

#include "datapipeline/FilterInterface.h"

#include <vtkAbstractArray.h>
#include <vtkIdList.h>
#include <vtkInformation.h>
#include <vtkInformationVector.h>
#include <vtkObjectFactory.h>
#include <vtkTable.h>

#include <algorithm>

vtkStandardNewMacro(vtkFilteredCasesAlgorithm);

vtkFilteredCasesAlgorithm::vtkFilteredCasesAlgorithm()
{
  this->SetNumberOfInputPorts(0);
}

vtkFilteredCasesAlgorithm::~vtkFilteredCasesAlgorithm() = default;

void vtkFilteredCasesAlgorithm::PrintSelf(ostream& os, vtkIndent indent)
{
  this->Superclass::PrintSelf(os, indent);
  os << indent << "Filters: " << this->Filters.size() << "\n";
}

void vtkFilteredCasesAlgorithm::SetCases(vtkTable* cases)
{
  this->Cases = cases;
  this->Modified();
}

vtkTable* vtkFilteredCasesAlgorithm::GetCases()
{
  return this->Cases;
}

void vtkFilteredCasesAlgorithm::SetFilters(
  const std::vector<boost::shared_ptr<FilterInterface>>& filters)
{
  this->Filters = filters;
  this->Modified();
}

int vtkFilteredCasesAlgorithm::RequestData(vtkInformation*,
                                           vtkInformationVector**,
                                           vtkInformationVector* outputVector)
{
  vtkTable* output = vtkTable::GetData(outputVector, 0);
  output->Initialize();
  if (!this->Cases)
  {
    return 1;
  }
  const vtkIdType rows = this->Cases->GetNumberOfRows();
  std::vector<unsigned char> keep(static_cast<std::size_t>(rows), 1);
  bool filtered = false;
  for (const auto& filter : this->Filters)
  {
    const std::string name = filter->variable().lock().name();
    vtkAbstractArray* column = name.empty() ? nullptr : this->Cases->GetColumnByName(name.c_str());
    if (column)
    {
      filter->apply(*column, keep);
      filtered = true;
    }
  }
  if (!filtered)
  {
    output->ShallowCopy(this->Cases);
    return 1;
  }

  auto kept = vtkSmartPointer<vtkIdList>::New();
  kept->Allocate(static_cast<vtkIdType>(std::count(keep.begin(), keep.end(), 1)));
  for (vtkIdType row = 0; row < rows; ++row)
  {
    if (keep[static_cast<std::size_t>(row)])
    {
      kept->InsertNextId(row);
    }
  }
  for (vtkIdType c = 0; c < this->Cases->GetNumberOfColumns(); ++c)
  {
    vtkAbstractArray* source = this->Cases->GetColumn(c);
    vtkSmartPointer<vtkAbstractArray> column;
    column.TakeReference(source->NewInstance());
    column->SetName(source->GetName());
    column->SetNumberOfComponents(source->GetNumberOfComponents());
    column->SetNumberOfTuples(kept->GetNumberOfIds());
    source->GetTuples(kept, column);
    output->AddColumn(column);
  }
  return 1;
}
