#pragma once

#include "ExplorerView.h"
#include "views/DrawingPolicy.h"

#include <QPoint>

#include <memory>

namespace plexa
{
template<typename T>
class PropertyAbstract;
}

namespace explorer
{

/// Parallel coordinates: one vertical axis per chosen variable (text variables as categories),
/// one line per shown case across them, coloured by a variable; values that are missing sit on
/// a band below the axes. Selected cases are drawn on top, dark and thick, over faded others.
///
/// Dragging along a numeric axis sets that variable's range filter, so every view drops the
/// cases outside it; a click on an axis without a drag removes the filter. Both are undo steps.
/// A click on a line selects its case (Ctrl+click adds or removes it). Above 20,000 lines the
/// lines are drawn as a density: each pair of neighbouring axes is binned by pixel rows, so the
/// cost follows the plot's size rather than the number of cases.
class ParallelCoordinatesView : public ViewOfKind<ParallelCoordinatesInterface>
{
public:
  explicit ParallelCoordinatesView(const ViewContext& context);
  ~ParallelCoordinatesView() override;

  QString title() const override { return "Parallel coordinates"; }
  std::string shortName() const override { return "parallel"; }
  std::vector<SettingsSection> settingsSections(PropertyEditors& editors) override;
  std::string selectionSummary() const override;
  void refresh() override;

  /// The variables shown as axes, from left to right.
  boost::shared_ptr<plexa::PropertyAbstract<std::vector<WeakPtr<Variable>>>> axes() const;
  boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> colorVariable() const;
  /// Lines, or a density above drawing::linesAsDensityAbove lines (automatic).
  boost::shared_ptr<plexa::PropertyAbstract<Drawing>> drawing() const;
  /// The variables whose axes are logarithmic; their values at or below zero sit with the
  /// missing ones, and the axis counts them.
  boost::shared_ptr<plexa::PropertyAbstract<std::vector<WeakPtr<Variable>>>> logAxes() const;
  /// Whether the lines are drawn as a density at present.
  bool drawsDensity() const;
  /// Where `value` lies on the axis at `axis` (a category's index on a text axis), in the
  /// widget's coordinates; the point of the missing-values band for NaN.
  QPoint pointOnAxis(int axis, double value) const;
  /// The number of shown cases that are selected.
  int highlightedLines() const;

protected:
  void suspendParts() override;
  void resumeParts() override;
  bool caseIDAtPoint(unsigned long long& caseID) override;

private:
  struct Impl;
  std::unique_ptr<Impl> d;
};

} // namespace explorer
