#pragma once

#include "CaseRowIndex.h"
#include "views/line/Curves.h"
#include "views/line/LinePlotPainter.h"
#include "views/line/SeriesCache.h"

#include "datamanagement/Variable.h"
#include "datamanagement/WeakPtr.h"

#include <vtkType.h>

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

class Project;
class QObject;
class vtkTable;

namespace explorer
{

class FileLocator;

/// The line plot's settings, as the model reads them.
struct LineSettings
{
  LineMode mode = LineMode::Response;
  WeakPtr<Variable> x;
  WeakPtr<Variable> y;
  std::vector<WeakPtr<Variable>> linesBy;
  Aggregate aggregate = Aggregate::Mean;
  Band band = Band::MinMax;
  std::string seriesTag;
  std::string seriesX;
  std::string seriesY;
  WeakPtr<Variable> colour;
  LogAxes log;
};

/// What the line plot shows of the shown cases, without a widget: the curves (response curves
/// of groups of cases, or each case's series read in the background), their axes, colours and
/// legend, the selected cases' rows, and what the plot says over its curves.
class LinePlotModel
{
public:
  /// A continuous X is cut into at most this many intervals: enough for the shape of a
  /// response, few enough that each point has cases to aggregate.
  static constexpr std::size_t xIntervalsAtMost = 24;

  LinePlotModel(std::shared_ptr<const Project> project, std::shared_ptr<const FileLocator> files);
  ~LinePlotModel();
  LinePlotModel(const LinePlotModel&) = delete;
  LinePlotModel& operator=(const LinePlotModel&) = delete;

  /// Reads the shown cases (a table of the pipeline's output) under the settings. Series files
  /// are read in the background: `arrived` is called on the thread of `context` as they come
  /// in, and takeInSeries() then adds their curves.
  void reload(vtkTable& shown,
              const LineSettings& settings,
              QObject* context,
              std::function<void()> arrived);
  /// Adds the curves of the series read since the last call; those still to come are counted,
  /// those that cannot be drawn are named.
  void takeInSeries();
  /// The rows of the selected cases.
  void select(const std::vector<unsigned long long>& caseIds);

  const CurveSet& curves() const { return shownCurves; }
  const CaseIds& caseIds() const { return rowOfCase.caseIds(); }
  const std::vector<char>& selectedRows() const { return selected; }
  std::size_t selectedCount() const { return selectedCases; }
  /// The axes' titles and categories, each curve's colour, and the legend.
  const LinePlotPainter::Look& look() const { return curveLook; }
  /// Series files asked for and not drawn yet, and not read yet.
  std::size_t seriesWaiting() const { return waiting; }
  std::size_t seriesPending() const { return series.pending(); }
  /// What the plot says over its curves: what was left out, series not read, and whether the
  /// curves are drawn as a density (`density`).
  std::vector<std::string> notes(bool density) const;
  /// The columns of the first series table read, to choose X and Y from.
  std::vector<std::string> seriesColumns();

private:
  void buildResponse(vtkTable& shown);
  void readSeries(vtkTable& shown, QObject* context, std::function<void()> arrived);

  std::shared_ptr<const Project> project;
  std::shared_ptr<const FileLocator> files;
  LineSettings settings;

  // The shown cases, in the pipeline's row order, as of the pipeline's output at shownTime.
  vtkMTimeType shownTime = 0;
  CaseRowIndex rowOfCase;
  // The values of X (orderedX) for the shown cases, a text X's categories, and the rows in X
  // order; kept while X and the shown cases stay, so that a new Y or new groups cost no sort.
  // A numeric X of few values is the shown table's column itself (ten million values are 80
  // MB); other values are a list of their own. xOwner keeps either.
  std::string orderedX;
  std::shared_ptr<const void> xOwner;
  Values xValues{ nullptr, 0 };
  std::vector<std::string> xCategories;
  std::vector<std::uint32_t> xOrder;
  // Whether a continuous X was cut into intervals, each a point of the curves.
  bool xInIntervals = false;

  // Each shown case's series file (empty for a case without one), its colour's place on the
  // scale, and whether its series was taken in (drawn or named).
  std::vector<std::string> seriesPaths;
  std::vector<float> colourOfRow;
  std::vector<char> seriesTaken;
  std::string seriesXName;
  std::string seriesYName;
  std::vector<std::string> seriesProblems;
  std::size_t waiting = 0;
  SeriesCache series;

  CurveSet shownCurves;
  LinePlotPainter::Look curveLook;
  std::vector<char> selected;
  std::size_t selectedCases = 0;
};

} // namespace explorer
