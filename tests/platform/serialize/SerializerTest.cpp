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

} // namespace

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
