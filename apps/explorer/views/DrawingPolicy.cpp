#include "views/DrawingPolicy.h"

#include "properties/PropertyAbstract.h"
#include "serialization/NamedValueTranslator.h"
#include "serialize/Serializer.h"

#include <QDomDocument>
#include <QDomElement>

#include <boost/make_shared.hpp>

namespace explorer
{

namespace drawing
{

namespace
{

NamedValueTranslator<Drawing> names()
{
  NamedValueTranslator<Drawing> translator;
  translator.add("automatic", Drawing::Automatic);
  translator.add("marks", Drawing::Marks);
  translator.add("density", Drawing::Density);
  return translator;
}

class DrawingSerializer : public Serializer
{
public:
  DrawingSerializer(const std::string& element,
                    boost::shared_ptr<plexa::PropertyAbstract<Drawing>> setting)
    : Serializer(element)
    , setting(std::move(setting))
  {
  }

private:
  void serializeSelf(QDomElement& element) const override
  {
    element.appendChild(element.ownerDocument().createTextNode(
      QString::fromStdString(names().name(setting->value()))));
  }

  // An unknown name raises std::out_of_range and leaves the setting as it was.
  void deserializeSelf(QDomElement& element) const override
  {
    const QString text = element.text().trimmed();
    if (text.size() == 1 && text[0] >= '0' && text[0] <= '2')
      setting->setValue(static_cast<Drawing>(text[0].unicode() - '0'));
    else
      setting->setValue(names().value(text.toStdString()));
  }

  boost::shared_ptr<plexa::PropertyAbstract<Drawing>> setting;
};

} // namespace

bool asDensity(Drawing setting, std::size_t count, std::size_t threshold)
{
  return setting == Drawing::Density || (setting == Drawing::Automatic && count > threshold);
}

boost::shared_ptr<SerializerInterface> serializer(
  const std::string& element,
  boost::shared_ptr<plexa::PropertyAbstract<Drawing>> setting)
{
  return boost::make_shared<DrawingSerializer>(element, std::move(setting));
}

} // namespace drawing

} // namespace explorer
