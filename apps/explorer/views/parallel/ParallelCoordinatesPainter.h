#pragma once

#include "FilterEdits.h"

#include <QImage>
#include <QRgb>
#include <QSize>

#include <array>
#include <string>
#include <vector>

class QPainter;
class QPoint;

namespace explorer
{

class ParallelCoordinatesModel;

/// Where parallel coordinates lie in a widget of a size: the axes spread across it, top and
/// bottom of the axes, and the band of missing values below them.
struct ParallelLayout
{
  ParallelLayout(const QSize& size, int axes);

  /// The horizontal place of an axis.
  double x(int axis) const;
  /// The height of a place on an axis (0 bottom, 1 top); the missing band for NaN.
  double y(float position) const;
  /// The place on an axis a height stands for, within it.
  double position(double y) const;

  int width = 0;
  int height = 0;
  int count = 0;
  double left = 60;
  double right = 0;
  double top = 40;
  double bottom = 0;
  double missingY = 0;
};

/// The drawing of parallel coordinates: each case's line (or a density of lines), the selected
/// lines dark over faded others, the axes with their names, ranges or categories, the range
/// filters and a brush in progress. The lines are kept as an image until they change.
class ParallelCoordinatesPainter
{
public:
  /// What is drawn over the lines besides the axes.
  struct Marks
  {
    std::vector<FilterState> filters; // per axis
    int brushedAxis = -1;
    double brushFrom = 0;
    double brushTo = 0;
    std::string colourName;
  };

  ParallelCoordinatesPainter();

  void paint(QPainter& painter,
             const QSize& size,
             const ParallelCoordinatesModel& model,
             bool density,
             const Marks& marks);
  /// The lines, or the selection, changed: their images are drawn again.
  void linesChanged() { linesValid = false; }
  void selectionChanged() { selectedLayer = QImage(); }

  /// A line's colour: its place on the colour scale (blue low, red high), grey without one.
  QRgb colourOf(const ParallelCoordinatesModel& model, std::size_t row) const;
  /// The shown case whose line passes nearest a point, within 5 pixels, or -1.
  static int rowAt(const ParallelCoordinatesModel& model,
                   const ParallelLayout& at,
                   const QPoint& point);

private:
  void drawLines(QPainter& painter,
                 const ParallelLayout& at,
                 const ParallelCoordinatesModel& model,
                 bool density);
  void drawTicks(QPainter& painter,
                 const ParallelLayout& at,
                 const ParallelCoordinatesModel& model);
  void drawAxes(QPainter& painter,
                const ParallelLayout& at,
                const ParallelCoordinatesModel& model,
                const Marks& marks);

  const std::array<QRgb, 256>& colours;
  QImage linesLayer;
  bool linesValid = false;
  // A large selection's density, drawn again when the selection or the size changes.
  QImage selectedLayer;
};

} // namespace explorer
