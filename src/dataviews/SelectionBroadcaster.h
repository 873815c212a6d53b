#pragma once

#include "quen_analyzer_dataviews_common_export.h"

#include <QList>
#include <QModelIndex>
#include <QObject>
#include <boost/signals2/signal.hpp>

class QItemSelectionModel;

/// Turns the changes of an item selection into one plain notification: every selection change,
/// and a model reset or relayout only when it changed which indexes are selected.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT SelectionBroadcaster : public QObject
{
  Q_OBJECT

public:
  using SelectedImagesChangedSignal = boost::signals2::signal<void()>;

  explicit SelectionBroadcaster(const QItemSelectionModel& model);
  ~SelectionBroadcaster() override;

  boost::signals2::connection connectSignalSelectedImagesChanged(
    const SelectedImagesChangedSignal::slot_type& slot) const;

public Q_SLOTS:
  /// Records the selection and signals, whatever changed.
  void selectionChanged() const;
  /// Signals only when the selected indexes differ from the last ones recorded.
  void signalIfSelectionChanged() const;

private:
  mutable SelectedImagesChangedSignal signalSelectedImagesChanged;
  mutable QList<QModelIndex> lastSelection;
  const QItemSelectionModel* itemSelectionModel;
};
