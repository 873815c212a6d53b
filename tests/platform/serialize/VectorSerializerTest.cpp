#include "serialize/VectorSerializer.h"

#include <QDomDocument>
#include <QDomElement>
#include <boost/make_shared.hpp>
#include <boost/tokenizer.hpp>
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace
{

// The smallest thing with value() and setValue(), as the properties offer them.
struct ListHolder
{
  std::vector<std::string> list;
  int sets = 0;
  std::vector<std::string> value() const { return list; }
  void setValue(const std::vector<std::string>& v)
  {
    list = v;
    ++sets;
  }
};

std::vector<std::string> tokenize(const std::string& text)
{
  using Separator = boost::escaped_list_separator<char>;
  boost::tokenizer<Separator> tokens(text, Separator('\\', ',', '"'));
  return { tokens.begin(), tokens.end() };
}

QDomElement elementWithText(QDomDocument& document, const QString& text)
{
  QDomElement element = document.createElement("TagsToShow");
  element.appendChild(document.createTextNode(text));
  return element;
}

} // namespace

TEST(VectorSerializer, StringValueReadsBackAsExactlyOneEqualField)
{
  std::vector<std::string> samples = { "plain", "a,b",        "say \"hi\"", "back\\slash",
                                       "",      "\\",         "\"",         ",",
                                       "\\\"",  "trailing\\", "new\nline",  "  spaced  ",
                                       "n\\n",  "caf\xC3\xA9" };
  std::mt19937 random(2026);
  const std::string alphabet = "ab,\"\\ n\t;";
  for (int i = 0; i < 500; ++i)
  {
    std::string s;
    const int length = static_cast<int>(random() % 8);
    for (int k = 0; k < length; ++k)
      s.push_back(alphabet[random() % alphabet.size()]);
    samples.push_back(s);
  }
  for (const auto& s : samples)
  {
    const auto fields = tokenize(StringVectorSerializer::stringValue(s));
    ASSERT_EQ(fields.size(), 1u) << "for [" << s << "]";
    EXPECT_EQ(fields[0], s);
  }
  EXPECT_EQ(StringVectorSerializer::stringValue("plain"), "plain") << "plain texts stay readable";
}

TEST(VectorSerializer, WritesOneCommaSeparatedTextAndReadsAcceptedFieldsBack)
{
  auto holder = boost::make_shared<ListHolder>();
  holder->list = { "a", "b,c", "" };
  StringVectorSerializer serializer(
    "TagsToShow", holder, [](const std::string& tag) { return tag != "unknown"; });

  QDomDocument document;
  QDomElement written = serializer.serialize(document);
  EXPECT_EQ(written.tagName(), "TagsToShow");
  EXPECT_EQ(written.text(), "a,\"b,c\",\"\"");

  holder->list.clear();
  serializer.deserialize(written);
  EXPECT_EQ(holder->list, (std::vector<std::string>{ "a", "b,c", "" }));

  QDomElement filtered = elementWithText(document, "unknown,a");
  serializer.deserialize(filtered);
  EXPECT_EQ(holder->list, (std::vector<std::string>{ "a" }));

  QDomElement empty = elementWithText(document, "");
  serializer.deserialize(empty);
  EXPECT_TRUE(holder->list.empty()) << "an empty element sets an empty list";
  EXPECT_EQ(holder->sets, 3);
}

TEST(VectorSerializer, MalformedEscapesRaiseTheTokenizersError)
{
  auto holder = boost::make_shared<ListHolder>();
  holder->list = { "kept" };
  StringVectorSerializer serializer("TagsToShow", holder, [](const std::string&) { return true; });
  QDomDocument document;
  for (const char* text : { "a\\x", "ends\\" })
  {
    QDomElement element = elementWithText(document, text);
    EXPECT_THROW(serializer.deserialize(element), boost::escaped_list_error) << text;
  }
  EXPECT_EQ(holder->list, std::vector<std::string>{ "kept" }) << "a failed read changes nothing";
}
