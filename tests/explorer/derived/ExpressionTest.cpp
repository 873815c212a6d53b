// The expression language on values checked by hand: precedence, IEEE arithmetic, missing values
// through comparisons and logic, every function, blocks longer than one, and the refusals with
// the column where each problem is seen.

#include "derived/Expression.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>

using namespace explorer;

namespace
{

constexpr double missing = std::numeric_limits<double>::quiet_NaN();
constexpr double inf = std::numeric_limits<double>::infinity();

// One case: a = 2, b = 3, z = 0, c missing, "in:Depth [ft]" = 10; "material" is text.
const std::map<std::string, double> oneCase{
  { "a", 2.0 },    { "b", 3.0 }, { "z", 0.0 }, { "c", missing }, { "in:Depth [ft]", 10.0 },
  { "speed", 4.0 }
};

Expression::NameKind kindOf(const std::string& name)
{
  if (name == "material")
    return Expression::NameKind::Text;
  return oneCase.count(name) ? Expression::NameKind::Numbers : Expression::NameKind::Unknown;
}

double valueOf(const std::string& text)
{
  const Expression expression = Expression::parse(text, kindOf);
  std::vector<const double*> values;
  for (const auto& name : expression.variables())
    values.push_back(&oneCase.at(name));
  double result = -12345.0;
  expression.evaluate(values, 1, &result);
  return result;
}

std::string refusalOf(const std::string& text)
{
  try
  {
    Expression::parse(text, kindOf);
  }
  catch (const ExpressionError& e)
  {
    return e.what();
  }
  return "(accepted)";
}

} // namespace

TEST(Expression, ComputesByPrecedenceAndIeeeRules)
{
  const std::vector<std::pair<std::string, double>> table{
    { "1 + 2 * 3", 7 },
    { "(1 + 2) * 3", 9 },
    { "10 - 4 - 3", 3 },
    { "12 / 3 / 2", 2 },
    { "-2 ^ 2", -4 },
    { "2 ^ 3 ^ 2", 512 },
    { "2 ^ -1", 0.5 },
    { "- -a", 2 },
    { "a - -b", 5 },
    { "+a * b - 1", 5 },
    { "1e3 + .5 + 2.5E-1", 1000.75 },
    { "a / z", inf },
    { "-a / z", -inf },
    { "z / z", missing },
    { "a + c", missing },
    { "c * 0", missing },
    { "a < b", 1 },
    { "a >= b", 0 },
    { "a <= 2", 1 },
    { "a > 2", 0 },
    { "a == 2", 1 },
    { "a != 2", 0 },
    { "c < 1", missing },
    { "c == c", missing },
    { "a < b and b < 4", 1 },
    { "a > b or z", 0 },
    { "a > b or z or 1", 1 },
    { "1 or 0 and 0", 1 }, // and binds tighter than or
    { "not z", 1 },
    { "not a == 2", 0 }, // not applies to the comparison
    { "not c", missing },
    { "c and 0", missing },
    { "if(a > b, 10, 20)", 20 },
    { "if(a < b, 10, 20)", 10 },
    { "if(c, 1, 2)", missing },
    { "if(1, c, 2)", missing },
    { "min(a, b, 1)", 1 },
    { "max(a, b, 1)", 3 },
    { "max(a, c)", missing },
    { "pow(a, b)", 8 },
    { "sqrt(16) + abs(-3)", 7 },
    { "sqrt(-1)", missing },
    { "floor(2.7) + ceil(2.1) + floor(-0.5)", 4 },
    { "log(e) + log10(1000)", 4 },
    { "log(z)", -inf },
    { "exp(0) + sin(0) + tan(0) + cos(pi)", 0 },
    { "`in:Depth [ft]` * 2", 20 },
    { "`a` + a", 4 },
    { "speed ^ 2 / (a * b)", 16.0 / 6.0 },
  };
  for (const auto& [text, expected] : table)
  {
    const double result = valueOf(text);
    if (std::isnan(expected))
      EXPECT_TRUE(std::isnan(result)) << text << " gave " << result;
    else
      EXPECT_DOUBLE_EQ(result, expected) << text;
  }
}

TEST(Expression, ComputesEveryCaseAcrossBlocks)
{
  // More cases than one block holds, with a missing value near each block's edge.
  constexpr std::size_t rows = 2600;
  std::vector<double> a(rows);
  std::vector<double> b(rows);
  for (std::size_t i = 0; i < rows; ++i)
  {
    a[i] = static_cast<double>(i) * 0.5;
    b[i] = i % 1024 == 1023 ? missing : static_cast<double>(rows - i);
  }
  const auto numbers = [](const std::string& name)
  {
    return name == "a" || name == "b" ? Expression::NameKind::Numbers
                                      : Expression::NameKind::Unknown;
  };
  const Expression expression =
    Expression::parse("if(a > b, a - b, max(b, 3) / (a + 1)) * 2", numbers);
  ASSERT_EQ(expression.variables(), (std::vector<std::string>{ "a", "b" }));
  std::vector<double> out(rows, -1.0);
  expression.evaluate({ a.data(), b.data() }, rows, out.data());
  for (std::size_t i = 0; i < rows; ++i)
  {
    if (std::isnan(b[i]))
    {
      EXPECT_TRUE(std::isnan(out[i])) << i;
      continue;
    }
    const double expected = (a[i] > b[i] ? a[i] - b[i] : std::max(b[i], 3.0) / (a[i] + 1)) * 2;
    ASSERT_DOUBLE_EQ(out[i], expected) << i;
  }

  // A bare variable or constant is copied through; no cases writes nothing.
  const Expression copy = Expression::parse("b", numbers);
  copy.evaluate({ b.data() }, rows, out.data());
  EXPECT_EQ(out[5], b[5]);
  const Expression constant = Expression::parse("pi", numbers);
  EXPECT_TRUE(constant.variables().empty());
  constant.evaluate({}, rows, out.data());
  EXPECT_DOUBLE_EQ(out[rows - 1], 3.14159265358979323846);
  out[0] = 42.0;
  expression.evaluate({ a.data(), b.data() }, 0, out.data());
  EXPECT_EQ(out[0], 42.0);
}

TEST(Expression, RefusesWithTheReasonAndTheColumn)
{
  const std::vector<std::pair<std::string, std::string>> table{
    { "speed ^ ", "a value is expected after '^' (column 7)" },
    { "", "the expression is empty" },
    { "   ", "the expression is empty" },
    { "spd * 2",
      "there is no variable named \"spd\" (put names with spaces or symbols in backquotes) "
      "(column 1)" },
    { "`in:Depth [m]`", "there is no variable named \"in:Depth [m]\" (column 1)" },
    { "a + material", "\"material\" holds text, and only numbers can be computed with (column 5)" },
    { "a b", "an operator is expected before 'b' (column 3)" },
    { "a (b)", "there is no function named \"a\" (column 1)" },
    { "(a) (b)", "an operator is expected before '(' (column 5)" },
    { "(a + 1", "the '(' here is not closed (column 1)" },
    { "(a + 1 b)", "an operator or ')' is expected before 'b' (column 8)" },
    { "a + 1)", "')' closes nothing (column 6)" },
    { "* a", "a value is expected before '*' (column 1)" },
    { "a * * b", "a value is expected after '*' (column 3)" },
    { "a and", "a value is expected after 'and' (column 3)" },
    { "and a", "a value is expected before 'and' (column 1)" },
    { "f(a, )", "there is no function named \"f\" (column 1)" },
    { "min(a, )", "a value is expected after ',' (column 6)" },
    { "()", "a value is expected after '(' (column 1)" },
    { "sqrt(a, b)", "sqrt takes 1 argument, not 2 (column 1)" },
    { "pow(a)", "pow takes 2 arguments, not 1 (column 1)" },
    { "if(a, b)", "if takes 3 arguments, not 2 (column 1)" },
    { "min(a)", "min takes two or more arguments, not 1 (column 1)" },
    { "max()", "max takes two or more arguments, not 0 (column 1)" },
    { "a(2)", "there is no function named \"a\" (column 1)" },
    { "sqrt + 1", "sqrt needs its arguments in parentheses: sqrt(...) (column 1)" },
    { "if(a, b", "the '(' of if is not closed (column 1)" },
    { "if(a b)", "',' or ')' is expected before 'b' (column 6)" },
    { "a = 1", "'=' alone is not an operator; compare with '==' (column 3)" },
    { "a < b < 1", "comparisons cannot be chained; join them with 'and' (column 7)" },
    { "a ** 2", "'**' is not an operator; raise to a power with '^' (column 3)" },
    { "a && b", "'&&' is not an operator; join conditions with 'and' (column 3)" },
    { "`in:Depth", "the name quoted here has no closing '`' (column 1)" },
    { "a + ``", "the name in backquotes is empty (column 5)" },
    { "a $ b", "'$' is not understood (column 3)" },
    { "2x", "\"2x\" is not a number (column 1)" },
    { "1.2.3", "\"1.2.3\" is not a number (column 1)" },
    { "1e", "\"1e\" is not a number (column 1)" },
  };
  for (const auto& [text, message] : table)
    EXPECT_EQ(refusalOf(text), message) << text;
}
