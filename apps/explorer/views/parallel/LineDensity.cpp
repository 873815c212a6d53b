#include "views/parallel/LineDensity.h"

#include "views/ColourScale.h"

#include "views/parallel/ParallelCoordinatesModel.h"
#include "views/parallel/ParallelCoordinatesPainter.h"
#include "views/parallel/Shares.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

namespace explorer
{

namespace
{

constexpr int binHeight = 2;

/// The lines joining one pair of bins on two neighbouring axes: how many, how many of them have a
/// colour and the sum of those colours' codes (together, so that a line adds to one place in
/// memory; in integers, which add up faster, and to the same sums in any order).
struct PairBin
{
  std::uint32_t lines = 0;
  std::uint32_t coloured = 0;
  std::uint64_t colourCodes = 0;
};

/// Lines are binned a block at a time, every axis's bins of the block at hand kept near the
/// processor while each pair of axes counts them: the whole list of a million lines' bins,
/// written on one axis and read back on the next, would go through memory at every pair.
constexpr std::size_t blockLines = 4096;

} // namespace

QImage lineDensity(const std::vector<ParallelAxis>& axes,
                   const Places* colour,
                   const std::vector<int>* rows,
                   const ParallelLayout& layout,
                   QRgb plain,
                   std::size_t threads)
{
  const int w = layout.width;
  const int h = layout.height;
  QImage image(std::max(w, 1), std::max(h, 1), QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  if (axes.size() < 2 || w <= 0 || h <= 0)
    return image;
  const auto bins = static_cast<std::size_t>((h + binHeight - 1) / binHeight);
  const std::size_t total = rows ? rows->size() : axes.front().position.size();
  // The bin of each place, found once per code rather than once per line and axis: every axis
  // has the layout's heights, linear in the place from the layout's own ends.
  std::vector<std::uint16_t> binOfCode(Places::codeCount);
  {
    const double y0 = layout.y(0.f);
    const double slope = layout.y(1.f) - y0;
    const double missingY = layout.y(std::numeric_limits<float>::quiet_NaN());
    const double lowest = h - 1;
    for (std::size_t code = 0; code < binOfCode.size(); ++code)
    {
      const float at = Places::placeOfCode(static_cast<std::uint16_t>(code));
      const double y = std::clamp(std::isnan(at) ? missingY : y0 + at * slope, 0.0, lowest);
      // The bin of the pixel row nearest y: floor(floor(y + 0.5) / binHeight) is
      // floor((y + 0.5) / binHeight), and for y >= 0 a conversion to an integer floors.
      binOfCode[code] = static_cast<std::uint16_t>((y + 0.5) / binHeight);
    }
  }
  // Millions of lines are binned by several threads, each over its share of the lines into sums
  // of its own, added up after; fewer lines by one, in one order.
  const std::size_t shares = sharesOf(total, threads);
  const std::size_t pairs = axes.size() - 1;
  const std::size_t pairBins = bins * bins;
  std::vector<std::vector<PairBin>> sums(shares);
  eachShare(shares,
            [&](std::size_t share)
            {
              std::vector<PairBin>& mine = sums[share];
              mine.resize(pairs * pairBins);
              std::vector<std::uint16_t> blockBins(axes.size() * blockLines);
              std::vector<std::uint16_t> blockColour(blockLines);
              const std::size_t last = shareStart(total, shares, share + 1);
              for (std::size_t first = shareStart(total, shares, share); first < last;
                   first += blockLines)
              {
                const std::size_t n = std::min(blockLines, last - first);
                const auto rowOf = [&](std::size_t line)
                { return rows ? static_cast<std::size_t>((*rows)[first + line]) : first + line; };
                for (std::size_t a = 0; a < axes.size(); ++a)
                {
                  std::uint16_t* const binOfLine = &blockBins[a * blockLines];
                  for (std::size_t line = 0; line < n; ++line)
                    binOfLine[line] = binOfCode[axes[a].position.codeAt(rowOf(line))];
                }
                if (colour)
                  for (std::size_t line = 0; line < n; ++line)
                    blockColour[line] = colour->codeAt(rowOf(line));
                for (std::size_t pair = 0; pair < pairs; ++pair)
                {
                  const std::uint16_t* const from = &blockBins[pair * blockLines];
                  const std::uint16_t* const to = from + blockLines;
                  PairBin* const pairSums = &mine[pair * pairBins];
                  for (std::size_t line = 0; line < n; ++line)
                  {
                    PairBin& sum = pairSums[from[line] * bins + to[line]];
                    sum.lines += 1;
                    if (colour && blockColour[line] != Places::noCode)
                    {
                      sum.colourCodes += blockColour[line];
                      sum.coloured += 1;
                    }
                  }
                }
              }
            });
  for (std::size_t share = 1; share < shares; ++share)
    for (std::size_t bin = 0; bin < sums[0].size(); ++bin)
    {
      sums[0][bin].lines += sums[share][bin].lines;
      sums[0][bin].colourCodes += sums[share][bin].colourCodes;
      sums[0][bin].coloured += sums[share][bin].coloured;
    }
  std::vector<float> count(static_cast<std::size_t>(w) * h, 0.f);
  std::vector<float> colourSum(count.size(), 0.f);
  std::vector<float> coloured(count.size(), 0.f);
  for (std::size_t pair = 0; pair < pairs; ++pair)
  {
    const int x0 = static_cast<int>(layout.x(static_cast<int>(pair)));
    const int x1 = static_cast<int>(layout.x(static_cast<int>(pair) + 1));
    const int span = std::max(x1 - x0, 1);
    const PairBin* const pairSums = &sums[0][pair * pairBins];
    for (std::size_t bin = 0; bin < pairBins; ++bin)
    {
      const PairBin& sum = pairSums[bin];
      if (sum.lines == 0)
        continue;
      const auto lines = static_cast<float>(sum.lines);
      const auto colouredLines = static_cast<float>(sum.coloured);
      const float colours =
        sum.coloured == 0
          ? 0.f
          : colouredLines * Places::placeOfMeanCode(static_cast<double>(sum.colourCodes) /
                                                    static_cast<double>(sum.coloured));
      const int a = static_cast<int>(bin / bins) * binHeight;
      const int b = static_cast<int>(bin % bins) * binHeight;
      for (int x = std::max(x0, 0); x < std::min(x1, w); ++x)
      {
        const int y = a + (b - a) * (x - x0) / span;
        const std::size_t pixel = static_cast<std::size_t>(y) * w + static_cast<std::size_t>(x);
        count[pixel] += lines;
        colourSum[pixel] += colours;
        coloured[pixel] += colouredLines;
      }
    }
  }
  return densityImage(w, h, count, colourSum, coloured, plain);
}

} // namespace explorer
