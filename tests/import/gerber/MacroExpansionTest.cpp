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

TEST(MacroArithmetic, FieldsBindTimesTighterAssignmentsGoLeftToRight) {
  struct Case {
    const char* expression;
    const char* modifiers;
    double field;       // in a primitive field
    double assignment;  // in an assignment line
  };
  const Case cases[] = {
      {"$1x2+1", "3", 7, 7},
      {"1+2x3", "", 7, 9},
      {"($1+1)x2", "3", 8, 8},  // in an assignment the parentheses join the number's text
      {"10-2-3", "", 5, 5},
      {"8/2/2", "", 2, 2},
      {"2x3/4", "", 1.5, 1.5},
      {"1+6/2x3", "", 10, 10.5},
      {"-$1", "3", -3, -3},
      {"$1/0", "3", 0, 3},  // a division by zero: the right operand in a field, no step in a line
      {"3x-2", "", 1, 1},   // an operator behind an operator takes its place
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.expression);
    const MacroVariables variables(c.modifiers);
    EXPECT_DOUBLE_EQ(evaluateMacroField(c.expression, variables), c.field);
    if (std::string_view(c.expression).find('(') == std::string_view::npos) {
      EXPECT_DOUBLE_EQ(assigned(c.expression, c.modifiers), c.assignment);
    }
  }
}

TEST(MacroArithmetic, ParenthesesInnermostFirstAndANumberRightBehindOne) {
  const MacroVariables variables("0.25X2");
  EXPECT_DOUBLE_EQ(evaluateMacroField("(0.5+$1)", variables), 0.75);
  EXPECT_DOUBLE_EQ(evaluateMacroField("(0.5+$1)x$2", variables), 1.5);
  EXPECT_DOUBLE_EQ(evaluateMacroField("2x((1+$2)x(3-1))", variables), 12);
  EXPECT_DOUBLE_EQ(evaluateMacroField("(10)-(4)", variables), 6);
  EXPECT_DOUBLE_EQ(evaluateMacroField("((2))", variables), 2);
  EXPECT_DOUBLE_EQ(evaluateMacroField("(-1)x3", variables), -3);
  EXPECT_DOUBLE_EQ(evaluateMacroField("1+(2", variables), 3) << "an open range runs to the end";
  EXPECT_DOUBLE_EQ(evaluateMacroField("1)+2", variables), 3) << "a lone ) counts 0";
  EXPECT_DOUBLE_EQ(evaluateMacroField(" 1 . 5 ", variables), 1.5) << "blanks are passed over";
}

TEST(MacroArithmetic, UndefinedVariablesReadZeroOrOne) {
  const MacroVariables three("1X2X3");
  EXPECT_EQ(three.count(), 3);
  EXPECT_DOUBLE_EQ(evaluateMacroField("$9", three), 0);
  EXPECT_DOUBLE_EQ(evaluateMacroField("2x$9", three), 2);
  EXPECT_DOUBLE_EQ(evaluateMacroField("$9x2", three), 2);
  EXPECT_DOUBLE_EQ(evaluateMacroField("$9+2", three), 2);
  EXPECT_DOUBLE_EQ(evaluateMacroField("$3", three), 3);
  EXPECT_DOUBLE_EQ(assigned("$9+5", "1X2X3"), 5);
  EXPECT_DOUBLE_EQ(assigned("2x$9", "1X2X3"), 0) << "an assignment reads every undefined one as 0";
  const MacroVariables none("");
  EXPECT_EQ(none.count(), 0);
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
MacroStore macro(const std::vector<std::string>& lines, const std::string& name = "M") {
  MacroStore store;
  store.define(name, lines);
  return store;
}

const LengthScale Millimetres{1, 100000};
const LengthScale Inches{0, 100000};

TEST(MacroExpansion, PrimitiveLinesBecomeRowsWithCodeAndCount) {
  const MacroStore store = macro({"1,1,$1,0,0", "$2=$1x2", "21,1,$2,1,0,0,45"});
  const auto rows = evaluateMacroLines(store, 0, "0.5", 12);
  ASSERT_EQ(rows.size(), 10u);
  std::vector<int32_t> numbers;
  for (const PrimitiveRow& row : rows) {
    EXPECT_EQ(row.Kind, primitive::Macro);
    EXPECT_EQ(row.DCode, 12);
    numbers.push_back(row.Number);
  }
  EXPECT_THAT(numbers, ElementsAre(1, 0, 0, -4, 21, 0, 0, 0, 0, -6));
  EXPECT_DOUBLE_EQ(rows[1].Value, 0.5);
  EXPECT_DOUBLE_EQ(rows[5].Value, 1.0);

  std::vector<PrimitiveRow> primitives;
  ASSERT_TRUE(ExpandMacro(store, 0, "0.5", 12, Millimetres, primitives));
  ASSERT_EQ(primitives.size(), 10u);
  EXPECT_EQ(primitives[0].Value, 1) << "exposure stays raw";
  EXPECT_EQ(primitives[1].Value, 50000) << "diameter in store units";
  EXPECT_EQ(primitives[5].Value, 100000);
  EXPECT_EQ(primitives[9].Value, 45000) << "rotation in thousandths of a degree";
}

TEST(MacroExpansion, CircleWithoutModifiersHasDiameterZero) {
  const MacroStore store = macro({"1,1,$1,0,0"});
  std::vector<PrimitiveRow> primitives;
  ASSERT_TRUE(ExpandMacro(store, 0, "", 10, Inches, primitives));
  ASSERT_EQ(primitives.size(), 4u);
  EXPECT_EQ(primitives[1].Value, 0);
}

TEST(MacroExpansion, EachPrimitiveIsCheckedAndConvertedByItsRowCount) {
  struct Case {
    const char* line;
    std::vector<double> converted;  // empty: the line is dropped
  };
  const Case cases[] = {
      {"1,1,1,2,3", {1, 100000, 200000, 300000}},
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
  for (const Case& c : cases) {
    SCOPED_TRACE(c.line);
    const MacroStore store = macro({c.line});
    std::vector<PrimitiveRow> primitives;
    EXPECT_EQ(ExpandMacro(store, 0, "", 10, Millimetres, primitives), !c.converted.empty());
    std::vector<double> values;
    for (const PrimitiveRow& row : primitives)
      values.push_back(row.Value);
    EXPECT_EQ(values, c.converted);
  }
}

TEST(MacroExpansion, BrokenLinesAreSkippedRowByRowBesideGoodOnes) {
  const MacroStore store = macro({"1,1,1,2", "1,1,1,0,0", "5,1,6"});
  std::vector<PrimitiveRow> primitives;
  ASSERT_TRUE(ExpandMacro(store, 0, "", 10, Millimetres, primitives));
  ASSERT_EQ(primitives.size(), 4u);
  EXPECT_EQ(primitives[0].Number, 1);
  EXPECT_EQ(primitives[3].Number, -4);
  EXPECT_EQ(primitives[1].Value, 100000);
}

TEST(MacroExpansion, OutlineWithAWrongCountStaysInFileUnits) {
  // Three points claimed, two given: the line is copied as it stands.
  const MacroStore store = macro({"4,1,3,0,0,1,0,0,1,0", "1,1,1,0,0"});
  std::vector<PrimitiveRow> primitives;
  ASSERT_TRUE(ExpandMacro(store, 0, "", 10, Millimetres, primitives));
  ASSERT_EQ(primitives.size(), 9u + 4u);
  EXPECT_EQ(primitives[4].Value, 1) << "unconverted";
  EXPECT_EQ(primitives[8].Number, -9);
  EXPECT_EQ(primitives[9].Number, 1);
  EXPECT_EQ(primitives[10].Value, 100000) << "the circle behind it is converted";
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
  const MacroStore annulus = macro({"1,1,2,0,0", "1,0,1.8+1X0+0.1,0,0"});
  std::vector<PrimitiveRow> primitives;
  ASSERT_TRUE(ExpandMacro(annulus, 0, "", 10, Millimetres, primitives));
  ASSERT_EQ(primitives.size(), 8u);
  EXPECT_EQ(primitives[5].Value, 190000);
  // An octagon whose size comes from the modifier, and a negative product.
  const MacroStore octagon = macro({"5,1,8,0,0,1.08239X$1,22.5", "1,1,0-$1x2,0,0"});
  primitives.clear();
  ASSERT_TRUE(ExpandMacro(octagon, 0, "0.0610", 10, Inches, primitives));
  ASSERT_EQ(primitives.size(), 10u);
  EXPECT_EQ(primitives[4].Value, wholeNumber(1.08239 * 0.061 * 2540000));
  EXPECT_EQ(primitives[5].Value, 22500);
  EXPECT_EQ(primitives[7].Value, wholeNumber(-0.122 * 2540000));
}

}  // namespace
}  // namespace tvx

namespace tvx {
namespace {

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
