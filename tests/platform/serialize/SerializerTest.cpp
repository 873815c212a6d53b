#include "serialize/Serializer.h"

#include <QDomDocument>
#include <QDomElement>
#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace
{

// Saves one text as its element's "value" attribute and records what reading saw.
class TextSerializer : public Serializer
{
public:
  TextSerializer(const std::string& name, std::string text)
    : Serializer(name)
    , text(std::move(text))
  {
  }

  mutable std::string text; // reading writes it, as reading writes a property
  mutable std::vector<bool> flagWhileReading;
  bool failOnRead = false;

private:
  void serializeSelf(QDomElement& element) const override
  {
    element.setAttribute("value", QString::fromStdString(text));
  }
  void deserializeSelf(QDomElement& element) const override
  {
    flagWhileReading.push_back(Serializer::isInMiddleOfDeserialization);
    if (failOnRead)
      throw std::runtime_error("malformed");
    text = element.attribute("value").toStdString();
  }
};

QString toXml(SerializerInterface& serializer)
{
  QDomDocument document;
  document.appendChild(serializer.serialize(document));
  return document.toString(-1);
}

} // namespace

TEST(Serializer, TreeWritesChildrenInOrderAndReadsThemBack)
{
  auto root = boost::make_shared<TextSerializer>("View", "scatter");
  auto legend = boost::make_shared<TextSerializer>("ColorLegend", "on");
  auto axis = boost::make_shared<TextSerializer>("Axis", "x");
  auto legacy = boost::make_shared<TextSerializer>("OldAxis", "never written");
  root->addSubElement(legend);
  root->addSubElement(axis);
  root->addDeserializeOnlySubElement(legacy);

  EXPECT_EQ(toXml(*root),
            "<View value=\"scatter\"><ColorLegend value=\"on\"/><Axis value=\"x\"/>"
            "</View>");

  QDomDocument saved;
  ASSERT_TRUE(saved.setContent(QString("<View value=\"line\"><Axis value=\"y\"/>"
                                       "<OldAxis value=\"old\"/><Axis value=\"second\"/></View>")));
  QDomElement element = saved.documentElement();
  root->deserialize(element);
  EXPECT_EQ(root->text, "line");
  EXPECT_EQ(axis->text, "y") << "the first child of the name is read";
  EXPECT_EQ(legend->text, "on") << "a missing child leaves its serializer as it was";
  EXPECT_EQ(legacy->text, "old") << "deserialize-only serializers take part in reading";
}

TEST(Serializer, DeserializationFlagIsRaisedOnlyWhileReadingAndSurvivesErrors)
{
  auto root = boost::make_shared<TextSerializer>("View", "a");
  auto child = boost::make_shared<TextSerializer>("Child", "b");
  root->addSubElement(child);
  QDomDocument document;
  QDomElement element = root->serialize(document);

  EXPECT_FALSE(Serializer::isInMiddleOfDeserialization);
  root->deserialize(element);
  EXPECT_EQ(root->flagWhileReading, std::vector<bool>{ true });
  EXPECT_EQ(child->flagWhileReading, std::vector<bool>{ true });
  EXPECT_FALSE(Serializer::isInMiddleOfDeserialization);

  child->failOnRead = true;
  EXPECT_THROW(root->deserialize(element), std::runtime_error);
  EXPECT_FALSE(Serializer::isInMiddleOfDeserialization) << "an error must not leave it raised";
}

TEST(Serializer, ReplaceSubElementSwapsTheSerializerOfTheSameName)
{
  Serializer root("View");
  root.addSubElement(boost::make_shared<TextSerializer>("Axis", "old"));
  root.replaceSubElement(boost::make_shared<TextSerializer>("Axis", "new"));
  root.replaceSubElement(boost::make_shared<TextSerializer>("Legend", "added"));
  EXPECT_EQ(toXml(root), "<View><Axis value=\"new\"/><Legend value=\"added\"/></View>");
  EXPECT_EQ(root.name(), "View");
}
