// The value types the property templates are used with across the library, instantiated here
// once so that every member of every template compiles for each of them. Types owned by other
// subsystems (enumerations of views and legends) are instantiated beside their owners.

#include "common/Variant.h"
#include "datamanagement/TagGroup.h"
#include "datamanagement/Variable.h"
#include "datamanagement/WeakPtr.h"
#include "properties/Property.h"
#include "properties/UndoablePropertyProxy.h"
#include "properties/ValueRange.h"

#include <string>
#include <vector>

#define QUEN_INSTANTIATE_PROPERTY(T)                                                               \
  template class plexa::PropertyAbstract<T>;                                                       \
  template class plexa::Property<T>;                                                               \
  template class plexa::UndoablePropertyProxy<T>;

QUEN_INSTANTIATE_PROPERTY(double)
QUEN_INSTANTIATE_PROPERTY(bool)
QUEN_INSTANTIATE_PROPERTY(short)
QUEN_INSTANTIATE_PROPERTY(unsigned long long)
QUEN_INSTANTIATE_PROPERTY(ValueRange_s<double>)
QUEN_INSTANTIATE_PROPERTY(Variant)
QUEN_INSTANTIATE_PROPERTY(WeakPtr<Variable>)
QUEN_INSTANTIATE_PROPERTY(std::vector<WeakPtr<Variable>>)
QUEN_INSTANTIATE_PROPERTY(std::vector<WeakPtr<TagGroup>>)
QUEN_INSTANTIATE_PROPERTY(std::vector<std::string>)
