#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <string>

namespace bench
{

/// True when run with --smoke: every size is tiny, to check the program still runs.
bool smoke();
/// `full`, or `tiny` under --smoke.
long long size(long long full, long long tiny);
/// The folder where benchmarks leave their data for the pandas anchors (QUEN_BENCH_DATA, or
/// a folder in the temporary directory).
std::string dataFolder();

/// Runs `cleanUp` after the benchmarks, while the QApplication still exists (for widgets kept
/// between benchmarks).
void atEnd(std::function<void()> cleanUp);

/// The main of every benchmark program: a QApplication, --smoke, then Google Benchmark.
int run(int argc, char** argv);

} // namespace bench

#define QUEN_BENCH_MAIN()                                                                          \
  int main(int argc, char** argv)                                                                  \
  {                                                                                                \
    return bench::run(argc, argv);                                                                 \
  }
