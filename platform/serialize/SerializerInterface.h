#pragma once

#include "serialize/quen_analyzer_serialize_export.h"

#include <boost/shared_ptr.hpp>

#include <string>

class QDomDocument;
class QDomElement;

/// Saves an object's settings as one XML element and reads them back. Serializers form a tree:
/// each writes its own element, named by name(), with the elements of its sub-serializers as
/// children.
class QUEN_ANALYZER_SERIALIZE_EXPORT SerializerInterface
{
public:
  /// Creates the element (not yet attached to a parent) and fills it.
  virtual QDomElement serialize(QDomDocument& document) = 0;
  /// Reads the settings back from an element of the name name().
  virtual void deserialize(QDomElement& element) const = 0;
  /// The XML tag of the element.
  virtual std::string name() const = 0;
  virtual void addSubElement(boost::shared_ptr<SerializerInterface> subElement) = 0;
  /// Replaces the sub-serializer of the same name(), or adds it when there is none.
  virtual void replaceSubElement(boost::shared_ptr<SerializerInterface> subElement) = 0;
  /// A sub-serializer that reads but never writes (for settings saved by older versions).
  virtual void addDeserializeOnlySubElement(boost::shared_ptr<SerializerInterface> subElement) = 0;
  virtual ~SerializerInterface();
};
