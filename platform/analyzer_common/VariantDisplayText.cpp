#include "analyzer_common/VariantDisplayText.h"

#include <cmath>
#include <cstdio>

std::string variantDisplayText(const Variant& value)
{
  if (value.type() != Variant::Type::Double)
  {
    return value.toString();
  }
  const double number = value.toDouble();
  if (std::isnan(number))
  {
    return "NaN";
  }
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%g", number);
  return buffer;
}
