// Rebuilding the image matrix grid of a hundred thousand cases on 50 x 50 cells, against the
// per-cell scan (every case tested for every cell).

#include "BenchSupport.h"
#include "datamanagement/Project.h"
#include "datamanagement/ProjectBuilder.h"
#include "datapipeline/DataPipelineManager.h"
#include "images/ImageMatrixViewProperties.h"
#include "images/ImageTableModel.h"
#include "properties/PropertyAbstract.h"

#include <vtkTableAlgorithm.h>

#include <set>

namespace
{

std::shared_ptr<const Project> study(long long cases)
{
  ProjectBuilder builder;
  std::vector<unsigned long long> ids;
  std::vector<double> a;
  std::vector<double> b;
  for (long long i = 0; i < cases; ++i)
  {
    ids.push_back(static_cast<unsigned long long>(i + 1));
    a.push_back(static_cast<double>(i % 50));
    b.push_back(static_cast<double>((i / 50) % 50));
  }
  builder.setCaseIds(ids);
  builder.addNumericVariable("a", a, Variable::Discrete);
  builder.addNumericVariable("b", b, Variable::Discrete);
  return builder.build();
}

long long caseCount()
{
  return bench::size(100000, 500);
}

void GridRebuild_Library(benchmark::State& state)
{
  const auto project = study(caseCount());
  Project::setProject(project);
  DataPipelineManager pipeline(project);
  auto properties = std::make_shared<ImageMatrixViewProperties>();
  properties->columnVar()->setValue(project->variable("a"));
  properties->rowVar()->setValue(project->variable("b"));
  ImageTableModel grid(pipeline.output(), properties);
  for (auto _ : state)
  {
    grid.rebuild();
    benchmark::DoNotOptimize(grid.casesAt(0, 0).size());
  }
}

// Every cell tests every case, with the same lookups: the way the grid reads when described
// cell by cell.
void GridRebuild_PerCellScan(benchmark::State& state)
{
  const auto project = study(caseCount());
  const Variable a = project->variable("a").lock();
  const Variable b = project->variable("b").lock();
  std::vector<Record> records;
  for (const auto& record : project->records())
    records.push_back(record.lock());
  std::set<Variant> rowValues;
  std::set<Variant> columnValues;
  for (const auto& record : records)
  {
    rowValues.insert(record.data(b));
    columnValues.insert(record.data(a));
  }
  for (auto _ : state)
  {
    std::vector<std::set<unsigned long long>> cells;
    for (const Variant& row : rowValues)
    {
      for (const Variant& column : columnValues)
      {
        std::set<unsigned long long> cell;
        for (const auto& record : records)
        {
          if (record.data(b) == row && record.data(a) == column)
            cell.insert(record.caseId());
        }
        cells.push_back(std::move(cell));
      }
    }
    benchmark::DoNotOptimize(cells.data());
  }
}

} // namespace

BENCHMARK(GridRebuild_Library)->Unit(benchmark::kMillisecond);
BENCHMARK(GridRebuild_PerCellScan)->Unit(benchmark::kMillisecond)->Iterations(1);

QUEN_BENCH_MAIN()
