#include "derived/Expression.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <utility>

namespace explorer
{

namespace
{

using Code = Expression::Instruction::Code;

struct Token
{
  enum Kind
  {
    Number,
    Name,
    Symbol,
    End
  };
  Kind kind = End;
  std::string text;
  double number = 0.0;
  bool quoted = false;
  std::size_t column = 0; // counted from 1
};

[[noreturn]] void refuse(const std::string& why, std::size_t column)
{
  throw ExpressionError(why + " (column " + std::to_string(column) + ")");
}

bool startsName(char c)
{
  return std::isalpha(static_cast<unsigned char>(c)) || c == '_';
}

bool continuesName(char c)
{
  return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
}

std::vector<Token> tokensOf(const std::string& text)
{
  static const std::array<const char*, 6> twoCharacterSymbols{ "<=", ">=", "==", "!=", "**", "&&" };
  std::vector<Token> tokens;
  std::size_t i = 0;
  while (i < text.size())
  {
    const char c = text[i];
    Token token;
    token.column = i + 1;
    if (std::isspace(static_cast<unsigned char>(c)))
    {
      ++i;
      continue;
    }
    if (std::isdigit(static_cast<unsigned char>(c)) || c == '.')
    {
      std::size_t end = i;
      while (end < text.size() &&
             (std::isalnum(static_cast<unsigned char>(text[end])) || text[end] == '.' ||
              ((text[end] == '+' || text[end] == '-') &&
               (text[end - 1] == 'e' || text[end - 1] == 'E'))))
        ++end;
      token.kind = Token::Number;
      token.text = text.substr(i, end - i);
      char* parsedTo = nullptr;
      token.number = std::strtod(token.text.c_str(), &parsedTo);
      if (parsedTo != token.text.c_str() + token.text.size())
        refuse("\"" + token.text + "\" is not a number", token.column);
      i = end;
    }
    else if (startsName(c))
    {
      std::size_t end = i;
      while (end < text.size() && continuesName(text[end]))
        ++end;
      token.kind = Token::Name;
      token.text = text.substr(i, end - i);
      i = end;
    }
    else if (c == '`')
    {
      const std::size_t close = text.find('`', i + 1);
      if (close == std::string::npos)
        refuse("the name quoted here has no closing '`'", token.column);
      if (close == i + 1)
        refuse("the name in backquotes is empty", token.column);
      token.kind = Token::Name;
      token.quoted = true;
      token.text = text.substr(i + 1, close - i - 1);
      i = close + 1;
    }
    else
    {
      token.kind = Token::Symbol;
      const std::string two = text.substr(i, 2);
      if (std::find(twoCharacterSymbols.begin(), twoCharacterSymbols.end(), two) !=
          twoCharacterSymbols.end())
        token.text = two;
      else if (std::string("+-*/^(),<>").find(c) != std::string::npos)
        token.text = std::string(1, c);
      else if (c == '=')
        refuse("'=' alone is not an operator; compare with '=='", token.column);
      else
        refuse("'" + std::string(1, c) + "' is not understood", token.column);
      if (token.text == "**")
        refuse("'**' is not an operator; raise to a power with '^'", token.column);
      if (token.text == "&&")
        refuse("'&&' is not an operator; join conditions with 'and'", token.column);
      i += token.text.size();
    }
    tokens.push_back(std::move(token));
  }
  Token end;
  end.column = text.size() + 1;
  tokens.push_back(end);
  return tokens;
}

struct Function
{
  const char* name;
  Code code;
  std::size_t arguments; // 0: two or more, folded pairwise
};

const std::array<Function, 14> functions{ { { "abs", Code::Abs, 1 },
                                            { "sqrt", Code::Sqrt, 1 },
                                            { "exp", Code::Exp, 1 },
                                            { "log", Code::Log, 1 },
                                            { "log10", Code::Log10, 1 },
                                            { "sin", Code::Sin, 1 },
                                            { "cos", Code::Cos, 1 },
                                            { "tan", Code::Tan, 1 },
                                            { "floor", Code::Floor, 1 },
                                            { "ceil", Code::Ceil, 1 },
                                            { "pow", Code::Power, 2 },
                                            { "min", Code::Min, 0 },
                                            { "max", Code::Max, 0 },
                                            { "if", Code::If, 3 } } };

const Function* functionNamed(const std::string& name)
{
  for (const Function& function : functions)
  {
    if (name == function.name)
      return &function;
  }
  return nullptr;
}

/// Recursive descent over the tokens, emitting the program in postfix order.
class Parser
{
public:
  Parser(std::vector<Token> tokens, const Expression::NameLookup& kindOf)
    : tokens(std::move(tokens))
    , kindOf(kindOf)
  {
  }

  void parse(std::vector<std::string>& names,
             std::vector<SeriesFeature>& features,
             std::vector<double>& constants,
             std::vector<Expression::Instruction>& program,
             std::size_t& depth)
  {
    if (peek().kind == Token::End)
      throw ExpressionError("the expression is empty");
    disjunction();
    if (peek().kind != Token::End)
    {
      if (peek().text == ")")
        refuse("')' closes nothing", peek().column);
      refuse("an operator is expected before " + shown(peek()), peek().column);
    }
    names = std::move(variables);
    features = std::move(seriesFeatures);
    constants = std::move(values);
    program = std::move(code);
    depth = maxDepth;
  }

private:
  const Token& peek() const { return tokens[next]; }
  const Token& take() { return tokens[next++]; }
  bool isSymbol(const char* symbol) const
  {
    return peek().kind == Token::Symbol && peek().text == symbol;
  }
  bool isWord(const char* word) const
  {
    return peek().kind == Token::Name && !peek().quoted && peek().text == word;
  }

  static std::string shown(const Token& token)
  {
    if (token.kind == Token::Name && token.quoted)
      return "`" + token.text + "`";
    return "'" + token.text + "'";
  }

  void emit(Code instruction, std::size_t operand = 0)
  {
    code.push_back({ instruction, operand });
    switch (instruction)
    {
      case Code::PushVariable:
      case Code::PushConstant:
        ++stack;
        break;
      case Code::If:
        stack -= 2;
        break;
      default:
        if (instruction >= Code::Add)
          --stack;
        break;
    }
    maxDepth = std::max(maxDepth, stack);
  }

  void pushConstant(double value)
  {
    values.push_back(value);
    emit(Code::PushConstant, values.size() - 1);
  }

  // Each level parses its operands with the next, tighter one.
  void disjunction()
  {
    conjunction();
    while (isWord("or"))
    {
      take();
      conjunction();
      emit(Code::Or);
    }
  }

  void conjunction()
  {
    negation();
    while (isWord("and"))
    {
      take();
      negation();
      emit(Code::And);
    }
  }

  void negation()
  {
    if (isWord("not"))
    {
      take();
      negation();
      emit(Code::Not);
      return;
    }
    comparison();
  }

  void comparison()
  {
    static const std::array<std::pair<const char*, Code>, 6> comparisons{
      { { "<", Code::Less },
        { "<=", Code::LessOrEqual },
        { ">", Code::Greater },
        { ">=", Code::GreaterOrEqual },
        { "==", Code::Equal },
        { "!=", Code::NotEqual } }
    };
    sum();
    for (const auto& [symbol, instruction] : comparisons)
    {
      if (!isSymbol(symbol))
        continue;
      take();
      sum();
      emit(instruction);
      for (const auto& other : comparisons)
      {
        if (isSymbol(other.first))
          refuse("comparisons cannot be chained; join them with 'and'", peek().column);
      }
      return;
    }
  }

  void sum()
  {
    product();
    while (isSymbol("+") || isSymbol("-"))
    {
      const bool plus = take().text == "+";
      product();
      emit(plus ? Code::Add : Code::Subtract);
    }
  }

  void product()
  {
    signedValue();
    while (isSymbol("*") || isSymbol("/"))
    {
      const bool times = take().text == "*";
      signedValue();
      emit(times ? Code::Multiply : Code::Divide);
    }
  }

  void signedValue()
  {
    if (isSymbol("-") || isSymbol("+"))
    {
      const bool minus = take().text == "-";
      signedValue();
      if (minus)
        emit(Code::Negate);
      return;
    }
    power();
  }

  void power()
  {
    primary();
    if (isSymbol("^"))
    {
      take();
      signedValue(); // right to left: 2^3^2 is 2^9, and 2^-1 is a half
      emit(Code::Power);
    }
  }

  void primary()
  {
    const Token token = peek();
    if (token.kind == Token::Number)
    {
      take();
      pushConstant(token.number);
      return;
    }
    if (token.kind == Token::Name)
    {
      take();
      name(token);
      return;
    }
    if (isSymbol("("))
    {
      take();
      disjunction();
      if (!isSymbol(")"))
      {
        if (peek().kind == Token::End)
          refuse("the '(' here is not closed", token.column);
        refuse("an operator or ')' is expected before " + shown(peek()), peek().column);
      }
      take();
      return;
    }
    missingValue(next);
  }

  static bool isKeyword(const Token& token)
  {
    return token.kind == Token::Name && !token.quoted &&
           (token.text == "and" || token.text == "or" || token.text == "not");
  }

  // A value was expected where tokens[at] is: say which operator lacks it, or what stands there.
  [[noreturn]] void missingValue(std::size_t at) const
  {
    if (at > 0)
    {
      const Token& before = tokens[at - 1];
      if (before.kind == Token::Symbol || isKeyword(before))
        refuse("a value is expected after " + shown(before), before.column);
    }
    refuse("a value is expected before " + shown(tokens[at]), tokens[at].column);
  }

  void name(const Token& token)
  {
    const bool called = isSymbol("(");
    if (!token.quoted)
    {
      if (const Function* function = functionNamed(token.text))
      {
        if (!called)
          refuse(token.text + " needs its arguments in parentheses: " + token.text + "(...)",
                 token.column);
        call(token, *function);
        return;
      }
      for (int kind = SeriesFeature::Final; kind <= SeriesFeature::FirstCrossing; ++kind)
      {
        if (token.text != SeriesFeature::functionName(SeriesFeature::Kind(kind)))
          continue;
        if (!called)
          refuse(token.text + " needs its arguments in parentheses: " + token.text + "(...)",
                 token.column);
        seriesCall(token, SeriesFeature::Kind(kind));
        return;
      }
      if (isKeyword(token))
        missingValue(next - 1);
      if (called)
        refuse("there is no function named \"" + token.text + "\"", token.column);
      if (token.text == "pi")
      {
        pushConstant(3.14159265358979323846);
        return;
      }
      if (token.text == "e")
      {
        pushConstant(2.71828182845904523536);
        return;
      }
    }
    switch (kindOf(token.text))
    {
      case Expression::NameKind::Unknown:
        refuse("there is no variable named \"" + token.text + "\"" +
                 (token.quoted ? "" : " (put names with spaces or symbols in backquotes)"),
               token.column);
      case Expression::NameKind::Text:
        refuse("\"" + token.text + "\" holds text, and only numbers can be computed with",
               token.column);
      case Expression::NameKind::Numbers:
        break;
    }
    pushVariable(token.text);
  }

  void pushVariable(const std::string& name)
  {
    auto known = std::find(variables.begin(), variables.end(), name);
    if (known == variables.end())
      known = variables.insert(variables.end(), name);
    emit(Code::PushVariable, std::size_t(known - variables.begin()));
  }

  // series_max(TAG, Y) and the like: names of the run's file and its columns, not variables.
  void seriesCall(const Token& token, SeriesFeature::Kind kind)
  {
    take(); // '('
    SeriesFeature feature;
    feature.kind = kind;
    const auto nameHere = [&](const char* what)
    {
      if (peek().kind != Token::Name)
        refuse(token.text + " expects " + what + " here", peek().column);
      return take().text;
    };
    const auto comma = [&]
    {
      if (!isSymbol(","))
      {
        if (peek().kind == Token::End)
          refuse("the '(' of " + token.text + " is not closed", token.column);
        refuse("',' is expected before " + shown(peek()), peek().column);
      }
      take();
    };
    feature.tag = nameHere("the tag of the runs' series files");
    if (SeriesFeature::takesX(kind))
    {
      comma();
      feature.x = nameHere("the name of the series' X column");
    }
    comma();
    feature.y = nameHere("the name of the series' Y column");
    if (kind == SeriesFeature::FirstCrossing)
    {
      comma();
      const bool negative = isSymbol("-");
      if (negative)
        take();
      if (peek().kind != Token::Number)
        refuse(token.text + " expects the value Y crosses here", peek().column);
      feature.value = negative ? -take().number : take().number;
    }
    if (!isSymbol(")"))
    {
      if (peek().kind == Token::End)
        refuse("the '(' of " + token.text + " is not closed", token.column);
      refuse("')' is expected before " + shown(peek()), peek().column);
    }
    take();
    const std::string name = feature.text();
    if (std::find(variables.begin(), variables.end(), name) == variables.end())
      seriesFeatures.push_back(feature);
    pushVariable(name);
  }

  void call(const Token& token, const Function& function)
  {
    take(); // '('
    std::size_t count = 0;
    if (!isSymbol(")"))
    {
      for (;;)
      {
        disjunction();
        ++count;
        // min and max fold their arguments pairwise as they come.
        if (function.arguments == 0 && count >= 2)
          emit(function.code);
        if (!isSymbol(","))
          break;
        take();
      }
    }
    if (!isSymbol(")"))
    {
      if (peek().kind == Token::End)
        refuse("the '(' of " + token.text + " is not closed", token.column);
      refuse("',' or ')' is expected before " + shown(peek()), peek().column);
    }
    take();
    if (function.arguments == 0 && count < 2)
      refuse(token.text + " takes two or more arguments, not " + std::to_string(count),
             token.column);
    if (function.arguments != 0 && count != function.arguments)
      refuse(token.text + " takes " + std::to_string(function.arguments) + " argument" +
               (function.arguments == 1 ? "" : "s") + ", not " + std::to_string(count),
             token.column);
    if (function.arguments != 0)
      emit(function.code);
  }

  std::vector<Token> tokens;
  const Expression::NameLookup& kindOf;
  std::size_t next = 0;
  std::vector<std::string> variables;
  std::vector<SeriesFeature> seriesFeatures;
  std::vector<double> values;
  std::vector<Expression::Instruction> code;
  std::size_t stack = 0;
  std::size_t maxDepth = 0;
};

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

double truth(bool value)
{
  return value ? 1.0 : 0.0;
}

// A value on the stack: a block of values, or one constant for every case, which is read as it
// is instead of from a block filled with it.
struct Operand
{
  const double* values = nullptr;
  bool constant = false;
};

template<typename F>
void unary(Operand a, double* out, std::size_t n, F f)
{
  if (a.constant)
  {
    std::fill_n(out, n, f(*a.values));
    return;
  }
  for (std::size_t i = 0; i < n; ++i)
    out[i] = f(a.values[i]);
}

template<typename F>
void binary(Operand a, Operand b, double* out, std::size_t n, F f)
{
  if (a.constant && b.constant)
    std::fill_n(out, n, f(*a.values, *b.values));
  else if (a.constant)
  {
    const double x = *a.values;
    for (std::size_t i = 0; i < n; ++i)
      out[i] = f(x, b.values[i]);
  }
  else if (b.constant)
  {
    const double y = *b.values;
    for (std::size_t i = 0; i < n; ++i)
      out[i] = f(a.values[i], y);
  }
  else
  {
    for (std::size_t i = 0; i < n; ++i)
      out[i] = f(a.values[i], b.values[i]);
  }
}

// Comparisons and logic answer NaN for a missing operand: a case without a value is neither
// above nor below a threshold.
template<typename F>
void logical(Operand a, Operand b, double* out, std::size_t n, F f)
{
  binary(a,
         b,
         out,
         n,
         [f](double x, double y) { return std::isnan(x) || std::isnan(y) ? nan : truth(f(x, y)); });
}

void runBinary(Code code, Operand a, Operand b, double* out, std::size_t n)
{
  switch (code)
  {
    case Code::Add:
      binary(a, b, out, n, [](double x, double y) { return x + y; });
      break;
    case Code::Subtract:
      binary(a, b, out, n, [](double x, double y) { return x - y; });
      break;
    case Code::Multiply:
      binary(a, b, out, n, [](double x, double y) { return x * y; });
      break;
    case Code::Divide:
      binary(a, b, out, n, [](double x, double y) { return x / y; });
      break;
    case Code::Power:
      binary(a, b, out, n, [](double x, double y) { return std::pow(x, y); });
      break;
    case Code::Less:
      logical(a, b, out, n, [](double x, double y) { return x < y; });
      break;
    case Code::LessOrEqual:
      logical(a, b, out, n, [](double x, double y) { return x <= y; });
      break;
    case Code::Greater:
      logical(a, b, out, n, [](double x, double y) { return x > y; });
      break;
    case Code::GreaterOrEqual:
      logical(a, b, out, n, [](double x, double y) { return x >= y; });
      break;
    case Code::Equal:
      logical(a, b, out, n, [](double x, double y) { return x == y; });
      break;
    case Code::NotEqual:
      logical(a, b, out, n, [](double x, double y) { return x != y; });
      break;
    case Code::And:
      logical(a, b, out, n, [](double x, double y) { return x != 0.0 && y != 0.0; });
      break;
    case Code::Or:
      logical(a, b, out, n, [](double x, double y) { return x != 0.0 || y != 0.0; });
      break;
    case Code::Min:
      binary(a,
             b,
             out,
             n,
             [](double x, double y)
             { return std::isnan(x) || std::isnan(y) ? nan : std::min(x, y); });
      break;
    case Code::Max:
      binary(a,
             b,
             out,
             n,
             [](double x, double y)
             { return std::isnan(x) || std::isnan(y) ? nan : std::max(x, y); });
      break;
    default:
      break;
  }
}

void runUnary(Code code, Operand a, double* out, std::size_t n)
{
  switch (code)
  {
    case Code::Negate:
      unary(a, out, n, [](double x) { return -x; });
      break;
    case Code::Not:
      unary(a, out, n, [](double x) { return std::isnan(x) ? nan : truth(x == 0.0); });
      break;
    case Code::Abs:
      unary(a, out, n, [](double x) { return std::abs(x); });
      break;
    case Code::Sqrt:
      unary(a, out, n, [](double x) { return std::sqrt(x); });
      break;
    case Code::Exp:
      unary(a, out, n, [](double x) { return std::exp(x); });
      break;
    case Code::Log:
      unary(a, out, n, [](double x) { return std::log(x); });
      break;
    case Code::Log10:
      unary(a, out, n, [](double x) { return std::log10(x); });
      break;
    case Code::Sin:
      unary(a, out, n, [](double x) { return std::sin(x); });
      break;
    case Code::Cos:
      unary(a, out, n, [](double x) { return std::cos(x); });
      break;
    case Code::Tan:
      unary(a, out, n, [](double x) { return std::tan(x); });
      break;
    case Code::Floor:
      unary(a, out, n, [](double x) { return std::floor(x); });
      break;
    case Code::Ceil:
      unary(a, out, n, [](double x) { return std::ceil(x); });
      break;
    default:
      break;
  }
}

} // namespace

Expression Expression::parse(const std::string& text, const NameLookup& kindOf)
{
  Expression expression;
  Parser(tokensOf(text), kindOf)
    .parse(expression.names,
           expression.features,
           expression.constants,
           expression.program,
           expression.depth);
  return expression;
}

std::string Expression::quoted(const std::string& name)
{
  // Words of the language stand for themselves unless quoted.
  static const std::array<const char*, 5> words{ "and", "or", "not", "pi", "e" };
  const bool plain = !name.empty() && startsName(name.front()) &&
                     std::all_of(name.begin(), name.end(), continuesName) &&
                     std::find(words.begin(), words.end(), name) == words.end() &&
                     !functionNamed(name);
  return plain ? name : "`" + name + "`";
}

void Expression::evaluate(const std::vector<const double*>& values,
                          std::size_t rows,
                          double* out) const
{
  // A block of cases at a time: each step runs over a block that stays in the cache, so that an
  // expression costs a few passes over memory the size of a block, not of the study.
  constexpr std::size_t block = 512;
  std::vector<double> scratch(depth * block);
  std::vector<Operand> stack(depth);

  for (std::size_t start = 0; start < rows; start += block)
  {
    const std::size_t n = std::min(block, rows - start);
    std::size_t top = 0; // number of values on the stack
    // The bottom of the stack is written straight into the result.
    const auto slot = [&](std::size_t index)
    { return index == 0 ? out + start : scratch.data() + index * block; };
    for (const Instruction& step : program)
    {
      switch (step.code)
      {
        case Code::PushVariable:
          stack[top++] = { values[step.operand] + start, false };
          break;
        case Code::PushConstant:
          stack[top++] = { &constants[step.operand], true };
          break;
        case Code::If:
        {
          double* result = slot(top - 3);
          const Operand condition = stack[top - 3];
          const Operand yes = stack[top - 2];
          const Operand no = stack[top - 1];
          const auto at = [](const Operand& o, std::size_t i)
          { return o.constant ? *o.values : o.values[i]; };
          for (std::size_t i = 0; i < n; ++i)
          {
            const double c = at(condition, i);
            result[i] = std::isnan(c) ? nan : c != 0.0 ? at(yes, i) : at(no, i);
          }
          top -= 2;
          stack[top - 1] = { result, false };
          break;
        }
        default:
          if (step.code >= Code::Add)
          {
            double* result = slot(top - 2);
            runBinary(step.code, stack[top - 2], stack[top - 1], result, n);
            --top;
            stack[top - 1] = { result, false };
          }
          else
          {
            double* result = slot(top - 1);
            runUnary(step.code, stack[top - 1], result, n);
            stack[top - 1] = { result, false };
          }
          break;
      }
    }
    if (stack[0].constant)
      std::fill_n(out + start, n, *stack[0].values);
    else if (stack[0].values != out + start)
      std::copy_n(stack[0].values, n, out + start);
  }
}

} // namespace explorer
