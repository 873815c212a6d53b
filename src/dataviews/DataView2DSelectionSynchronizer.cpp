#include "dataviews/DataView2DSelectionSynchronizer.h"

#include "common_vtk/vtkPxCommandProxy.h"
#include "dataviews/CaseIdColumn_p.h"
#include "dataviews/PlotSelectionModel.h"
#include "dataviews/PxWaitCursor.h"

#include <vtkChart.h>
#include <vtkCommand.h>
#include <vtkIdTypeArray.h>
#include <vtkPlot.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkTable.h>

#include <algorithm>
#include <map>

// One row index per plot, so that a selection change costs work in proportion to the selected
// cases rather than to the rows of every plot.
struct DataView2DSelectionSynchronizer::Indexes
{
  std::map<vtkPlot*, caseids::RowIndex> byPlot;

  caseids::RowIndex& of(vtkPlot* plot) { return byPlot[plot]; }
};

DataView2DSelectionSynchronizer::DataView2DSelectionSynchronizer(
  vtkSmartPointer<vtkChart> chart,
  vtkSmartPointer<vtkRenderWindowInteractor> interactor,
  boost::shared_ptr<PlotSelectionModel> model)
  : chart(std::move(chart))
  , interactor(std::move(interactor))
  , plotSelectionModel(std::move(model))
  , indexes(std::make_unique<Indexes>())
{
  connections.add(plotSelectionModel->connectSignalSelectionChanged(
    [this](const std::set<unsigned long long>& ids) { masterSelectionChanged(ids); }));
  chartObserver = vtkPxCommandProxy::New([this] { chartSelectionChanged(); });
  this->chart->AddObserver(vtkCommand::SelectionChangedEvent, chartObserver, 0);
  updateChartSelections();
}

DataView2DSelectionSynchronizer::~DataView2DSelectionSynchronizer()
{
  chart->RemoveObserver(chartObserver);
}

void DataView2DSelectionSynchronizer::suspend()
{
  connections.block();
  chart->RemoveObserver(chartObserver);
}

void DataView2DSelectionSynchronizer::resume()
{
  connections.unblock();
  chart->AddObserver(vtkCommand::SelectionChangedEvent, chartObserver, 0);
}

void DataView2DSelectionSynchronizer::setPlotsToSynchronize(
  const std::vector<vtkSmartPointer<vtkPlot>>& plots)
{
  plotsToSynchronize = plots;
  indexes->byPlot.clear();
}

bool DataView2DSelectionSynchronizer::plotShouldBeSynchronized(vtkSmartPointer<vtkPlot> plot) const
{
  return std::find(plotsToSynchronize.begin(), plotsToSynchronize.end(), plot) !=
         plotsToSynchronize.end();
}

void DataView2DSelectionSynchronizer::updateChartSelections()
{
  setNewSelections(plotSelectionModel->getSelections());
}

vtkAbstractArray* DataView2DSelectionSynchronizer::getRunIdArray(vtkTable& table) const
{
  return vtkAbstractArray::SafeDownCast(table.GetColumn(0));
}

boost::signals2::connection DataView2DSelectionSynchronizer::connectSignalSelectionsUpdated(
  const SelectionsUpdatedSignal::slot_type& slot) const
{
  return signalSelectionsUpdated.connect(slot);
}

void DataView2DSelectionSynchronizer::masterSelectionChanged(
  const std::set<unsigned long long>& ids)
{
  PxWaitCursor wait;
  setNewSelections(ids);
  signalSelectionsUpdated();
}

void DataView2DSelectionSynchronizer::setNewSelections(const std::set<unsigned long long>& ids)
{
  const vtkIdType plots = chart->GetNumberOfPlots();
  for (vtkIdType p = 0; p < plots; ++p)
  {
    vtkPlot* plot = chart->GetPlot(p);
    if (!plot)
    {
      continue;
    }
    auto selection = vtkSmartPointer<vtkIdTypeArray>::New();
    selection->SetNumberOfComponents(1);
    vtkTable* table = plot->GetInput();
    if (table && plotShouldBeSynchronized(plot))
    {
      const std::vector<vtkIdType>& rows = indexes->of(plot).rowsOf(*table, ids);
      selection->SetNumberOfValues(static_cast<vtkIdType>(rows.size()));
      std::copy(rows.begin(), rows.end(), selection->GetPointer(0));
    }
    // Every plot of the chart gets a selection: those not synchronised are cleared.
    plot->SetSelection(selection);
  }
}

void DataView2DSelectionSynchronizer::chartSelectionChanged()
{
  std::vector<unsigned long long> pickedIds;
  const vtkIdType plots = chart->GetNumberOfPlots();
  for (vtkIdType p = 0; p < plots; ++p)
  {
    vtkPlot* plot = chart->GetPlot(p);
    if (!plot || !plotShouldBeSynchronized(plot))
    {
      continue;
    }
    vtkIdTypeArray* selection = plot->GetSelection();
    vtkTable* table = plot->GetInput();
    if (!selection || !table)
    {
      continue;
    }
    const std::vector<unsigned long long>& idOfRow = indexes->of(plot).caseIdsOf(*table);
    const int components = std::max(1, selection->GetNumberOfComponents());
    const vtkIdType tuples = (selection->GetMaxId() + 1) / components;
    for (vtkIdType t = 0; t < tuples; ++t)
    {
      const vtkIdType row = selection->GetValue(t * components);
      if (row >= 0 && static_cast<std::size_t>(row) < idOfRow.size())
      {
        pickedIds.push_back(idOfRow[static_cast<std::size_t>(row)]);
      }
    }
  }
  // Sorted first, a set is built in one linear pass.
  std::sort(pickedIds.begin(), pickedIds.end());
  const std::set<unsigned long long> picked(pickedIds.begin(), pickedIds.end());

  if (!PlotSelectionModel::modifierKeyIsDown(*interactor))
  {
    plotSelectionModel->setSelection(picked);
    return;
  }
  const std::set<unsigned long long> current = plotSelectionModel->getSelections();
  const bool togglesOff = picked.size() == 1 && current.count(*picked.begin()) != 0;
  if (!togglesOff && std::includes(current.begin(), current.end(), picked.begin(), picked.end()))
  {
    // Nothing new: the master stays, the chart shows it again.
    setNewSelections(plotSelectionModel->getSelections());
    return;
  }
  // One selected case picked again toggles it off; anything else new goes to the master.
  plotSelectionModel->setSelection(picked);
}
