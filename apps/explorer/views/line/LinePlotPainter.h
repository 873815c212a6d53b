#pragma once

#include "views/line/Curves.h"

#include <QImage>
#include <QPointF>
#include <QRectF>
#include <QRgb>
#include <QSize>

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

class QPainter;

namespace explorer
{

/// An axis of the line plot: its title, and the names of its categories when its variable is
/// text (the values are then the categories' indices).
struct LineAxis
{
  std::string title;
  std::vector<std::string> categories;
};

/// The values at which an axis has ticks: nice numbers, or on a logarithmic axis powers of ten
/// (with 2 and 5 times them when the axis spans less than two decades).
std::vector<double> ticksOf(double min, double max, bool log);

/// The frame that holds every point and band of the curves in a widget of a size, with a
/// margin; an axis of one value is widened around it.
PlotFrame frameFor(const QSize& size, const CurveSet& set, LogAxes log);

/// The curve segments through each pixel of a plot, counted curve by curve so that curves added
/// to a set in the same frame are counted alone; and the image they make.
class CurveDensity
{
public:
  /// Whether the counts are of that frame and size.
  bool fits(const PlotFrame& frame, const QSize& size) const;
  /// Counts nothing, for a frame and size.
  void reset(const PlotFrame& frame, const QSize& size);
  /// Counts the curves of the set not counted yet whose `drawn` flag is set (all when empty);
  /// `colour` gives each curve's place on the colour scale. Stops after the curve that brings
  /// the points counted in this call to `mostPoints`: the rest is counted by the next calls.
  void add(const CurveSet& set,
           const std::vector<float>& colour,
           const std::vector<char>& drawn,
           std::size_t mostPoints = std::numeric_limits<std::size_t>::max());
  /// The curves counted so far.
  std::size_t curves() const { return counted; }
  /// Opacity growing with the logarithm of the count, coloured by the mean of the counted
  /// curves' colours, `plain` where they have none.
  QImage image(QRgb plain) const;

private:
  PlotFrame countedFrame;
  QSize countedSize;
  std::size_t counted = 0;
  std::vector<float> count;
  std::vector<float> colourSum;
  std::vector<float> coloured;
};

/// Curves drawn as a density: the number of curve segments through each pixel, as opacity
/// growing with its logarithm, coloured by the mean of the curves' colours (`colour` per curve,
/// 0 to 1 on the colour scale, NaN for `plain`). Only the curves whose `drawn` flag is set, all
/// when it is empty.
QImage curveDensity(const CurveSet& set,
                    const PlotFrame& frame,
                    const QSize& size,
                    const std::vector<float>& colour,
                    const std::vector<char>& drawn,
                    QRgb plain);

/// The drawing of the line plot: axes with ticks, the curves (bands under them, a curve of one
/// point as a dot) or their density, the selected cases dark on top, the legend of groups, notes
/// and a rubber band in progress. The unselected curves are kept as an image until they change.
class LinePlotPainter
{
public:
  struct Look
  {
    LineAxis x;
    LineAxis y;
    bool density = false;
    /// Each curve's colour, and its place on the colour scale for a density (NaN: grey).
    std::vector<QRgb> colours;
    std::vector<float> scale;
    /// Lines of text over the plot: what was left out, what could not be read.
    std::vector<std::string> notes;
    bool legend = false;
    /// The variables the lines are by, over the legend's entries.
    std::string legendTitle;
    /// Where the legend's top-right corner is, from the plot's top-right corner.
    QPointF legendOffset;
    QRectF rubberBand;
  };

  /// Draws the plot; a density counts at most about `mostPoints` points of curves not counted
  /// yet, and says whether some are left (curvesLeftToCount) for the next paint.
  void paint(QPainter& painter,
             const QSize& size,
             const CurveSet& set,
             const PlotFrame& frame,
             const std::vector<char>& selectedRows,
             const Look& look,
             std::size_t mostPoints = std::numeric_limits<std::size_t>::max());
  bool curvesLeftToCount() const { return leftToCount; }
  /// The curves changed, or curves were only added to the end of the set.
  void curvesChanged()
  {
    curvesValid = false;
    onlyAdded = false;
  }
  void curvesAdded() { curvesValid = false; }

  /// Where the legend is drawn, empty when there is none.
  static QRectF legendRect(const CurveSet& set, const PlotFrame& frame, const Look& look);

private:
  void drawCurves(QPainter& painter, const CurveSet& set, const PlotFrame& frame, const Look& look);
  void drawSelected(QPainter& painter,
                    const CurveSet& set,
                    const PlotFrame& frame,
                    const std::vector<char>& selectedRows,
                    const QSize& size);
  static void drawAxes(QPainter& painter, const PlotFrame& frame, const Look& look);
  static void drawLegend(QPainter& painter,
                         const CurveSet& set,
                         const PlotFrame& frame,
                         const Look& look);

  QImage curvesLayer;
  bool curvesValid = false;
  bool onlyAdded = false;
  bool leftToCount = false;
  CurveDensity density;
};

} // namespace explorer
