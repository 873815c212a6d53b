#pragma once

// The colours the views that draw with QPainter share with the scatter plot.

#include <QImage>
#include <QRgb>

#include <array>
#include <vector>

namespace explorer
{

/// The colour variable's scale, blue (low) to red (high), as the scatter plot's; made once.
const std::array<QRgb, 256>& colourScale();

/// A colour per group, told apart at a glance; the ten repeat past the tenth group.
QRgb groupColour(int group);

/// A density as an image of `width` x `height` pixels: each pixel's `count` of marks as opacity
/// growing with its logarithm (from a quarter for one mark to whole for the most), coloured by
/// the mean place on the colour scale of its coloured marks (`colourSum` / `coloured`), `plain`
/// where none is coloured.
QImage densityImage(int width,
                    int height,
                    const std::vector<float>& count,
                    const std::vector<float>& colourSum,
                    const std::vector<float>& coloured,
                    QRgb plain);

} // namespace explorer
