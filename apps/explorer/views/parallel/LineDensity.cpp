#include "views/parallel/LineDensity.h"

#include "views/ColourScale.h"

#include "views/parallel/ParallelCoordinatesModel.h"
#include "views/parallel/ParallelCoordinatesPainter.h"

#include <algorithm>
#include <cmath>

namespace explorer
{

QImage lineDensity(const std::vector<ParallelAxis>& axes,
                   const std::vector<float>* colour,
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
  const auto binOf = [&](float position)
  {
    const int y = static_cast<int>(std::lround(layout.y(position)));
    return std::clamp(y, 0, h - 1) / binHeight;
  };
  std::vector<float> count(static_cast<std::size_t>(w) * h, 0.f);
  std::vector<float> colourSum(count.size(), 0.f);
  std::vector<float> coloured(count.size(), 0.f);
  std::vector<float> pairCount(static_cast<std::size_t>(bins) * bins);
  std::vector<float> pairColour(pairCount.size());
  std::vector<float> pairColoured(pairCount.size());
  const std::size_t total = rows ? rows->size() : axes.front().position.size();
  for (std::size_t pair = 0; pair + 1 < axes.size(); ++pair)
  {
    std::fill(pairCount.begin(), pairCount.end(), 0.f);
    std::fill(pairColour.begin(), pairColour.end(), 0.f);
    std::fill(pairColoured.begin(), pairColoured.end(), 0.f);
    const auto& from = axes[pair].position;
    const auto& to = axes[pair + 1].position;
    for (std::size_t i = 0; i < total; ++i)
    {
      const std::size_t row = rows ? static_cast<std::size_t>((*rows)[i]) : i;
      const std::size_t bin = static_cast<std::size_t>(binOf(from[row])) * bins +
                              static_cast<std::size_t>(binOf(to[row]));
      pairCount[bin] += 1;
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
