#include "colorlegend/ColorLegendSerializer.h"

#include "serialization/EnumSerializer.h"
#include "serialization/GenericSerializer.h"
#include "serialization/ValueRangeSerializer.h"

#include <QDomElement>
#include <boost/make_shared.hpp>

ColorLegendSerializer::ColorLegendSerializer(
  boost::shared_ptr<plexa::PropertyAbstract<ValueRange_s<double>>> range,
  boost::shared_ptr<plexa::PropertyAbstract<ColorLegend::RangeType>> rangeType,
  boost::shared_ptr<plexa::PropertyAbstract<short>> numLabels,
  boost::shared_ptr<plexa::PropertyAbstract<bool>> show)
  : Serializer("ColorLegend")
  , range(range)
  , numLabels(numLabels)
{
  rangeTypes.add("Auto", ColorLegend::Auto);
  rangeTypes.add("Custom", ColorLegend::Custom);
  addSubElement(boost::make_shared<GenericSerializer<bool>>("Show", std::move(show)));
  addSubElement(boost::make_shared<GenericSerializer<short>>("NumLabels", std::move(numLabels)));
  addSubElement(boost::make_shared<EnumSerializer<ColorLegend::RangeType>>(
    "RangeType", std::move(rangeType), rangeTypes));
  addSubElement(boost::make_shared<ValueRangeSerializer<double>>("Range", std::move(range)));
}

ColorLegendSerializer::~ColorLegendSerializer() = default;

// Runs before the sub-serializers: every conversion and validation they will make is made here
// first, with the same errors, so that none of them changes a setting unless all can.
void ColorLegendSerializer::deserializeSelf(QDomElement& element) const
{
  const QDomElement show = element.firstChildElement("Show");
  if (!show.isNull())
  {
    savedtext::parse<bool>(show.text().toStdString());
  }
  const QDomElement labels = element.firstChildElement("NumLabels");
  if (!labels.isNull())
  {
    const auto count = savedtext::parse<short>(labels.text().toStdString());
    const plexa::ValidationResult result = numLabels->validator()->validate(count);
    if (!result.isValid())
      throw plexa::InvalidPropertyValueException(result.errorString());
  }
  const QDomElement type = element.firstChildElement("RangeType");
  if (!type.isNull())
  {
    rangeTypes.value(type.text().toStdString());
  }
  const QDomElement saved = element.firstChildElement("Range");
  if (!saved.isNull())
  {
    ValueRange_s<double> restored = range->value();
    if (saved.hasAttribute("Min"))
      restored.min = saved.attribute("Min").toDouble();
    if (saved.hasAttribute("Max"))
      restored.max = saved.attribute("Max").toDouble();
    const plexa::ValidationResult result = range->validator()->validate(restored);
    if (!result.isValid())
      throw plexa::InvalidPropertyValueException(result.errorString());
  }
}
