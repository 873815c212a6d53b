#include "views/scatter3d/ScatterPlot3DModel.h"

#include "analyzer_common/NiceNumber.h"

#include <vtkDoubleArray.h>
#include <vtkTable.h>

#include <cmath>
#include <cstdio>
#include <limits>

namespace explorer
{

void ScatterPlot3DModel::reload(vtkTable& shown,
                                const std::array<WeakPtr<Variable>, 3>& axes,
                                const WeakPtr<Variable>& colour)
{
  std::array<vtkDoubleArray*, 3> columns{};
  for (std::size_t a = 0; a < 3; ++a)
  {
    const Variable v = axes[a].lock();
    columns[a] =
      v.isNull() ? nullptr : vtkDoubleArray::SafeDownCast(shown.GetColumnByName(v.name().c_str()));
    // An axis without a variable has a range of nothing, which is centred too.
    ranges[a] = niceRange(v.isNull() ? std::make_pair(0.0, 0.0) : v.range());
  }
  const Variable colourVariable = colour.lock();
  vtkDoubleArray* colourColumn =
    colourVariable.isNull()
      ? nullptr
      : vtkDoubleArray::SafeDownCast(shown.GetColumnByName(colourVariable.name().c_str()));
  hasColour = colourColumn != nullptr;
  CaseIds all(shown);
  const bool complete = columns[0] && columns[1] && columns[2];
  // Room for every shown row at once: grown by doubling, ten million points would keep room for
  // 16.7 million.
  const auto rows = complete ? static_cast<std::size_t>(shown.GetNumberOfRows()) : 0;
  // The ids of the points: the shown rows' own while no row lacks a value, a list of them once
  // one does.
  std::vector<unsigned long long> ids;
  bool everyRow = true;
  auto fresh = std::make_shared<Cloud>();
  std::vector<Point>& points = fresh->points;
  std::vector<float>& colours = fresh->colours;
  points.reserve(rows);
  colours.reserve(rows);
  for (vtkIdType row = 0; complete && row < shown.GetNumberOfRows(); ++row)
  {
    Point at{};
    bool valid = true;
    for (std::size_t a = 0; a < 3 && valid; ++a)
    {
      const double value = columns[a]->GetValue(row);
      valid = !std::isnan(value);
      at[a] = static_cast<float>((value - ranges[a].first) / (ranges[a].second - ranges[a].first));
    }
    if (!valid)
    {
      if (everyRow)
      {
        everyRow = false;
        ids.reserve(rows);
        ids.assign(all.begin(), all.begin() + row);
      }
      continue;
    }
    if (!everyRow)
      ids.push_back(all[static_cast<std::size_t>(row)]);
    points.push_back(at);
    colours.push_back(colourColumn ? static_cast<float>(colourColumn->GetValue(row))
                                   : std::numeric_limits<float>::quiet_NaN());
  }
  cloud = std::move(fresh);
  pointOfCase.assign(everyRow && complete ? std::move(all) : CaseIds(std::move(ids)));
  selectedPoints.clear();
}

void ScatterPlot3DModel::select(const std::vector<unsigned long long>& caseIds)
{
  selectedPoints = pointOfCase.rowsOf(caseIds);
}

std::vector<std::string> ScatterPlot3DModel::labels(int axis) const
{
  const auto [from, to] = range(axis);
  const double step = makeNiceNumber((to - from) / 4);
  std::vector<std::string> texts;
  for (double value = from; step > 0 && value <= to + step / 2; value += step)
  {
    char text[32];
    std::snprintf(text, sizeof text, "%g", std::abs(value) < step / 1e6 ? 0.0 : value);
    texts.emplace_back(text);
  }
  // Labels run along their axis, which may be short on screen (the upright one is): where their
  // characters, with a gap each, would be over sixteen ("0100200300400500"), every other label is
  // left out, and again. The box draws a tick at each of them still.
  const auto crowded = [&texts](std::size_t every)
  {
    std::size_t characters = 0;
    for (std::size_t i = 0; i < texts.size(); i += every)
      characters += texts[i].size() + 1;
    return characters > 16 && texts.size() > 2 * every;
  };
  std::size_t every = 1;
  while (crowded(every))
    every *= 2;
  for (std::size_t i = 0; i < texts.size(); ++i)
    if (i % every != 0)
      texts[i].clear();
  // As the box is first shown, Y starts at the corner where X ends, and two labels there read as
  // one number ("8" and "0" as "80"): Y leaves its first label out when X has a last one; its
  // tick stays.
  if (axis == 1 && texts.size() > 2 && !labels(0).back().empty())
    texts.front().clear();
  return texts;
}

long long ScatterPlot3DModel::pointAt(const Projection& projection, int x, int y) const
{
  long long best = -1;
  double bestDistance = 36.0;
  double bestDepth = 2.0;
  project(projection,
          [&](std::size_t i, double px, double py, double depth)
          {
            const double distance = (px - x) * (px - x) + (py - y) * (py - y);
            if (distance < bestDistance - 0.25 ||
                (distance <= bestDistance + 0.25 && depth < bestDepth))
            {
              best = static_cast<long long>(i);
              bestDistance = std::min(bestDistance, distance);
              bestDepth = depth;
            }
          });
  return best;
}

std::pair<double, double> ScatterPlot3DModel::niceRange(std::pair<double, double> range)
{
  if (!(range.first < range.second))
  {
    const double half = range.first == 0 ? 1 : makeNiceNumber(std::abs(range.first) / 10);
    return { range.first - half, range.first + half };
  }
  const double step = makeNiceNumber((range.second - range.first) / 4);
  return { std::floor(range.first / step) * step, std::ceil(range.second / step) * step };
}

} // namespace explorer
