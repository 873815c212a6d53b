#include "views/parallel/LineDensity.h"

#include "views/ColourScale.h"

#include "views/parallel/ParallelCoordinatesModel.h"
#include "views/parallel/ParallelCoordinatesPainter.h"
#include "views/parallel/Shares.h"

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
                   QRgb plain,
                   std::size_t threads)
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
  // The bins of the lines from `first` to `last` on one axis.
  const auto binsOn = [&](const Places& position,
                          std::vector<std::uint16_t>& binOfLine,
                          std::size_t first,
                          std::size_t last)
  {
    for (std::size_t i = first; i < last; ++i)
    {
      const float at = position[rows ? static_cast<std::size_t>((*rows)[i]) : i];
      const double y = std::clamp(std::isnan(at) ? missingY : y0 + at * slope, 0.0, lowest);
      // The bin of the pixel row nearest y: floor(floor(y + 0.5) / h) is floor((y + 0.5) / h),
      // and for y >= 0 a conversion to an integer floors (where std::floor is a call per line).
      binOfLine[i] = static_cast<std::uint16_t>((y + 0.5) / binHeight);
    }
  };
  // Millions of lines are binned by several threads, each over its share of the lines into sums
  // of its own, added up after; fewer lines by one, in one order.
  const std::size_t shares = sharesOf(total, threads);
  const auto startOf = [&](std::size_t share) { return shareStart(total, shares, share); };
  std::vector<float> count(static_cast<std::size_t>(w) * h, 0.f);
  std::vector<float> colourSum(count.size(), 0.f);
  std::vector<float> coloured(count.size(), 0.f);
  const std::size_t pairBins = static_cast<std::size_t>(bins) * bins;
  // Per share, the lines' count, colour sum and coloured count in each pair of bins.
  std::vector<std::vector<float>> pairCount(shares, std::vector<float>(pairBins));
  std::vector<std::vector<float>> pairColour(shares, std::vector<float>(pairBins));
  std::vector<std::vector<float>> pairColoured(shares, std::vector<float>(pairBins));
  std::vector<std::uint16_t> fromBins(total);
  std::vector<std::uint16_t> toBins(total);
  eachShare(shares,
            [&](std::size_t share)
            { binsOn(axes.front().position, toBins, startOf(share), startOf(share + 1)); });
  for (std::size_t pair = 0; pair + 1 < axes.size(); ++pair)
  {
    fromBins.swap(toBins);
    eachShare(shares,
              [&](std::size_t share)
              {
                const std::size_t first = startOf(share);
                const std::size_t last = startOf(share + 1);
                binsOn(axes[pair + 1].position, toBins, first, last);
                std::vector<float>& lines = pairCount[share];
                std::vector<float>& colourTotal = pairColour[share];
                std::vector<float>& colouredLines = pairColoured[share];
                std::fill(lines.begin(), lines.end(), 0.f);
                std::fill(colourTotal.begin(), colourTotal.end(), 0.f);
                std::fill(colouredLines.begin(), colouredLines.end(), 0.f);
                for (std::size_t i = first; i < last; ++i)
                {
                  const std::size_t bin =
                    static_cast<std::size_t>(fromBins[i]) * static_cast<std::size_t>(bins) +
                    toBins[i];
                  lines[bin] += 1;
                  const std::size_t row = rows ? static_cast<std::size_t>((*rows)[i]) : i;
                  if (colour && !std::isnan((*colour)[row]))
                  {
                    colourTotal[bin] += (*colour)[row];
                    colouredLines[bin] += 1;
                  }
                }
              });
    for (std::size_t share = 1; share < shares; ++share)
      for (std::size_t bin = 0; bin < pairBins; ++bin)
      {
        pairCount[0][bin] += pairCount[share][bin];
        pairColour[0][bin] += pairColour[share][bin];
        pairColoured[0][bin] += pairColoured[share][bin];
      }
    const int x0 = static_cast<int>(layout.x(static_cast<int>(pair)));
    const int x1 = static_cast<int>(layout.x(static_cast<int>(pair) + 1));
    const int span = std::max(x1 - x0, 1);
    for (std::size_t bin = 0; bin < pairBins; ++bin)
    {
      if (pairCount[0][bin] == 0)
        continue;
      const int a = static_cast<int>(bin) / bins * binHeight;
      const int b = static_cast<int>(bin) % bins * binHeight;
      for (int x = std::max(x0, 0); x < std::min(x1, w); ++x)
      {
        const int y = a + (b - a) * (x - x0) / span;
        const std::size_t pixel = static_cast<std::size_t>(y) * w + static_cast<std::size_t>(x);
        count[pixel] += pairCount[0][bin];
        colourSum[pixel] += pairColour[0][bin];
        coloured[pixel] += pairColoured[0][bin];
      }
    }
  }
  return densityImage(w, h, count, colourSum, coloured, plain);
}

} // namespace explorer
