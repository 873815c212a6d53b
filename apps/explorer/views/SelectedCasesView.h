#pragma once

#include "ExplorerView.h"

#include <memory>

class QTableView;

namespace explorer
{

/// The selected cases alone, with the value of every variable: the case id first, then one
/// column per variable, sortable by any column (the sort is a saved, undoable setting). Copy
/// puts the rows, as shown, on the clipboard; exporting writes them in full precision. The cases
/// are the master selection's whether the filters show them or not.
class SelectedCasesView : public ViewOfKind<SelectedCasesViewInterface>
{
public:
  explicit SelectedCasesView(const ViewContext& context);
  ~SelectedCasesView() override;

  QString title() const override { return "Selected cases"; }
  std::string shortName() const override { return "selected-cases"; }
  std::vector<SettingsSection> settingsSections(PropertyEditors& editors) override;
  std::string selectionSummary() const override;
  void refresh() override;

  /// The column sorted by (-1 for case id order) and whether the order is descending.
  boost::shared_ptr<plexa::PropertyAbstract<short>> sortColumn() const;
  boost::shared_ptr<plexa::PropertyAbstract<bool>> sortDescending() const;
  QTableView& table() const;
  /// The shown rows as tab-separated text with a header line, as Copy puts them on the clipboard.
  QString shownText() const;
  /// Writes the selected cases to a CSV file, every number so that it reads back exactly; throws
  /// std::runtime_error when the file cannot be written.
  void exportSelection(const std::string& path) const;

protected:
  void suspendParts() override;
  void resumeParts() override;

private:
  struct Impl;
  std::unique_ptr<Impl> d;
};

} // namespace explorer
