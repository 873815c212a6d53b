#pragma once

// The curves of a line plot, in the values' own units: response curves aggregated over groups
// of cases, or one curve per case from its own series; and what a point or a rectangle of the
// plot picks of them.

#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace explorer
{

struct LineGroups;

/// What the line plot draws.
enum class LineMode : short
{
  /// How an output responds along an input: one line per group of cases, aggregated per X.
  Response,
  /// Each run's own series, read from a file of the run: one curve per case.
  Series
};

/// How the cases that share a line and an X value make that line's point.
enum class Aggregate : short
{
  Mean,
  Median,
  Min,
  Max
};

/// The band drawn around a response curve.
enum class Band : short
{
  None,
  MinMax,      ///< from the smallest to the largest value
  StdDeviation ///< the mean plus or minus one standard deviation
};

/// One line of the plot, its points in X order.
struct Curve
{
  std::string label;
  /// The line's group (its colour among the groups), or -1 for a case's own series.
  int group = -1;
  /// The points' values, unless the curve reads them where they lie (see `shared`).
  std::vector<double> x;
  std::vector<double> y;
  /// A run's series read where it lies, without a copy: the table's columns, kept alive by
  /// `shared` while the curve is.
  std::shared_ptr<const void> shared;
  const double* sharedX = nullptr;
  const double* sharedY = nullptr;
  std::size_t sharedCount = 0;
  /// The band's low and high value at each point; empty without a band.
  std::vector<double> low;
  std::vector<double> high;
  /// The rows behind each point: rows[firstRow[p]] to rows[firstRow[p + 1]]. A case's series has
  /// one row, behind every point, and firstRow empty.
  std::vector<std::uint32_t> firstRow;
  std::vector<std::uint32_t> rows;

  std::size_t points() const { return shared ? sharedCount : x.size(); }
  double xAt(std::size_t point) const { return shared ? sharedX[point] : x[point]; }
  double yAt(std::size_t point) const { return shared ? sharedY[point] : y[point]; }
  /// The rows behind a point.
  std::pair<const std::uint32_t*, const std::uint32_t*> rowsAt(std::size_t point) const;
};

/// Which axes are logarithmic: values at or below zero cannot be placed on them.
struct LogAxes
{
  bool x = false;
  bool y = false;
};

/// The curves of a plot, and what was left out of them.
struct CurveSet
{
  std::vector<Curve> curves;
  /// Cases (or samples) without an X or Y value.
  std::size_t missing = 0;
  /// Cases (or samples) with a value at or below zero on a logarithmic axis.
  std::size_t notPositive = 0;
  /// The smallest and largest X and Y of the curves and their bands (infinite without curves).
  struct Bounds
  {
    double xMin = std::numeric_limits<double>::infinity();
    double xMax = -std::numeric_limits<double>::infinity();
    double yMin = std::numeric_limits<double>::infinity();
    double yMax = -std::numeric_limits<double>::infinity();
  } bounds;

  /// Adds a curve, widening the bounds by its values (those a logarithmic axis can place).
  void add(Curve curve, LogAxes log);
};

/// A column of numbers read where it lies: a vector, or a VTK array's memory.
struct Values
{
  Values(const std::vector<double>& values)
    : data(values.data())
    , size(values.size())
  {
  }
  Values(const double* data, std::size_t size)
    : data(data)
    , size(size)
  {
  }
  double operator[](std::size_t i) const { return data[i]; }

  const double* data;
  std::size_t size;
};

/// The rows that have an X, in X order (rows of equal X in row order). Made once per X, it spares
/// each later change of Y or of the groups a sort.
std::vector<std::uint32_t> orderByX(Values x);

/// Response curves: per group, the rows joined in X order; rows that share a group and an X
/// value are aggregated into one point, with its band. Rows without X or Y, or with a value at
/// or below zero on a logarithmic axis, are left out and counted. Groups without rows have no
/// curve. `xOrder`, when given, is orderByX(x).
CurveSet responseCurves(Values x,
                        Values y,
                        const LineGroups& groups,
                        Aggregate aggregate,
                        Band band,
                        LogAxes log,
                        const std::vector<std::uint32_t>* xOrder = nullptr);

/// A case's own series as a curve of one row, with the samples that lack a value, or that a
/// logarithmic axis cannot place, left out and counted in `set`. With `owner` (what holds x and
/// y) a series that leaves nothing out is read where it lies, not copied.
void addSeriesCurve(CurveSet& set,
                    std::uint32_t row,
                    std::string label,
                    const std::vector<double>& x,
                    const std::vector<double>& y,
                    LogAxes log,
                    std::shared_ptr<const void> owner = nullptr);

/// Where the plot's values lie: a point of the plot maps to a value and back, through a
/// logarithm on a logarithmic axis.
struct PlotFrame
{
  double left = 0, top = 0, right = 1, bottom = 1; // in pixels
  double xMin = 0, xMax = 1, yMin = 0, yMax = 1;   // in values
  LogAxes log;

  double px(double x) const;
  double py(double y) const;
  double valueX(double px) const;
  double valueY(double py) const;
};

/// The rows a click picks: those behind the point nearest `(px, py)` within `reach` pixels in
/// response curves, the row of the nearest curve's segment for series. Empty when nothing is in
/// reach. `curve` and `point` say what was hit.
std::vector<std::uint32_t> rowsNear(const CurveSet& set,
                                    const PlotFrame& frame,
                                    double px,
                                    double py,
                                    double reach,
                                    int* curve = nullptr,
                                    std::size_t* point = nullptr);

/// The rows whose curve passes through a rectangle of the plot (in pixels): for response curves,
/// the rows behind the points inside it; for series, the rows of those with a segment crossing
/// it. Sorted, without repeats.
std::vector<std::uint32_t> rowsThrough(const CurveSet& set,
                                       const PlotFrame& frame,
                                       double x0,
                                       double y0,
                                       double x1,
                                       double y1);

/// A long curve reduced for drawing: per pixel column, the first, lowest, highest and last of the
/// points that fall in it, in their order, so that spikes survive. A curve whose X does not
/// increase is returned whole. Pixel positions.
std::vector<std::pair<float, float>> reducedForDrawing(const Curve& curve, const PlotFrame& frame);

} // namespace explorer
