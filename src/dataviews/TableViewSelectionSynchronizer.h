#pragma once

#include "analyzer_common/SuspendableInterface.h"
#include "quen_analyzer_dataviews_common_export.h"
#include "signals/SignalConnectionCollection.h"

#include <QObject>
#include <boost/shared_ptr.hpp>

#include <set>

class QTableView;
class SelectionConverterInterface;
class SelectionModelInterface;

/// Keeps a table view's item selection and the master selection of case ids in step, through a
/// converter that knows what the view's cells stand for.
///
/// Each direction switches the other off while it writes, so nothing echoes: a selection made in
/// the view is set on the master with the master connection dropped, and a master change is
/// shown in the view with the view's connection dropped. suspend() stops only the master
/// direction (selections made in the view still reach the master); resume() brings the view up
/// to the master's selection.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT TableViewSelectionSynchronizer
  : public QObject
  , public SuspendableInterface
{
  Q_OBJECT

public:
  /// Shows the master's selection in the view at once (replacing the view's own), and keeps the
  /// selection's highlight colour while the view has no focus.
  TableViewSelectionSynchronizer(boost::shared_ptr<SelectionModelInterface> master,
                                 QTableView& view,
                                 boost::shared_ptr<SelectionConverterInterface> converter);
  ~TableViewSelectionSynchronizer() override;

  void suspend() override;
  void resume() override;

  void beginLocalSelectionMonitoring();
  void endLocalSelectionMonitoring();
  /// Shows the master's selection in the view, with local monitoring left connected.
  void updateLocalSelections();
  /// Shows the master's selection in the view without sending it back to the master: for a view
  /// whose model was reset or rebuilt, which cleared its item selection.
  void showMasterSelection();

protected:
  virtual void beginMasterSelectionMonitoring();
  virtual void endMasterSelectionMonitoring();

private Q_SLOTS:
  void onLocalSelectionChanged();

private:
  virtual void setLocalSelectionsToMaster(const std::set<unsigned long long>& ids);
  void onMasterSelectionChanged(const std::set<unsigned long long>& ids);

  boost::shared_ptr<SelectionModelInterface> masterSelectionModel;
  QTableView* tableView;
  boost::shared_ptr<SelectionConverterInterface> converter;
  SignalConnectionCollection connections;
};
