#include "import/gerber/MacroExpansion.h"

#include "common/ParseList.h"
#include "common/TextHelpers.h"
#include "common/ToNumber.h"

#include <charconv>
#include <cmath>

namespace tvx {

namespace {

constexpr int32_t HighestVariable = 15999;

// A result goes back into a token as text with 15 significant digits and is read again, so every
// intermediate result is rounded to that precision.
double roundTo15Digits(double value) {
  if (!std::isfinite(value))
    return value;
  char text[64];
  auto written = std::to_chars(text, text + sizeof text, value, std::chars_format::general, 15);
  if (written.ec != std::errc())
    return value;
  double back = value;
  std::from_chars(text, written.ptr, back);
  return back;
}

enum class TokenKind { Plain, Variable, Open, Close };

struct Token {
  TokenKind kind = TokenKind::Plain;
  char op = 0;  // the operator that stands behind the token; 0 for none
  std::string text;
  int depth = 0;  // parentheses only; kept apart from text so a number behind "(" cannot mix in
};

bool isOperator(char c) { return c == '+' || c == '-' || c == '/' || c == 'x' || c == '='; }

// Splits a field or an assignment line into tokens. A field starts with an empty token 0 whose
// operator is "=", so that a leading operator falls on it; an assignment line's first token is its
// target. Parentheses make tokens of their own in fields only.
std::vector<Token> tokenise(std::string_view text, bool field) {
  std::vector<Token> tokens;
  if (field)
    tokens.push_back({TokenKind::Plain, '=', {}, 0});
  auto start = [&tokens](TokenKind kind) {
    Token token;
    token.kind = kind;
    if (tokens.empty())
      token.op = '=';
    tokens.push_back(std::move(token));
  };
  bool inToken = false;
  int depth = 0;
  for (char c : TrimBlanks(text)) {
    if (c == '$') {
      start(TokenKind::Variable);
      inToken = true;
    } else if (field && c == '(') {
      start(TokenKind::Open);
      tokens.back().depth = ++depth;
      inToken = false;  // a number right behind the parenthesis is a token of its own
    } else if (field && c == ')') {
      start(TokenKind::Close);
      tokens.back().depth = depth--;
      inToken = false;
    } else if (isOperator(c)) {
      if (tokens.empty())
        start(TokenKind::Plain);
      tokens.back().op = c;
      inToken = false;
    } else if (c == ' ') {
      continue;
    } else {
      if (!inToken)
        start(TokenKind::Plain);
      inToken = true;
      tokens.back().text += c;
    }
  }
  return tokens;
}

// One operand of a reduction: its number, whether it is an undefined variable, and the operator
// behind it.
struct Operand {
  double value = 0;
  bool undefined = false;
  char op = 0;
};

// Applies an operator to the running value; a result that is no finite number leaves the running
// value as it was, the way a failed statement is passed over.
double apply(char op, double left, double right, int32_t& faults) {
  double result = left;
  switch (op) {
  case '=':
    result = right;
    break;
  case '+':
    result = left + right;
    break;
  case '-':
    result = left - right;
    break;
  case 'x':
    result = left * right;
    break;
  case '/':
    if (right == 0) {
      ++faults;
      return left;
    }
    result = left / right;
    break;
  default:
    return left;
  }
  if (std::isfinite(result))
    return result;
  ++faults;
  return left;
}

// Reduces one range: "x" and "/" first, left to right, each pair replaced by its result carrying
// the right operand's operator; then "=", "+" and "-" left to right from 0. headOp is the operator
// that stands on the token opening the range.
double reduce(std::vector<Operand>& operands, char headOp, int32_t& faults) {
  size_t kept = 0;
  for (size_t i = 0; i < operands.size(); ++i) {
    Operand right = operands[i];
    if (kept > 0 && (operands[kept - 1].op == 'x' || operands[kept - 1].op == '/')) {
      const Operand& left = operands[kept - 1];
      const double l = left.undefined ? 1.0 : left.value;
      const double r = right.undefined ? 1.0 : right.value;
      const double result = left.op == 'x' ? l * r : (r == 0 ? NAN : l / r);
      // Division by zero, or an overflow, leaves the right operand's own number.
      if (std::isfinite(result))
        right = {roundTo15Digits(result), false, right.op};
      else
        ++faults;
      operands[kept - 1] = right;
    } else {
      operands[kept++] = right;
    }
  }
  operands.resize(kept);
  double value = 0;
  char op = headOp ? headOp : '=';
  for (const Operand& operand : operands) {
    value = apply(op, value, operand.undefined ? 0.0 : operand.value, faults);
    op = operand.op;
  }
  return value;
}

// A number written in a field or an assignment; one that is no plain decimal ("nan", "1e999")
// reads as the lenient reader takes it and is counted.
double literalValue(const std::string& text, const MacroVariables& variables) {
  const double value = ToNumber(text);
  if (!text.empty() && !isPlainDecimal(text)) {
    MacroFaults& faults = variables.Faults;
    if (faults.BadNumbers++ == 0) {
      faults.FirstBadNumber = text;
      faults.FirstBadValue = value;
    }
  }
  return value;
}

struct Range {
  char headOp = '=';
  int depth = 0;
  std::vector<Operand> operands;
};

}  // namespace

MacroFaults& MacroFaults::operator+=(const MacroFaults& o) {
  Arithmetic += o.Arithmetic;
  if (BadNumbers == 0) {
    FirstBadNumber = o.FirstBadNumber;
    FirstBadValue = o.FirstBadValue;
  }
  BadNumbers += o.BadNumbers;
  return *this;
}

MacroVariables::MacroVariables(std::string_view modifiers) {
  const ParsedList fields = SplitAt(modifiers, "X");
  for (int i = 1; i <= fields.count(); ++i)
    values_.push_back(fields.value(i));
}

bool MacroVariables::undefined(double number) const {
  return !(number <= static_cast<double>(count()));
}

double MacroVariables::value(double number) const {
  if (std::isnan(number) || number < 0.5 || undefined(number))
    return 0.0;
  const int32_t n = toInt32(number);
  return n >= 1 && n <= count() ? values_[size_t(n)] : 0.0;
}

void MacroVariables::set(int32_t n, double value) {
  if (n < 1 || n > HighestVariable)
    return;
  if (n > count())
    values_.resize(size_t(n) + 1, 0.0);
  values_[size_t(n)] = value;
}

double evaluateMacroField(std::string_view field, const MacroVariables& variables) {
  const std::vector<Token> tokens = tokenise(field, true);
  // Each parenthesis opens a range that its partner closes; the innermost is reduced first and its
  // result stands in the enclosing range with the operator behind the closing parenthesis.
  // Parentheses that pair with nothing count as 0.
  std::vector<Range> ranges;
  ranges.push_back({tokens.front().op, 0, {}});
  for (size_t i = 1; i < tokens.size(); ++i) {
    const Token& token = tokens[i];
    switch (token.kind) {
    case TokenKind::Open:
      if (token.depth >= 1) {
        ranges.push_back({token.op, token.depth, {}});
        continue;
      }
      break;
    case TokenKind::Close:
      if (token.depth >= 1 && ranges.size() > 1 && ranges.back().depth == token.depth) {
        const double result = roundTo15Digits(
            reduce(ranges.back().operands, ranges.back().headOp, variables.Faults.Arithmetic));
        ranges.pop_back();
        ranges.back().operands.push_back({result, false, token.op});
        continue;
      }
      break;
    case TokenKind::Variable: {
      const double number = ToNumber(token.text);
      ranges.back().operands.push_back(
          {variables.value(number), variables.undefined(number), token.op});
      continue;
    }
    case TokenKind::Plain:
      ranges.back().operands.push_back({literalValue(token.text, variables), false, token.op});
      continue;
    }
    ranges.back().operands.push_back({0.0, false, token.op});
  }
  // A range left open runs to the end of the field.
  while (ranges.size() > 1) {
    const double result = roundTo15Digits(
        reduce(ranges.back().operands, ranges.back().headOp, variables.Faults.Arithmetic));
    ranges.pop_back();
    ranges.back().operands.push_back({result, false, 0});
  }
  return reduce(ranges.front().operands, ranges.front().headOp, variables.Faults.Arithmetic);
}

bool runMacroAssignment(std::string_view line, MacroVariables& variables) {
  const std::vector<Token> tokens = tokenise(line, false);
  if (tokens.size() < 2 || tokens.front().kind != TokenKind::Variable)
    return false;
  const double target = ToNumber(tokens.front().text);
  if (!(target >= 1 && target < HighestVariable + 1))
    return false;
  double value = 0;
  for (size_t i = 1; i < tokens.size(); ++i) {
    const Token& token = tokens[i];
    const double operand = token.kind == TokenKind::Variable ? variables.value(ToNumber(token.text))
                                                             : literalValue(token.text, variables);
    value = apply(tokens[i - 1].op, value, operand, variables.Faults.Arithmetic);
  }
  variables.set(toInt32(target), value);
  return true;
}

int32_t primitiveCodeOf(std::string_view line) {
  const ParsedList fields = ParseList(line);
  return fields.count() >= 2 ? truncToInt32(fields.value(1)) : 0;
}

int32_t MacroStore::find(std::string_view name) const {
  for (size_t i = 0; i < MacroList.size(); ++i)
    if (MacroList[i].Name == name)
      return static_cast<int32_t>(i);
  return -1;
}

void MacroStore::define(const std::string& name, std::span<const std::string> lines) {
  const auto first = static_cast<int32_t>(MacroLineList.size());
  int32_t count = 0;
  for (const std::string& line : lines) {
    if (size_t(count) >= MostLinesPerMacro || MacroLineList.size() >= MostLines)
      break;
    if (!line.empty() && line.front() == '0')
      continue;  // a comment line
    MacroLineList.push_back({name, primitiveCodeOf(line), line});
    ++count;
  }
  if (count > 0)
    MacroList.push_back({name, first, count});
}

std::vector<PrimitiveRow> evaluateMacroLines(const MacroStore& macros, int32_t macroIndex,
                                             std::string_view modifiers, int32_t dCode,
                                             MacroFaults* faults) {
  std::vector<PrimitiveRow> rows;
  if (macroIndex < 0 || macroIndex >= static_cast<int32_t>(macros.MacroList.size()))
    return rows;
  const MacroDefinition& macro = macros.MacroList[size_t(macroIndex)];
  MacroVariables variables(modifiers);
  // The macro's own lines: a later macro of the same name does not run on into this one.
  const size_t first = size_t(std::max(macro.FirstLine, 0));
  const size_t end =
      std::min(macros.MacroLineList.size(), first + size_t(std::max(macro.LineCount, 0)));
  for (size_t n = first; n < end && macros.MacroLineList[n].Name == macro.Name; ++n) {
    const MacroLine& line = macros.MacroLineList[n];
    if (line.Primitive == 0) {
      runMacroAssignment(line.Text, variables);
      continue;
    }
    std::string lower = line.Text;
    for (char& c : lower)
      if (c >= 'A' && c <= 'Z')
        c = static_cast<char>(c - 'A' + 'a');
    const ParsedList fields = ParseList(lower);
    const int32_t code = truncToInt32(fields.value(1));
    const size_t firstRow = rows.size();
    for (int i = 2; i <= fields.count(); ++i) {
      PrimitiveRow row;
      row.Kind = primitive::Macro;
      row.DCode = dCode;
      row.Number = i == 2 ? code : 0;
      row.Value = evaluateMacroField(fields.token(i), variables);
      rows.push_back(std::move(row));
    }
    if (rows.size() > firstRow)
      rows.back().Number = -static_cast<int32_t>(rows.size() - firstRow);
  }
  if (faults)
    *faults += variables.Faults;
  return rows;
}

namespace {

enum class Conversion : char { Raw = 'r', Length = 'l', Angle = 'a' };

// The conversion of each row of a primitive, by its code; empty for an unknown code. The outline's
// points depend on its count and are filled in by the caller.
std::string_view conversionsOf(int32_t code) {
  switch (code) {
  case 1:
    return "rlll";
  case 2:
  case 20:
    return "rllllla";
  case 5:
    return "rrllla";
  case 6:
    return "lllllrlla";
  case 7:
    return "llllla";
  case 21:
  case 22:
    return "rlllla";
  default:
    return {};
  }
}

double convert(char conversion, double value, const LengthScale& scale) {
  switch (Conversion(conversion)) {
  case Conversion::Length:
    return scale.length(value);
  case Conversion::Angle:
    return wholeNumber(value * 1000);
  default:
    return value;
  }
}

}  // namespace

int32_t convertMacroRows(const std::vector<PrimitiveRow>& rows, const LengthScale& scale,
                         std::vector<PrimitiveRow>& primitives) {
  constexpr double MostOutlinePoints = 1e7;
  const size_t before = primitives.size();
  const size_t n = rows.size();
  size_t r = 0;
  std::string outline;
  while (r < n) {
    const int32_t code = rows[r].Number;
    std::string_view conversions = conversionsOf(code);
    if (code == 4 && r + 1 < n) {
      const double points = rows[r + 1].Value;
      if (points >= 0 && points <= MostOutlinePoints && points == std::trunc(points) &&
          r + 5 + 2 * size_t(points) <= n) {
        outline.assign("rr");
        outline.append(size_t(2 * (points + 1)), 'l');
        outline.push_back('a');
        conversions = outline;
      }
    }
    const size_t count = conversions.size();
    const bool fits =
        count > 0 && r + count <= n && rows[r + count - 1].Number == -static_cast<int32_t>(count);
    if (fits) {
      for (size_t k = 0; k < count; ++k) {
        PrimitiveRow row = rows[r + k];
        row.Value = convert(conversions[k], row.Value, scale);
        primitives.push_back(std::move(row));
      }
      r += count;
      continue;
    }
    if (code == 4) {
      // An outline whose count does not match its points stays in file units, as it stands, up to
      // the row that closes its line.
      size_t end = r + 1;
      while (end < n && rows[end].Number >= 0)
        ++end;
      end = std::min(end, n - 1);
      for (size_t k = r; k <= end; ++k)
        primitives.push_back(rows[k]);
      r = end + 1;
      continue;
    }
    ++r;  // a broken primitive is passed over row by row
  }
  return static_cast<int32_t>(primitives.size() - before);
}

bool ExpandMacro(const MacroStore& macros, int32_t macroIndex, std::string_view modifiers,
                 int32_t dCode, const LengthScale& scale, std::vector<PrimitiveRow>& primitives,
                 MacroFaults* faults) {
  const std::vector<PrimitiveRow> rows =
      evaluateMacroLines(macros, macroIndex, modifiers, dCode, faults);
  return convertMacroRows(rows, scale, primitives) > 0;
}

}  // namespace tvx
