#pragma once

#include "colorlegend/ColorLegend.h"
#include "serialization/NamedValueTranslator.h"
#include "serialize/Serializer.h"

/// Saves the colour legend's settings as
///   <ColorLegend><Show>0</Show><NumLabels>15</NumLabels><RangeType>Auto</RangeType>
///   <Range Min="0" Max="1"/></ColorLegend>
/// and reads them back through the settings' own set operations (validated, and recorded as a
/// change unless the caller suspends undo recording). Malformed texts raise the errors of the
/// typed serializers: boost::bad_lexical_cast for "Show" and "NumLabels", std::out_of_range
/// ("bimap<>: invalid key") for "RangeType", and plexa::InvalidPropertyValueException for a
/// label count or range the settings refuse. The whole element is checked before any setting
/// is changed, so a malformed element leaves the legend exactly as it was.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT ColorLegendSerializer : public Serializer
{
public:
  ColorLegendSerializer(
    boost::shared_ptr<plexa::PropertyAbstract<ValueRange_s<double>>> range,
    boost::shared_ptr<plexa::PropertyAbstract<ColorLegend::RangeType>> rangeType,
    boost::shared_ptr<plexa::PropertyAbstract<short>> numLabels,
    boost::shared_ptr<plexa::PropertyAbstract<bool>> show);
  ~ColorLegendSerializer() override;

private:
  void deserializeSelf(QDomElement& element) const override;

  boost::shared_ptr<plexa::PropertyAbstract<ValueRange_s<double>>> range;
  boost::shared_ptr<plexa::PropertyAbstract<short>> numLabels;
  NamedValueTranslator<ColorLegend::RangeType> rangeTypes;
};
