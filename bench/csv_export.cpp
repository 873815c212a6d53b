// The full-precision CSV export of a million rows of ten doubles. The pandas anchor (to_csv of
// the same kind of table) runs in tools/bench_report.py; here the export is also read back to
// check that every value survives.

#include "BenchSupport.h"
#include "export/FullPrecisionCSVExporter.h"

#include <vtkDoubleArray.h>
#include <vtkTable.h>

#include <charconv>
#include <cstring>
#include <fstream>
#include <random>
#include <sstream>

namespace
{

vtkSmartPointer<vtkTable> table(long long rows)
{
  auto result = vtkSmartPointer<vtkTable>::New();
  std::mt19937_64 random(5);
  std::uniform_real_distribution<double> uniform(-1e3, 1e3);
  for (int c = 0; c < 10; ++c)
  {
    auto column = vtkSmartPointer<vtkDoubleArray>::New();
    column->SetName(("v" + std::to_string(c)).c_str());
    column->SetNumberOfValues(rows);
    for (long long r = 0; r < rows; ++r)
      column->SetValue(r, uniform(random));
    result->AddColumn(column);
  }
  return result;
}

// Reads the file back; counts the values that differ from the table.
long long mismatches(vtkTable& source, const std::string& path)
{
  std::ifstream in(path);
  std::string line;
  std::getline(in, line);
  long long wrong = 0;
  for (vtkIdType r = 0; std::getline(in, line); ++r)
  {
    const char* p = line.data();
    const char* end = line.data() + line.size();
    for (vtkIdType c = 0; c < source.GetNumberOfColumns(); ++c)
    {
      double value = 0;
      const auto result = std::from_chars(p, end, value);
      const double expected = vtkDoubleArray::SafeDownCast(source.GetColumn(c))->GetValue(r);
      if (std::memcmp(&value, &expected, sizeof value) != 0)
        ++wrong;
      p = result.ptr + 1;
    }
  }
  return wrong;
}

void FullPrecisionExport(benchmark::State& state)
{
  auto data = table(bench::size(1000000, 1000));
  const std::string path = bench::dataFolder() + "/export.csv";
  for (auto _ : state)
    FullPrecisionCSVExporter().writeCSVFile(*data, path);
  state.counters["mismatches"] = static_cast<double>(mismatches(*data, path));
}

} // namespace

BENCHMARK(FullPrecisionExport)->Unit(benchmark::kMillisecond)->Iterations(3);

QUEN_BENCH_MAIN()
