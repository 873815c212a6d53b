#include "dataviews/DataViewInterface.h"

#include "properties/Property.h"

// The mouse mode is a property of every view.
template class plexa::PropertyAbstract<DataViewInterface::MouseMode>;
template class plexa::Property<DataViewInterface::MouseMode>;

DataViewInterface::DataViewInterface() = default;

DataViewInterface::DataViewInterface(const DataViewInterface&) = default;

DataViewInterface& DataViewInterface::operator=(const DataViewInterface&) = default;

DataViewInterface::~DataViewInterface() = default;
