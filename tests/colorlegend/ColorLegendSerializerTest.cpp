#include "ColorLegendFixture.h"
#include "serialize/Serializer.h"

#include <QDomDocument>
#include <boost/lexical_cast.hpp>

#include <stdexcept>

namespace
{

QDomElement parsed(QDomDocument& document, const QString& xml)
{
  EXPECT_TRUE(document.setContent(xml)) << xml.toStdString();
  return document.documentElement();
}

} // namespace

using ColorLegendSerializerTest = ColorLegendFixture;

TEST_F(ColorLegendSerializerTest, MissingAttributesKeepTheirEndAndNonNumbersReadAsZero)
{
  legend->range()->setValue({ -5, 5 });
  const struct
  {
    const char* xml;
    ValueRange_s<double> range;
  } cases[] = {
    { "<ColorLegend><Range Max=\"7\"/></ColorLegend>", { -5, 7 } },
    { "<ColorLegend><Range Min=\"abc\"/></ColorLegend>", { 0, 7 } },
    { "<ColorLegend><Range/></ColorLegend>", { 0, 7 } },
    { "<ColorLegend/>", { 0, 7 } },
  };
  for (const auto& c : cases)
  {
    QDomDocument document;
    QDomElement element = parsed(document, c.xml);
    legend->serializer()->deserialize(element);
    EXPECT_EQ(legend->range()->value(), c.range) << c.xml;
  }
}

TEST_F(ColorLegendSerializerTest, MalformedSettingsRaiseTheirErrorAndChangeNothing)
{
  legend->show()->setValue(true);
  legend->numLabels()->setValue(9);
  const auto check = [&](const char* xml, const char* message)
  {
    QDomDocument document;
    QDomElement element = parsed(document, xml);
    try
    {
      legend->serializer()->deserialize(element);
      ADD_FAILURE() << "accepted " << xml;
    }
    catch (const std::exception& e)
    {
      EXPECT_STREQ(e.what(), message) << xml;
    }
    EXPECT_TRUE(legend->show()->value()) << xml;
    EXPECT_EQ(legend->numLabels()->value(), 9) << xml;
    EXPECT_EQ(legend->rangeType()->value(), ColorLegend::Auto) << xml;
    EXPECT_EQ(legend->range()->value(), (ValueRange_s<double>{ 0, 100 })) << xml;
  };
  const char* badCast = "bad lexical cast: source type value could not be interpreted as target";
  check("<ColorLegend><Show>0</Show><NumLabels>abc</NumLabels></ColorLegend>", badCast);
  check("<ColorLegend><Show>0</Show><NumLabels>0.50000</NumLabels></ColorLegend>", badCast);
  check("<ColorLegend><Show>0</Show><NumLabels>70000</NumLabels></ColorLegend>", badCast);
  check("<ColorLegend><Show>true</Show></ColorLegend>", badCast);
  check("<ColorLegend><Show>0</Show><RangeType>Manual</RangeType></ColorLegend>",
        "bimap<>: invalid key");
  check("<ColorLegend><Show>0</Show><NumLabels>2</NumLabels></ColorLegend>",
        "The value must be greater than or equal to 3 and less than or equal to 40");
  check("<ColorLegend><Show>0</Show><Range Min=\"5\" Max=\"1\"/></ColorLegend>",
        "Minimum cannot be greater than maximum.");
  EXPECT_FALSE(Serializer::isInMiddleOfDeserialization);
}
