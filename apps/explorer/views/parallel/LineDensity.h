#pragma once

#include <QImage>
#include <QRgb>

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
QImage lineDensity(const std::vector<ParallelAxis>& axes,
                   const Places* colour,
                   const std::vector<int>* rows,
                   const ParallelLayout& layout,
                   QRgb plain);

} // namespace explorer
