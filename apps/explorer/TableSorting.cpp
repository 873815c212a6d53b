#include "TableSorting.h"

#include "properties/BoundedValueValidator.h"
#include "properties/Property.h"
#include "properties/UndoablePropertyProxy.h"

#include "properties/PropertyAbstract.h"

#include <QHeaderView>
#include <boost/make_shared.hpp>

#include <algorithm>
#include <cmath>

namespace explorer
{

void sortByNumbers(std::vector<std::size_t>& order,
                   const std::vector<double>& keys,
                   bool descending)
{
  std::stable_sort(order.begin(),
                   order.end(),
                   [&](std::size_t a, std::size_t b)
                   {
                     if (std::isnan(keys[a]) || std::isnan(keys[b]))
                       return !std::isnan(keys[a]) && std::isnan(keys[b]);
                     return descending ? keys[b] < keys[a] : keys[a] < keys[b];
                   });
}

void sortByTexts(std::vector<std::size_t>& order,
                 const std::vector<std::string>& keys,
                 bool descending)
{
  std::stable_sort(order.begin(),
                   order.end(),
                   [&](std::size_t a, std::size_t b)
                   { return descending ? keys[b] < keys[a] : keys[a] < keys[b]; });
}

SortSettings::SortSettings(int columns, short first)
{
  using Bounded = plexa::BoundedValueValidator<short>;
  column = boost::make_shared<plexa::UndoablePropertyProxy<short>>(
    "Sort Column",
    boost::make_shared<plexa::Property<short>>(
      first,
      boost::make_shared<Bounded>(
        -1, Bounded::Inclusive, static_cast<short>(columns - 1), Bounded::Inclusive)));
  descending = boost::make_shared<plexa::UndoablePropertyProxy<bool>>(
    "Sort Descending", boost::make_shared<plexa::Property<bool>>(false));
}

void sortOnHeaderClicks(QHeaderView& header,
                        boost::shared_ptr<plexa::PropertyAbstract<short>> column,
                        boost::shared_ptr<plexa::PropertyAbstract<bool>> descending)
{
  header.setSectionsClickable(true);
  header.setSortIndicatorShown(true);
  QObject::connect(&header,
                   &QHeaderView::sectionClicked,
                   &header,
                   [column, descending](int clicked)
                   {
                     if (column->value() == clicked)
                       descending->setValue(!descending->value());
                     else
                       column->setValue(static_cast<short>(clicked));
                   });
}

} // namespace explorer
