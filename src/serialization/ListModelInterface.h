#pragma once

#include "quen_analyzer_dataviews_common_export.h"

#include <boost/signals2/signal.hpp>

#include <string>
#include <utility>

template<typename T>
class ListModelInterface;

/// An ordered list of entries, each a display string (what a chooser shows) and a data string
/// (the value the program works with), with change signals for the choosers that show it.
template<>
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT ListModelInterface<std::string>
{
public:
  using ModelChangedSignal = boost::signals2::signal<void()>;
  /// Carries the first and the last index of the changed entries.
  using DataChangedSignal = boost::signals2::signal<void(unsigned long long, unsigned long long)>;

  ListModelInterface();
  ListModelInterface(const ListModelInterface&) = delete;
  ListModelInterface& operator=(const ListModelInterface&) = delete;
  virtual ~ListModelInterface();

  virtual unsigned long long size() const = 0;
  /// The data string of an entry; std::out_of_range past the end.
  virtual std::string data(unsigned long long index) const = 0;
  /// The display string of an entry; std::out_of_range past the end.
  virtual std::string displayString(unsigned long long index) const = 0;
  /// (true, index) of the first entry whose data string equals the value exactly; (false, 0)
  /// when there is none. Display strings are not searched.
  virtual std::pair<bool, unsigned long long> find(const std::string& value) const = 0;
  /// Empties the list and signals the change of the whole model.
  virtual void clear() = 0;

  /// The list as a whole changed.
  boost::signals2::connection connectSignalModelChanged(
    const ModelChangedSignal::slot_type& slot) const;
  /// Some entries changed in place.
  boost::signals2::connection connectSignalDataChanged(
    const DataChangedSignal::slot_type& slot) const;

protected:
  void emitSignalModelChanged() const;
  void emitSignalDataChanged(unsigned long long first, unsigned long long last) const;

private:
  /// Run each time a listener connects to the respective signal; they do nothing here.
  virtual void signalDataChangedConnected() const;
  virtual void signalModelChangedConnected() const;

  mutable ModelChangedSignal signalModelChanged;
  mutable DataChangedSignal signalDataChanged;
};
