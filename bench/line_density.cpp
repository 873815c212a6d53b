// The parallel coordinates' line density over eight axes at a million and ten million cases,
// each line coloured (the picture drawn whenever the shown cases change), beside a pass that only
// reads every place once (the least a picture of every line costs).

#include "BenchSupport.h"

#include "views/parallel/LineDensity.h"
#include "views/parallel/ParallelCoordinatesModel.h"
#include "views/parallel/ParallelCoordinatesPainter.h"

#include <QSize>

#include <cmath>
#include <random>
#include <vector>

namespace
{

constexpr int axesShown = 8;

struct Lines
{
  std::vector<explorer::ParallelAxis> axes;
  explorer::Places colour;
};

const Lines& lines(std::size_t cases)
{
  static Lines made;
  if (made.colour.size() == cases)
    return made;
  std::mt19937 random(11);
  std::uniform_real_distribution<float> uniform(0, 1);
  made.axes.assign(axesShown, {});
  made.colour.assign(cases);
  for (auto& axis : made.axes)
    axis.position.assign(cases);
  for (std::size_t c = 0; c < cases; ++c)
  {
    // Five swept inputs of a few values, three continuous outputs, a few missing.
    for (std::size_t a = 0; a < axesShown; ++a)
      made.axes[a].position.set(c,
                                c % 97 == a ? NAN
                                : a < 5     ? std::floor(uniform(random) * 6) / 5
                                            : uniform(random));
    made.colour.set(c, made.axes[6].position[c]);
  }
  return made;
}

void LineDensityOfEightAxes(benchmark::State& state)
{
  const Lines& l = lines(static_cast<std::size_t>(bench::size(state.range(0), 1000)));
  const explorer::ParallelLayout layout(QSize(577, 332), axesShown);
  for (auto _ : state)
    benchmark::DoNotOptimize(
      explorer::lineDensity(l.axes, &l.colour, nullptr, layout, qRgb(110, 110, 110)));
}

void ReadEveryPlaceOnce(benchmark::State& state)
{
  const Lines& l = lines(static_cast<std::size_t>(bench::size(state.range(0), 1000)));
  for (auto _ : state)
  {
    float sum = 0;
    for (const auto& axis : l.axes)
      for (std::size_t c = 0; c < axis.position.size(); ++c)
        sum += axis.position[c];
    benchmark::DoNotOptimize(sum);
  }
}

} // namespace

BENCHMARK(LineDensityOfEightAxes)
  ->Arg(1000000)
  ->Arg(10000000)
  ->Unit(benchmark::kMillisecond)
  ->UseRealTime();
BENCHMARK(ReadEveryPlaceOnce)
  ->Arg(1000000)
  ->Arg(10000000)
  ->Unit(benchmark::kMillisecond)
  ->UseRealTime();

QUEN_BENCH_MAIN()
