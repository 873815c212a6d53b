#pragma once

#include "properties/Property.h"
#include "properties/UndoablePropertyProxy.h"

#include <boost/make_shared.hpp>

#include <string>

namespace explorer
{

/// A view's setting: a value property behind an undoable proxy, so that each edit is an undo
/// step named after the setting ("Change Band").
template<typename T>
boost::shared_ptr<plexa::UndoablePropertyProxy<T>> undoableSetting(const std::string& name, T value)
{
  return boost::make_shared<plexa::UndoablePropertyProxy<T>>(
    name, boost::make_shared<plexa::Property<T>>(std::move(value)));
}

} // namespace explorer
