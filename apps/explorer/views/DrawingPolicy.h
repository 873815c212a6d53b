#pragma once

// How the views that show one mark per case draw many of them: each mark, or a density whose
// cost follows the view's size rather than the number of cases. One setting and one set of
// thresholds for every such view, each with the reason for its value.

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <string>

class SerializerInterface;

namespace plexa
{
template<typename T>
class PropertyAbstract;
}

namespace explorer
{

/// A view's drawing of its marks (points, lines).
enum class Drawing : short
{
  Automatic = 0, ///< marks up to the view's threshold, density above it
  Marks = 1,     ///< one mark per case, however many
  Density = 2    ///< a density, however few
};

namespace drawing
{

/// Markers of the scatter plot cost about 40 ms per 10,000 points here (software OpenGL); the
/// density costs the plot's area.
constexpr std::size_t pointsAsDensityAbove = 25000;
/// A line of parallel coordinates is a polyline over every axis; stroking 20,000 of them takes
/// about as long as binning a million into pairs of heights.
constexpr std::size_t linesAsDensityAbove = 20000;
/// Up to this many selected points are drawn ringed on top, in two more passes of markers; past
/// it those passes cost as much as the points themselves, and the selection is drawn darker in
/// place (markers) or as a second, dark density.
constexpr std::size_t ringedSelectionUpTo = 10000;
/// Selected lines: outlined and smooth up to the first (a wide smooth stroke costs about 0.2 ms
/// each), thin and dark up to the second, a dark density above it.
constexpr std::size_t outlinedSelectionUpTo = 200;
constexpr std::size_t drawnSelectionUpTo = 5000;
/// Curves of the line plot: a series reduced to the plot's width is a polyline of up to four
/// points per pixel column; past this many the strokes cost more than counting their pixels.
constexpr std::size_t curvesAsDensityAbove = 2000;
/// Turning the 3-D plot draws a sample of a cloud larger than this, the whole cloud when it
/// stops: software OpenGL draws about 200,000 points in the time of one step of a turn.
constexpr std::size_t sampledWhileTurningAbove = 200000;

/// Whether `count` marks are drawn as a density under a view's setting and threshold.
bool asDensity(Drawing setting, std::size_t count, std::size_t threshold);

/// Saves a drawing setting under `element` as "automatic", "marks" or "density"; reads those,
/// and the numbers 0, 1 and 2 that earlier settings files hold.
boost::shared_ptr<SerializerInterface> serializer(
  const std::string& element,
  boost::shared_ptr<plexa::PropertyAbstract<Drawing>> setting);

} // namespace drawing

} // namespace explorer
