#include "images/ImageMatrixViewProperties.h"
#include "analyzer_common/AxisVariableProvider.h"
#include "datamanagement/Project.h"
#include "properties/Property.h"
#include "properties/UndoablePropertyProxy.h"

#include <boost/make_shared.hpp>

template class plexa::PropertyAbstract<ImageMatrixViewProperties::RowColumnDimensionBy>;
template class plexa::Property<ImageMatrixViewProperties::RowColumnDimensionBy>;
template class plexa::UndoablePropertyProxy<ImageMatrixViewProperties::RowColumnDimensionBy>;
template class plexa::PropertyAbstract<ImageMatrixViewProperties::PageDimensionBy>;
template class plexa::Property<ImageMatrixViewProperties::PageDimensionBy>;
template class plexa::UndoablePropertyProxy<ImageMatrixViewProperties::PageDimensionBy>;

namespace
{

template<typename T>
boost::shared_ptr<plexa::UndoablePropertyProxy<T>> undoable(
  const std::string& name,
  boost::shared_ptr<plexa::PropertyAbstract<T>> target)
{
  return boost::make_shared<plexa::UndoablePropertyProxy<T>>(name, std::move(target));
}

} // namespace

struct ImageMatrixViewProperties::Impl
{
  boost::shared_ptr<plexa::UndoablePropertyProxy<WeakPtr<Variable>>> columnVar;
  boost::shared_ptr<plexa::UndoablePropertyProxy<RowColumnDimensionBy>> dimensionColumnsBy;
  boost::shared_ptr<plexa::UndoablePropertyProxy<WeakPtr<Variable>>> rowVar;
  boost::shared_ptr<plexa::UndoablePropertyProxy<RowColumnDimensionBy>> dimensionRowsBy;
  boost::shared_ptr<plexa::UndoablePropertyProxy<WeakPtr<Variable>>> pageVar;
  boost::shared_ptr<plexa::UndoablePropertyProxy<Variant>> pageValue;
  boost::shared_ptr<plexa::UndoablePropertyProxy<PageDimensionBy>> dimensionPagesBy;
};

ImageMatrixViewProperties::ImageMatrixViewProperties()
  : d(std::make_unique<Impl>())
{
  using plexa::Property;
  AxisVariableProvider provider(Project::project()->variables());
  const auto variable = [](const std::string& name, const WeakPtr<Variable>& initial)
  {
    return undoable<WeakPtr<Variable>>(name,
                                       boost::make_shared<Property<WeakPtr<Variable>>>(initial));
  };
  d->columnVar = variable("Column Variable", provider.next(Variable::Discrete));
  d->dimensionColumnsBy = undoable<RowColumnDimensionBy>(
    "Dimension Columns By", boost::make_shared<Property<RowColumnDimensionBy>>(ByVariable));
  d->rowVar = variable("Row Variable", provider.next(Variable::Discrete));
  d->dimensionRowsBy = undoable<RowColumnDimensionBy>(
    "Dimension Rows By", boost::make_shared<Property<RowColumnDimensionBy>>(ByVariable));
  d->pageVar = variable("Page Variable", provider.next(Variable::Discrete));
  d->pageValue = undoable<Variant>("Page Variable Value", boost::make_shared<Property<Variant>>());
  d->dimensionPagesBy = undoable<PageDimensionBy>(
    "Dimension Pages By", boost::make_shared<Property<PageDimensionBy>>(NoPages));
}

ImageMatrixViewProperties::~ImageMatrixViewProperties() = default;

boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> ImageMatrixViewProperties::rowVar()
  const
{
  return d->rowVar;
}

boost::shared_ptr<plexa::PropertyAbstract<ImageMatrixViewProperties::RowColumnDimensionBy>>
ImageMatrixViewProperties::dimensionRowsBy() const
{
  return d->dimensionRowsBy;
}

boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> ImageMatrixViewProperties::columnVar()
  const
{
  return d->columnVar;
}

boost::shared_ptr<plexa::PropertyAbstract<ImageMatrixViewProperties::RowColumnDimensionBy>>
ImageMatrixViewProperties::dimensionColumnsBy() const
{
  return d->dimensionColumnsBy;
}

boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> ImageMatrixViewProperties::pageVar()
  const
{
  return d->pageVar;
}

boost::shared_ptr<plexa::PropertyAbstract<Variant>> ImageMatrixViewProperties::pageValue() const
{
  return d->pageValue;
}

boost::shared_ptr<plexa::PropertyAbstract<ImageMatrixViewProperties::PageDimensionBy>>
ImageMatrixViewProperties::dimensionPagesBy() const
{
  return d->dimensionPagesBy;
}
