#include "views/line/Curves.h"

#include "views/line/LineGroups.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace explorer
{

namespace
{

bool placeable(double value, bool log)
{
  return log ? value > 0 : true;
}

// One point of a response curve from the Y values of the rows that share it.
void aggregateInto(Curve& curve, double x, std::vector<double>& ys, Aggregate aggregate, Band band)
{
  const auto n = static_cast<double>(ys.size());
  const double mean = std::accumulate(ys.begin(), ys.end(), 0.0) / n;
  const auto [lowest, highest] = std::minmax_element(ys.begin(), ys.end());
  const double min = *lowest;
  const double max = *highest;
  double value = mean;
  switch (aggregate)
  {
    case Aggregate::Mean:
      break;
    case Aggregate::Min:
      value = min;
      break;
    case Aggregate::Max:
      value = max;
      break;
    case Aggregate::Median:
    {
      const std::size_t half = ys.size() / 2;
      std::nth_element(ys.begin(), ys.begin() + static_cast<std::ptrdiff_t>(half), ys.end());
      value = ys[half];
      if (ys.size() % 2 == 0)
        value =
          (value + *std::max_element(ys.begin(), ys.begin() + static_cast<std::ptrdiff_t>(half))) /
          2;
      break;
    }
  }
  curve.x.push_back(x);
  curve.y.push_back(value);
  if (band == Band::MinMax)
  {
    curve.low.push_back(min);
    curve.high.push_back(max);
  }
  else if (band == Band::StdDeviation)
  {
    double squares = 0;
    for (double y : ys)
      squares += (y - mean) * (y - mean);
    // The sample's standard deviation; nothing to say of one value's spread.
    const double deviation = ys.size() > 1 ? std::sqrt(squares / (n - 1)) : 0.0;
    curve.low.push_back(mean - deviation);
    curve.high.push_back(mean + deviation);
  }
}

double distanceToSegment(double px, double py, double ax, double ay, double bx, double by)
{
  const double dx = bx - ax;
  const double dy = by - ay;
  const double length = dx * dx + dy * dy;
  const double t =
    length > 0 ? std::clamp(((px - ax) * dx + (py - ay) * dy) / length, 0.0, 1.0) : 0.0;
  return std::hypot(px - (ax + t * dx), py - (ay + t * dy));
}

// Whether a segment meets a rectangle, by clipping it to the rectangle (Liang-Barsky).
bool segmentMeets(double ax,
                  double ay,
                  double bx,
                  double by,
                  double x0,
                  double y0,
                  double x1,
                  double y1)
{
  double from = 0;
  double to = 1;
  const double dx = bx - ax;
  const double dy = by - ay;
  const double p[4] = { -dx, dx, -dy, dy };
  const double q[4] = { ax - x0, x1 - ax, ay - y0, y1 - ay };
  for (int i = 0; i < 4; ++i)
  {
    if (p[i] == 0)
    {
      if (q[i] < 0)
        return false;
      continue;
    }
    const double t = q[i] / p[i];
    if (p[i] < 0)
      from = std::max(from, t);
    else
      to = std::min(to, t);
    if (from > to)
      return false;
  }
  return true;
}

} // namespace

void CurveSet::add(Curve curve, LogAxes log)
{
  const auto widen = [](double& min, double& max, const std::vector<double>& values, bool onLog)
  {
    for (double value : values)
      if (std::isfinite(value) && (!onLog || value > 0))
      {
        min = std::min(min, value);
        max = std::max(max, value);
      }
  };
  for (std::size_t p = 0; p < curve.points(); ++p)
  {
    const double x = curve.xAt(p);
    const double y = curve.yAt(p);
    if (std::isfinite(x) && (!log.x || x > 0))
    {
      bounds.xMin = std::min(bounds.xMin, x);
      bounds.xMax = std::max(bounds.xMax, x);
    }
    if (std::isfinite(y) && (!log.y || y > 0))
    {
      bounds.yMin = std::min(bounds.yMin, y);
      bounds.yMax = std::max(bounds.yMax, y);
    }
  }
  widen(bounds.yMin, bounds.yMax, curve.low, log.y);
  widen(bounds.yMin, bounds.yMax, curve.high, log.y);
  curves.push_back(std::move(curve));
}

std::pair<const std::uint32_t*, const std::uint32_t*> Curve::rowsAt(std::size_t point) const
{
  if (firstRow.empty())
    return { rows.data(), rows.data() + rows.size() };
  return { rows.data() + firstRow[point], rows.data() + firstRow[point + 1] };
}

std::vector<std::uint32_t> orderByX(Values x)
{
  std::vector<std::pair<double, std::uint32_t>> keyed;
  keyed.reserve(x.size);
  for (std::size_t row = 0; row < x.size; ++row)
    if (!std::isnan(x[row]))
      keyed.emplace_back(x[row], static_cast<std::uint32_t>(row));
  std::sort(keyed.begin(), keyed.end());
  std::vector<std::uint32_t> order(keyed.size());
  for (std::size_t i = 0; i < keyed.size(); ++i)
    order[i] = keyed[i].second;
  return order;
}

CurveSet responseCurves(Values x,
                        Values y,
                        const LineGroups& groups,
                        Aggregate aggregate,
                        Band band,
                        LogAxes log,
                        const std::vector<std::uint32_t>* xOrder)
{
  CurveSet set;
  // The rows that can be placed, grouped by line (a counting sort), then in X order per line.
  const std::size_t lines = groups.labels.size();
  std::vector<std::uint32_t> start(lines + 1, 0);
  for (std::size_t row = 0; row < x.size; ++row)
  {
    if (std::isnan(x[row]) || std::isnan(y[row]))
      ++set.missing;
    else if (!placeable(x[row], log.x) || !placeable(y[row], log.y))
      ++set.notPositive;
    else
      ++start[static_cast<std::size_t>(groups.groupOfRow[row]) + 1];
  }
  std::partial_sum(start.begin(), start.end(), start.begin());
  std::vector<std::uint32_t> order(start.back());
  std::vector<std::uint32_t> next(start.begin(), start.end() - 1);
  const auto place = [&](std::size_t row)
  {
    if (!std::isnan(x[row]) && !std::isnan(y[row]) && placeable(x[row], log.x) &&
        placeable(y[row], log.y))
      order[next[static_cast<std::size_t>(groups.groupOfRow[row])]++] =
        static_cast<std::uint32_t>(row);
  };
  // Taken in X order, the rows of each group stay in X order.
  if (xOrder)
    for (std::uint32_t row : *xOrder)
      place(row);
  else
    for (std::size_t row = 0; row < x.size; ++row)
      place(row);

  std::vector<double> ys;
  for (std::size_t line = 0; line < lines; ++line)
  {
    const auto first = order.begin() + start[line];
    const auto last = order.begin() + start[line + 1];
    if (first == last)
      continue;
    if (!xOrder)
      std::stable_sort(first, last, [&x](std::uint32_t a, std::uint32_t b) { return x[a] < x[b]; });
    Curve curve;
    curve.label = groups.labels[line];
    curve.group = static_cast<int>(line);
    curve.rows.assign(first, last);
    curve.firstRow.push_back(0);
    for (std::size_t i = 0; i < curve.rows.size();)
    {
      const double at = x[curve.rows[i]];
      ys.clear();
      std::size_t end = i;
      for (; end < curve.rows.size() && x[curve.rows[end]] == at; ++end)
        ys.push_back(y[curve.rows[end]]);
      aggregateInto(curve, at, ys, aggregate, band);
      curve.firstRow.push_back(static_cast<std::uint32_t>(end));
      i = end;
    }
    set.add(std::move(curve), log);
  }
  return set;
}

void addSeriesCurve(CurveSet& set,
                    std::uint32_t row,
                    std::string label,
                    const std::vector<double>& x,
                    const std::vector<double>& y,
                    LogAxes log,
                    std::shared_ptr<const void> owner)
{
  Curve curve;
  curve.label = std::move(label);
  curve.rows = { row };
  const std::size_t samples = std::min(x.size(), y.size());
  std::size_t missing = 0;
  std::size_t notPositive = 0;
  for (std::size_t i = 0; i < samples; ++i)
  {
    if (std::isnan(x[i]) || std::isnan(y[i]))
      ++missing;
    else if (!placeable(x[i], log.x) || !placeable(y[i], log.y))
      ++notPositive;
  }
  set.missing += missing;
  set.notPositive += notPositive;
  if (owner && missing == 0 && notPositive == 0)
  {
    curve.shared = std::move(owner);
    curve.sharedX = x.data();
    curve.sharedY = y.data();
    curve.sharedCount = samples;
  }
  else
  {
    curve.x.reserve(samples - missing - notPositive);
    curve.y.reserve(samples - missing - notPositive);
    for (std::size_t i = 0; i < samples; ++i)
      if (!std::isnan(x[i]) && !std::isnan(y[i]) && placeable(x[i], log.x) &&
          placeable(y[i], log.y))
      {
        curve.x.push_back(x[i]);
        curve.y.push_back(y[i]);
      }
  }
  set.add(std::move(curve), log);
}

double PlotFrame::px(double x) const
{
  const double t = log.x
                     ? (std::log10(x) - std::log10(xMin)) / (std::log10(xMax) - std::log10(xMin))
                     : (x - xMin) / (xMax - xMin);
  return left + t * (right - left);
}

double PlotFrame::py(double y) const
{
  const double t = log.y
                     ? (std::log10(y) - std::log10(yMin)) / (std::log10(yMax) - std::log10(yMin))
                     : (y - yMin) / (yMax - yMin);
  return bottom - t * (bottom - top);
}

double PlotFrame::valueX(double px) const
{
  const double t = (px - left) / (right - left);
  return log.x ? std::pow(10.0, std::log10(xMin) + t * (std::log10(xMax) - std::log10(xMin)))
               : xMin + t * (xMax - xMin);
}

double PlotFrame::valueY(double py) const
{
  const double t = (bottom - py) / (bottom - top);
  return log.y ? std::pow(10.0, std::log10(yMin) + t * (std::log10(yMax) - std::log10(yMin)))
               : yMin + t * (yMax - yMin);
}

std::vector<std::uint32_t> rowsNear(const CurveSet& set,
                                    const PlotFrame& frame,
                                    double px,
                                    double py,
                                    double reach,
                                    int* curveHit,
                                    std::size_t* pointHit)
{
  double nearest = reach;
  int bestCurve = -1;
  std::size_t bestPoint = 0;
  for (std::size_t c = 0; c < set.curves.size(); ++c)
  {
    const Curve& curve = set.curves[c];
    const bool series = curve.firstRow.empty();
    double ax = 0;
    double ay = 0;
    for (std::size_t p = 0; p < curve.points(); ++p)
    {
      const double bx = frame.px(curve.xAt(p));
      const double by = frame.py(curve.yAt(p));
      // Series are picked along their segments, response curves at their points.
      const double distance =
        series && p > 0 ? distanceToSegment(px, py, ax, ay, bx, by) : std::hypot(px - bx, py - by);
      if (distance <= nearest)
      {
        nearest = distance;
        bestCurve = static_cast<int>(c);
        bestPoint = p;
      }
      ax = bx;
      ay = by;
    }
  }
  if (curveHit)
    *curveHit = bestCurve;
  if (pointHit)
    *pointHit = bestPoint;
  if (bestCurve < 0)
    return {};
  const auto [first, last] = set.curves[static_cast<std::size_t>(bestCurve)].rowsAt(bestPoint);
  return { first, last };
}

std::vector<std::uint32_t> rowsThrough(const CurveSet& set,
                                       const PlotFrame& frame,
                                       double x0,
                                       double y0,
                                       double x1,
                                       double y1)
{
  if (x0 > x1)
    std::swap(x0, x1);
  if (y0 > y1)
    std::swap(y0, y1);
  std::vector<std::uint32_t> rows;
  for (const Curve& curve : set.curves)
  {
    const bool series = curve.firstRow.empty();
    double ax = 0;
    double ay = 0;
    for (std::size_t p = 0; p < curve.points(); ++p)
    {
      const double bx = frame.px(curve.xAt(p));
      const double by = frame.py(curve.yAt(p));
      const bool inside = bx >= x0 && bx <= x1 && by >= y0 && by <= y1;
      if (series ? inside || (p > 0 && segmentMeets(ax, ay, bx, by, x0, y0, x1, y1)) : inside)
      {
        const auto [first, last] = curve.rowsAt(p);
        rows.insert(rows.end(), first, last);
        if (series)
          break;
      }
      ax = bx;
      ay = by;
    }
  }
  std::sort(rows.begin(), rows.end());
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  return rows;
}

std::vector<std::pair<float, float>> reducedForDrawing(const Curve& curve, const PlotFrame& frame)
{
  // The frame's mapping as one multiply and add per value (of its logarithm on a log axis).
  const auto axis = [](double from, double to, double pixelFrom, double pixelTo, bool log)
  {
    const double a = log ? std::log10(from) : from;
    const double b = log ? std::log10(to) : to;
    const double scale = (pixelTo - pixelFrom) / (b - a);
    return std::array<double, 2>{ scale, pixelFrom - a * scale };
  };
  const std::array<double, 2> xMap =
    axis(frame.xMin, frame.xMax, frame.left, frame.right, frame.log.x);
  const std::array<double, 2> yMap =
    axis(frame.yMin, frame.yMax, frame.bottom, frame.top, frame.log.y);
  const double sx = xMap[0];
  const double ox = xMap[1];
  const double sy = yMap[0];
  const double oy = yMap[1];
  const bool logX = frame.log.x;
  const bool logY = frame.log.y;
  const auto pixelX = [&](double x) { return (logX ? std::log10(x) : x) * sx + ox; };
  const auto pixelY = [&](double y) { return (logY ? std::log10(y) : y) * sy + oy; };

  std::vector<std::pair<float, float>> points;
  const std::size_t n = curve.points();
  bool increasing = true;
  for (std::size_t p = 1; p < n && increasing; ++p)
    increasing = !(curve.xAt(p) < curve.xAt(p - 1));
  const auto width = static_cast<std::size_t>(std::max(frame.right - frame.left, 1.0));
  if (!increasing || n <= 4 * width)
  {
    points.resize(n);
    for (std::size_t p = 0; p < n; ++p)
      points[p] = { static_cast<float>(pixelX(curve.xAt(p))),
                    static_cast<float>(pixelY(curve.yAt(p))) };
    return points;
  }
  points.reserve(4 * width + 4);
  std::size_t p = 0;
  while (p < n)
  {
    const double column = std::floor(pixelX(curve.xAt(p)));
    std::size_t end = p;
    std::size_t low = p;
    std::size_t high = p;
    for (; end < n && std::floor(pixelX(curve.xAt(end))) == column; ++end)
    {
      if (curve.yAt(end) < curve.yAt(low))
        low = end;
      if (curve.yAt(end) > curve.yAt(high))
        high = end;
    }
    const std::size_t keep[4] = { p, std::min(low, high), std::max(low, high), end - 1 };
    std::size_t last = n;
    for (std::size_t k : keep)
      if (k != last)
      {
        points.emplace_back(static_cast<float>(pixelX(curve.xAt(k))),
                            static_cast<float>(pixelY(curve.yAt(k))));
        last = k;
      }
    p = end;
  }
  return points;
}

} // namespace explorer
