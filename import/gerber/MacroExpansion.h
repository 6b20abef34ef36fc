// Aperture macros: their stored lines, and the arithmetic that turns a macro and the modifiers of
// one AD block into numeric primitive rows in store units and thousandths of a degree.
#pragma once

#include "import/gerber/ApertureLists.h"
#include "import/gerber/GerberFormat.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tvx {

// One macro of MacroList: FirstLine is the position (from 0) of its first line in MacroLineList.
struct MacroDefinition {
  std::string Name;
  int32_t FirstLine = 0;
  int32_t LineCount = 0;
};

// One stored line. Primitive is the line's primitive code, 0 for a line that is no primitive
// (a variable assignment such as "$3=$1+$2").
struct MacroLine {
  std::string Name;
  int32_t Primitive = 0;
  std::string Text;
};

// The macros of one pass, in order of definition.
struct MacroStore {
  std::vector<MacroDefinition> MacroList;
  std::vector<MacroLine> MacroLineList;

  void clear() {
    MacroList.clear();
    MacroLineList.clear();
  }
  // The macro of that exact name defined first, or -1.
  int32_t find(std::string_view name) const;
  // Lines kept of one macro, and of all macros of a pass; further lines are dropped. Real macros
  // have a few dozen lines; the limits only keep a malformed file from growing without end.
  static constexpr size_t MostLinesPerMacro = 4096;
  static constexpr size_t MostLines = 1000000;

  // Stores the lines of one AM block (comment lines dropped); a macro without lines is not added.
  void define(const std::string& name, std::span<const std::string> lines);
};

// The primitive code that a stored line stands for: the whole part of the first of its comma
// fields when it has two or more, else 0.
int32_t primitiveCodeOf(std::string_view line);

// What a macro's arithmetic could not take, counted over its evaluations.
struct MacroFaults {
  // Steps that gave no finite number (a division by zero, an overflow), passed over.
  int32_t Arithmetic = 0;
  // Values written as no plain decimal ("nan", "1e999", "1e5"), read as the lenient number
  // reader takes them; the first of them and what it was read as.
  int32_t BadNumbers = 0;
  std::string FirstBadNumber;
  double FirstBadValue = 0;

  MacroFaults& operator+=(const MacroFaults& o);
};

// The macro's variables: $1 to $N, numbered from 1 (index 0 is not used).
class MacroVariables {
public:
  // $1 to $N from the AD modifiers, cut at "X"; an empty text gives none.
  explicit MacroVariables(std::string_view modifiers);
  MacroVariables() = default;

  int32_t count() const { return static_cast<int32_t>(values_.size()) - 1; }
  // True when number is above the highest variable: such a variable is undefined.
  bool undefined(double number) const;
  // The variable's value; 0 for an undefined one or a number below 1.
  double value(double number) const;
  // Sets $n, growing the list with zeros; n from 1 to 15999.
  void set(int32_t n, double value);

  // What the evaluations that use these variables could not take.
  mutable MacroFaults Faults;

private:
  std::vector<double> values_{0.0};
};

// The value of one primitive field ("$1x2+1", "(0.5+$1)x2"), lower case: "x" and "/" bind tighter
// than "+" and "-", equal operators go left to right, parentheses innermost first. An undefined
// variable counts 1.0 beside "x" and "/", and 0 elsewhere.
double evaluateMacroField(std::string_view field, const MacroVariables& variables);

// Runs one assignment line ("$3=$1/2+0.01") strictly left to right, with no precedence. A line
// that does not start with a variable of number 1 to 15999 and an expression is dropped; false
// then.
bool runMacroAssignment(std::string_view line, MacroVariables& variables);

// Expands the macro of MacroList row macroIndex with the AD block's modifiers into rows of Kind 10
// appended to primitives. Lengths are converted with scale. True when at least one row was added.
// faults, when given, grows by what the arithmetic could not take.
bool ExpandMacro(const MacroStore& macros, int32_t macroIndex, std::string_view modifiers,
                 int32_t dCode, const LengthScale& scale, std::vector<PrimitiveRow>& primitives,
                 MacroFaults* faults = nullptr);

// The evaluated rows of a macro before they are checked and converted: Kind 10, one per field of
// each primitive line. Exposed for tests of the arithmetic.
std::vector<PrimitiveRow> evaluateMacroLines(const MacroStore& macros, int32_t macroIndex,
                                             std::string_view modifiers, int32_t dCode,
                                             MacroFaults* faults = nullptr);

// Checks every primitive of the rows by its row count and converts its lengths and angles; rows of
// broken primitives are left out. Appends to primitives and returns the number of rows added.
int32_t convertMacroRows(const std::vector<PrimitiveRow>& rows, const LengthScale& scale,
                         std::vector<PrimitiveRow>& primitives);

}  // namespace tvx
