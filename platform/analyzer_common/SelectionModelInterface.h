#pragma once

#include "analyzer_common/quen_analyzer_common_export.h"

#include <boost/signals2/signal.hpp>

#include <set>

/// A selection of case ids with a signal that reports every change of it.
class QUEN_ANALYZER_COMMON_EXPORT SelectionModelInterface
{
public:
  using Selection = std::set<unsigned long long>;
  using SelectionChangedSignal = boost::signals2::signal<void(const Selection&)>;

  SelectionModelInterface();
  SelectionModelInterface(const SelectionModelInterface&) = delete;
  SelectionModelInterface& operator=(const SelectionModelInterface&) = delete;
  virtual ~SelectionModelInterface();

  virtual Selection getSelections() const = 0;
  virtual void setSelection(const Selection& selection) = 0;

  /// Connects a listener to the selection-changed signal, which carries the new selection; then
  /// runs signalSelectionChangedConnected().
  boost::signals2::connection connectSignalSelectionChanged(
    const SelectionChangedSignal::slot_type& slot) const;

protected:
  void emitSignalSelectionChanged(const Selection& selection) const;

private:
  /// Runs each time a listener connects; does nothing here.
  virtual void signalSelectionChangedConnected() const;

  mutable SelectionChangedSignal signalSelectionChanged;
};
