// Reading a study of a hundred thousand cases and twenty variables, and a table of a million
// runs with eleven variables and a column of image paths. The pandas anchors (read_csv of the
// same files) run in tools/bench_report.py.

#include "BenchSupport.h"
#include "datamanagement/Project.h"
#include "datamanagement/StudyReader.h"
#include "datamanagement/TableReader.h"

#include <QDir>

#include <fstream>
#include <iomanip>
#include <random>

namespace
{

std::string writeStudy(long long cases)
{
  const std::string folder = bench::dataFolder() + "/study" + std::to_string(cases);
  QDir().mkpath(QString::fromStdString(folder));
  const std::string path = folder + "/cases.csv";
  if (std::ifstream(path).good())
    return folder;
  std::ofstream out(path);
  std::mt19937 random(9);
  std::uniform_real_distribution<double> uniform(0, 1000);
  out << "case_id";
  for (int c = 0; c < 20; ++c)
    out << ",v" << c;
  out << "\n" << std::setprecision(10);
  for (long long i = 0; i < cases; ++i)
  {
    out << 1000 + i;
    for (int c = 0; c < 20; ++c)
    {
      if (c < 4)
        out << "," << (i * (c + 3)) % 7; // swept inputs
      else
        out << "," << uniform(random);
    }
    out << "\n";
  }
  return folder;
}

void ReadStudy(benchmark::State& state)
{
  const std::string folder = writeStudy(bench::size(100000, 100));
  for (auto _ : state)
  {
    const auto project = readStudy(folder);
    benchmark::DoNotOptimize(project->numberOfRecords());
  }
}

// A sweep script's table: no id column, swept inputs, outputs and the path of each run's image.
std::string writeRunTable(long long runs)
{
  const std::string path = bench::dataFolder() + "/table" + std::to_string(runs) + ".csv";
  if (std::ifstream(path).good())
    return path;
  std::ofstream out(path);
  std::mt19937 random(11);
  std::uniform_real_distribution<double> uniform(-1000, 1000);
  out << "in:a,in:b,in:c,in:d,out:e,out:f,out:g,out:h,out:i,out:j,out:k,image\n"
      << std::setprecision(10);
  for (long long i = 0; i < runs; ++i)
  {
    for (int c = 0; c < 11; ++c)
    {
      if (c < 4)
        out << (i * (c + 3)) % 7 << ","; // swept inputs
      else
        out << uniform(random) << ",";
    }
    out << "images/run" << i << ".png\n";
  }
  return path;
}

void ReadRunTable(benchmark::State& state)
{
  const std::string path = writeRunTable(bench::size(1000000, 100));
  for (auto _ : state)
  {
    const auto project = readRunTable(path, {});
    benchmark::DoNotOptimize(project->numberOfRecords());
  }
}

} // namespace

BENCHMARK(ReadStudy)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadRunTable)->Unit(benchmark::kMillisecond);

QUEN_BENCH_MAIN()
