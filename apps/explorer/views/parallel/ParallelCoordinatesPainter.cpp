#include "views/parallel/ParallelCoordinatesPainter.h"

#include "views/ColourScale.h"
#include "views/DrawingPolicy.h"
#include "views/parallel/LineDensity.h"
#include "views/parallel/ParallelCoordinatesModel.h"

#include <QPainter>
#include <QPolygonF>

#include <algorithm>
#include <cmath>

namespace explorer
{

namespace
{

// A case's line across the axes.
QPolygonF lineOf(const std::vector<ParallelAxis>& axes, std::size_t row, const ParallelLayout& at)
{
  QPolygonF line;
  for (std::size_t a = 0; a < axes.size(); ++a)
    line << QPointF(at.x(static_cast<int>(a)), at.y(axes[a].position[row]));
  return line;
}

} // namespace

ParallelLayout::ParallelLayout(const QSize& size, int axes)
  : width(size.width())
  , height(size.height())
  , count(axes)
  , right(size.width() - 60.0)
  , bottom(size.height() - 56.0)
  , missingY(size.height() - 28.0)
{
}

double ParallelLayout::x(int axis) const
{
  return count <= 1 ? width / 2.0 : left + axis * (right - left) / (count - 1);
}

double ParallelLayout::y(float position) const
{
  return std::isnan(position) ? missingY : bottom - position * (bottom - top);
}

double ParallelLayout::position(double y) const
{
  return std::clamp((bottom - y) / std::max(bottom - top, 1.0), 0.0, 1.0);
}

ParallelCoordinatesPainter::ParallelCoordinatesPainter()
  : colours(colourScale())
{
}

void ParallelCoordinatesPainter::paint(QPainter& painter,
                                       const QSize& size,
                                       const ParallelCoordinatesModel& model,
                                       bool density,
                                       const Marks& marks)
{
  painter.fillRect(QRect(QPoint(0, 0), size), Qt::white);
  if (model.axes().empty())
  {
    painter.drawText(
      QRect(QPoint(0, 0), size), Qt::AlignCenter, "Choose the variables to show as axes");
    return;
  }
  const ParallelLayout at(size, static_cast<int>(model.axes().size()));
  drawLines(painter, at, model, density);
  drawAxes(painter, at, model, marks);
}

QRgb ParallelCoordinatesPainter::colourOf(const ParallelCoordinatesModel& model,
                                          std::size_t row) const
{
  const float t = model.colour()[row];
  return std::isnan(t)
           ? qRgb(110, 110, 110)
           : colours[static_cast<std::size_t>(std::clamp(static_cast<int>(t * 255), 0, 255))];
}

void ParallelCoordinatesPainter::drawLines(QPainter& painter,
                                           const ParallelLayout& at,
                                           const ParallelCoordinatesModel& model,
                                           bool density)
{
  const QSize size(at.width, at.height);
  const auto& axes = model.axes();
  const auto& caseIds = model.caseIds();
  const auto& selectedRows = model.selectedRows();
  if (!linesValid || linesLayer.size() != size)
  {
    if (density)
    {
      linesLayer = lineDensity(axes, &model.colour(), nullptr, at, qRgb(110, 110, 110));
    }
    else
    {
      linesLayer = QImage(size, QImage::Format_ARGB32_Premultiplied);
      linesLayer.fill(Qt::transparent);
      QPainter layer(&linesLayer);
      // Many lines thin and plain: a smooth or wide pen is stroked, at many times the cost.
      const bool few = caseIds.size() < 2000;
      layer.setRenderHint(QPainter::Antialiasing, few);
      const int alpha = caseIds.size() < 500 ? 230 : 110;
      for (std::size_t row = 0; row < caseIds.size(); ++row)
      {
        QColor c(colourOf(model, row));
        c.setAlpha(alpha);
        layer.setPen(QPen(c, few ? 1.2 : 0));
        layer.drawPolyline(lineOf(axes, row, at));
      }
    }
    linesValid = true;
  }
  if (axes.size() == 1)
  {
    drawTicks(painter, at, model);
    return;
  }
  // A selection stands out against faded lines.
  painter.setOpacity(selectedRows.empty() ? 1.0 : 0.3);
  painter.drawImage(0, 0, linesLayer);
  painter.setOpacity(1.0);
  if (selectedRows.size() > drawing::drawnSelectionUpTo)
  {
    if (selectedLayer.size() != size && selectedRows.size() == caseIds.size())
    {
      // Every line selected: the lines themselves, darkened, without binning them again.
      selectedLayer = linesLayer;
      QPainter tint(&selectedLayer);
      tint.setCompositionMode(QPainter::CompositionMode_SourceIn);
      tint.fillRect(selectedLayer.rect(), QColor(20, 20, 20));
    }
    if (selectedLayer.size() != size)
      selectedLayer = lineDensity(axes, nullptr, &selectedRows, at, qRgb(20, 20, 20));
    painter.drawImage(0, 0, selectedLayer);
    return;
  }
  if (selectedRows.size() > drawing::outlinedSelectionUpTo)
  {
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(QPen(QColor(20, 20, 20), 0));
    for (int row : selectedRows)
      painter.drawPolyline(lineOf(axes, static_cast<std::size_t>(row), at));
    return;
  }
  painter.setRenderHint(QPainter::Antialiasing, true);
  for (int row : selectedRows)
  {
    const QPolygonF line = lineOf(axes, static_cast<std::size_t>(row), at);
    painter.setPen(QPen(QColor(20, 20, 20), 4.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(line);
    painter.setPen(QPen(QColor(colourOf(model, static_cast<std::size_t>(row))), 2.0));
    painter.drawPolyline(line);
  }
}

// One axis joins nothing: each case is a short mark across it, the selected ones dark.
void ParallelCoordinatesPainter::drawTicks(QPainter& painter,
                                           const ParallelLayout& at,
                                           const ParallelCoordinatesModel& model)
{
  const auto& axes = model.axes();
  const double x = at.x(0);
  for (std::size_t row = 0; row < model.caseIds().size(); ++row)
  {
    painter.setPen(QPen(QColor(colourOf(model, row)), 1.5));
    const double y = at.y(axes.front().position[row]);
    painter.drawLine(QPointF(x - 10, y), QPointF(x + 10, y));
  }
  painter.setPen(QPen(QColor(20, 20, 20), 3));
  for (int row : model.selectedRows())
  {
    const double y = at.y(axes.front().position[static_cast<std::size_t>(row)]);
    painter.drawLine(QPointF(x - 14, y), QPointF(x + 14, y));
  }
}

void ParallelCoordinatesPainter::drawAxes(QPainter& painter,
                                          const ParallelLayout& at,
                                          const ParallelCoordinatesModel& model,
                                          const Marks& marks)
{
  painter.setRenderHint(QPainter::Antialiasing, false);
  painter.fillRect(QRectF(0, at.missingY - 8, at.width, 16), QColor(0, 0, 0, 18));
  painter.setPen(QColor(90, 90, 90));
  painter.drawText(QRectF(4, at.missingY - 8, 56, 16), Qt::AlignLeft | Qt::AlignVCenter, "missing");
  const auto& axes = model.axes();
  if (!marks.colourName.empty())
  {
    // Right of the "missing" label, shortened rather than cut when the view is narrow.
    const QRectF caption(64, at.missingY + 8, std::max(at.width - 70.0, 0.0), 18);
    painter.drawText(
      caption,
      Qt::AlignRight | Qt::AlignVCenter,
      painter.fontMetrics().elidedText("colour: " + QString::fromStdString(marks.colourName) +
                                         " (blue low, red high)",
                                       Qt::ElideMiddle,
                                       static_cast<int>(caption.width())));
  }
  QFont bold = painter.font();
  bold.setBold(true);
  const QFont plain = painter.font();
  const double slot = at.count <= 1 ? at.width : (at.right - at.left) / (at.count - 1);
  for (std::size_t a = 0; a < axes.size(); ++a)
  {
    const ParallelAxis& axis = axes[a];
    const double x = at.x(static_cast<int>(a));
    painter.setPen(QPen(QColor(60, 60, 60), 1.5));
    painter.drawLine(QPointF(x, at.top), QPointF(x, at.bottom));
    const FilterState filter = a < marks.filters.size() ? marks.filters[a] : FilterState();
    if (filter.exists && filter.enabled && !axis.text)
    {
      const auto y = [&](double value) { return at.y(axis.place(value)); };
      painter.fillRect(QRectF(QPointF(x - 7, y(std::min(filter.max, axis.max))),
                              QPointF(x + 7, y(std::max(filter.min, axis.min)))),
                       QColor(30, 30, 30, 70));
    }
    if (marks.brushedAxis == static_cast<int>(a))
      painter.fillRect(QRectF(QPointF(x - 7, std::min(marks.brushFrom, marks.brushTo)),
                              QPointF(x + 7, std::max(marks.brushFrom, marks.brushTo))),
                       QColor(30, 90, 200, 90));
    painter.setPen(QColor(20, 20, 20));
    painter.setFont(bold);
    const QRectF nameBox(x - slot / 2, 4, slot, 18);
    painter.drawText(nameBox,
                     Qt::AlignCenter,
                     painter.fontMetrics().elidedText(QString::fromStdString(axis.name),
                                                      Qt::ElideRight,
                                                      static_cast<int>(slot) - 4));
    painter.setFont(plain);
    if (axis.text)
    {
      // At most about one label per 14 pixels.
      const std::size_t n = axis.categories.size();
      const std::size_t every = std::max<std::size_t>(
        1,
        static_cast<std::size_t>(static_cast<double>(n) * 14 / std::max(at.bottom - at.top, 1.0)));
      for (std::size_t i = 0; i < n; i += every)
      {
        const double y = at.y(
          n == 1 ? 0.5f : static_cast<float>(static_cast<double>(i) / static_cast<double>(n - 1)));
        painter.drawText(QRectF(x + 4, y - 7, slot / 2, 14),
                         Qt::AlignLeft | Qt::AlignVCenter,
                         QString::fromStdString(axis.categories[i]));
      }
    }
    else
    {
      painter.drawText(QRectF(x - slot / 2, at.top - 17, slot, 14),
                       Qt::AlignCenter,
                       QString::number(axis.max, 'g', 5));
      painter.drawText(QRectF(x - slot / 2, at.bottom + 2, slot, 14),
                       Qt::AlignCenter,
                       QString::number(axis.min, 'g', 5) + (axis.log ? " log" : ""));
      if (axis.notPositive > 0)
        painter.drawText(QRectF(x - slot / 2, at.missingY - 24, slot, 14),
                         Qt::AlignCenter,
                         QString("%1 at or below 0").arg(axis.notPositive));
    }
  }
}

// The shown case whose line passes nearest a point, within 5 pixels.
int ParallelCoordinatesPainter::rowAt(const ParallelCoordinatesModel& model,
                                      const ParallelLayout& at,
                                      const QPoint& point)
{
  const auto& axes = model.axes();
  if (axes.empty())
    return -1;
  // The neighbouring axes around the point, or the nearest axis outside them.
  int from = 0;
  while (from + 1 < static_cast<int>(axes.size()) && at.x(from + 1) < point.x())
    ++from;
  const int to = std::min(from + 1, static_cast<int>(axes.size()) - 1);
  const double x0 = at.x(from);
  const double x1 = at.x(to);
  const double t = x1 > x0 ? std::clamp((point.x() - x0) / (x1 - x0), 0.0, 1.0) : 0.0;
  const auto& a = axes[static_cast<std::size_t>(from)].position;
  const auto& b = axes[static_cast<std::size_t>(to)].position;
  int best = -1;
  double nearest = 5.0;
  for (std::size_t row = 0; row < model.caseIds().size(); ++row)
  {
    const double y = at.y(a[row]) * (1 - t) + at.y(b[row]) * t;
    if (std::abs(y - point.y()) <= nearest)
    {
      nearest = std::abs(y - point.y());
      best = static_cast<int>(row);
    }
  }
  return best;
}

} // namespace explorer
