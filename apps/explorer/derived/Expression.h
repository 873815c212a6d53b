#pragma once

#include "derived/SeriesFeatures.h"

#include <cstddef>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace explorer
{

/// Why an expression cannot be computed, with the column (counted from 1) where the problem is
/// seen when there is one: "a value is expected after '^' (column 7)".
class ExpressionError : public std::runtime_error
{
public:
  using std::runtime_error::runtime_error;
};

/// An arithmetic expression over a study's numeric variables, parsed once and then computed for
/// every case, a block of cases at a time, so that its cost stays close to a loop written by hand.
///
/// The language: numbers, variables (names with spaces or symbols in backquotes: `in:Depth [ft]`),
/// `+ - * / ^` (`^` binds tighter than a sign: -2^2 is -4), parentheses, comparisons
/// `< <= > >= == !=` (1 or 0), `and or not`, `if(c, a, b)`, the functions
/// `abs sqrt exp log log10 sin cos tan floor ceil pow min max`, the constants `pi` and `e`, and
/// figures of each run's series (see SeriesFeature): series_max(`series:flight`, speed).
/// Arithmetic follows IEEE (1/0 is inf, 0/0 NaN); a missing value (NaN) anywhere in a
/// comparison, a logical operator, min, max or the condition of `if` gives NaN, not a guess.
class Expression
{
public:
  /// What a name in an expression stands for in the study.
  enum class NameKind
  {
    Numbers,
    Text,
    Unknown
  };
  using NameLookup = std::function<NameKind(const std::string& name)>;

  /// Parses `text`; names are looked up with `kindOf`. Throws ExpressionError.
  static Expression parse(const std::string& text, const NameLookup& kindOf);

  /// The variables the expression reads, each once, in the order they first appear. A series
  /// feature is among them under its text().
  const std::vector<std::string>& variables() const { return names; }
  /// The series features the expression reads.
  const std::vector<SeriesFeature>& seriesFeatures() const { return features; }

  /// How an expression writes a name: as it is when it is a plain name, else in backquotes.
  static std::string quoted(const std::string& name);

  /// Computes the expression for `rows` cases into `out`; `values[i]` holds the `rows` values of
  /// variables()[i].
  void evaluate(const std::vector<const double*>& values, std::size_t rows, double* out) const;

  struct Instruction;

private:
  Expression() = default;

  std::vector<std::string> names;
  std::vector<SeriesFeature> features;
  std::vector<double> constants;
  std::vector<Instruction> program;
  std::size_t depth = 0;
};

/// One step of a parsed expression: push a value, or replace the values on top by a result.
struct Expression::Instruction
{
  enum Code
  {
    PushVariable,
    PushConstant,
    Negate,
    Not,
    Abs,
    Sqrt,
    Exp,
    Log,
    Log10,
    Sin,
    Cos,
    Tan,
    Floor,
    Ceil,
    Add,
    Subtract,
    Multiply,
    Divide,
    Power,
    Less,
    LessOrEqual,
    Greater,
    GreaterOrEqual,
    Equal,
    NotEqual,
    And,
    Or,
    Min,
    Max,
    If
  };
  Code code;
  std::size_t operand = 0; // the variable or constant pushed
};

} // namespace explorer
