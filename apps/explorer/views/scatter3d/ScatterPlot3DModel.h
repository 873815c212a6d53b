#pragma once

#include "CaseRowIndex.h"

#include "datamanagement/Variable.h"
#include "datamanagement/WeakPtr.h"

#include <array>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

class vtkTable;

namespace explorer
{

/// What the 3-D scatter plot shows of the shown cases: those with all three values, each a point
/// in the unit box (each axis from its variable's range over the whole study, widened to round
/// numbers), with its colour value; the labels of the box's axes; which points are selected and
/// which point lies under the mouse. No widget.
class ScatterPlot3DModel
{
public:
  using Point = std::array<float, 3>;
  /// A camera's composite projection, row by row, and the viewport's origin and size in pixels.
  struct Projection
  {
    double matrix[4][4];
    int origin[2];
    int size[2];
  };

  /// Reads the shown cases (a table of the pipeline's output) for these axes and colour.
  void reload(vtkTable& shown,
              const std::array<WeakPtr<Variable>, 3>& axes,
              const WeakPtr<Variable>& colour);
  /// The points of the selected cases.
  void select(const std::vector<unsigned long long>& caseIds);

  const CaseIds& caseIds() const { return pointOfCase.caseIds(); }
  const std::vector<Point>& positions() const { return cloud->points; }
  /// Each point's colour value; NaN without one, and everywhere without a colour variable.
  const std::vector<float>& colour() const { return cloud->colours; }
  /// What holds the positions and colours, for arrays that draw them in place; each reload
  /// makes new ones and leaves the old to whoever still holds them.
  std::shared_ptr<const void> valuesOwner() const { return cloud; }
  bool coloured() const { return hasColour; }
  const std::vector<int>& selected() const { return selectedPoints; }
  /// An axis's range (round numbers) and its labels, from the first to the last.
  std::pair<double, double> range(int axis) const { return ranges[static_cast<std::size_t>(axis)]; }
  std::vector<std::string> labels(int axis) const;

  /// The display position (from the bottom left) and depth of each point through a projection.
  template<typename Visit>
  void project(const Projection& projection, Visit visit) const;
  /// The point nearest a display position within 6 pixels, the front one among equals; -1.
  long long pointAt(const Projection& projection, int x, int y) const;

  /// A variable's range widened to round numbers, 4 or 5 steps; a single value is centred in
  /// a range around it.
  static std::pair<double, double> niceRange(std::pair<double, double> range);

private:
  struct Cloud
  {
    std::vector<Point> points;
    std::vector<float> colours;
  };
  std::shared_ptr<const Cloud> cloud = std::make_shared<const Cloud>();
  bool hasColour = false;
  std::array<std::pair<double, double>, 3> ranges{};
  CaseRowIndex pointOfCase;
  std::vector<int> selectedPoints;
};

template<typename Visit>
void ScatterPlot3DModel::project(const Projection& projection, Visit visit) const
{
  const auto& e = projection.matrix;
  const std::vector<Point>& points = cloud->points;
  for (std::size_t i = 0; i < points.size(); ++i)
  {
    const Point& p = points[i];
    double clip[4];
    for (int r = 0; r < 4; ++r)
      clip[r] = e[r][0] * p[0] + e[r][1] * p[1] + e[r][2] * p[2] + e[r][3];
    if (clip[3] <= 0)
      continue;
    const double x = projection.origin[0] + (clip[0] / clip[3] + 1) / 2 * projection.size[0];
    const double y = projection.origin[1] + (clip[1] / clip[3] + 1) / 2 * projection.size[1];
    visit(i, x, y, clip[2] / clip[3]);
  }
}

} // namespace explorer
