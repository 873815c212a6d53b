#pragma once

#include "ExplorerView.h"
#include "views/DrawingPolicy.h"
#include "views/line/Curves.h"

#include <QPoint>

#include <memory>

namespace plexa
{
template<typename T>
class PropertyAbstract;
}

namespace explorer
{

/// A line plot, of response curves or of each run's own series.
///
/// Response curves: Y against X, one line per group of the "Lines by" variables (up to two; a
/// continuous one in at most eight intervals), the cases that share a line and an X aggregated
/// (mean, median, min or max) with a band of their spread, so that repeated runs read as one
/// line. Series: a curve per shown case from its series file (a CSV table of the run, by tag),
/// columns chosen by name, read in the background; a file that cannot be read is named with its
/// case and reason. Either axis may be logarithmic; values at or below zero are then left out and
/// counted.
///
/// A click selects the cases behind the point (response) or the case of the curve (series),
/// Ctrl adds or removes them; a rubber band selects the cases whose curve passes through it.
/// Selected cases are drawn dark on top. Above drawing::curvesAsDensityAbove curves (or by
/// setting) the curves are drawn as a density, and the view says so.
class LinePlotView : public ViewOfKind<LinePlotInterface>
{
public:
  explicit LinePlotView(const ViewContext& context);
  ~LinePlotView() override;

  QString title() const override { return "Line plot"; }
  std::string shortName() const override { return "line-plot"; }
  std::vector<SettingsSection> settingsSections(PropertyEditors& editors) override;
  std::string selectionSummary() const override;
  void refresh() override;
  /// Whether series are still to be read or drawn.
  bool working() const override;

  boost::shared_ptr<plexa::PropertyAbstract<LineMode>> mode() const;
  boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> xVariable() const;
  boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> yVariable() const;
  /// The variables that split the cases into lines: none, one or two (more are not used).
  boost::shared_ptr<plexa::PropertyAbstract<std::vector<WeakPtr<Variable>>>> linesBy() const;
  boost::shared_ptr<plexa::PropertyAbstract<Aggregate>> aggregate() const;
  boost::shared_ptr<plexa::PropertyAbstract<Band>> band() const;
  /// The tag of the runs' series files, and the columns plotted (empty: the first and second).
  boost::shared_ptr<plexa::PropertyAbstract<std::string>> seriesTag() const;
  boost::shared_ptr<plexa::PropertyAbstract<std::string>> seriesX() const;
  boost::shared_ptr<plexa::PropertyAbstract<std::string>> seriesY() const;
  /// The variable that colours each run's series.
  boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> colorVariable() const;
  boost::shared_ptr<plexa::PropertyAbstract<Drawing>> drawing() const;
  boost::shared_ptr<plexa::PropertyAbstract<bool>> logX() const;
  boost::shared_ptr<plexa::PropertyAbstract<bool>> logY() const;

  /// The curves drawn, with what was left out of them.
  const CurveSet& curves() const;
  /// Where a curve's point is drawn, in the widget's coordinates.
  QPoint pointOf(std::size_t curve, std::size_t point) const;
  bool drawsDensity() const;
  /// The notes the view shows over the plot (left out, unreadable series, density).
  std::vector<std::string> notes() const;
  /// Series files asked for and not read yet.
  std::size_t seriesPending() const;
  /// The shown cases that are selected.
  std::size_t highlightedCases() const;

protected:
  void resumeParts() override;
  bool caseIDAtPoint(unsigned long long& caseID) override;

private:
  struct Impl;
  std::unique_ptr<Impl> d;
};

} // namespace explorer
