#pragma once

#include "quen_analyzer_dataviews_common_export.h"

#include <QItemSelection>

#include <set>

class QItemSelectionModel;

/// Translates between a table view's item selection and case ids, for one kind of view.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT SelectionConverterInterface
{
public:
  virtual ~SelectionConverterInterface();
  /// The case ids the current item selection stands for.
  virtual std::set<unsigned long long> caseIDsFromSelection(
    const QItemSelectionModel& selectionModel) const = 0;
  /// The item selection that shows the given case ids.
  virtual QItemSelection selectionFromCaseIDs(const std::set<unsigned long long>& ids) const = 0;
};
