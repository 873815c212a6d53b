#pragma once

#include "serialize/SerializerInterface.h"

#include <vector>

/// The usual serializer: writes an element named name(), lets serializeSelf() fill it, then
/// appends the elements of its sub-serializers in the order they were added. Reading runs
/// deserializeSelf(), then hands each sub-serializer the first child element of its name; a
/// missing child is skipped, leaving that sub-serializer's settings as they are.
class QUEN_ANALYZER_SERIALIZE_EXPORT Serializer : public virtual SerializerInterface
{
public:
  explicit Serializer(std::string name);
  ~Serializer() override;

  QDomElement serialize(QDomDocument& document) override;
  void deserialize(QDomElement& element) const override;
  std::string name() const override;
  void addSubElement(boost::shared_ptr<SerializerInterface> subElement) override;
  void replaceSubElement(boost::shared_ptr<SerializerInterface> subElement) override;
  void addDeserializeOnlySubElement(boost::shared_ptr<SerializerInterface> subElement) override;

  /// True while any deserialize() runs (raised by the outermost call, lowered when it returns or
  /// throws). Objects that would otherwise rearrange restored settings, such as chart legends,
  /// hold back while it is set.
  static bool isInMiddleOfDeserialization;

private:
  /// Writes this serializer's own content into its (already created) element.
  virtual void serializeSelf(QDomElement& element) const;
  /// Reads this serializer's own content back.
  virtual void deserializeSelf(QDomElement& element) const;

  struct SubElement
  {
    boost::shared_ptr<SerializerInterface> serializer;
    bool deserializeOnly = false;
  };
  std::string elementName;
  std::vector<SubElement> subElements;
};
