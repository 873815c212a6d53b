#include "ExplorerView.h"

#include "datamanagement/Project.h"
#include "serialization/VariableInfoSerializer.h"
#include "serialize/SerializerInterface.h"

#include <boost/make_shared.hpp>

namespace explorer
{

ExplorerView::~ExplorerView() = default;

void ExplorerView::saveVariableSetting(
  const std::string& element,
  boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> property,
  const Project& project)
{
  serializer().addSubElement(
    boost::make_shared<VariableInfoSerializer>(element, std::move(property), project.variables()));
  variableElementNames.push_back(element);
}

} // namespace explorer
