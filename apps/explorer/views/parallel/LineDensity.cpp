#include "views/parallel/LineDensity.h"

#include "views/ColourScale.h"

#include "views/parallel/ParallelCoordinatesModel.h"
#include "views/parallel/ParallelCoordinatesPainter.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace explorer
{

QImage lineDensity(const std::vector<ParallelAxis>& axes,
                   const Places* colour,
                   const std::vector<int>* rows,
                   const ParallelLayout& layout,
                   QRgb plain)
{
  constexpr int binHeight = 2;
  const int w = layout.width;
  const int h = layout.height;
  QImage image(std::max(w, 1), std::max(h, 1), QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  if (axes.size() < 2 || w <= 0 || h <= 0)
    return image;
  const int bins = (h + binHeight - 1) / binHeight;
  const std::size_t total = rows ? rows->size() : axes.front().position.size();
  // The bin of every line on one axis, found once per axis rather than once per pair it is in.
  // A height is linear in the position, from the layout's own ends.
  const double y0 = layout.y(0.f);
  const double slope = layout.y(1.f) - y0;
  const double missingY = layout.y(std::numeric_limits<float>::quiet_NaN());
  const double lowest = h - 1;
  const auto binsOn = [&](const Places& position, std::vector<std::uint16_t>& binOfLine)
  {
    binOfLine.resize(total);
    for (std::size_t i = 0; i < total; ++i)
    {
      const float at = position[rows ? static_cast<std::size_t>((*rows)[i]) : i];
      const double y = std::clamp(std::isnan(at) ? missingY : y0 + at * slope, 0.0, lowest);
      binOfLine[i] = static_cast<std::uint16_t>(static_cast<int>(std::floor(y + 0.5)) / binHeight);
    }
  };
  std::vector<float> count(static_cast<std::size_t>(w) * h, 0.f);
  std::vector<float> colourSum(count.size(), 0.f);
  std::vector<float> coloured(count.size(), 0.f);
  std::vector<float> pairCount(static_cast<std::size_t>(bins) * bins);
  std::vector<float> pairColour(pairCount.size());
  std::vector<float> pairColoured(pairCount.size());
  std::vector<std::uint16_t> fromBins;
  std::vector<std::uint16_t> toBins;
  binsOn(axes.front().position, toBins);
  for (std::size_t pair = 0; pair + 1 < axes.size(); ++pair)
  {
    std::fill(pairCount.begin(), pairCount.end(), 0.f);
    std::fill(pairColour.begin(), pairColour.end(), 0.f);
    std::fill(pairColoured.begin(), pairColoured.end(), 0.f);
    fromBins.swap(toBins);
    binsOn(axes[pair + 1].position, toBins);
    for (std::size_t i = 0; i < total; ++i)
    {
      const std::size_t bin =
        static_cast<std::size_t>(fromBins[i]) * static_cast<std::size_t>(bins) + toBins[i];
      pairCount[bin] += 1;
      const std::size_t row = rows ? static_cast<std::size_t>((*rows)[i]) : i;
      if (colour && !std::isnan((*colour)[row]))
      {
        pairColour[bin] += (*colour)[row];
        pairColoured[bin] += 1;
      }
    }
    const int x0 = static_cast<int>(layout.x(static_cast<int>(pair)));
    const int x1 = static_cast<int>(layout.x(static_cast<int>(pair) + 1));
    const int span = std::max(x1 - x0, 1);
    for (std::size_t bin = 0; bin < pairCount.size(); ++bin)
    {
      if (pairCount[bin] == 0)
        continue;
      const int a = static_cast<int>(bin) / bins * binHeight;
      const int b = static_cast<int>(bin) % bins * binHeight;
      for (int x = std::max(x0, 0); x < std::min(x1, w); ++x)
      {
        const int y = a + (b - a) * (x - x0) / span;
        const std::size_t pixel = static_cast<std::size_t>(y) * w + static_cast<std::size_t>(x);
        count[pixel] += pairCount[bin];
        colourSum[pixel] += pairColour[bin];
        coloured[pixel] += pairColoured[bin];
      }
    }
  }
  return densityImage(w, h, count, colourSum, coloured, plain);
}

} // namespace explorer
