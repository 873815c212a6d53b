#include "analyzer_common/NiceNumber.h"

#include <cmath>

double makeNiceNumber(double step)
{
  if (step == 0.0 || !std::isfinite(step))
  {
    return step;
  }
  const double magnitude = std::fabs(step);
  const double power = std::pow(10.0, std::floor(std::log10(magnitude)));
  const double fraction = magnitude / power;
  double nice = 10.0;
  if (fraction < 1.5)
    nice = 1.0;
  else if (fraction < 3.0)
    nice = 2.0;
  else if (fraction < 7.0)
    nice = 5.0;
  return std::copysign(nice * power, step);
}
