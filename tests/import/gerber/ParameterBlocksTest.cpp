// RS-274-X parameter blocks: format statements, standard apertures and their special rows, macros
// at their AD, step and repeat, polarities and everything that has no effect; and aperture macro
// arithmetic with the check and conversion of each primitive.
#include "import/gerber/ParameterBlocks.h"
#include "GerberPassSupport.h"
#include "import/gerber/MacroExpansion.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tvx {
namespace {

using test::findRow;
using ::testing::ElementsAre;

struct Blocks {
  GerberFormat format;
  ApertureLists lists;
  ParameterInterpreter interpreter{format, lists, 100000};

  int32_t block(std::vector<std::string> items) {
    return interpreter.InterpretParameterBlock(items);
  }
};

std::vector<double> valuesOf(const std::vector<PrimitiveRow>& rows) {
  std::vector<double> values;
  for (const PrimitiveRow& row : rows)
    values.push_back(row.Value);
  return values;
}

// A round aperture draws and flashes, a square one only flashes, an oval of equal sides is a
// circle; the other shapes and those with holes become special rows.
TEST(ParameterBlocks, StandardShapesByNameAndModifiers) {
  Blocks b;
  EXPECT_EQ(b.block({"ADD10C,0.01"}), 0);
  EXPECT_EQ(b.block({"ADD11R,0.02X0.02"}), 0);
  EXPECT_THAT(b.lists.RoundPadList, ElementsAre(ApertureUse{10, 25400, 0}));
  EXPECT_THAT(b.lists.SquarePadList, ElementsAre(ApertureUse{11, 50800, 0}));
  b.format.Unit = 1;
  b.block({"ADD12O,0.5X0.5"});
  EXPECT_THAT(b.lists.DrawList, ElementsAre(ApertureUse{10, 25400, 0}, ApertureUse{12, 50000, 0}));
  EXPECT_EQ(findRow(b.lists.RoundPadList, 12)->Size, 50000);
  EXPECT_TRUE(b.lists.SpecialList.empty());

  b.block({"ADD13O,0.5X0.3"});
  b.block({"ADD14C,1X0.2"});
  b.block({"ADD15R,1X2X0.5"});
  b.block({"ADD16P,2X6X22.5"});
  EXPECT_THAT(b.lists.SpecialList, ElementsAre(ApertureUse{13, 1, 0}, ApertureUse{14, 5, 0},
                                               ApertureUse{15, 8, 0}, ApertureUse{16, 12, 0}));
  EXPECT_THAT(valuesOf(b.lists.PrimitiveList),
              ElementsAre(50000, 30000, 0, 0,        // oval, no hole
                          100000, 20000, 0,          // circle with a round hole
                          100000, 200000, 50000, 0,  // rectangle with a round hole
                          200000, 6, 22500, 0, 0));  // hexagon turned 22.5 degrees
  std::vector<int32_t> kinds;
  for (const PrimitiveRow& row : b.lists.PrimitiveList) {
    kinds.push_back(row.Kind);
    EXPECT_EQ(row.Number, 0);
    EXPECT_TRUE(row.Text.empty());
  }
  EXPECT_THAT(kinds, ElementsAre(3, 3, 3, 3, 1, 1, 1, 2, 2, 2, 2, 4, 4, 4, 4, 4));
  EXPECT_EQ(b.lists.DefinedDCodes, (std::set<int32_t>{10, 11, 12, 13, 14, 15, 16}));
}

TEST(ParameterBlocks, AperturesWithoutWhatTheyNeedAreDropped) {
  for (const char* item :
       {"ADD12C", "ADD12R,1", "ADD12O,1", "ADD12P,1", "ADD12T,1X1", "ADD12", "AD"}) {
    SCOPED_TRACE(item);
    Blocks b;
    b.block({item});
    EXPECT_TRUE(b.lists.DrawList.empty() && b.lists.RoundPadList.empty() &&
                b.lists.SpecialList.empty() && b.lists.DefinedDCodes.empty());
  }
}

TEST(ParameterBlocks, FirstStandardApertureEmptiesTheTableListsOnce) {
  Blocks b;
  const std::vector<ApertureTableRow> table = {{1000, 10, 20, 30}};
  loadApertureTable(b.lists, table);
  ASSERT_EQ(b.lists.DrawList.size(), 1u);
  b.block({"ADD50C"});  // no modifiers: dropped before anything is emptied
  EXPECT_EQ(b.lists.DrawList.size(), 1u);
  b.block({"ADD51X,1"});  // an unknown shape with a modifier still counts as the first
  EXPECT_TRUE(b.lists.DrawList.empty() && b.lists.SquarePadList.empty() &&
              b.lists.DefinedDCodes.empty());
  b.block({"ADD52C,0.01"});
  b.interpreter.reset();  // a new pass clears once more
  b.block({"ADD53C,0.01"});
  EXPECT_THAT(b.lists.DrawList, ElementsAre(ApertureUse{53, 25400, 0}));
}

TEST(ParameterBlocks, UnitInForceAtTheDefinitionDecides) {
  Blocks b;
  b.block({"MOMM", "ADD10C,1.0"});
  b.block({"MOIN"});
  b.block({"ADD11C,1.0"});
  EXPECT_EQ(findRow(b.lists.DrawList, 10)->Size, 100000);
  EXPECT_EQ(findRow(b.lists.DrawList, 11)->Size, 2540000);
  b.block({"MOCM"});
  EXPECT_EQ(b.format.Unit, 0) << "an unknown unit changes nothing";
}

TEST(ParameterBlocks, FormatStatementVariants) {
  struct Case {
    const char* item;
    int32_t zeros;
    std::array<int32_t, 2> integer, decimal;
  };
  const Case cases[] = {
      {"FSLAX24Y24", 1, {2, 2}, {4, 4}},
      {"FSTAX23Y23", 0, {2, 2}, {3, 3}},
      {"FSLTAX25Y34", 0, {2, 3}, {5, 4}},  // both L and T: T
      {"FSDAX33Y33", 1, {3, 3}, {3, 3}},
      {"FSLAX2", 1, {2, 9}, {0, 9}},  // a missing digit reads 0; no Y leaves Y alone
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.item);
    Blocks b;
    b.format.OmittedZeros = 7;
    b.format.IntegerDigits = {9, 9};
    b.format.DecimalDigits = {9, 9};
    EXPECT_EQ(b.block({c.item}), 0);
    EXPECT_EQ(std::tie(b.format.OmittedZeros, b.format.IntegerDigits, b.format.DecimalDigits),
              std::tie(c.zeros, c.integer, c.decimal));
  }
}

TEST(ParameterBlocks, StepAndRepeatAndItsReset) {
  Blocks b;
  EXPECT_EQ(b.block({"SRX2Y3I1.0J2.0"}), WriteStepRepeat);
  EXPECT_EQ(b.interpreter.Step, (StepRepeat{2, 3, 2540000, 5080000}));
  EXPECT_EQ(b.block({"SRX4"}), WriteStepRepeat);
  EXPECT_EQ(b.interpreter.Step, (StepRepeat{4, 3, 2540000, 5080000})) << "absent letters stay";
  EXPECT_EQ(b.block({"SR"}), WriteStepRepeat);
  EXPECT_EQ(b.interpreter.Step, StepRepeat{});
  // A corrupt count is held to the most repeats per axis; the edge itself is kept.
  const auto counts = [&b] {
    return std::pair(b.interpreter.Step.StepX, b.interpreter.Step.StepY);
  };
  EXPECT_EQ(b.block({"SRX99999999Y3I1J1"}), WriteStepRepeat);
  EXPECT_EQ(counts(), std::pair(double(MostRepeatsPerAxis), 3.0));
  // So is the total: the rows of X repeats stay whole and Y gives way.
  b.block({"SRX100Y100"});
  EXPECT_EQ(counts(), std::pair(100.0, 100.0)) << "exactly the total";
  b.block({"SRX30Y1000"});
  EXPECT_EQ(counts(), std::pair(30.0, 333.0));
}

TEST(ParameterBlocks, ScaleOffsetAndPolarities) {
  Blocks b;
  EXPECT_EQ(b.block({"SFA2.0B0.5"}), 0);
  EXPECT_EQ(b.format.Scale, (std::array<double, 2>{2.0, 0.5}));
  EXPECT_EQ(b.block({"OFA1.0B-2.0"}), 0);
  const auto polarities = [&b] {
    return std::pair(b.interpreter.ImagePolarity, b.interpreter.LayerPolarity);
  };
  EXPECT_EQ(b.block({"IPNEG"}), WriteImagePolarity);
  EXPECT_EQ(b.block({"IPXYZ"}), WriteImagePolarity) << "a result even when nothing changes";
  EXPECT_EQ(b.block({"LPC"}), WriteLayerPolarity);
  EXPECT_EQ(polarities(), std::pair(1, 1));
  EXPECT_EQ(b.block({"LPD", "SRX2Y2", "MOMM"}), WriteStepRepeat) << "the last result stands";
  EXPECT_EQ(polarities(), std::pair(1, 0));
}

TEST(ParameterBlocks, NewerAndUnknownParametersHaveNoEffectButAttributesAreKept) {
  Blocks b;
  const GerberFormat before = b.format;
  EXPECT_EQ(b.block({"TF.FileFunction,Copper,L1,Top", "TA.AperFunction,SMDPad", "TO.C,R1", "TD"}),
            0);
  EXPECT_EQ(b.block({"LMXY", "LR45", "LS0.5", "ABD10", "INBOARD", "LNTOP", "ASAXBY", "IR90"}), 0);
  EXPECT_EQ(b.block({"MIA1B1", "ICAS", "X", ""}), 0);
  EXPECT_EQ(b.block({"TO.C,R1", "TF.Part,Single"}), 0);
  EXPECT_EQ(b.format, before);
  EXPECT_TRUE(b.lists.DrawList.empty());
  EXPECT_THAT(b.interpreter.FileAttributes,
              ElementsAre("TF.FileFunction,Copper,L1,Top", "TA.AperFunction,SMDPad", "TO.C,R1",
                          "TF.Part,Single"));
}

TEST(ParameterBlocks, MacrosAreEvaluatedAtTheirAperture) {
  Blocks b;
  b.block({"AMDONUT", "0 a ring", "$3=$1-$2", "1,1,$1,0,0", "1,0,$2,0,0"});
  b.block({"ADD20DONUT,0.5X0.25"});
  b.block({"ADD21DONUT,1.0X0.5"});  // the same macro again, with other modifiers
  EXPECT_THAT(b.lists.SpecialList, ElementsAre(ApertureUse{20, 1, 0}, ApertureUse{21, 9, 0}));
  const std::vector<PrimitiveRow>& rows = b.lists.PrimitiveList;
  ASSERT_EQ(rows.size(), 16u);
  EXPECT_EQ(std::tie(rows[0].Text, rows[8].Text), std::tuple("DONUT", "DONUT"));
  EXPECT_EQ(std::pair(rows[1].Value, rows[9].Value), std::pair(1270000.0, 2540000.0));
  EXPECT_TRUE(b.lists.DrawList.empty()) << "a macro aperture is no standard one";
  EXPECT_TRUE(b.lists.DefinedDCodes.count(21));
}

TEST(ParameterBlocks, MacroDefinedAfterItsApertureOrGivingNothingDropsTheAperture) {
  Blocks b;
  b.block({"ADD22LATE,0.5"});
  b.block({"AMLATE", "1,1,$1,0,0"});
  EXPECT_TRUE(b.lists.SpecialList.empty() && b.lists.DrawList.empty() &&
              b.lists.DefinedDCodes.empty());
  b.block({"ADD23LATE,0.5"});
  EXPECT_EQ(b.lists.SpecialList.size(), 1u);
  // A macro whose lines give nothing drops its aperture.
  b.block({"AMBROKEN", "1,1,2"});
  b.block({"ADD25BROKEN"});
  EXPECT_EQ(b.lists.SpecialList.size(), 1u);
}

TEST(ParameterBlocks, LetterValuesTakeDigitsSignsAndPoints) {
  const LetterValues v = letterValuesOf("X-1.5Y+2I3,5J A4B6*X9");
  EXPECT_EQ(std::vector<std::string>({v.X, v.Y, v.I, v.J, v.A, v.B}),
            (std::vector<std::string>{"-1.5", "+2", "35", "", "4", "6"}));
}

TEST(ParameterBlocks, ThroughTheBlockReader) {
  test::GerberPass pass;
  // Line ends inside a block are dropped and each item is trimmed; a block's last piece needs its
  // own "*".
  ASSERT_EQ(pass.run("%FSLAX24Y24*MOMM*%\r\n%AMBOX*\r\n21,1,$1,$1,0,0,0*\r\n%\r\n"
                     "%ADD10BOX,0.5*%%ADD11 C,1*%%ADD12C,2*ADD13C,3%"
                     "D10*X0Y0D03*M02*"),
            0);
  EXPECT_EQ(std::pair(pass.format.Unit, pass.format.DecimalDigits[AxisX]), std::pair(1, 4));
  const ApertureLists& lists = pass.scan.Lists;
  EXPECT_THAT(lists.SpecialList, ElementsAre(ApertureUse{10, 1, 1}));
  EXPECT_EQ(lists.PrimitiveList[1].Value, 50000);
  EXPECT_NE(findRow(lists.DrawList, 11), nullptr) << "the name is trimmed";
  EXPECT_NE(findRow(lists.DrawList, 12), nullptr);
  EXPECT_EQ(findRow(lists.DrawList, 13), nullptr);
}

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
      {"2x3/4", "", 1.5, 1.5},
      {"1+6/2x3", "", 10, 10.5},
      {"-$1", "3", -3, -3},
      {"$1/0", "3", 0, 3},  // a division by zero: the right operand in a field, no step in a line
      {"3x-2", "", 1, 1},   // an operator behind an operator takes its place
      // Parentheses innermost first; in a line they would join the number's text.
      {"($1+1)x2", "3", 8, Skip},
      {"(0.5+$1)x$2", "0.25X2", 1.5, Skip},
      {"2x((1+$2)x(3-1))", "0.25X2", 12, Skip},
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
  EXPECT_EQ(std::tuple(rows[0].Number, rows[3].Number, rows[1].Value), std::tuple(1, -4, 100000.0));
  // An outline that claims three points and gives two is copied as it stands, in file units.
  rows = expand({"4,1,3,0,0,1,0,0,1,0", "1,1,1,0,0"});
  ASSERT_EQ(rows.size(), 9u + 4u);
  // The outline's 1 stays unconverted; the circle behind it is converted.
  EXPECT_EQ(std::tuple(rows[4].Value, rows[8].Number, rows[9].Number, rows[10].Value),
            std::tuple(1.0, -9, 1, 100000.0));
}

TEST(MacroExpansion, MacroStoreKeepsLinesAndSkipsComments) {
  using Lines = std::vector<std::string>;
  MacroStore store;
  store.define("EMPTY", Lines{});
  store.define("COMMENTS", Lines{"0 only a comment", "0"});
  EXPECT_TRUE(store.MacroList.empty()) << "a macro without lines is no macro";
  store.define("THERMAL", Lines{"0 thermal", "7,0,0,$1,$2,$3,45", "$4=$1/2"});
  ASSERT_EQ(store.MacroList.size(), 1u);
  EXPECT_EQ(std::tuple(store.MacroList[0].LineCount, store.MacroLineList[0].Primitive,
                       store.MacroLineList[1].Primitive),
            std::tuple(2, 7, 0));
  EXPECT_EQ(std::pair(store.find("THERMAL"), store.find("thermal")), std::pair(0, -1));
  EXPECT_EQ(std::pair(primitiveCodeOf("21.9,1"), primitiveCodeOf("$1=5")), std::pair(21, 0));
  // A second definition under a name is not found, and expansion runs the first one's lines only.
  store.define("THERMAL", Lines{"1,1,2,0,0"});
  std::vector<PrimitiveRow> primitives;
  ASSERT_TRUE(ExpandMacro(store, store.find("THERMAL"), "1X1X1", 10, Millimetres, primitives));
  EXPECT_EQ(primitives.size(), 6u);
  // A macro keeps at most its share of lines.
  store.define("LONG", Lines(MacroStore::MostLinesPerMacro + 5, "1,1,1,0,0"));
  EXPECT_EQ(size_t(store.MacroList.back().LineCount), MacroStore::MostLinesPerMacro);
  EXPECT_EQ(store.MacroLineList.size(), 3 + MacroStore::MostLinesPerMacro);
}

TEST(MacroExpansion, ExpressionsOfRealFilesEvaluate) {
  // The precedence case of a known test file: an annulus of 2 outer and 1.9 inner diameter.
  const auto annulus = expand({"1,1,2,0,0", "1,0,1.8+1X0+0.1,0,0"});
  ASSERT_EQ(annulus.size(), 8u);
  EXPECT_EQ(annulus[5].Value, 190000);
  // An octagon whose size comes from the modifier, and a negative product.
  const auto octagon = expand({"5,1,8,0,0,1.08239X$1,22.5", "1,1,0-$1x2,0,0"}, "0.0610", Inches);
  ASSERT_EQ(octagon.size(), 10u);
  EXPECT_EQ(
      std::tuple(octagon[4].Value, octagon[5].Value, octagon[7].Value),
      std::tuple(wholeNumber(1.08239 * 0.061 * 2540000), 22500.0, wholeNumber(-0.122 * 2540000)));
}

}  // namespace
}  // namespace tvx
