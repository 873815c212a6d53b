// The line plot as a user feels it, on a real window with its tab shown: selecting a case,
// changing Y and changing the variables the lines are by, for response curves over 1e4 and 1e6
// cases and for 1e4 runs' series of 1,000 samples each; and how long the window can be kept
// waiting while those series are read in the background.

#include "BenchSupport.h"
#include "MasterSelection.h"

#include "ExplorerWindow.h"
#include "SampleStudy.h"
#include "views/line/LinePlotView.h"

#include "datamanagement/Project.h"
#include "datamanagement/StudyReader.h"
#include "properties/PropertyAbstract.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QTabWidget>
#include <QTimer>

#include <cmath>
#include <fstream>
#include <map>
#include <memory>

namespace
{

using explorer::ExplorerWindow;
using explorer::LinePlotView;

constexpr int samplesPerSeries = 1000;

// A study of `runs` cases, each with a series file of 1,000 samples (t, y, z).
std::string seriesStudy(long long runs)
{
  std::string folder = bench::dataFolder() + "/line-series-" + std::to_string(runs);
  if (QDir(QString::fromStdString(folder)).exists("auxfiles.csv"))
    return folder;
  QDir().mkpath(QString::fromStdString(folder + "/series"));
  std::ofstream cases(folder + "/cases.csv");
  std::ofstream files(folder + "/auxfiles.csv");
  cases << "case_id,rate,phase\n";
  files << "case_id,path,tags\n";
  for (long long id = 0; id < runs; ++id)
  {
    const double rate = 0.5 + static_cast<double>(id % 97) / 40;
    const double phase = static_cast<double>(id % 13) / 2;
    cases << id << ',' << rate << ',' << phase << '\n';
    const std::string path = "series/" + std::to_string(id) + ".csv";
    files << id << ',' << path << ",series:signal\n";
    std::string file = folder;
    file += '/';
    file += path;
    std::ofstream series(file);
    series << "t,y,z\n";
    for (int i = 0; i < samplesPerSeries; ++i)
    {
      const double t = i * 0.01;
      series << t << ',' << std::sin(rate * t + phase) << ',' << std::exp(-rate * t) << '\n';
    }
  }
  return folder;
}

std::string responseStudy(long long runs)
{
  explorer::SampleStudyOptions options;
  options.folder = bench::dataFolder();
  options.folder += "/explorer-" + std::to_string(runs);
  options.runs = static_cast<int>(runs);
  options.images = false;
  if (!QDir(QString::fromStdString(options.folder)).exists("cases.csv"))
    explorer::writeSampleStudy(options);
  return options.folder;
}

LinePlotView& linePlot(ExplorerWindow& window)
{
  return *window.view<LinePlotView>();
}

void waitForSeries(ExplorerWindow& window)
{
  while (linePlot(window).working())
    QApplication::processEvents(QEventLoop::AllEvents, 5);
  QApplication::processEvents();
}

// A window over a study, its line plot's tab shown, made once per study.
ExplorerWindow& windowOver(const std::string& folder, bool series)
{
  static std::map<std::string, std::unique_ptr<ExplorerWindow>> windows;
  if (windows.empty())
    bench::atEnd([] { windows.clear(); });
  for (auto& [key, other] : windows)
    if (key != folder && other)
      other->hide();
  auto& window = windows[folder];
  if (!window)
  {
    window = std::make_unique<ExplorerWindow>();
    window->showStudy(readStudy(folder));
    window->resize(1600, 1000);
    window->findChild<QTabWidget*>("viewTabs")->setCurrentWidget(linePlot(*window).widget());
    if (series)
    {
      linePlot(*window).mode()->setValue(explorer::LineMode::Series);
      linePlot(*window).seriesX()->setValue("t");
    }
  }
  window->show();
  QApplication::processEvents();
  if (series)
    waitForSeries(*window);
  return *window;
}

// Every view takes in the change; the line plot (and the other shown views) draw.
void drawn(ExplorerWindow& window)
{
  QApplication::processEvents();
  for (explorer::ExplorerView* view : window.views())
    if (view->widget()->isVisible())
      view->widget()->repaint();
}

template<typename Interaction>
void measure(benchmark::State& state, Interaction interaction)
{
  const bool series = state.range(1) != 0;
  const long long runs = bench::size(state.range(0), 300);
  if (bench::smoke() && state.range(0) != 10000)
  {
    for (auto _ : state)
    {
    }
    return;
  }
  ExplorerWindow& window = windowOver(series ? seriesStudy(runs) : responseStudy(runs), series);
  window.selection().setSelection({});
  drawn(window);
  bool flip = false;
  for (auto _ : state)
  {
    interaction(window, flip);
    drawn(window);
    flip = !flip;
  }
  state.counters["curves"] = static_cast<double>(linePlot(window).curves().curves.size());
}

void LineSelectOneCase(benchmark::State& state)
{
  measure(state,
          [](ExplorerWindow& window, bool flip)
          {
            const auto& ids = window.project()->caseIds();
            window.selection().setSelection({ ids[flip ? 3 : ids.size() / 2] });
          });
}

void LineChangeY(benchmark::State& state)
{
  const bool series = state.range(1) != 0;
  measure(state,
          [series](ExplorerWindow& window, bool flip)
          {
            LinePlotView& line = linePlot(window);
            if (series)
            {
              line.seriesY()->setValue(flip ? "z" : "y");
              return;
            }
            line.yVariable()->setValue(window.project()->variable(flip ? "apex_height" : "range"));
          });
}

void LineChangeLinesBy(benchmark::State& state)
{
  measure(state,
          [](ExplorerWindow& window, bool flip)
          {
            const auto project = window.project();
            linePlot(window).linesBy()->setValue(
              flip ? std::vector<WeakPtr<Variable>>{ project->variable("drag_coefficient"),
                                                     project->variable("mass") }
                   : std::vector<WeakPtr<Variable>>{ project->variable("speed") });
          });
}

// Reading every series of a fresh window in the background: the time until all are in, and
// the longest the window's event loop was kept from a timer that fires every 10 ms.
void SeriesReadingKeepsTheWindowAnswering(benchmark::State& state)
{
  const std::string folder = seriesStudy(bench::size(10000, 300));
  double longest = 0;
  for (auto _ : state)
  {
    ExplorerWindow window;
    window.showStudy(readStudy(folder));
    window.resize(1600, 1000);
    window.show();
    window.findChild<QTabWidget*>("viewTabs")->setCurrentWidget(linePlot(window).widget());
    QApplication::processEvents();
    QElapsedTimer sinceTick;
    QTimer ticks;
    ticks.setInterval(10);
    QObject::connect(&ticks,
                     &QTimer::timeout,
                     [&]
                     { longest = std::max(longest, static_cast<double>(sinceTick.restart())); });
    linePlot(window).mode()->setValue(explorer::LineMode::Series);
    sinceTick.start();
    ticks.start();
    waitForSeries(window);
    ticks.stop();
    state.counters["curves"] = static_cast<double>(linePlot(window).curves().curves.size());
  }
  state.counters["longest_wait_ms"] = longest;
}

void sizes(benchmark::internal::Benchmark* b)
{
  b->Unit(benchmark::kMillisecond)->UseRealTime();
  b->Args({ 10000, 0 })->Args({ 1000000, 0 })->Args({ 10000, 1 });
  b->Iterations(4);
}

} // namespace

BENCHMARK(LineSelectOneCase)->Apply(sizes);
BENCHMARK(LineChangeY)->Apply(sizes);
BENCHMARK(LineChangeLinesBy)
  ->Unit(benchmark::kMillisecond)
  ->UseRealTime()
  ->Args({ 10000, 0 })
  ->Args({ 1000000, 0 })
  ->Iterations(4);
BENCHMARK(SeriesReadingKeepsTheWindowAnswering)
  ->Unit(benchmark::kMillisecond)
  ->UseRealTime()
  ->Iterations(1);

QUEN_BENCH_MAIN()
