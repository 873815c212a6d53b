// The invalid points filter on 8 double, 1 string and 1 char columns with 10% of the rows NaN,
// against copying the same bytes into fresh buffers (memcpy). The 1e6-row table is also written
// as CSV for the pandas anchor (dropna on the same columns).

#include "BenchSupport.h"
#include "charts/InvalidPointsFilter.h"
#include "datamanagement/Project.h"
#include "datamanagement/ProjectBuilder.h"
#include "properties/Property.h"

#include <boost/make_shared.hpp>
#include <vtkCharArray.h>
#include <vtkDoubleArray.h>
#include <vtkStringArray.h>
#include <vtkTable.h>

#include <cmath>
#include <cstring>
#include <fstream>
#include <memory>
#include <random>

namespace
{

struct Input
{
  vtkSmartPointer<vtkTable> table = vtkSmartPointer<vtkTable>::New();
  std::shared_ptr<const Project> project;
  std::size_t bytes = 0;
};

Input makeInput(long long rows)
{
  Input input;
  std::mt19937 random(11);
  std::uniform_real_distribution<double> uniform(0, 1);
  ProjectBuilder names;
  names.setCaseIds({ 1 });
  for (int c = 0; c < 8; ++c)
  {
    auto column = vtkSmartPointer<vtkDoubleArray>::New();
    const std::string name = "v" + std::to_string(c);
    column->SetName(name.c_str());
    column->SetNumberOfValues(rows);
    for (long long r = 0; r < rows; ++r)
      column->SetValue(r, uniform(random));
    input.table->AddColumn(column);
    names.addNumericVariable(name, { 0 });
  }
  // 10% of the rows NaN, spread over the two checked columns.
  auto* x = vtkDoubleArray::SafeDownCast(input.table->GetColumn(0));
  auto* y = vtkDoubleArray::SafeDownCast(input.table->GetColumn(1));
  for (long long r = 0; r < rows; ++r)
  {
    if (uniform(random) < 0.1)
      (r % 2 ? x : y)->SetValue(r, std::nan(""));
  }
  auto label = vtkSmartPointer<vtkStringArray>::New();
  label->SetName("label");
  label->SetNumberOfValues(rows);
  auto grade = vtkSmartPointer<vtkCharArray>::New();
  grade->SetName("grade");
  grade->SetNumberOfValues(rows);
  for (long long r = 0; r < rows; ++r)
  {
    label->SetValue(r, "run-" + std::to_string(r % 1000));
    grade->SetValue(r, static_cast<char>('a' + r % 5));
  }
  input.table->AddColumn(label);
  input.table->AddColumn(grade);
  input.project = names.build();
  input.bytes = static_cast<std::size_t>(rows) * (8 * sizeof(double) + sizeof(std::string) + 1);
  return input;
}

void FilterInvalidPoints(benchmark::State& state)
{
  Input input = makeInput(bench::smoke() ? 1000 : state.range(0));
  Project::setProject(input.project);
  auto x = boost::make_shared<plexa::Property<WeakPtr<Variable>>>(input.project->variable("v0"));
  auto y = boost::make_shared<plexa::Property<WeakPtr<Variable>>>(input.project->variable("v1"));
  auto filter = InvalidPointsFilter::New({ x, y });
  filter->SetInputData(input.table);
  for (auto _ : state)
  {
    filter->Modified();
    filter->Update();
    benchmark::DoNotOptimize(filter->GetOutput()->GetNumberOfRows());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * input.bytes));
}

// The physical limit: the same bytes copied into buffers allocated for each pass.
void MemcpyAnchor(benchmark::State& state)
{
  const std::size_t bytes = static_cast<std::size_t>(bench::smoke() ? 1000 : state.range(0)) *
                            (8 * sizeof(double) + sizeof(std::string) + 1);
  std::unique_ptr<char[]> source(new char[bytes]);
  std::memset(source.get(), 1, bytes);
  for (auto _ : state)
  {
    std::unique_ptr<char[]> copy(new char[bytes]);
    std::memcpy(copy.get(), source.get(), bytes);
    benchmark::DoNotOptimize(copy.get());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes));
}

// The table of a million rows as CSV, for pandas.
void WriteCsvForPandas(benchmark::State& state)
{
  for (auto _ : state)
  {
    if (bench::smoke())
      continue;
    const std::string path = bench::dataFolder() + "/invalid_points.csv";
    std::ifstream existing(path);
    if (existing.good())
      continue;
    Input input = makeInput(1000000);
    std::ofstream out(path);
    for (vtkIdType c = 0; c < input.table->GetNumberOfColumns(); ++c)
      out << (c ? "," : "") << input.table->GetColumn(c)->GetName();
    out << "\n";
    for (vtkIdType r = 0; r < input.table->GetNumberOfRows(); ++r)
    {
      for (vtkIdType c = 0; c < input.table->GetNumberOfColumns(); ++c)
        out << (c ? "," : "") << input.table->GetColumn(c)->GetVariantValue(r).ToString();
      out << "\n";
    }
  }
}

} // namespace

BENCHMARK(FilterInvalidPoints)
  ->Arg(1000000)
  ->Arg(10000000)
  ->Unit(benchmark::kMillisecond)
  ->Iterations(3);
BENCHMARK(MemcpyAnchor)->Arg(1000000)->Arg(10000000)->Unit(benchmark::kMillisecond);
BENCHMARK(WriteCsvForPandas)->Iterations(1)->Unit(benchmark::kMillisecond);

QUEN_BENCH_MAIN()
