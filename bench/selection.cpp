// Master selection to chart rows, and chart selection to master, on a plot of a million rows,
// against a straightforward per-row reference (vtkVariant per row, std::set lookups).

#include "BenchSupport.h"
#include "analyzer_common/SelectionModel.h"
#include "dataviews/DataView2DSelectionSynchronizer.h"
#include "dataviews/PlotSelectionModel.h"

#include <boost/make_shared.hpp>
#include <vtkChartXY.h>
#include <vtkCommand.h>
#include <vtkDoubleArray.h>
#include <vtkIdTypeArray.h>
#include <vtkPlotPoints.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkTable.h>
#include <vtkTypeUInt64Array.h>
#include <vtkVariant.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <set>

namespace
{

using Ids = std::set<unsigned long long>;

struct Scene
{
  vtkSmartPointer<vtkChartXY> chart = vtkSmartPointer<vtkChartXY>::New();
  vtkSmartPointer<vtkPlot> plot;
  vtkSmartPointer<vtkTable> table = vtkSmartPointer<vtkTable>::New();
  long long rows = 0;

  explicit Scene(long long count)
    : rows(count)
  {
    auto ids = vtkSmartPointer<vtkTypeUInt64Array>::New();
    ids->SetName("case_id");
    auto x = vtkSmartPointer<vtkDoubleArray>::New();
    x->SetName("x");
    ids->SetNumberOfValues(count);
    x->SetNumberOfValues(count);
    for (long long i = 0; i < count; ++i)
    {
      ids->SetValue(i, static_cast<unsigned long long>(1000 + i));
      x->SetValue(i, static_cast<double>(i % 997));
    }
    table->AddColumn(ids);
    table->AddColumn(x);
    plot = chart->AddPlot(vtkChart::POINTS);
    plot->SetInputData(table, 1, 1);
  }

  // Two different selections of the given fraction of the cases, sorted.
  std::pair<Ids, Ids> selections(double fraction) const
  {
    std::mt19937 random(7);
    std::pair<Ids, Ids> result;
    for (Ids* ids : { &result.first, &result.second })
    {
      std::vector<unsigned long long> all(static_cast<std::size_t>(rows));
      std::iota(all.begin(), all.end(), 1000ULL);
      std::shuffle(all.begin(), all.end(), random);
      all.resize(static_cast<std::size_t>(static_cast<double>(rows) * fraction));
      // Selections reach the synchroniser built in ascending order, as the views build them.
      std::sort(all.begin(), all.end());
      ids->insert(all.begin(), all.end());
    }
    return result;
  }
};

// What the master-to-chart direction does, written per row as its description reads.
void referenceSetNewSelections(vtkChart& chart, const Ids& ids)
{
  for (vtkIdType p = 0; p < chart.GetNumberOfPlots(); ++p)
  {
    vtkPlot* plot = chart.GetPlot(p);
    auto selection = vtkSmartPointer<vtkIdTypeArray>::New();
    vtkTable* table = plot->GetInput();
    vtkAbstractArray* column = table->GetColumn(0);
    for (vtkIdType row = 0; row < table->GetNumberOfRows(); ++row)
    {
      const auto id = static_cast<unsigned long long>(
        static_cast<long long>(column->GetVariantValue(row).ToInt()));
      if (ids.count(id))
        selection->InsertNextValue(row);
    }
    plot->SetSelection(selection);
  }
}

// A master selection that announces a prepared selection, so that the measure holds the
// synchroniser's work and not the copy of a large set into a model.
class AnnouncingMaster : public SelectionModelInterface
{
public:
  Selection getSelections() const override { return current ? *current : Selection(); }
  void setSelection(const Selection&) override {}
  void announce(const Selection& ids)
  {
    current = &ids;
    emitSignalSelectionChanged(ids);
  }

private:
  const Selection* current = nullptr;
};

// The rows the chart would report as picked for each selection (case id 1000 is row 0).
std::vector<vtkSmartPointer<vtkIdTypeArray>> rowsOf(std::initializer_list<const Ids*> selections)
{
  std::vector<vtkSmartPointer<vtkIdTypeArray>> picks;
  for (const Ids* ids : selections)
  {
    auto rows = vtkSmartPointer<vtkIdTypeArray>::New();
    for (unsigned long long id : *ids)
      rows->InsertNextValue(static_cast<vtkIdType>(id - 1000));
    picks.push_back(rows);
  }
  return picks;
}

long long rowCount()
{
  return bench::size(1000000, 2000);
}

void MasterToChart_Library(benchmark::State& state)
{
  Scene scene(rowCount());
  auto master = boost::make_shared<AnnouncingMaster>();
  auto interactor = vtkSmartPointer<vtkRenderWindowInteractor>::New();
  auto model = boost::make_shared<PlotSelectionModel>(interactor, master);
  DataView2DSelectionSynchronizer synchronizer(scene.chart, interactor, model);
  synchronizer.setPlotsToSynchronize({ scene.plot });
  const auto [a, b] = scene.selections(static_cast<double>(state.range(0)) / 100.0);
  master->announce(a); // builds the row index once
  bool flip = false;
  for (auto _ : state)
  {
    master->announce(flip ? a : b);
    flip = !flip;
  }
}

void MasterToChart_Reference(benchmark::State& state)
{
  Scene scene(rowCount());
  const auto [a, b] = scene.selections(static_cast<double>(state.range(0)) / 100.0);
  bool flip = false;
  for (auto _ : state)
  {
    referenceSetNewSelections(*scene.chart, flip ? a : b);
    flip = !flip;
  }
}

// The chart reports a pick of 10% of the rows; the master takes it and the plots show it again.
void ChartToMaster_Library(benchmark::State& state)
{
  Scene scene(rowCount());
  auto master = boost::make_shared<SelectionModel>();
  auto interactor = vtkSmartPointer<vtkRenderWindowInteractor>::New();
  auto model = boost::make_shared<PlotSelectionModel>(interactor, master);
  DataView2DSelectionSynchronizer synchronizer(scene.chart, interactor, model);
  synchronizer.setPlotsToSynchronize({ scene.plot });
  master->setSelection({ 1000 });
  const auto [a, b] = scene.selections(0.1);
  const auto picks = rowsOf({ &a, &b });
  bool flip = false;
  for (auto _ : state)
  {
    scene.plot->SetSelection(picks[flip ? 1 : 0]);
    scene.chart->InvokeEvent(vtkCommand::SelectionChangedEvent);
    flip = !flip;
  }
}

void ChartToMaster_Reference(benchmark::State& state)
{
  Scene scene(rowCount());
  SelectionModel master;
  auto echo = master.connectSignalSelectionChanged(
    [&](const Ids& ids) { referenceSetNewSelections(*scene.chart, ids); });
  const auto [a, b] = scene.selections(0.1);
  const auto picks = rowsOf({ &a, &b });
  bool flip = false;
  for (auto _ : state)
  {
    vtkIdTypeArray* selection = picks[flip ? 1 : 0];
    scene.plot->SetSelection(selection);
    Ids picked;
    vtkAbstractArray* column = scene.table->GetColumn(0);
    for (vtkIdType i = 0; i <= selection->GetMaxId(); ++i)
      picked.insert(static_cast<unsigned long long>(
        static_cast<long long>(column->GetVariantValue(selection->GetValue(i)).ToInt())));
    master.setSelection(picked);
    flip = !flip;
  }
}

} // namespace

BENCHMARK(MasterToChart_Library)->Arg(1)->Arg(10)->Arg(50)->Unit(benchmark::kMillisecond);
BENCHMARK(MasterToChart_Reference)->Arg(1)->Arg(10)->Arg(50)->Unit(benchmark::kMillisecond);
BENCHMARK(ChartToMaster_Library)->Unit(benchmark::kMillisecond);
BENCHMARK(ChartToMaster_Reference)->Unit(benchmark::kMillisecond);

QUEN_BENCH_MAIN()
