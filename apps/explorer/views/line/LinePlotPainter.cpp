#include "views/line/LinePlotPainter.h"

#include "views/ColourScale.h"
#include "views/DrawingPolicy.h"

#include "analyzer_common/NiceNumber.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>

#include <algorithm>
#include <cmath>

namespace explorer
{

namespace
{

constexpr int legendRowsShown = 16;
constexpr QRgb selectedColour = 0xff141414;

QString numberText(double value)
{
  return QString::number(value, 'g', 6);
}

// A range with a margin; one value is widened around it.
void withMargin(double& min, double& max, bool log)
{
  if (!(min <= max))
  {
    min = log ? 1 : 0;
    max = log ? 10 : 1;
    return;
  }
  if (log)
  {
    double a = std::log10(min);
    double b = std::log10(max);
    const double pad = b > a ? (b - a) * 0.04 : 0.3;
    min = std::pow(10.0, a - pad);
    max = std::pow(10.0, b + pad);
    return;
  }
  const double pad = max > min ? (max - min) * 0.04 : (min != 0 ? std::abs(min) * 0.1 : 1.0);
  min -= pad;
  max += pad;
}

QPolygonF polylineOf(const Curve& curve, const PlotFrame& frame)
{
  QPolygonF line;
  for (const auto& [x, y] : reducedForDrawing(curve, frame))
    line << QPointF(x, y);
  return line;
}

} // namespace

std::vector<double> ticksOf(double min, double max, bool log)
{
  std::vector<double> ticks;
  if (!(max > min))
    return { min };
  if (log && min > 0)
  {
    const int first = static_cast<int>(std::floor(std::log10(min)));
    const int last = static_cast<int>(std::ceil(std::log10(max)));
    const int every = std::max(1, (last - first) / 8);
    const bool fine = last - first <= 2;
    for (int k = first; k <= last; k += every)
      for (double m : fine ? std::vector<double>{ 1, 2, 5 } : std::vector<double>{ 1 })
      {
        const double value = m * std::pow(10.0, k);
        if (value >= min && value <= max)
          ticks.push_back(value);
      }
    return ticks;
  }
  const double step = makeNiceNumber((max - min) / 6);
  for (double value = std::ceil(min / step) * step; value <= max + step * 1e-9 && ticks.size() < 50;
       value += step)
    ticks.push_back(std::abs(value) < step * 1e-9 ? 0.0 : value);
  return ticks;
}

PlotFrame frameFor(const QSize& size, const CurveSet& set, LogAxes log)
{
  PlotFrame frame;
  frame.log = log;
  frame.left = 72;
  frame.top = 16;
  frame.right = std::max(size.width() - 16.0, frame.left + 1);
  frame.bottom = std::max(size.height() - 44.0, frame.top + 1);
  double xMin = set.bounds.xMin;
  double xMax = set.bounds.xMax;
  double yMin = set.bounds.yMin;
  double yMax = set.bounds.yMax;
  withMargin(xMin, xMax, log.x);
  withMargin(yMin, yMax, log.y);
  frame.xMin = xMin;
  frame.xMax = xMax;
  frame.yMin = yMin;
  frame.yMax = yMax;
  return frame;
}

bool CurveDensity::fits(const PlotFrame& frame, const QSize& size) const
{
  return size == countedSize && frame.left == countedFrame.left &&
         frame.right == countedFrame.right && frame.top == countedFrame.top &&
         frame.bottom == countedFrame.bottom && frame.xMin == countedFrame.xMin &&
         frame.xMax == countedFrame.xMax && frame.yMin == countedFrame.yMin &&
         frame.yMax == countedFrame.yMax && frame.log.x == countedFrame.log.x &&
         frame.log.y == countedFrame.log.y;
}

void CurveDensity::reset(const PlotFrame& frame, const QSize& size)
{
  countedFrame = frame;
  countedSize = size;
  counted = 0;
  const std::size_t pixels = static_cast<std::size_t>(std::max(size.width(), 1)) *
                             static_cast<std::size_t>(std::max(size.height(), 1));
  count.assign(pixels, 0.f);
  colourSum.assign(pixels, 0.f);
  coloured.assign(pixels, 0.f);
}

void CurveDensity::add(const CurveSet& set,
                       const std::vector<float>& colour,
                       const std::vector<char>& drawn,
                       std::size_t mostPoints)
{
  const int w = std::max(countedSize.width(), 1);
  const int h = std::max(countedSize.height(), 1);
  float* const counts = count.data();
  float* const sums = colourSum.data();
  float* const toned = coloured.data();
  const auto mark = [=](int x, int y, float c)
  {
    if (x < 0 || y < 0 || x >= w || y >= h)
      return;
    const std::size_t pixel =
      static_cast<std::size_t>(y) * static_cast<std::size_t>(w) + static_cast<std::size_t>(x);
    counts[pixel] += 1;
    if (!std::isnan(c))
    {
      sums[pixel] += c;
      toned[pixel] += 1;
    }
  };
  std::size_t pointsCounted = 0;
  std::size_t c = counted;
  for (; c < set.curves.size() && pointsCounted < mostPoints; ++c)
  {
    if (!drawn.empty() && !drawn[c])
      continue;
    const float tone = c < colour.size() ? colour[c] : NAN;
    const auto points = reducedForDrawing(set.curves[c], countedFrame);
    pointsCounted += points.size();
    if (points.size() == 1)
      mark(static_cast<int>(points[0].first), static_cast<int>(points[0].second), tone);
    // Each segment counts its pixels once; the pixel it shares with the last one is the last's.
    for (std::size_t p = 1; p < points.size(); ++p)
    {
      const float x0 = points[p - 1].first;
      const float y0 = points[p - 1].second;
      const float dx = points[p].first - x0;
      const float dy = points[p].second - y0;
      const int steps =
        std::max(1, static_cast<int>(std::ceil(std::max(std::abs(dx), std::abs(dy)))));
      const float stepX = dx / static_cast<float>(steps);
      const float stepY = dy / static_cast<float>(steps);
      const int first = p == 1 ? 0 : 1;
      float x = x0 + stepX * static_cast<float>(first);
      float y = y0 + stepY * static_cast<float>(first);
      for (int step = first; step <= steps; ++step, x += stepX, y += stepY)
        mark(static_cast<int>(x), static_cast<int>(y), tone);
    }
  }
  counted = c;
}

QImage CurveDensity::image(QRgb plain) const
{
  return densityImage(countedSize.width(), countedSize.height(), count, colourSum, coloured, plain);
}

QImage curveDensity(const CurveSet& set,
                    const PlotFrame& frame,
                    const QSize& size,
                    const std::vector<float>& colour,
                    const std::vector<char>& drawn,
                    QRgb plain)
{
  CurveDensity density;
  density.reset(frame, size);
  density.add(set, colour, drawn);
  return density.image(plain);
}

void LinePlotPainter::paint(QPainter& painter,
                            const QSize& size,
                            const CurveSet& set,
                            const PlotFrame& frame,
                            const std::vector<char>& selectedRows,
                            const Look& look,
                            std::size_t mostPoints)
{
  painter.fillRect(QRect(QPoint(0, 0), size), Qt::white);
  drawAxes(painter, frame, look);
  if (!curvesValid || curvesLayer.size() != size)
  {
    if (look.density)
    {
      // Curves added to those counted in the same frame are counted alone.
      if (!onlyAdded || !density.fits(frame, size) || density.curves() > set.curves.size())
        density.reset(frame, size);
      density.add(set, look.scale, {}, mostPoints);
      curvesLayer = density.image(0xff4682b4);
      leftToCount = density.curves() < set.curves.size();
    }
    else
    {
      leftToCount = false;
      curvesLayer = QImage(size, QImage::Format_ARGB32_Premultiplied);
      curvesLayer.fill(Qt::transparent);
      QPainter layer(&curvesLayer);
      drawCurves(layer, set, frame, look);
    }
    // Curves left to count are counted by the next paint, added to those counted.
    curvesValid = !leftToCount;
    onlyAdded = true;
  }
  painter.drawImage(0, 0, curvesLayer);
  drawSelected(painter, set, frame, selectedRows, size);
  if (look.legend)
    drawLegend(painter, set, frame, look);

  QFontMetrics metrics = painter.fontMetrics();
  double y = frame.top + 4;
  for (const auto& note : look.notes)
  {
    const QString text = metrics.elidedText(QString::fromStdString(note),
                                            Qt::ElideMiddle,
                                            static_cast<int>(frame.right - frame.left - 12));
    const QRectF box(frame.left + 6, y, metrics.horizontalAdvance(text) + 8, metrics.height() + 2);
    painter.fillRect(box, QColor(255, 255, 255, 220));
    painter.setPen(QColor(120, 40, 20));
    painter.drawText(box, Qt::AlignCenter, text);
    y += box.height();
  }
  if (!look.rubberBand.isNull())
  {
    painter.setPen(QPen(QColor(40, 40, 40), 1, Qt::DashLine));
    painter.setBrush(QColor(60, 120, 200, 40));
    painter.drawRect(look.rubberBand.normalized());
  }
}

void LinePlotPainter::drawCurves(QPainter& painter,
                                 const CurveSet& set,
                                 const PlotFrame& frame,
                                 const Look& look)
{
  painter.setRenderHint(QPainter::Antialiasing, set.curves.size() <= 200);
  const bool many = set.curves.size() > 50;
  for (std::size_t c = 0; c < set.curves.size(); ++c)
  {
    const Curve& curve = set.curves[c];
    QColor colour(c < look.colours.size() ? look.colours[c] : 0xff4682b4);
    if (!curve.low.empty())
    {
      QPolygonF band;
      for (std::size_t p = 0; p < curve.points(); ++p)
        band << QPointF(frame.px(curve.xAt(p)), frame.py(std::max(curve.high[p], frame.yMin)));
      for (std::size_t p = curve.points(); p-- > 0;)
        band << QPointF(frame.px(curve.xAt(p)), frame.py(std::max(curve.low[p], frame.yMin)));
      // Bands of many lines overlap: each lighter, so that they do not darken to mud.
      QColor fill = colour;
      fill.setAlpha(set.curves.size() <= 3 ? 45 : 22);
      painter.setPen(Qt::NoPen);
      painter.setBrush(fill);
      painter.drawPolygon(band);
    }
    if (many)
      colour.setAlpha(150);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(colour, many ? 1.0 : 2.0));
    const QPolygonF line = polylineOf(curve, frame);
    if (line.size() == 1 || (!curve.firstRow.empty() && line.size() <= 60))
    {
      // A line of one point is a dot; the few points of a response curve are marked.
      painter.setBrush(colour);
      for (const QPointF& point : line)
        painter.drawEllipse(point, 3.0, 3.0);
      painter.setBrush(Qt::NoBrush);
    }
    if (line.size() > 1)
      painter.drawPolyline(line);
  }
}

void LinePlotPainter::drawSelected(QPainter& painter,
                                   const CurveSet& set,
                                   const PlotFrame& frame,
                                   const std::vector<char>& selectedRows,
                                   const QSize& size)
{
  const auto selected = [&](std::uint32_t row)
  { return row < selectedRows.size() && selectedRows[row] != 0; };
  std::vector<char> drawn(set.curves.size(), 0);
  std::size_t series = 0;
  painter.setRenderHint(QPainter::Antialiasing, true);
  for (std::size_t c = 0; c < set.curves.size(); ++c)
  {
    const Curve& curve = set.curves[c];
    if (curve.firstRow.empty())
    {
      if (!curve.rows.empty() && selected(curve.rows.front()))
      {
        drawn[c] = 1;
        ++series;
      }
      continue;
    }
    // A response curve: the points that hold a selected case are ringed, and joined where
    // neighbours both hold one.
    painter.setBrush(Qt::NoBrush);
    QPointF last;
    bool lastSelected = false;
    for (std::size_t p = 0; p < curve.points(); ++p)
    {
      const auto [first, end] = curve.rowsAt(p);
      const bool holds = std::any_of(first, end, selected);
      const QPointF point(frame.px(curve.xAt(p)), frame.py(curve.yAt(p)));
      if (holds)
      {
        painter.setPen(QPen(QColor(selectedColour), 2.0));
        painter.drawEllipse(point, 5.0, 5.0);
        if (lastSelected)
        {
          painter.setPen(QPen(QColor(selectedColour), 3.0, Qt::SolidLine, Qt::RoundCap));
          painter.drawLine(last, point);
        }
      }
      last = point;
      lastSelected = holds;
    }
  }
  if (series == 0)
    return;
  if (series > drawing::drawnSelectionUpTo)
  {
    painter.drawImage(0, 0, curveDensity(set, frame, size, {}, drawn, selectedColour));
    return;
  }
  painter.setRenderHint(QPainter::Antialiasing, series <= drawing::outlinedSelectionUpTo);
  painter.setPen(QPen(QColor(selectedColour),
                      series <= drawing::outlinedSelectionUpTo ? 2.5 : 1.0,
                      Qt::SolidLine,
                      Qt::RoundCap,
                      Qt::RoundJoin));
  for (std::size_t c = 0; c < set.curves.size(); ++c)
    if (drawn[c])
    {
      const QPolygonF line = polylineOf(set.curves[c], frame);
      if (line.size() == 1)
        painter.drawEllipse(line.front(), 3.0, 3.0);
      else
        painter.drawPolyline(line);
    }
}

void LinePlotPainter::drawAxes(QPainter& painter, const PlotFrame& frame, const Look& look)
{
  const QRectF plot(QPointF(frame.left, frame.top), QPointF(frame.right, frame.bottom));
  const QFontMetrics metrics = painter.fontMetrics();
  painter.setPen(QColor(60, 60, 60));
  painter.drawRect(plot);

  // X: the categories' names on a text axis, thinned to fit; else ticks.
  std::vector<std::pair<double, QString>> xTicks;
  if (!look.x.categories.empty())
  {
    const double room = (frame.right - frame.left) / static_cast<double>(look.x.categories.size());
    const auto every =
      static_cast<std::size_t>(std::max(1.0, std::ceil(70.0 / std::max(room, 1.0))));
    for (std::size_t i = 0; i < look.x.categories.size(); i += every)
      xTicks.emplace_back(static_cast<double>(i), QString::fromStdString(look.x.categories[i]));
  }
  else
    for (double value : ticksOf(frame.xMin, frame.xMax, frame.log.x))
      xTicks.emplace_back(value, numberText(value));
  for (const auto& [value, text] : xTicks)
  {
    const double x = frame.px(value);
    painter.setPen(QColor(235, 235, 235));
    painter.drawLine(QPointF(x, frame.top + 1), QPointF(x, frame.bottom - 1));
    painter.setPen(QColor(60, 60, 60));
    painter.drawLine(QPointF(x, frame.bottom), QPointF(x, frame.bottom + 4));
    painter.drawText(QRectF(x - 60, frame.bottom + 5, 120, metrics.height()),
                     Qt::AlignHCenter | Qt::AlignTop,
                     metrics.elidedText(text, Qt::ElideRight, 110));
  }
  for (double value : ticksOf(frame.yMin, frame.yMax, frame.log.y))
  {
    const double y = frame.py(value);
    painter.setPen(QColor(235, 235, 235));
    painter.drawLine(QPointF(frame.left + 1, y), QPointF(frame.right - 1, y));
    painter.setPen(QColor(60, 60, 60));
    painter.drawLine(QPointF(frame.left - 4, y), QPointF(frame.left, y));
    painter.drawText(QRectF(0, y - metrics.height() / 2.0, frame.left - 7, metrics.height()),
                     Qt::AlignRight | Qt::AlignVCenter,
                     numberText(value));
  }
  painter.setPen(QColor(20, 20, 20));
  const QString xTitle =
    QString::fromStdString(look.x.title) + (frame.log.x ? " (log)" : QString());
  painter.drawText(
    QRectF(
      frame.left, frame.bottom + 6 + metrics.height(), frame.right - frame.left, metrics.height()),
    Qt::AlignHCenter,
    metrics.elidedText(xTitle, Qt::ElideMiddle, static_cast<int>(frame.right - frame.left)));
  painter.save();
  painter.translate(12, (frame.top + frame.bottom) / 2);
  painter.rotate(-90);
  const QString yTitle =
    QString::fromStdString(look.y.title) + (frame.log.y ? " (log)" : QString());
  const double height = frame.bottom - frame.top;
  painter.drawText(QRectF(-height / 2, -6, height, metrics.height()),
                   Qt::AlignHCenter,
                   metrics.elidedText(yTitle, Qt::ElideMiddle, static_cast<int>(height)));
  painter.restore();
}

QRectF LinePlotPainter::legendRect(const CurveSet& set, const PlotFrame& frame, const Look& look)
{
  if (!look.legend || set.curves.empty())
    return {};
  const QFontMetrics metrics{ QFont() };
  int width = metrics.horizontalAdvance(QString::fromStdString(look.legendTitle)) - 26;
  const std::size_t shown = std::min<std::size_t>(set.curves.size(), legendRowsShown);
  for (std::size_t c = 0; c < shown; ++c)
    width = std::max(width, metrics.horizontalAdvance(QString::fromStdString(set.curves[c].label)));
  const int rows = static_cast<int>(shown) + (set.curves.size() > shown ? 1 : 0) +
                   (look.legendTitle.empty() ? 0 : 1);
  const double w = std::min(width + 34.0, 240.0);
  const double h = rows * (metrics.height() + 2) + 8.0;
  return {
    frame.right - 8 - w + look.legendOffset.x(), frame.top + 8 + look.legendOffset.y(), w, h
  };
}

void LinePlotPainter::drawLegend(QPainter& painter,
                                 const CurveSet& set,
                                 const PlotFrame& frame,
                                 const Look& look)
{
  const QRectF box = legendRect(set, frame, look);
  if (box.isNull())
    return;
  painter.setPen(QColor(150, 150, 150));
  painter.setBrush(QColor(255, 255, 255, 230));
  painter.drawRect(box);
  const QFontMetrics metrics = painter.fontMetrics();
  const double row = metrics.height() + 2;
  double y = box.top() + 4;
  if (!look.legendTitle.empty())
  {
    QFont bold = painter.font();
    bold.setBold(true);
    painter.save();
    painter.setFont(bold);
    painter.setPen(QColor(20, 20, 20));
    painter.drawText(QRectF(box.left() + 6, y, box.width() - 10, row),
                     Qt::AlignLeft | Qt::AlignVCenter,
                     metrics.elidedText(QString::fromStdString(look.legendTitle),
                                        Qt::ElideRight,
                                        static_cast<int>(box.width() - 12)));
    painter.restore();
    y += row;
  }
  const std::size_t shown = std::min<std::size_t>(set.curves.size(), legendRowsShown);
  for (std::size_t c = 0; c < shown; ++c, y += row)
  {
    painter.setPen(QPen(QColor(c < look.colours.size() ? look.colours[c] : 0xff4682b4), 3));
    painter.drawLine(QPointF(box.left() + 6, y + row / 2), QPointF(box.left() + 24, y + row / 2));
    painter.setPen(QColor(20, 20, 20));
    painter.drawText(QRectF(box.left() + 30, y, box.width() - 34, row),
                     Qt::AlignLeft | Qt::AlignVCenter,
                     metrics.elidedText(QString::fromStdString(set.curves[c].label),
                                        Qt::ElideRight,
                                        static_cast<int>(box.width() - 34)));
  }
  if (set.curves.size() > shown)
    painter.drawText(QRectF(box.left() + 30, y, box.width() - 34, row),
                     Qt::AlignLeft | Qt::AlignVCenter,
                     QString("... %1 more").arg(set.curves.size() - shown));
}

} // namespace explorer
