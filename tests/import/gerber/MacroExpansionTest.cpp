// Aperture macro arithmetic: fields with precedence and parentheses, assignment lines strictly
// left to right, undefined variables, and the check and conversion of each primitive.
#include "import/gerber/MacroExpansion.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tvx {
namespace {

using ::testing::ElementsAre;

// The value that an assignment line "$4=<expression>" leaves in $4.
double assigned(const std::string& expression, std::string_view modifiers = "") {
  MacroVariables variables(modifiers);
  EXPECT_TRUE(runMacroAssignment("$4=" + expression, variables));
  return variables.value(4);
}

// Each expression in a primitive field and, where it has no parentheses, in an assignment line.
TEST(MacroArithmetic, FieldsBindTimesTighterAssignmentsGoLeftToRight) {
  constexpr double Skip = -99;  // the assignment line is not tried
  const struct {
    const char* expression;
    const char* modifiers;
    double field;
    double assignment;
  } cases[] = {
      {"$1x2+1", "3", 7, 7},
      {"1+2x3", "", 7, 9},
      {"10-2-3", "", 5, 5},
      {"8/2/2", "", 2, 2},
      {"2x3/4", "", 1.5, 1.5},
      {"1+6/2x3", "", 10, 10.5},
      {"-$1", "3", -3, -3},
      {"$1/0", "3", 0, 3},  // a division by zero: the right operand in a field, no step in a line
      {"3x-2", "", 1, 1},   // an operator behind an operator takes its place
      // Parentheses innermost first; in a line they would join the number's text.
      {"($1+1)x2", "3", 8, Skip},
      {"(0.5+$1)", "0.25X2", 0.75, Skip},
      {"(0.5+$1)x$2", "0.25X2", 1.5, Skip},
      {"2x((1+$2)x(3-1))", "0.25X2", 12, Skip},
      {"(10)-(4)", "", 6, Skip},
      {"((2))", "", 2, Skip},
      {"(-1)x3", "", -3, Skip},
      {"1+(2", "", 3, Skip},  // an open range runs to the end
      {"1)+2", "", 3, Skip},  // a lone ) counts 0
      {" 1 . 5 ", "", 1.5, Skip},
      // An undefined variable reads 1 in a product and 0 elsewhere in a field, 0 in a line.
      {"$9", "1X2X3", 0, Skip},
      {"2x$9", "1X2X3", 2, 0},
      {"$9x2", "1X2X3", 2, Skip},
      {"$9+5", "1X2X3", 5, 5},
      {"$3", "1X2X3", 3, 3},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.expression);
    EXPECT_DOUBLE_EQ(evaluateMacroField(c.expression, MacroVariables(c.modifiers)), c.field);
    if (c.assignment != Skip) {
      EXPECT_DOUBLE_EQ(assigned(c.expression, c.modifiers), c.assignment);
    }
  }
  EXPECT_EQ(MacroVariables("1X2X3").count(), 3);
  EXPECT_EQ(MacroVariables("").count(), 0);
}

TEST(MacroArithmetic, AssignmentLinesGrowTheVariables) {
  MacroVariables variables("1X2");
  EXPECT_TRUE(runMacroAssignment("$3=$1+$2", variables));
  EXPECT_DOUBLE_EQ(variables.value(3), 3);
  EXPECT_TRUE(runMacroAssignment("$7=$3x2", variables));
  EXPECT_EQ(variables.count(), 7);
  EXPECT_DOUBLE_EQ(variables.value(5), 0);
  EXPECT_DOUBLE_EQ(variables.value(7), 6);
  EXPECT_TRUE(runMacroAssignment("$1 = $1 - 0.5", variables));
  EXPECT_DOUBLE_EQ(variables.value(1), 0.5);
  // Taken as it stands: an upper-case X is part of the variable's text, not a product.
  EXPECT_TRUE(runMacroAssignment("$2=$7X0", variables));
  EXPECT_DOUBLE_EQ(variables.value(2), 6);
  for (const char* bad : {"$0=1", "$16000=1", "3=1", "$2", "=5"}) {
    SCOPED_TRACE(bad);
    MacroVariables before("1X2");
    EXPECT_FALSE(runMacroAssignment(bad, before));
    EXPECT_EQ(before.count(), 2);
    EXPECT_DOUBLE_EQ(before.value(2), 2);
  }
  MacroVariables high;
  EXPECT_TRUE(runMacroAssignment("$15999=4", high));
  EXPECT_EQ(high.count(), 15999);
}

// A store with one macro of the given lines.
MacroStore macro(const std::vector<std::string>& lines) {
  MacroStore store;
  store.define("M", lines);
  return store;
}

const LengthScale Millimetres{1, 100000};
const LengthScale Inches{0, 100000};

// The rows that macro "M" of lines gives D10, in store units; expansion succeeds exactly when
// there are rows.
std::vector<PrimitiveRow> expand(const std::vector<std::string>& lines,
                                 std::string_view modifiers = "",
                                 const LengthScale& scale = Millimetres) {
  std::vector<PrimitiveRow> rows;
  const bool expanded = ExpandMacro(macro(lines), 0, modifiers, 10, scale, rows);
  EXPECT_EQ(expanded, !rows.empty());
  return rows;
}

std::vector<double> valuesOf(const std::vector<PrimitiveRow>& rows) {
  std::vector<double> values;
  for (const PrimitiveRow& row : rows)
    values.push_back(row.Value);
  return values;
}

TEST(MacroExpansion, PrimitiveLinesBecomeRowsWithCodeAndCount) {
  const std::vector<std::string> lines = {"1,1,$1,0,0", "$2=$1x2", "21,1,$2,1,0,0,45"};
  const auto rows = evaluateMacroLines(macro(lines), 0, "0.5", 12);
  ASSERT_EQ(rows.size(), 10u);
  std::vector<int32_t> numbers;
  for (const PrimitiveRow& row : rows) {
    EXPECT_EQ(row.Kind, primitive::Macro);
    EXPECT_EQ(row.DCode, 12);
    numbers.push_back(row.Number);
  }
  EXPECT_THAT(numbers, ElementsAre(1, 0, 0, -4, 21, 0, 0, 0, 0, -6));
  EXPECT_THAT(valuesOf(rows), ElementsAre(1, 0.5, 0, 0, 1, 1.0, 1, 0, 0, 45));
  // Exposure stays raw, lengths in store units, the rotation in thousandths of a degree.
  EXPECT_THAT(valuesOf(expand(lines, "0.5")),
              ElementsAre(1, 50000, 0, 0, 1, 100000, 100000, 0, 0, 45000));
}

// Each primitive line by itself, without modifiers, in millimetres; no values: dropped.
TEST(MacroExpansion, EachPrimitiveIsCheckedAndConvertedByItsRowCount) {
  const std::pair<const char*, std::vector<double>> cases[] = {
      {"1,1,1,2,3", {1, 100000, 200000, 300000}},
      {"1,1,$1,0,0", {1, 0, 0, 0}},  // no modifiers: diameter 0
      {"2,1,0.1,0,0,1,1,30", {1, 10000, 0, 0, 100000, 100000, 30000}},
      {"20,0,0.1,0,0,1,1,0", {0, 10000, 0, 0, 100000, 100000, 0}},
      {"5,1,6,0,0,2,15", {1, 6, 0, 0, 200000, 15000}},
      {"6,0,0,2,0.1,0.1,3,0.05,2.5,0", {0, 0, 200000, 10000, 10000, 3, 5000, 250000, 0}},
      {"7,0,0,2,1.5,0.2,45", {0, 0, 200000, 150000, 20000, 45000}},
      {"21,1,2,1,0,0,90", {1, 200000, 100000, 0, 0, 90000}},
      {"22,1,2,1,0,0,0", {1, 200000, 100000, 0, 0, 0}},
      {"4,1,2,0,0,1,0,0,1,0", {1, 2, 0, 0, 100000, 0, 0, 100000, 0}},
      {"1,1,1,2", {}},      // a field short
      {"1,1,1,2,3,4", {}},  // one too many
      {"3,1,1,1", {}},      // no such primitive
      {"7,0,0,2,1.5,0.2", {}},
  };
  for (const auto& [line, converted] : cases) {
    SCOPED_TRACE(line);
    EXPECT_EQ(valuesOf(expand({line})), converted);
  }
}

TEST(MacroExpansion, BadLinesBesideGoodOnes) {
  // A broken line is skipped; the good one keeps its code and count.
  auto rows = expand({"1,1,1,2", "1,1,1,0,0", "5,1,6"});
  ASSERT_EQ(rows.size(), 4u);
  EXPECT_EQ(rows[0].Number, 1);
  EXPECT_EQ(rows[3].Number, -4);
  EXPECT_EQ(rows[1].Value, 100000);
  // An outline that claims three points and gives two is copied as it stands, in file units.
  rows = expand({"4,1,3,0,0,1,0,0,1,0", "1,1,1,0,0"});
  ASSERT_EQ(rows.size(), 9u + 4u);
  EXPECT_EQ(rows[4].Value, 1) << "unconverted";
  EXPECT_EQ(rows[8].Number, -9);
  EXPECT_EQ(rows[9].Number, 1);
  EXPECT_EQ(rows[10].Value, 100000) << "the circle behind it is converted";
}

TEST(MacroExpansion, MacroStoreKeepsLinesAndSkipsComments) {
  using Lines = std::vector<std::string>;
  MacroStore store;
  store.define("EMPTY", Lines{});
  store.define("COMMENTS", Lines{"0 only a comment", "0"});
  EXPECT_TRUE(store.MacroList.empty()) << "a macro without lines is no macro";
  store.define("THERMAL", Lines{"0 thermal", "7,0,0,$1,$2,$3,45", "$4=$1/2"});
  ASSERT_EQ(store.MacroList.size(), 1u);
  EXPECT_EQ(store.MacroList[0].LineCount, 2);
  EXPECT_EQ(store.MacroLineList[0].Primitive, 7);
  EXPECT_EQ(store.MacroLineList[1].Primitive, 0);
  EXPECT_EQ(store.find("THERMAL"), 0);
  EXPECT_EQ(store.find("thermal"), -1);
  EXPECT_EQ(primitiveCodeOf("21.9,1"), 21);
  EXPECT_EQ(primitiveCodeOf("$1=5"), 0);
}

TEST(MacroExpansion, ExpressionsOfRealFilesEvaluate) {
  // The precedence case of a known test file: an annulus of 2 outer and 1.9 inner diameter.
  const auto annulus = expand({"1,1,2,0,0", "1,0,1.8+1X0+0.1,0,0"});
  ASSERT_EQ(annulus.size(), 8u);
  EXPECT_EQ(annulus[5].Value, 190000);
  // An octagon whose size comes from the modifier, and a negative product.
  const auto octagon = expand({"5,1,8,0,0,1.08239X$1,22.5", "1,1,0-$1x2,0,0"}, "0.0610", Inches);
  ASSERT_EQ(octagon.size(), 10u);
  EXPECT_EQ(octagon[4].Value, wholeNumber(1.08239 * 0.061 * 2540000));
  EXPECT_EQ(octagon[5].Value, 22500);
  EXPECT_EQ(octagon[7].Value, wholeNumber(-0.122 * 2540000));
}

TEST(MacroExpansion, AMacroKeepsAtMostItsShareOfLines) {
  std::vector<std::string> lines(MacroStore::MostLinesPerMacro + 5, "1,1,1,0,0");
  MacroStore store;
  store.define("LONG", lines);
  ASSERT_EQ(store.MacroList.size(), 1u);
  EXPECT_EQ(size_t(store.MacroList[0].LineCount), MacroStore::MostLinesPerMacro);
  EXPECT_EQ(store.MacroLineList.size(), MacroStore::MostLinesPerMacro);
}

TEST(MacroExpansion, AMacroRunsOnlyItsOwnLines) {
  using Lines = std::vector<std::string>;
  MacroStore store;
  store.define("TWICE", Lines{"1,1,1,0,0"});
  store.define("TWICE", Lines{"1,1,2,0,0"});
  ASSERT_EQ(store.find("TWICE"), 0) << "the first definition is found";
  std::vector<PrimitiveRow> primitives;
  ASSERT_TRUE(ExpandMacro(store, 0, "", 10, Millimetres, primitives));
  EXPECT_EQ(primitives.size(), 4u);
}

}  // namespace
}  // namespace tvx
