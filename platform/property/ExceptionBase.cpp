#include "property/ExceptionBase.h"

#include <utility>

namespace plexa
{

ExceptionBase::ExceptionBase(std::string message)
  : message(std::move(message))
{
}

ExceptionBase::~ExceptionBase() = default;

const char* ExceptionBase::what() const noexcept
{
  return message.c_str();
}

} // namespace plexa
