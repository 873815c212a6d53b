#include "common/Variant.h"

#include <charconv>
#include <cmath>
#include <ostream>

namespace
{

enum class Rank
{
  Empty = 0,
  Number = 1,
  String = 2
};

Rank rankOf(Variant::Type type)
{
  switch (type)
  {
    case Variant::Type::Empty:
      return Rank::Empty;
    case Variant::Type::String:
      return Rank::String;
    default:
      return Rank::Number;
  }
}

// A 64-bit integer or a double widened to long double keeps its exact value (x86-64's long double
// has a 64-bit mantissa), so mixed comparisons need no special cases.
long double exactNumber(
  const std::variant<std::monostate, bool, std::int64_t, std::uint64_t, double, std::string>& value)
{
  if (auto b = std::get_if<bool>(&value))
    return *b ? 1.0L : 0.0L;
  if (auto i = std::get_if<std::int64_t>(&value))
    return static_cast<long double>(*i);
  if (auto u = std::get_if<std::uint64_t>(&value))
    return static_cast<long double>(*u);
  if (auto d = std::get_if<double>(&value))
    return *d;
  return std::nanl("");
}

// -1, 0 or 1, with NaN after every number and equal to itself.
int compareNumbers(long double a, long double b)
{
  const bool aNaN = std::isnan(a);
  const bool bNaN = std::isnan(b);
  if (aNaN || bNaN)
    return aNaN == bNaN ? 0 : (aNaN ? 1 : -1);
  return a < b ? -1 : (b < a ? 1 : 0);
}

} // namespace

Variant::Variant(bool v)
  : value(v)
{
}
Variant::Variant(int v)
  : value(static_cast<std::int64_t>(v))
{
}
Variant::Variant(long v)
  : value(static_cast<std::int64_t>(v))
{
}
Variant::Variant(long long v)
  : value(static_cast<std::int64_t>(v))
{
}
Variant::Variant(unsigned v)
  : value(static_cast<std::uint64_t>(v))
{
}
Variant::Variant(unsigned long v)
  : value(static_cast<std::uint64_t>(v))
{
}
Variant::Variant(unsigned long long v)
  : value(static_cast<std::uint64_t>(v))
{
}
Variant::Variant(double v)
  : value(v)
{
}
Variant::Variant(const char* v)
  : value(std::string(v ? v : ""))
{
}
Variant::Variant(std::string v)
  : value(std::move(v))
{
}

Variant::Type Variant::type() const
{
  return static_cast<Type>(value.index());
}

bool Variant::isEmpty() const
{
  return type() == Type::Empty;
}

bool Variant::isNumber() const
{
  return rankOf(type()) == Rank::Number;
}

bool Variant::isString() const
{
  return type() == Type::String;
}

double Variant::toDouble() const
{
  return isNumber() ? static_cast<double>(exactNumber(value)) : std::nan("");
}

std::string Variant::toString() const
{
  switch (type())
  {
    case Type::Empty:
      return {};
    case Type::Bool:
      return std::get<bool>(value) ? "true" : "false";
    case Type::Int:
      return std::to_string(std::get<std::int64_t>(value));
    case Type::UInt:
      return std::to_string(std::get<std::uint64_t>(value));
    case Type::Double:
    {
      const double d = std::get<double>(value);
      if (std::isnan(d))
        return "nan";
      char buffer[32];
      const auto result = std::to_chars(buffer, buffer + sizeof buffer, d);
      return std::string(buffer, result.ptr);
    }
    case Type::String:
      return std::get<std::string>(value);
  }
  return {};
}

int Variant::compare(const Variant& a, const Variant& b)
{
  // Two doubles, the common case of grouping a study's values, compare without widening.
  if (a.value.index() == 4 && b.value.index() == 4)
  {
    const double x = *std::get_if<double>(&a.value);
    const double y = *std::get_if<double>(&b.value);
    if (x < y)
      return -1;
    if (y < x)
      return 1;
    const bool xNaN = std::isnan(x);
    const bool yNaN = std::isnan(y);
    return xNaN == yNaN ? 0 : (xNaN ? 1 : -1);
  }
  const Rank rankA = rankOf(a.type());
  const Rank rankB = rankOf(b.type());
  if (rankA != rankB)
    return rankA < rankB ? -1 : 1;
  switch (rankA)
  {
    case Rank::Empty:
      return 0;
    case Rank::Number:
      return compareNumbers(exactNumber(a.value), exactNumber(b.value));
    case Rank::String:
    {
      const int c = std::get<std::string>(a.value).compare(std::get<std::string>(b.value));
      return c < 0 ? -1 : (c > 0 ? 1 : 0);
    }
  }
  return 0;
}

bool operator==(const Variant& a, const Variant& b)
{
  return Variant::compare(a, b) == 0;
}

bool operator<(const Variant& a, const Variant& b)
{
  return Variant::compare(a, b) < 0;
}

std::ostream& operator<<(std::ostream& stream, const Variant& variant)
{
  return stream << variant.toString();
}
