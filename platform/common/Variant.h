#pragma once

#include "common/quen_common_export.h"

#include <cstdint>
#include <iosfwd>
#include <string>
#include <variant>

/// The value of a variable in a record: empty, a boolean, a signed or unsigned 64-bit integer, a
/// double or a text.
///
/// Variants are totally ordered: the empty value first, then every number (booleans count as 0
/// and 1), then every text. Numbers compare by numeric value whatever their kind, exactly also for
/// 64-bit integers, and NaN sorts after every other number and equals itself, so that values can
/// be grouped in ordered containers (the failed runs of a study form one group). Texts compare
/// byte by byte.
class QUEN_COMMON_EXPORT Variant
{
public:
  enum class Type
  {
    Empty,
    Bool,
    Int,
    UInt,
    Double,
    String
  };

  Variant() = default;
  Variant(bool value);
  Variant(int value);
  Variant(long value);
  Variant(long long value);
  Variant(unsigned value);
  Variant(unsigned long value);
  Variant(unsigned long long value);
  Variant(double value);
  Variant(const char* value);
  Variant(std::string value);

  Type type() const;
  bool isEmpty() const;
  /// True for booleans, integers and doubles (NaN included).
  bool isNumber() const;
  bool isString() const;

  /// The number as a double; NaN for the empty value and for texts.
  double toDouble() const;
  /// Text form: "" for empty, "true"/"false", decimal integers, the shortest text that reads back
  /// to the same double ("nan", "inf", "-inf" for the special values), or the text itself.
  std::string toString() const;

  friend QUEN_COMMON_EXPORT bool operator==(const Variant& a, const Variant& b);
  friend QUEN_COMMON_EXPORT bool operator<(const Variant& a, const Variant& b);
  friend bool operator!=(const Variant& a, const Variant& b) { return !(a == b); }
  friend bool operator>(const Variant& a, const Variant& b) { return b < a; }
  friend bool operator<=(const Variant& a, const Variant& b) { return !(b < a); }
  friend bool operator>=(const Variant& a, const Variant& b) { return !(a < b); }

private:
  /// -1, 0 or 1 in the total order described above.
  static int compare(const Variant& a, const Variant& b);

  std::variant<std::monostate, bool, std::int64_t, std::uint64_t, double, std::string> value;
};

QUEN_COMMON_EXPORT std::ostream& operator<<(std::ostream& stream, const Variant& variant);
