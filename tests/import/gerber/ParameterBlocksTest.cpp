// RS-274-X parameter blocks: format statements, standard apertures and their special rows,
// macros at their AD, step and repeat, polarities, and everything that has no effect.
#include "import/gerber/ParameterBlocks.h"

#include "GerberPassSupport.h"

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

TEST(ParameterBlocks, RoundApertureDrawsAndFlashesSquareOnlyFlashes) {
  Blocks b;
  EXPECT_EQ(b.block({"ADD10C,0.01"}), 0);
  EXPECT_EQ(b.block({"ADD11R,0.02X0.02"}), 0);
  EXPECT_THAT(b.lists.DrawList, ElementsAre(ApertureUse{10, 25400, 0}));
  EXPECT_THAT(b.lists.RoundPadList, ElementsAre(ApertureUse{10, 25400, 0}));
  EXPECT_THAT(b.lists.SquarePadList, ElementsAre(ApertureUse{11, 50800, 0}));
  EXPECT_TRUE(b.lists.SpecialList.empty());
  EXPECT_EQ(b.lists.DefinedDCodes, (std::set<int32_t>{10, 11}));
}

TEST(ParameterBlocks, StandardShapesByNameAndModifiers) {
  Blocks b;
  b.format.Unit = 1;
  b.block({"ADD12O,0.5X0.5"});  // equal sides: a circle
  EXPECT_EQ(findRow(b.lists.DrawList, 12)->Size, 50000);
  EXPECT_EQ(findRow(b.lists.RoundPadList, 12)->Size, 50000);

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
      {"FSLAX24Y24", 1, {2, 2}, {4, 4}},  {"FSTAX23Y23", 0, {2, 2}, {3, 3}},
      {"FSLTAX25Y34", 0, {2, 3}, {5, 4}},  // both L and T: T
      {"FSDAX33Y33", 1, {3, 3}, {3, 3}},  {"FSLAN2X34Y34", 1, {3, 3}, {4, 4}},
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

TEST(ParameterBlocks, MacroDefinedAfterItsApertureAndEmptyMacros) {
  Blocks b;
  b.block({"ADD22LATE,0.5"});
  b.block({"AMLATE", "1,1,$1,0,0"});
  EXPECT_TRUE(b.lists.SpecialList.empty() && b.lists.DrawList.empty() &&
              b.lists.DefinedDCodes.empty());
  b.block({"ADD23LATE,0.5"});
  EXPECT_EQ(b.lists.SpecialList.size(), 1u);

  b.block({"AMEMPTY"});
  b.block({"AMCOMMENT", "0 nothing here"});
  EXPECT_EQ(b.interpreter.Macros.find("EMPTY") + b.interpreter.Macros.find("COMMENT"), -2);
  b.block({"ADD24EMPTY,1"});
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

}  // namespace
}  // namespace tvx
