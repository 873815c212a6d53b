// A selection change then a re-render of a chart of a million points, against a re-render with
// nothing changed.

#include "BenchSupport.h"
#include "analyzer_common/SelectionModel.h"
#include "charts/ChartXY.h"
#include "dataviews/DataView2DSelectionSynchronizer.h"
#include "dataviews/PlotSelectionModel.h"

#include <boost/make_shared.hpp>
#include <vtkContextScene.h>
#include <vtkContextView.h>
#include <vtkDoubleArray.h>
#include <vtkPlot.h>
#include <vtkRenderWindow.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkTable.h>
#include <vtkTypeUInt64Array.h>

#include <random>

namespace
{

struct RenderedChart
{
  vtkSmartPointer<vtkContextView> view = vtkSmartPointer<vtkContextView>::New();
  vtkSmartPointer<ChartXY> chart = vtkSmartPointer<ChartXY>::New();
  boost::shared_ptr<SelectionModel> master = boost::make_shared<SelectionModel>();
  std::unique_ptr<DataView2DSelectionSynchronizer> synchronizer;

  RenderedChart()
  {
    const long long rows = bench::size(1000000, 1000);
    view->GetRenderWindow()->SetSize(800, 600);
    view->GetRenderWindow()->SetOffScreenRendering(1);
    view->GetScene()->AddItem(chart);
    auto table = vtkSmartPointer<vtkTable>::New();
    auto ids = vtkSmartPointer<vtkTypeUInt64Array>::New();
    ids->SetName("case_id");
    auto x = vtkSmartPointer<vtkDoubleArray>::New();
    x->SetName("x");
    auto y = vtkSmartPointer<vtkDoubleArray>::New();
    y->SetName("y");
    std::mt19937 random(3);
    std::normal_distribution<double> normal;
    for (long long i = 0; i < rows; ++i)
    {
      ids->InsertNextValue(static_cast<unsigned long long>(i));
      x->InsertNextValue(normal(random));
      y->InsertNextValue(normal(random));
    }
    table->AddColumn(ids);
    table->AddColumn(x);
    table->AddColumn(y);
    vtkPlot* plot = chart->AddPlot(vtkChart::POINTS);
    plot->SetInputData(table, 1, 2);
    auto interactor = vtkSmartPointer<vtkRenderWindowInteractor>::New();
    synchronizer = std::make_unique<DataView2DSelectionSynchronizer>(
      chart, interactor, boost::make_shared<PlotSelectionModel>(interactor, master));
    synchronizer->setPlotsToSynchronize({ plot });
    view->Render();
  }
};

void RenderUnchanged(benchmark::State& state)
{
  RenderedChart scene;
  for (auto _ : state)
  {
    scene.chart->Update();
    scene.view->Render();
  }
}

void SelectThenRender(benchmark::State& state)
{
  RenderedChart scene;
  std::set<unsigned long long> a;
  std::set<unsigned long long> b;
  for (unsigned long long i = 0; i < static_cast<unsigned long long>(bench::size(10000, 10)); ++i)
  {
    a.insert(i * 97);
    b.insert(i * 97 + 1);
  }
  bool flip = false;
  for (auto _ : state)
  {
    scene.master->setSelection(flip ? a : b);
    scene.chart->Update();
    scene.view->Render();
    flip = !flip;
  }
}

} // namespace

BENCHMARK(RenderUnchanged)->Unit(benchmark::kMillisecond);
BENCHMARK(SelectThenRender)->Unit(benchmark::kMillisecond);

QUEN_BENCH_MAIN()
