#pragma once

#include <stdexcept>

namespace explorer
{

/// Saved settings that cannot be read or applied; the message says where and why.
class SettingsError : public std::runtime_error
{
public:
  using std::runtime_error::runtime_error;
};

} // namespace explorer
