#pragma once

/// A plain pair of bounds, minimum first.
template<typename T>
struct ValueRange_s
{
  T min;
  T max;
};

/// Equal when both ends are equal; a range holding a NaN equals nothing, not even itself.
template<typename T>
bool operator==(const ValueRange_s<T>& a, const ValueRange_s<T>& b)
{
  return a.min == b.min && a.max == b.max;
}

template<typename T>
bool operator!=(const ValueRange_s<T>& a, const ValueRange_s<T>& b)
{
  return !(a == b);
}
