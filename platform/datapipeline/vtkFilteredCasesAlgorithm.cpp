#include "datapipeline/vtkFilteredCasesAlgorithm.h"

#include "datapipeline/FilterInterface.h"

#include <vtkAOSDataArrayTemplate.h>
#include <vtkAbstractArray.h>
#include <vtkIdList.h>
#include <vtkInformation.h>
#include <vtkInformationVector.h>
#include <vtkObjectFactory.h>
#include <vtkTable.h>

#include <algorithm>
#include <thread>
#include <utility>
#include <vector>

vtkStandardNewMacro(vtkFilteredCasesAlgorithm);

namespace
{

// Copies the kept rows of `source`, a single value each, to the front of `target`. Every row up
// to the last kept one is written to the next free place, which moves on only past a kept row: no
// branch on the flags, and no write beyond the kept rows.
template<typename T>
void gatherKept(const T* source, T* target, const std::vector<unsigned char>& keep)
{
  std::size_t end = keep.size();
  while (end > 0 && keep[end - 1] == 0)
    --end;
  std::size_t next = 0;
  for (std::size_t row = 0; row < end; ++row)
  {
    target[next] = source[row];
    next += keep[row] != 0 ? 1 : 0;
  }
}

// Calls `f(from, to)` with the values of `source` and of `target` when both are arrays of single
// numbers of one type, kept in one block, `rows` long (a study's values and case ids); false,
// without calling it, for other columns.
template<typename F>
bool withNumbers(vtkAbstractArray& source, vtkAbstractArray& target, std::size_t rows, F&& f)
{
  if (source.GetNumberOfComponents() != 1 || source.GetDataType() != target.GetDataType() ||
      source.GetNumberOfTuples() != static_cast<vtkIdType>(rows))
    return false;
  switch (source.GetDataType())
  {
    vtkTemplateMacro(auto* from = vtkAOSDataArrayTemplate<VTK_TT>::FastDownCast(&source);
                     auto* to = vtkAOSDataArrayTemplate<VTK_TT>::FastDownCast(&target);
                     if (!from || !to) return false;
                     f(from->GetPointer(0), to->GetPointer(0));
                     return true;);
    default:
      return false;
  }
}

// Gathers the kept rows of each pair's source into its target. Ten million rows of a few columns
// take several threads a share of the columns each (copies at memory speed, which one core does
// not reach); the arrays are only read and written, their objects untouched until all are done.
void gatherEach(const std::vector<std::pair<vtkAbstractArray*, vtkAbstractArray*>>& columns,
                const std::vector<unsigned char>& keep)
{
  constexpr std::size_t valuesForAThread = 8'000'000;
  const std::size_t cores = std::max(1U, std::thread::hardware_concurrency());
  const std::size_t threads = std::min(
    { cores, std::size_t(4), columns.size(), 1 + keep.size() * columns.size() / valuesForAThread });
  const auto gatherShare = [&](std::size_t share)
  {
    for (std::size_t c = share; c < columns.size(); c += threads)
      withNumbers(*columns[c].first,
                  *columns[c].second,
                  keep.size(),
                  [&](const auto* from, auto* to) { gatherKept(from, to, keep); });
  };
  std::vector<std::thread> others;
  for (std::size_t share = 1; share < threads; ++share)
    others.emplace_back(gatherShare, share);
  gatherShare(0);
  for (std::thread& other : others)
    other.join();
  for (const auto& column : columns)
    column.second->Modified();
}

vtkSmartPointer<vtkIdList> keptRowList(const std::vector<unsigned char>& keep, vtkIdType kept)
{
  auto list = vtkSmartPointer<vtkIdList>::New();
  list->SetNumberOfIds(kept);
  vtkIdType next = 0;
  for (std::size_t row = 0; row < keep.size(); ++row)
    if (keep[row])
      list->SetId(next++, static_cast<vtkIdType>(row));
  return list;
}

} // namespace

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

  const auto keptRows = static_cast<vtkIdType>(
    keep.size() - static_cast<std::size_t>(std::count(keep.begin(), keep.end(), 0)));
  // The list of kept rows is made only for a column of a kind not gathered by flags.
  vtkSmartPointer<vtkIdList> kept;
  std::vector<std::pair<vtkAbstractArray*, vtkAbstractArray*>> numbers;
  for (vtkIdType c = 0; c < this->Cases->GetNumberOfColumns(); ++c)
  {
    vtkAbstractArray* source = this->Cases->GetColumn(c);
    vtkSmartPointer<vtkAbstractArray> column;
    column.TakeReference(source->NewInstance());
    column->SetName(source->GetName());
    column->SetNumberOfComponents(source->GetNumberOfComponents());
    column->SetNumberOfTuples(keptRows);
    if (withNumbers(*source, *column, keep.size(), [](const auto*, auto*) {}))
      numbers.emplace_back(source, column); // gathered below, all together
    else
    {
      if (!kept)
        kept = keptRowList(keep, keptRows);
      source->GetTuples(kept, column);
    }
    output->AddColumn(column);
  }
  gatherEach(numbers, keep);
  return 1;
}
