// What a user feels: each interaction on a real explorer window, timed until the event loop is
// idle (every view has taken in the change and drawn what it draws), over generated studies of
// 1e4, 1e5 and 1e6 cases (and 1e4 with images), with the draws each view made per interaction.
// ./dev bench reports each interaction at each size and the ratio t(1e6) / t(1e4).

#include "BenchSupport.h"
#include "MasterSelection.h"
#include "MemoryPolicy.h"

#include "ExplorerWindow.h"
#include "SampleStudy.h"
#include "views/ImageMatrixView.h"
#include "views/parallel/ParallelCoordinatesView.h"
#include "views/scatter/ScatterPlotView.h"
#include "views/scatter3d/ScatterPlot3DView.h"
#include "views/table/CasesTableView.h"

#include "analyzer_common/UndoStack.h"
#include "charts/ChartXY.h"
#include "datamanagement/Project.h"
#include "datamanagement/StudyReader.h"
#include "datapipeline/DataPipelineManager.h"
#include "images/ImageTableView.h"
#include "images/QImageTableView.h"
#include "properties/PropertyAbstract.h"

#include <QApplication>
#include <QDir>
#include <QItemSelectionModel>
#include <QMouseEvent>
#include <QTabWidget>
#include <QTableView>
#include <QVTKOpenGLNativeWidget.h>
#include <vtkAxis.h>
#include <vtkCallbackCommand.h>
#include <vtkCommand.h>
#include <vtkContextMouseEvent.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkNew.h>
#include <vtkRenderWindowInteractor.h>

#include <cstdlib>
#include <map>
#include <memory>
#include <set>
#include <string>

namespace
{

using explorer::ExplorerWindow;

// A window over a study of `runs` cases, made once per size and kept for every interaction.
ExplorerWindow& windowOver(long long runs, bool images)
{
  static std::map<std::pair<long long, bool>, std::unique_ptr<ExplorerWindow>> windows;
  if (windows.empty())
  {
    // As the explorer runs.
    explorer::keepLargeBlocksInHeap();
    bench::atEnd([] { windows.clear(); });
  }
  auto& window = windows[{ runs, images }];
  // Only one window is on screen at a time: hidden ones would not be drawn at all, shown ones
  // would all be drawn.
  for (auto& [key, other] : windows)
    if (other && other != window)
      other->hide();
  if (window)
  {
    window->show();
    QApplication::processEvents();
    return *window;
  }
  explorer::SampleStudyOptions options;
  options.folder =
    bench::dataFolder() + "/explorer-" + std::to_string(runs) + (images ? "-images" : "");
  options.runs = static_cast<int>(runs);
  options.images = images;
  if (!QDir(QString::fromStdString(options.folder)).exists("cases.csv"))
    explorer::writeSampleStudy(options);
  window = std::make_unique<ExplorerWindow>();
  window->showStudy(readStudy(options.folder));
  window->resize(1600, 1000);
  window->show();
  QApplication::processEvents();
  return *window;
}

// Counts the draws of each view: paint events of its widgets, and renders of a VTK view's window
// (which VTK may start itself).
class DrawCounter : public QObject
{
public:
  void watch(ExplorerWindow& window)
  {
    for (explorer::ExplorerView* view : window.views())
    {
      QWidget* widget = view->widget();
      if (watched.count(widget) != 0)
        continue;
      watched.insert(widget);
      const std::string name = view->shortName();
      for (QWidget* part : widget->findChildren<QWidget*>())
        viewOf[part] = name;
      viewOf[widget] = name;
      widget->installEventFilter(this);
      for (QWidget* part : widget->findChildren<QWidget*>())
        part->installEventFilter(this);
      if (auto* vtk = qobject_cast<QVTKOpenGLNativeWidget*>(widget))
      {
        vtkNew<vtkCallbackCommand> rendered;
        rendered->SetClientData(&draws[name]);
        rendered->SetCallback([](vtkObject*, unsigned long, void* count, void*)
                              { ++*static_cast<int*>(count); });
        vtk->renderWindow()->AddObserver(vtkCommand::EndEvent, rendered);
      }
    }
  }

  int total() const
  {
    int sum = 0;
    for (const auto& entry : draws)
      sum += entry.second;
    return sum;
  }

  std::map<std::string, int> draws;

protected:
  bool eventFilter(QObject* object, QEvent* event) override
  {
    // A VTK view's paint event is its render, counted by the observer.
    if (event->type() == QEvent::Paint && !qobject_cast<QVTKOpenGLNativeWidget*>(object))
    {
      const auto found = viewOf.find(object);
      if (found != viewOf.end())
        ++draws[found->second];
    }
    return false;
  }

private:
  std::set<QWidget*> watched;
  std::map<QObject*, std::string> viewOf;
};

DrawCounter& drawCounter()
{
  static DrawCounter counter;
  return counter;
}

// Runs the event loop until every view has taken in the change and drawn what it draws, and a
// pass draws nothing more: what a user waits for, no view drawn that did not ask to be.
void drawn(ExplorerWindow& window)
{
  drawCounter().watch(window);
  int before = -1;
  for (int pass = 0; pass < 100 && drawCounter().total() != before; ++pass)
  {
    before = drawCounter().total();
    QApplication::sendPostedEvents();
    QApplication::processEvents();
  }
}

explorer::ScatterPlotView& scatter(ExplorerWindow& window)
{
  return *window.view<explorer::ScatterPlotView>();
}

vtkContextMouseEvent mouseAt(explorer::ScatterPlotView& view, double x, double y)
{
  ChartXY& chart = view.chart();
  const auto pixel = [](vtkAxis* axis, int c, double value)
  {
    return axis->GetPoint1()[c] + static_cast<float>((value - axis->GetMinimum()) /
                                                     (axis->GetMaximum() - axis->GetMinimum())) *
                                    (axis->GetPoint2()[c] - axis->GetPoint1()[c]);
  };
  const vtkVector2f at(pixel(chart.GetAxis(vtkAxis::BOTTOM), 0, x),
                       pixel(chart.GetAxis(vtkAxis::LEFT), 1, y));
  vtkContextMouseEvent event;
  event.SetInteractor(qobject_cast<QVTKOpenGLNativeWidget*>(view.widget())->interactor());
  event.SetButton(vtkContextMouseEvent::LEFT_BUTTON);
  event.SetPos(at);
  event.SetScenePos(at);
  event.SetScreenPos(vtkVector2i(static_cast<int>(at[0]), static_cast<int>(at[1])));
  event.SetLastPos(at);
  event.SetLastScenePos(at);
  event.SetLastScreenPos(vtkVector2i(static_cast<int>(at[0]), static_cast<int>(at[1])));
  return event;
}

// What an interaction leaves out of its time (preparing the state it changes), or nothing while
// it warms up.
struct Timing
{
  benchmark::State* state;
  void PauseTiming() const
  {
    if (state)
      state->PauseTiming();
  }
  void ResumeTiming() const
  {
    if (state)
      state->ResumeTiming();
  }
  void SkipWithError(const char* message) const
  {
    if (state)
      state->SkipWithError(message);
  }
};

// Each benchmark gets the window of its size; the iterations alternate between two states so
// that every one of them changes what is shown. Both states are shown once untimed first: the
// first selection of every one of ten million cases grows the heap by hundreds of MB (about half
// a second, paid once, not at each interaction).
template<typename Interaction>
void measure(benchmark::State& state, Interaction interaction)
{
  // --smoke is read after the sizes are registered: it keeps the first size, shrunk.
  if (bench::smoke() && (state.range(0) != 10000 || state.range(1) != 0))
  {
    for (auto _ : state)
    {
    }
    return;
  }
  ExplorerWindow& window = windowOver(bench::size(state.range(0), 300), state.range(1) != 0);
  window.selection().setSelection({});
  drawn(window);
  bool flip = false;
  for (int warmUp = 0; warmUp < 2; ++warmUp, flip = !flip)
  {
    interaction(window, flip, Timing{ nullptr });
    drawn(window);
  }
  const std::map<std::string, int> before = drawCounter().draws;
  int iterations = 0;
  for (auto _ : state)
  {
    interaction(window, flip, Timing{ &state });
    drawn(window);
    flip = !flip;
    ++iterations;
  }
  // Draws per interaction and view, the preparation paused in between included.
  for (const auto& [view, count] : drawCounter().draws)
  {
    const auto was = before.find(view);
    const int made = count - (was == before.end() ? 0 : was->second);
    if (made > 0 && iterations > 0)
      state.counters["draws_" + view] = double(made) / iterations;
  }
}

void SelectOneCase(benchmark::State& state)
{
  measure(state,
          [](ExplorerWindow& window, bool flip, const Timing&)
          { window.selection().setSelection({ flip ? 1003ULL : 1008ULL }); });
}

void SelectTenPercentByRubberBand(benchmark::State& state)
{
  measure(state,
          [](ExplorerWindow& window, bool flip, const Timing& s)
          {
            s.PauseTiming();
            window.selection().setSelection({});
            drawn(window);
            s.ResumeTiming();
            // The runs at one launch angle (a sixth), in the lower part of the range.
            ChartXY& chart = scatter(window).chart();
            vtkAxis* y = chart.GetAxis(vtkAxis::LEFT);
            const double top =
              y->GetMinimum() + (y->GetMaximum() - y->GetMinimum()) * (flip ? 0.6 : 0.5);
            vtkAbstractContextItem& item = chart;
            item.MouseButtonPressEvent(mouseAt(scatter(window), 12, y->GetMinimum()));
            const vtkContextMouseEvent release = mouseAt(scatter(window), 18, top);
            item.MouseMoveEvent(release);
            item.MouseButtonReleaseEvent(release);
          });
}

void ToggleOneCase(benchmark::State& state)
{
  measure(state,
          [](ExplorerWindow& window, bool flip, const Timing&)
          {
            std::set<unsigned long long> ids = window.selection().getSelections();
            if (flip)
              ids.erase(1005);
            else
              ids.insert(1005);
            window.selection().setSelection(ids);
          });
}

void SelectMatrixCell(benchmark::State& state)
{
  measure(state,
          [](ExplorerWindow& window, bool flip, const Timing& s)
          {
            QTableView& cells = window.view<explorer::ImageMatrixView>()->imageTable().tableView();
            if (cells.model()->rowCount() == 0)
            {
              // A study without images has a message where the matrix would be: no cell.
              s.SkipWithError("the study has no images");
              return;
            }
            cells.selectionModel()->select(cells.model()->index(flip ? 1 : 0, flip ? 1 : 0),
                                           QItemSelectionModel::ClearAndSelect);
          });
}

void SelectAllTableRows(benchmark::State& state)
{
  measure(state,
          [](ExplorerWindow& window, bool, const Timing& s)
          {
            s.PauseTiming();
            window.selection().setSelection({});
            drawn(window);
            s.ResumeTiming();
            window.view<explorer::CasesTableView>()->table().selectAll();
          });
}

void ClearSelection(benchmark::State& state)
{
  measure(state,
          [](ExplorerWindow& window, bool, const Timing& s)
          {
            s.PauseTiming();
            std::set<unsigned long long> tenth;
            for (unsigned long long id : window.project()->caseIds())
              if (id % 10 == 0)
                tenth.insert(id);
            window.selection().setSelection(tenth);
            drawn(window);
            s.ResumeTiming();
            window.selection().setSelection({});
          });
}

void ChangeVariable(benchmark::State& state, bool color)
{
  measure(state,
          [color](ExplorerWindow& window, bool flip, const Timing&)
          {
            auto& view = scatter(window);
            const auto property = color ? view.colorVariable() : view.xVariable();
            property->setValue(window.project()->variable(flip ? "speed" : "flight_time"));
          });
}

void ChangeXVariable(benchmark::State& state)
{
  ChangeVariable(state, false);
}

void ChangeColorVariable(benchmark::State& state)
{
  ChangeVariable(state, true);
}

void FitToData(benchmark::State& state)
{
  measure(state,
          [](ExplorerWindow& window, bool, const Timing& s)
          {
            s.PauseTiming();
            ChartXY& chart = scatter(window).chart();
            chart.GetAxis(vtkAxis::BOTTOM)->SetRange(30, 40);
            drawn(window);
            s.ResumeTiming();
            scatter(window).fitToData();
          });
}

void ZoomStep(benchmark::State& state)
{
  measure(state,
          [](ExplorerWindow& window, bool flip, const Timing&)
          {
            ChartXY& chart = scatter(window).chart();
            vtkAbstractContextItem& item = chart;
            item.MouseWheelEvent(mouseAt(scatter(window), 40, 100), flip ? -1 : 1);
          });
}

void RangeFilterOn(benchmark::State& state)
{
  measure(state,
          [](ExplorerWindow& window, bool flip, const Timing& s)
          {
            DataPipelineManager& pipeline = window.pipeline();
            const auto angle = window.project()->variable("angle");
            s.PauseTiming();
            pipeline.setRangeFilter(angle, 20, flip ? 50 : 60);
            pipeline.setFilterEnabled(angle, false);
            drawn(window);
            s.ResumeTiming();
            pipeline.setFilterEnabled(angle, true);
          });
}

void Undo(benchmark::State& state)
{
  measure(state,
          [](ExplorerWindow& window, bool flip, const Timing& s)
          {
            s.PauseTiming();
            scatter(window).xVariable()->setValue(
              window.project()->variable(flip ? "speed" : "flight_time"));
            drawn(window);
            s.ResumeTiming();
            UndoStack().undo();
          });
}

// A drag along the angle axis of the parallel coordinates: the brush becomes a range filter.
void BrushParallelAxis(benchmark::State& state)
{
  measure(state,
          [](ExplorerWindow& window, bool flip, const Timing&)
          {
            auto* view = window.view<explorer::ParallelCoordinatesView>();
            QWidget* canvas = view->widget();
            const auto send = [canvas](QEvent::Type type, QPoint at, Qt::MouseButtons buttons)
            {
              QMouseEvent event(type, at, Qt::LeftButton, buttons, Qt::NoModifier);
              QApplication::sendEvent(canvas, &event);
            };
            send(QEvent::MouseButtonPress, view->pointOnAxis(0, flip ? 50 : 60), Qt::LeftButton);
            send(QEvent::MouseMove, view->pointOnAxis(0, 40), Qt::LeftButton);
            send(QEvent::MouseButtonRelease, view->pointOnAxis(0, flip ? 20 : 30), Qt::NoButton);
          });
}

// One step of a drag that turns the 3-D scatter plot, its tab shown meanwhile.
void Turn3DScatter(benchmark::State& state)
{
  measure(state,
          [](ExplorerWindow& window, bool flip, const Timing& s)
          {
            auto* view = window.view<explorer::ScatterPlot3DView>();
            auto* tabs = window.findChild<QTabWidget*>("viewTabs");
            vtkRenderWindowInteractor* events =
              qobject_cast<QVTKOpenGLNativeWidget*>(view->widget())->interactor();
            s.PauseTiming();
            QWidget* shown = tabs->currentWidget();
            tabs->setCurrentWidget(view->widget());
            drawn(window);
            const int x = events->GetSize()[0] / 2;
            const int y = events->GetSize()[1] / 2;
            events->SetEventInformation(x, y);
            events->InvokeEvent(vtkCommand::LeftButtonPressEvent);
            s.ResumeTiming();
            events->SetEventInformation(x + (flip ? -20 : 20), y);
            events->InvokeEvent(vtkCommand::MouseMoveEvent);
            s.PauseTiming();
            events->InvokeEvent(vtkCommand::LeftButtonReleaseEvent);
            tabs->setCurrentWidget(shown);
            s.ResumeTiming();
          });
}

// 1e4, 1e5 and 1e6 cases without images, 1e4 with; a few iterations, since at a million cases
// an interaction that misses its target can take seconds.
void sizes(benchmark::internal::Benchmark* b)
{
  b->Unit(benchmark::kMillisecond)->UseRealTime();
  b->Args({ 10000, 0 })->Args({ 100000, 0 })->Args({ 1000000, 0 })->Args({ 10000, 1 });
  b->Iterations(4);
}

// The same, and ten million cases when QUEN_BENCH_1E7 is set: writing and opening that study
// takes minutes and about 6 GB, so it is asked for, not run by default.
void sizesUpTo1e7(benchmark::internal::Benchmark* b)
{
  sizes(b);
  if (std::getenv("QUEN_BENCH_1E7") != nullptr)
    b->Args({ 10000000, 0 });
}

} // namespace

BENCHMARK(SelectOneCase)->Apply(sizesUpTo1e7);
BENCHMARK(SelectTenPercentByRubberBand)->Apply(sizesUpTo1e7);
BENCHMARK(ToggleOneCase)->Apply(sizes);
BENCHMARK(SelectMatrixCell)->Apply(sizes);
BENCHMARK(SelectAllTableRows)->Apply(sizesUpTo1e7);
BENCHMARK(ClearSelection)->Apply(sizesUpTo1e7);
BENCHMARK(ChangeXVariable)->Apply(sizesUpTo1e7);
BENCHMARK(ChangeColorVariable)->Apply(sizes);
BENCHMARK(FitToData)->Apply(sizes);
BENCHMARK(ZoomStep)->Apply(sizes);
BENCHMARK(RangeFilterOn)->Apply(sizesUpTo1e7);
BENCHMARK(Undo)->Apply(sizesUpTo1e7);
BENCHMARK(BrushParallelAxis)->Apply(sizesUpTo1e7);
BENCHMARK(Turn3DScatter)->Apply(sizes);

QUEN_BENCH_MAIN()
