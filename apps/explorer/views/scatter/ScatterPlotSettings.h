#pragma once

// The scatter plot's settings that are not a single value: they are saved as elements of their
// own in the view's element.

#include "serialize/Serializer.h"

#include <functional>
#include <string>

class AxisDetailsInterface;

namespace explorer
{

/// An axis's custom grid spacing: the spacing when the user set one, empty when the chart
/// chooses the ticks (the spacing shown then follows from the range and is not a setting).
class GridSpacingSerializer : public Serializer
{
public:
  GridSpacingSerializer(const std::string& name, AxisDetailsInterface& axis);

private:
  void serializeSelf(QDomElement& element) const override;
  void deserializeSelf(QDomElement& element) const override;

  AxisDetailsInterface& axis;
};

/// Where the user put the colour legend, saved as its corners in fractions of the view; an
/// element without them (or "auto") leaves the legend in the chart's margin.
class LegendPlacementSerializer : public Serializer
{
public:
  /// `get` gives the placement, false while the legend sits in its margin; `set` places it, in
  /// the margin for null.
  LegendPlacementSerializer(std::function<bool(double*)> get,
                            std::function<void(const double*)> set);

private:
  void serializeSelf(QDomElement& element) const override;
  void deserializeSelf(QDomElement& element) const override;

  std::function<bool(double*)> get;
  std::function<void(const double*)> set;
};

} // namespace explorer
