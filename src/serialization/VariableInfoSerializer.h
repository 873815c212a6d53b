#pragma once

#include "datamanagement/Variable.h"
#include "datamanagement/WeakPtr.h"
#include "quen_analyzer_dataviews_common_export.h"
#include "serialize/Serializer.h"

#include <boost/shared_ptr.hpp>

#include <vector>

namespace plexa
{
template<typename T>
class PropertyAbstract;
}

/// Saves a reference to one variable as the text of an element, by name, and reads it back by
/// finding the first candidate variable of exactly that name. A name that matches no candidate
/// (or an empty element) leaves the property as it is.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT VariableInfoSerializer : public Serializer
{
public:
  using VariableProperty = plexa::PropertyAbstract<WeakPtr<Variable, unsigned long long>>;

  VariableInfoSerializer(const std::string& name,
                         boost::shared_ptr<VariableProperty> property,
                         std::vector<WeakPtr<Variable, unsigned long long>> candidates);
  ~VariableInfoSerializer() override;

private:
  void serializeSelf(QDomElement& element) const override;
  void deserializeSelf(QDomElement& element) const override;

  boost::shared_ptr<VariableProperty> property;
  std::vector<WeakPtr<Variable, unsigned long long>> candidates;
};
