#pragma once

#include "ExplorerView.h"
#include "views/importance/Importance.h"

#include <memory>

namespace plexa
{
template<typename T>
class PropertyAbstract;
}

namespace explorer
{

/// Inputs that matter: for a chosen output, every input's correlation ratio (the share of the
/// output's variance its groups explain) and Spearman's rank correlation, as sorted bars with
/// their figures, over the shown cases (the range filters apply) and, when asked, over the
/// selected ones beside them. Inputs are the variables marked input, or every other variable
/// when none is. A click on an input's row plots the output against it in the scatter plot.
class ImportanceView : public ViewOfKind<ImportanceInterface>
{
public:
  explicit ImportanceView(const ViewContext& context);
  ~ImportanceView() override;

  QString title() const override { return "Inputs that matter"; }
  std::string shortName() const override { return "importance"; }
  std::vector<SettingsSection> settingsSections(PropertyEditors& editors) override;
  std::string selectionSummary() const override;
  void refresh() override;

  boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> output() const;
  /// Whether the figures over the selected cases are shown beside those over all shown cases.
  boost::shared_ptr<plexa::PropertyAbstract<bool>> compareSelection() const;
  /// The figures over the shown cases, highest correlation ratio first; and over the selected
  /// shown cases (empty unless compared).
  const std::vector<InputImportance>& overShown() const;
  const std::vector<InputImportance>& overSelected() const;
  /// The middle of an input's row, in the widget's coordinates.
  QPoint rowPoint(std::size_t row) const;

protected:
  void resumeParts() override;
  bool caseIDAtPoint(unsigned long long& caseID) override;

private:
  struct Impl;
  std::unique_ptr<Impl> d;
};

} // namespace explorer
