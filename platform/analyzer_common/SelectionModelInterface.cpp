#include "analyzer_common/SelectionModelInterface.h"

SelectionModelInterface::SelectionModelInterface() = default;

SelectionModelInterface::~SelectionModelInterface() = default;

boost::signals2::connection SelectionModelInterface::connectSignalSelectionChanged(
  const SelectionChangedSignal::slot_type& slot) const
{
  auto connection = signalSelectionChanged.connect(slot);
  signalSelectionChangedConnected();
  return connection;
}

void SelectionModelInterface::signalSelectionChangedConnected() const {}

void SelectionModelInterface::emitSignalSelectionChanged(const Selection& selection) const
{
  signalSelectionChanged(selection);
}
