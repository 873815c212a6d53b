#include "dataviews/PlotSelectionModel.h"

#include <vtkRenderWindowInteractor.h>

PlotSelectionModel::PlotSelectionModel(vtkSmartPointer<vtkRenderWindowInteractor> interactor,
                                       boost::shared_ptr<SelectionModelInterface> master)
  : interactor(std::move(interactor))
  , masterSelectionModel(std::move(master))
{
  connections.add(masterSelectionModel->connectSignalSelectionChanged(
    [this](const Selection& ids) { masterSelectionModelChanged(ids); }));
}

PlotSelectionModel::~PlotSelectionModel() = default;

bool PlotSelectionModel::modifierKeyIsDown(vtkRenderWindowInteractor& interactor)
{
  // Control, as in most tools that select: Control-click toggles, Control-drag adds.
  return interactor.GetControlKey() != 0;
}

PlotSelectionModel::Selection PlotSelectionModel::getSelections() const
{
  return masterSelectionModel->getSelections();
}

void PlotSelectionModel::setSelection(const Selection& ids)
{
  if (!modifierKeyIsDown(*interactor))
  {
    masterSelectionModel->setSelection(ids);
    return;
  }
  Selection result = masterSelectionModel->getSelections();
  if (ids.size() == 1)
  {
    const unsigned long long id = *ids.begin();
    if (result.erase(id) == 0)
    {
      result.insert(id);
    }
  }
  else
  {
    result.insert(ids.begin(), ids.end());
  }
  masterSelectionModel->setSelection(result);
}

void PlotSelectionModel::masterSelectionModelChanged(const Selection& ids)
{
  emitSignalSelectionChanged(ids);
}
