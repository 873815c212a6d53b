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

/// Saves an ordered list of variables as child elements "Variable" with a "name" attribute, and
/// reads them back by name among the candidates, in document order. Unknown names and other
/// elements are skipped; repeated names are kept; the result is set even when empty.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT VariableListSerializer : public Serializer
{
public:
  using VariableListProperty =
    plexa::PropertyAbstract<std::vector<WeakPtr<Variable, unsigned long long>>>;

  VariableListSerializer(const std::string& name,
                         boost::shared_ptr<VariableListProperty> property,
                         std::vector<WeakPtr<Variable, unsigned long long>> candidates);
  ~VariableListSerializer() override;

private:
  void serializeSelf(QDomElement& element) const override;
  void deserializeSelf(QDomElement& element) const override;

  boost::shared_ptr<VariableListProperty> property;
  std::vector<WeakPtr<Variable, unsigned long long>> candidates;
};
