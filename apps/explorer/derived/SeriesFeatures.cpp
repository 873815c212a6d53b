#include "derived/SeriesFeatures.h"

#include "derived/Expression.h"

#include "FileLocator.h"
#include "StudyFiles.h"
#include "datamanagement/Project.h"
#include "datamanagement/SeriesReader.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

namespace explorer
{

namespace
{

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

bool finite(double v)
{
  return !std::isnan(v);
}

} // namespace

const char* SeriesFeature::functionName(Kind kind)
{
  switch (kind)
  {
    case Final:
      return "series_final";
    case Minimum:
      return "series_min";
    case Maximum:
      return "series_max";
    case Mean:
      return "series_mean";
    case XAtMaximum:
      return "series_x_at_max";
    case Integral:
      return "series_integral";
    case FirstCrossing:
      return "series_crossing";
  }
  return "";
}

bool SeriesFeature::takesX(Kind kind)
{
  return kind == XAtMaximum || kind == Integral || kind == FirstCrossing;
}

std::string SeriesFeature::text() const
{
  std::string text = std::string(functionName(kind)) + "(" + Expression::quoted(tag);
  if (takesX(kind))
    text += ", " + Expression::quoted(x);
  text += ", " + Expression::quoted(y);
  if (kind == FirstCrossing)
  {
    char number[32];
    std::snprintf(number, sizeof number, "%.17g", value);
    text += ", " + std::string(number);
  }
  return text + ")";
}

double SeriesFeature::of(const double* xs, const double* ys, std::size_t n) const
{
  switch (kind)
  {
    case Final:
      return n == 0 ? nan : ys[n - 1];
    case Minimum:
    case Maximum:
    case Mean:
    {
      double low = nan;
      double high = nan;
      double sum = 0.0;
      std::size_t count = 0;
      for (std::size_t i = 0; i < n; ++i)
      {
        if (!finite(ys[i]))
          continue;
        low = count == 0 ? ys[i] : std::min(low, ys[i]);
        high = count == 0 ? ys[i] : std::max(high, ys[i]);
        sum += ys[i];
        ++count;
      }
      if (kind == Minimum)
        return low;
      return kind == Maximum ? high : count == 0 ? nan : sum / double(count);
    }
    case XAtMaximum:
    {
      double best = nan;
      double at = nan;
      for (std::size_t i = 0; i < n; ++i)
      {
        if (finite(ys[i]) && finite(xs[i]) && (std::isnan(best) || ys[i] > best))
        {
          best = ys[i];
          at = xs[i];
        }
      }
      return at;
    }
    case Integral:
    {
      double sum = 0.0;
      bool any = false;
      for (std::size_t i = 1; i < n; ++i)
      {
        if (finite(xs[i - 1]) && finite(xs[i]) && finite(ys[i - 1]) && finite(ys[i]))
        {
          sum += (xs[i] - xs[i - 1]) * (ys[i] + ys[i - 1]) / 2.0;
          any = true;
        }
      }
      return any ? sum : nan;
    }
    case FirstCrossing:
    {
      // Between two samples on either side of the value, X is read off the straight line
      // joining them.
      std::size_t previous = n;
      for (std::size_t i = 0; i < n; ++i)
      {
        if (!finite(xs[i]) || !finite(ys[i]))
          continue;
        if (ys[i] == value)
          return xs[i];
        if (previous < n && (ys[previous] - value) * (ys[i] - value) < 0)
          return xs[previous] +
                 (value - ys[previous]) * (xs[i] - xs[previous]) / (ys[i] - ys[previous]);
        previous = i;
      }
      return nan;
    }
  }
  return nan;
}

std::vector<std::vector<double>> SeriesFeatureColumns::columns(
  const Project& study,
  const FileLocator* files,
  const std::vector<SeriesFeature>& features)
{
  const std::size_t rows = study.numberOfRecords();
  std::vector<std::string> tags;
  for (const auto& feature : features)
    if (computed.count(feature.text()) == 0 &&
        std::find(tags.begin(), tags.end(), feature.tag) == tags.end())
      tags.push_back(feature.tag);

  const std::vector<std::string> seriesTags = studyfiles::seriesTags(study);
  for (const std::string& tag : tags)
  {
    if (std::find(seriesTags.begin(), seriesTags.end(), tag) == seriesTags.end())
      throw ExpressionError("no run has a series tagged \"" + tag + "\"");
    std::vector<const SeriesFeature*> asked;
    for (const auto& feature : features)
      if (feature.tag == tag && computed.count(feature.text()) == 0)
        asked.push_back(&feature);
    std::vector<std::vector<double>> values(asked.size(), std::vector<double>(rows, nan));
    std::vector<bool> columnFound(asked.size(), false);
    const auto records = study.records();
    for (std::size_t row = 0; row < rows; ++row)
    {
      std::string path;
      for (const auto& handle : records[row].lock().auxFiles())
      {
        const AuxFile file = handle.lock();
        if (file.hasTag(tag) && studyfiles::isSeries(file.filePath()))
        {
          path = files ? files->locate(file.filePath()) : file.filePath();
          break;
        }
      }
      if (path.empty())
        continue;
      SeriesTable table;
      try
      {
        table = readSeriesTable(path);
      }
      catch (const std::exception&)
      {
        continue; // this run's figures stay missing; the line plot names the broken file
      }
      for (std::size_t f = 0; f < asked.size(); ++f)
      {
        const std::vector<double>* y = table.column(asked[f]->y);
        const std::vector<double>* x =
          SeriesFeature::takesX(asked[f]->kind) ? table.column(asked[f]->x) : y;
        if (!x || !y)
          continue;
        columnFound[f] = true;
        values[f][row] = asked[f]->of(x->data(), y->data(), y->size());
      }
    }
    for (std::size_t f = 0; f < asked.size(); ++f)
    {
      if (!columnFound[f])
      {
        const bool xMissing = SeriesFeature::takesX(asked[f]->kind) && !asked[f]->x.empty();
        throw ExpressionError("no series tagged \"" + tag + "\" has the column" +
                              (xMissing ? "s \"" + asked[f]->x + "\" and \"" : " \"") +
                              asked[f]->y + "\"");
      }
      computed[asked[f]->text()] = std::move(values[f]);
    }
  }
  std::vector<std::vector<double>> result;
  result.reserve(features.size());
  for (const auto& feature : features)
    result.push_back(computed.at(feature.text()));
  return result;
}

} // namespace explorer
