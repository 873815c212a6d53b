#include "serialization/ListModelInterface.h"

ListModelInterface<std::string>::ListModelInterface() = default;

ListModelInterface<std::string>::~ListModelInterface() = default;

boost::signals2::connection ListModelInterface<std::string>::connectSignalModelChanged(
  const ModelChangedSignal::slot_type& slot) const
{
  auto connection = signalModelChanged.connect(slot);
  signalModelChangedConnected();
  return connection;
}

boost::signals2::connection ListModelInterface<std::string>::connectSignalDataChanged(
  const DataChangedSignal::slot_type& slot) const
{
  auto connection = signalDataChanged.connect(slot);
  signalDataChangedConnected();
  return connection;
}

void ListModelInterface<std::string>::emitSignalModelChanged() const
{
  signalModelChanged();
}

void ListModelInterface<std::string>::emitSignalDataChanged(unsigned long long first,
                                                            unsigned long long last) const
{
  signalDataChanged(first, last);
}

void ListModelInterface<std::string>::signalDataChangedConnected() const {}

void ListModelInterface<std::string>::signalModelChangedConnected() const {}
