#pragma once

#include "analyzer_common/SuspendableInterface.h"
#include "quen_analyzer_dataviews_common_export.h"
#include "signals/SignalConnectionCollection.h"

#include <boost/shared_ptr.hpp>
#include <boost/signals2/signal.hpp>
#include <vtkSmartPointer.h>

#include <memory>
#include <set>
#include <vector>

class PlotSelectionModel;
class vtkAbstractArray;
class vtkChart;
class vtkPlot;
class vtkPxCommandProxy;
class vtkRenderWindowInteractor;
class vtkTable;

/// Keeps the selections of a chart's plots and the master selection in step, both ways.
///
/// Chart to master: when the chart reports a selection change, the case ids of the selected rows
/// of the synchronised plots (read from column 0 of each plot's table, see RecordTableUtils) go
/// to the PlotSelectionModel, which replaces, toggles or extends the master selection by the
/// modifier key. With the key down, a pick that brings nothing new leaves the master as it is
/// and restores the plots' highlighted rows.
///
/// Master to chart: every change of the master selection rewrites the selection of every plot of
/// the chart: synchronised plots select the rows of the selected cases, all other plots are
/// cleared. The echo of a chart change through the master is what makes toggles and unions
/// visible in the chart.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT DataView2DSelectionSynchronizer
  : public SuspendableInterface
{
public:
  using SelectionsUpdatedSignal = boost::signals2::signal<void()>;

  /// Starts live: observes the chart and the model, and selects the master's cases at once.
  DataView2DSelectionSynchronizer(vtkSmartPointer<vtkChart> chart,
                                  vtkSmartPointer<vtkRenderWindowInteractor> interactor,
                                  boost::shared_ptr<PlotSelectionModel> model);
  ~DataView2DSelectionSynchronizer() override;
  DataView2DSelectionSynchronizer(const DataView2DSelectionSynchronizer&) = delete;
  DataView2DSelectionSynchronizer& operator=(const DataView2DSelectionSynchronizer&) = delete;

  /// Stops both directions. Master changes made meanwhile are not caught up on resume(); call
  /// updateChartSelections() for that.
  void suspend() override;
  void resume() override;

  /// The plots whose selections are synchronised; takes effect at the next change.
  void setPlotsToSynchronize(const std::vector<vtkSmartPointer<vtkPlot>>& plots);
  bool plotShouldBeSynchronized(vtkSmartPointer<vtkPlot> plot) const;
  /// Selects the master's current cases in the plots.
  void updateChartSelections();
  /// Column 0 of the table: the case ids.
  vtkAbstractArray* getRunIdArray(vtkTable& table) const;

  /// Fires after the plots' selections were rewritten from a master change.
  boost::signals2::connection connectSignalSelectionsUpdated(
    const SelectionsUpdatedSignal::slot_type& slot) const;

private:
  void masterSelectionChanged(const std::set<unsigned long long>& ids);
  void setNewSelections(const std::set<unsigned long long>& ids);
  void chartSelectionChanged();

  struct Indexes;

  mutable SelectionsUpdatedSignal signalSelectionsUpdated;
  vtkSmartPointer<vtkChart> chart;
  vtkSmartPointer<vtkRenderWindowInteractor> interactor;
  boost::shared_ptr<PlotSelectionModel> plotSelectionModel;
  vtkSmartPointer<vtkPxCommandProxy> chartObserver;
  SignalConnectionCollection connections;
  std::vector<vtkSmartPointer<vtkPlot>> plotsToSynchronize;
  std::unique_ptr<Indexes> indexes;
};
