// A derived variable of five operations over a million cases: the explorer's expression against
// the same arithmetic written as a C++ loop, and against VTK's array calculator (ExprTk inside),
// the engine the explorer links already.

#include "BenchSupport.h"

#include "derived/Expression.h"

#include <vtkArrayCalculator.h>
#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkTable.h>

#include <random>
#include <vector>

namespace
{

// range / (speed * speed) + 2 * mass - 1: five operations over three columns.
constexpr const char* formula = "range / (speed * speed) + 2 * mass - 1";

struct Columns
{
  std::vector<double> range, speed, mass, result;
};

Columns& columns(std::size_t cases)
{
  static Columns made;
  if (made.range.size() == cases)
    return made;
  std::mt19937 random(3);
  std::uniform_real_distribution<double> uniform(1, 2);
  for (auto* column : { &made.range, &made.speed, &made.mass })
  {
    column->resize(cases);
    for (double& value : *column)
      value = uniform(random);
  }
  made.result.assign(cases, 0.0);
  return made;
}

void DerivedByHand(benchmark::State& state)
{
  Columns& c = columns(static_cast<std::size_t>(bench::size(state.range(0), 1000)));
  for (auto _ : state)
  {
    for (std::size_t i = 0; i < c.result.size(); ++i)
      c.result[i] = c.range[i] / (c.speed[i] * c.speed[i]) + 2 * c.mass[i] - 1;
    benchmark::DoNotOptimize(c.result.data());
  }
}

void DerivedByExpression(benchmark::State& state)
{
  Columns& c = columns(static_cast<std::size_t>(bench::size(state.range(0), 1000)));
  const auto expression = explorer::Expression::parse(
    formula, [](const std::string&) { return explorer::Expression::NameKind::Numbers; });
  // The order of expression.variables(): range, speed, mass.
  const std::vector<const double*> values{ c.range.data(), c.speed.data(), c.mass.data() };
  for (auto _ : state)
  {
    expression.evaluate(values, c.result.size(), c.result.data());
    benchmark::DoNotOptimize(c.result.data());
  }
}

void DerivedByVtkArrayCalculator(benchmark::State& state)
{
  Columns& c = columns(static_cast<std::size_t>(bench::size(state.range(0), 1000)));
  vtkNew<vtkTable> table;
  for (auto [name, column] :
       { std::pair{ "range", &c.range }, { "speed", &c.speed }, { "mass", &c.mass } })
  {
    vtkNew<vtkDoubleArray> array;
    array->SetName(name);
    array->SetArray(column->data(), static_cast<vtkIdType>(column->size()), 1);
    table->AddColumn(array);
  }
  vtkNew<vtkArrayCalculator> calculator;
  calculator->SetInputData(table);
  calculator->SetAttributeTypeToRowData();
  for (const char* name : { "range", "speed", "mass" })
    calculator->AddScalarArrayName(name);
  calculator->SetFunction(formula);
  calculator->SetResultArrayName("result");
  for (auto _ : state)
  {
    calculator->Modified();
    calculator->Update();
  }
}

} // namespace

BENCHMARK(DerivedByHand)->Arg(1000000)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(DerivedByExpression)->Arg(1000000)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(DerivedByVtkArrayCalculator)->Arg(1000000)->Unit(benchmark::kMillisecond)->UseRealTime();

QUEN_BENCH_MAIN()
