#pragma once

#include <QImage>
#include <QRgb>

#include <cstddef>
#include <vector>

namespace explorer
{

class Places;
struct ParallelAxis;
struct ParallelLayout;

/// Lines binned by the pairs of heights they join on each pair of neighbouring axes (bins of
/// two pixels), then drawn into an image with an opacity growing with the logarithm of their
/// number. `rows` lists the lines to draw, all of them when null; `colour` gives each line's
/// position on the colour scale, NaN for a line drawn in `plain`; without it every line is plain.
/// `threads` bin the lines, each its share; 0 for one per core (up to four) with millions of
/// lines, one with fewer.
QImage lineDensity(const std::vector<ParallelAxis>& axes,
                   const Places* colour,
                   const std::vector<int>* rows,
                   const ParallelLayout& layout,
                   QRgb plain,
                   std::size_t threads = 0);

} // namespace explorer
