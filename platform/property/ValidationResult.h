#pragma once

#include "property/plexa_property_export.h"

#include <string>

namespace plexa
{

/// Outcome of a validation. Default-constructed it is valid with an empty error string;
/// recording an error string makes it invalid.
class PLEXA_PROPERTY_EXPORT ValidationResult
{
public:
  ValidationResult() = default;

  void setErrorString(std::string message);
  bool isValid() const;
  std::string errorString() const;

private:
  bool valid = true;
  std::string error;
};

} // namespace plexa
