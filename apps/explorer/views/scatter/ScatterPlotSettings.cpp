#include "views/scatter/ScatterPlotSettings.h"

#include "PropertyEditors.h"

#include "charts/AxisDetailsInterface.h"
#include "properties/PropertyAbstract.h"

#include <QDomElement>
#include <boost/lexical_cast.hpp>

#include <stdexcept>

namespace explorer
{

GridSpacingSerializer::GridSpacingSerializer(const std::string& name, AxisDetailsInterface& axis)
  : Serializer(name)
  , axis(axis)
{
}

void GridSpacingSerializer::serializeSelf(QDomElement& element) const
{
  if (axis.useCustomGridSpacing()->value())
    element.appendChild(
      element.ownerDocument().createTextNode(numberText(axis.gridSpacing()->value())));
}

void GridSpacingSerializer::deserializeSelf(QDomElement& element) const
{
  const QString text = element.text().trimmed();
  if (text.isEmpty())
  {
    axis.useCustomGridSpacing()->setValue(false);
    return;
  }
  double spacing = 0;
  if (!parseNumber(text, spacing))
    throw boost::bad_lexical_cast();
  axis.useCustomGridSpacing()->setValue(true);
  axis.gridSpacing()->setValue(spacing);
}

LegendPlacementSerializer::LegendPlacementSerializer(std::function<bool(double*)> get,
                                                     std::function<void(const double*)> set)
  : Serializer("ColorLegendPlacement")
  , get(std::move(get))
  , set(std::move(set))
{
}

void LegendPlacementSerializer::serializeSelf(QDomElement& element) const
{
  double placement[4];
  if (!get(placement))
  {
    element.setAttribute("auto", 1);
    return;
  }
  const char* names[] = { "x", "y", "width", "height" };
  for (int i = 0; i < 4; ++i)
    element.setAttribute(names[i], numberText(placement[i]));
}

void LegendPlacementSerializer::deserializeSelf(QDomElement& element) const
{
  if (element.attribute("auto") == "1")
  {
    set(nullptr);
    return;
  }
  double placement[4];
  const char* names[] = { "x", "y", "width", "height" };
  for (int i = 0; i < 4; ++i)
  {
    const QString text = element.attribute(names[i]);
    if (!parseNumber(text, placement[i]) || placement[i] < 0 || placement[i] > 1)
      throw std::invalid_argument("'" + text.toStdString() + "' is not a fraction of the view (" +
                                  names[i] + ")");
  }
  set(placement);
}

} // namespace explorer
