#include "dataviews/DataViewAbstract.h"

#include "analyzer_common/SelectionModelInterface.h"
#include "properties/Property.h"
#include "serialize/SerializerInterface.h"

#include <boost/make_shared.hpp>

#include <stdexcept>

DataViewAbstract::DataViewAbstract(std::unique_ptr<SerializerInterface> serializer,
                                   boost::shared_ptr<SelectionModelInterface> selectionModel)
  : ownedSerializer(std::move(serializer))
  , selectionModel(std::move(selectionModel))
  , mouseModeProperty(boost::make_shared<plexa::Property<MouseMode>>())
{
  mouseModeProperty->setValue(Select);
}

DataViewAbstract::DataViewAbstract(DataViewAbstract& other)
  : DataViewInterface(other)
  , ownedSerializer(std::move(other.ownedSerializer))
  , selectionModel(other.selectionModel)
  , mouseModeProperty(other.mouseModeProperty)
{
}

DataViewAbstract& DataViewAbstract::operator=(DataViewAbstract& other)
{
  if (this != &other)
  {
    ownedSerializer = std::move(other.ownedSerializer);
    selectionModel = other.selectionModel;
    mouseModeProperty = other.mouseModeProperty;
  }
  return *this;
}

DataViewAbstract::~DataViewAbstract() = default;

SerializerInterface& DataViewAbstract::serializer()
{
  return ownedSerializerOrThrow();
}

std::string DataViewAbstract::domName() const
{
  return ownedSerializerOrThrow().name();
}

SerializerInterface& DataViewAbstract::ownedSerializerOrThrow() const
{
  if (!ownedSerializer)
  {
    throw std::logic_error("this data view's serializer was handed over to a copy of the view");
  }
  return *ownedSerializer;
}

void DataViewAbstract::adjustSelectionForMouseClickAtPoint()
{
  unsigned long long id = 0;
  if (!caseIDAtPoint(id))
  {
    selectionModel->setSelection({});
    return;
  }
  if (selectionModel->getSelections().count(id) != 0)
  {
    return;
  }
  selectionModel->setSelection({ id });
}

boost::shared_ptr<plexa::PropertyAbstract<DataViewInterface::MouseMode>>
DataViewAbstract::mouseMode() const
{
  return mouseModeProperty;
}

bool DataViewAbstract::caseIDAtPoint(unsigned long long&)
{
  return false;
}
