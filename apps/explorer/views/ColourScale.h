#pragma once

// The colours the views that draw with QPainter share with the scatter plot.

#include <QRgb>

#include <array>

namespace explorer
{

/// The colour variable's scale, blue (low) to red (high), as the scatter plot's.
std::array<QRgb, 256> colourScale();

/// A colour per group, told apart at a glance; the ten repeat past the tenth group.
QRgb groupColour(int group);

} // namespace explorer
