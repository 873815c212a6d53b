// Which inputs matter, at a million cases: the rank correlation and correlation ratio of ten
// inputs (five swept, five continuous) for one output, beside a pass that only reads every value
// once (the least any answer costs).

#include "BenchSupport.h"

#include "views/importance/Importance.h"

#include <cmath>
#include <random>
#include <vector>

namespace
{

struct Study
{
  std::vector<std::vector<double>> inputs;
  std::vector<double> output;
};

const Study& study(std::size_t cases)
{
  static Study made;
  if (made.output.size() == cases)
    return made;
  std::mt19937 random(7);
  std::uniform_real_distribution<double> uniform(0, 1);
  made.inputs.assign(10, std::vector<double>(cases));
  made.output.assign(cases, 0.0);
  for (std::size_t c = 0; c < cases; ++c)
  {
    for (std::size_t i = 0; i < 10; ++i)
      made.inputs[i][c] = i < 5 ? std::floor(uniform(random) * 6) : uniform(random);
    made.output[c] = 3 * made.inputs[0][c] + std::sin(6 * made.inputs[5][c]) + uniform(random);
  }
  return made;
}

void ImportanceOfTenInputs(benchmark::State& state)
{
  const Study& s = study(static_cast<std::size_t>(bench::size(state.range(0), 1000)));
  std::vector<explorer::InputColumn> columns;
  for (std::size_t i = 0; i < s.inputs.size(); ++i)
    columns.push_back({ "input " + std::to_string(i), s.inputs[i].data(), nullptr });
  for (auto _ : state)
    benchmark::DoNotOptimize(explorer::importanceOf(s.output.data(), s.output.size(), columns));
}

// Reading each input and the output once: the least a figure over every case can cost.
void ReadEveryValueOnce(benchmark::State& state)
{
  const Study& s = study(static_cast<std::size_t>(bench::size(state.range(0), 1000)));
  for (auto _ : state)
  {
    double sum = 0;
    for (const auto& input : s.inputs)
      for (std::size_t c = 0; c < input.size(); ++c)
        sum += input[c] * s.output[c];
    benchmark::DoNotOptimize(sum);
  }
}

} // namespace

BENCHMARK(ImportanceOfTenInputs)->Arg(1000000)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(ReadEveryValueOnce)->Arg(1000000)->Unit(benchmark::kMillisecond)->UseRealTime();

QUEN_BENCH_MAIN()
