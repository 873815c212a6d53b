#pragma once

#include "ExplorerView.h"

#include <QPoint>

#include <memory>

namespace plexa
{
template<typename T>
class PropertyAbstract;
}

namespace explorer
{

/// The 3-D scatter view: the shown cases as points of three variables, coloured by a fourth,
/// inside a box with the variables' scales. Dragging rotates, the wheel zooms, the middle button
/// pans; a click selects the case under the mouse (Ctrl+click adds or removes it). Selected
/// cases are drawn on top as ringed points. Rows missing one of the three values are left out.
/// While the view turns, a study of many cases is drawn from a sample of its points.
class ScatterPlot3DView : public ViewOfKind<ScatterPlot3DInterface>
{
public:
  explicit ScatterPlot3DView(const ViewContext& context);
  ~ScatterPlot3DView() override;

  QString title() const override { return "3-D scatter plot"; }
  std::string shortName() const override { return "scatter3d"; }
  std::vector<SettingsSection> settingsSections(PropertyEditors& editors) override;
  std::string selectionSummary() const override;
  void refresh() override;
  /// Brings every point into sight from the starting direction.
  void fitToData() override;

  boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> xVariable() const;
  boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> yVariable() const;
  boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> zVariable() const;
  boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> colorVariable() const;
  /// Where a case is drawn, in the widget's coordinates; false when it is not shown.
  bool pointOfCase(unsigned long long caseId, QPoint& at) const;
  int shownPoints() const;
  int highlightedPoints() const;

protected:
  void resumeParts() override;
  bool caseIDAtPoint(unsigned long long& caseID) override;

private:
  struct Impl;
  std::unique_ptr<Impl> d;
};

} // namespace explorer
