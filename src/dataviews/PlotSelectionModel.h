#pragma once

#include "analyzer_common/SelectionModelInterface.h"
#include "quen_analyzer_dataviews_common_export.h"
#include "signals/SignalConnectionCollection.h"

#include <boost/shared_ptr.hpp>
#include <vtkSmartPointer.h>

class vtkRenderWindowInteractor;

/// Stands between a chart and the master selection: a selection made in the chart becomes a
/// change of the master selection according to the modifier key (Control) of the chart's
/// interactor. Without it the selection replaces the master's; with it, a single case toggles
/// and several cases are added. The model keeps no selection of its own, and relays every
/// change of the master as its own selection-changed signal.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT PlotSelectionModel
  : public virtual SelectionModelInterface
{
public:
  PlotSelectionModel(vtkSmartPointer<vtkRenderWindowInteractor> interactor,
                     boost::shared_ptr<SelectionModelInterface> master);
  ~PlotSelectionModel() override;

  /// The master's selection.
  Selection getSelections() const override;
  /// Key up: the master's selection becomes `ids`. Key down: one id is toggled in the master's
  /// selection, several are added to it.
  void setSelection(const Selection& ids) override;

  /// Whether the modifier key is down; the one place the interactor's key state is read.
  static bool modifierKeyIsDown(vtkRenderWindowInteractor& interactor);

private:
  void masterSelectionModelChanged(const Selection& ids);

  vtkSmartPointer<vtkRenderWindowInteractor> interactor;
  boost::shared_ptr<SelectionModelInterface> masterSelectionModel;
  SignalConnectionCollection connections;
};
