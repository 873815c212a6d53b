#include "dataviews/DataViewVisitorAbstract.h"

DataViewVisitorInterface::~DataViewVisitorInterface() = default;

DataViewVisitorAbstract::DataViewVisitorAbstract()
  : status(IgnoreUnhandledViewType)
{
}

DataViewVisitorAbstract::DataViewVisitorAbstract(AssertStatus status)
  : status(status)
{
}

DataViewVisitorAbstract::DataViewVisitorAbstract(const DataViewVisitorAbstract& other) = default;

DataViewVisitorAbstract::~DataViewVisitorAbstract() = default;

#define QUEN_VISIT_ANY(ViewType)                                                                   \
  void DataViewVisitorAbstract::visit(boost::shared_ptr<ViewType>)                                 \
  {                                                                                                \
    visitAnyViewType();                                                                            \
  }

QUEN_VISIT_ANY(TableViewInterface)
QUEN_VISIT_ANY(SelectedImageViewInterface)
QUEN_VISIT_ANY(SelectedCasesViewInterface)
QUEN_VISIT_ANY(ScatterPlot3DInterface)
QUEN_VISIT_ANY(ScatterPlot2DInterface)
QUEN_VISIT_ANY(LinePlotInterface)
QUEN_VISIT_ANY(ImageMatrixViewInterface)
QUEN_VISIT_ANY(ImageDiffViewInterface)

DataViewVisitorAbstract::AssertStatus DataViewVisitorAbstract::assertStatus() const
{
  return status;
}

void DataViewVisitorAbstract::visitAnyViewType() {}
