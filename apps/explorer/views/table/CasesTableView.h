#pragma once

#include "ExplorerView.h"

#include <memory>

class QTableView;

namespace plexa
{
template<typename T>
class PropertyAbstract;
}

namespace explorer
{

/// The table of the shown cases (the pipeline's output): one row per case, one column per
/// variable. Selecting rows selects their cases. A click on a column header sorts by it (a
/// setting, undone and saved); a case id typed in the search field is selected and scrolled to.
class CasesTableView : public ViewOfKind<TableViewInterface>
{
public:
  explicit CasesTableView(const ViewContext& context);
  ~CasesTableView() override;

  QString title() const override { return "Cases"; }
  std::string shortName() const override { return "table"; }
  /// The table has no settings of its own.
  std::vector<SettingsSection> settingsSections(PropertyEditors&) override { return {}; }
  std::string selectionSummary() const override;
  void refresh() override;

  QTableView& table() const;
  int selectedRows() const;
  /// The sorting column (-1 for the study's order) and direction.
  boost::shared_ptr<plexa::PropertyAbstract<short>> sortColumn() const;
  boost::shared_ptr<plexa::PropertyAbstract<bool>> sortDescending() const;

protected:
  void suspendParts() override;
  void resumeParts() override;

private:
  struct Impl;
  std::unique_ptr<Impl> d;
};

} // namespace explorer
