// The text pass from Gerber text to the records of TMP.ART: blocks, coordinates, the record
// writer's paths, arcs and polygons, step and repeat, extents and the failures.
#include "GerberPassSupport.h"

#include "import/gerber/ApertureLists.h"
#include "import/gerber/ApertureSummary.h"
#include "import/gerber/ArtFile.h"
#include "import/gerber/ArtSections.h"
#include "import/gerber/ArtStream.h"
#include "import/gerber/GerberBlockReader.h"
#include "import/gerber/ParameterBlocks.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <functional>

namespace tvx {
namespace {

using test::findRow;
using test::GerberPass;
using test::inches;
using test::TempDir;
using test::typesOf;
using ::testing::Contains;
using ::testing::ElementsAre;

constexpr uint8_t Flash = artrecord::Flash, Start = artrecord::PathStart,
                  Point = artrecord::PathPoint, Centre = artrecord::ArcCentreOrPolygonEnd,
                  End = artrecord::EndOfStream;

// Small texts and the record types of the stream they leave, which always ends in its end record.
TEST(GerberTextPass, StreamTypesOfSmallTexts) {
  const std::string ad = "%ADD10C,0.01*%D10*";
  const struct {
    const char* name;
    std::string text;
    std::vector<int> types;
  } cases[] = {
      {"no stop code: to the end", ad + "X0Y0D02*X100Y0D01*X100Y100D03*", {Start, Point, Flash}},
      {"M02 drops its block", ad + "X0Y0D03*X5Y5D03M02*X7Y7D03*", {Flash}},
      {"M2", ad + "X0Y0D03*X5Y5D03M2*X7Y7D03*", {Flash}},
      {"M00", ad + "X0Y0D03*X5Y5D03M00*X7Y7D03*", {Flash}},
      {"M01 is no stop", ad + "X0Y0D03*X5Y5D03M01*M02*", {Flash, Flash}},
      // A G code acts at its first digit, whatever follows.
      {"G1", ad + "G75*G03X0Y0D02*G1X100Y0D01*M02*", {Start, Point}},
      {"G12", ad + "G75*G03X0Y0D02*G12X100Y0D01*M02*", {Start, Point}},
      {"G01", ad + "G75*G03X0Y0D02*G01X100Y0D01*M02*", {Start, Point}},
      {"G30", ad + "G75*X0Y0D02*G30X100Y0I50J0D01*M02*", {Centre, Start, Point}},
      {"a comment runs to its star",
       "G04 X100 D03 %ADD*D10*G4 lower\r\n is fine*X0Y0D03*M02*",
       {Flash}},
      {"a first draw has no path start",
       ad + "X1Y0D01*X2Y0D01*X3Y0D02*X4Y0D01*M02*",
       {Point, Point, Start, Point}},
      {"low D functions write nothing", ad + "X0Y0D03*X5Y5D07*X6Y6*X7Y7D03*M02*", {Flash, Flash}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    GerberPass pass;
    ASSERT_EQ(pass.run(c.text), 0);
    EXPECT_EQ(typesOf(pass.stream()), c.types);
    const auto all = pass.records();
    ASSERT_GT(all.size(), 5 + c.types.size());
    EXPECT_EQ(all[5 + c.types.size()].Type, End);
    EXPECT_TRUE(pass.shown().empty());
  }
}

// Whole streams of small texts, record by record, and what else each leaves.
TEST(GerberTextPass, StreamRecordsOfSmallTexts) {
  constexpr int32_t T = 254000;  // a tenth of an inch in store units
  constexpr uint8_t Repeat = artrecord::StepRepeat, Image = artrecord::ImagePolarity,
                    Layer = artrecord::LayerPolarity;
  const std::string ad = "%ADD10C,0.01*%D10*";
  using Check = std::function<void(const GerberPass&)>;
  const auto drawUses = [](int32_t uses) {
    return
        [uses](const GerberPass& p) { EXPECT_EQ(findRow(p.scan.Lists.DrawList, 10)->Uses, uses); };
  };
  const struct {
    const char* name;
    std::string text;
    std::vector<ArtRecord> records;
    Check also;
  } cases[] = {
      // clang-format off
      // Nothing is written for a select; the draw ends at the new X with the selected Y.
      {"a select keeps its coordinates", "%ADD10C,0.01*%X0Y0D02*X100Y200D10*X300D01*M02*",
       {{Start, 1, 0, 0}, {Point, 10, 3 * T, 2 * T}}, drawUses(1)},
      // A coordinate block repeats the last operation, but the first one moves the pen.
      {"the first coordinate block moves", "%ADD10C,0.01*%X100*X200D01*M02*",
       {{Start, 1, T, 0}, {Point, 0, 2 * T, 0}}, nullptr},
      {"later ones repeat", ad + "X0Y0D02*X50D01*X100*M02*",
       {{Start, 1, 0, 0}, {Point, 10, T / 2, 0}, {Point, 10, T, 0}}, drawUses(2)},
      // An arc has a centre record with its radius, and stands alone behind a path start that
      // carries the interpolation mode; I is signed with G75.
      {"multi-quadrant arcs", ad + "G75*X0Y0D02*G03X200Y0I100J0D01*X0Y0I-100J0D01*G01X0Y100D01*M02*",
       {{Centre, T, T, 0}, {Start, 3, 0, 0}, {Point, 10, 2 * T, 0}, {Centre, T, T, 0},
        {Start, 3, 2 * T, 0}, {Point, 10, 0, 0}, {Start, 1, 0, 0}, {Point, 10, 0, T}}, nullptr},
      // Clockwise towards lower left: the fourth line, centre P + (-I, +J); the radius is T times
      // the root of 2.
      {"a single-quadrant arc", ad + "G74*X100Y0D02*G02X0Y-100I100J100D01*M02*",
       {{Centre, 359210, 0, T}, {Start, 2, T, 0}, {Point, 10, 0, -T}}, nullptr},
      // A polygon marks its arc sides and its end, and the next polygon starts at once; its sides
      // are no line uses.
      {"polygons", ad + "G75*G36*X0Y0D02*G01X100Y0D01*G03X100Y100I0J50D01*G01X0Y0D01*G37*"
                        "G36*X500Y500D02*X600Y500D01*X500Y500D01*G37*M02*",
       {{Start, 36, 0, 0}, {Point, 10, T, 0}, {Centre, T / 2, T, T / 2},
        {artrecord::PolygonArcStart, 3, T, 0}, {artrecord::PolygonArcPoint, 10, T, T},
        {Point, 10, 0, 0}, {Centre, -1, 0, 0}, {Start, 36, 5 * T, 5 * T},
        {Point, 10, 6 * T, 5 * T}, {Point, 10, 5 * T, 5 * T}, {Centre, -1, 0, 0}}, drawUses(0)},
      {"polarities", "%IPNEG*%%LPD*%" + ad + "X0Y0D03*%LPC*%X1Y1D03*M02*",
       {{Image, 1, 0, 0}, {Layer, 0, 0, 0}, {Flash, 10, 0, 0}, {Layer, 1, 0, 0},
        {Flash, 10, inches(0.001), inches(0.001)}},
       [](const GerberPass& p) {
         EXPECT_EQ(p.scan.Header.FeatureFlags,
                   featureflag::NegativeImage | featureflag::DarkLayer | featureflag::ClearLayer);
       }},
      // Counts, then whole store units; the reset writes distances 0. Six repeats and one flash
      // are seven uses, and the repeats widen the extents.
      {"step and repeat", ad + "X0Y0D02*%SRX3Y2I1.0J1.0*%X100Y200D03*%SR*%X0Y0D03*M02*",
       {{Repeat, 1, 3, 2}, {Repeat, 2, 10 * T, 10 * T}, {Flash, 10, T, 2 * T}, {Repeat, 1, 1, 1},
        {Repeat, 2, 0, 0}, {Flash, 10, 0, 0}},
       [](const GerberPass& p) {
         EXPECT_EQ(findRow(p.scan.Lists.RoundPadList, 10)->Uses, 7);
         const ArtHeader& h = p.scan.Header;
         EXPECT_EQ(std::tuple(h.MinX, h.MaxX, h.MaxY), std::tuple(0, T + 20 * T, 2 * T + 10 * T));
       }},
      // clang-format on
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    GerberPass pass;
    ASSERT_EQ(pass.run(c.text), 0);
    EXPECT_EQ(pass.stream(), c.records);
    if (c.also)
      c.also(pass);
  }
}

TEST(GerberTextPass, ParseCoordinateByZeroMode) {
  GerberPass pass;
  pass.format.IntegerDigits = {2, 2};
  pass.format.DecimalDigits = {4, 3};
  auto parse = [&pass](std::string_view text, int axis) {
    ParameterInterpreter parameters(pass.format, pass.scan.Lists, 100000);
    GerberBlockReader reader(pass.format, parameters, 100000);
    return reader.ParseCoordinate(text, axis);
  };
  pass.format.OmittedZeros = 1;
  EXPECT_DOUBLE_EQ(parse("12", AxisX), inches(0.0012));
  EXPECT_DOUBLE_EQ(parse("-12", AxisX), -inches(0.0012));
  EXPECT_DOUBLE_EQ(parse("+12", AxisY), inches(0.012));
  EXPECT_DOUBLE_EQ(parse("1234567", AxisX), inches(123.4567)) << "longer than the format";
  // Digits beyond what a 64-bit sum holds (found by fuzzing): read as a number all the same.
  EXPECT_DOUBLE_EQ(parse("9999999999999999999", AxisX), inches(9999999999999999999.0 / 1e4));
  EXPECT_DOUBLE_EQ(parse("999999999999999999", AxisX), inches(999999999999999999.0 / 1e4));
  pass.format.OmittedZeros = 0;
  EXPECT_DOUBLE_EQ(parse("12", AxisX), inches(12)) << "digits are left-aligned";
  EXPECT_DOUBLE_EQ(parse("-0012", AxisX), -inches(0.12));
  EXPECT_DOUBLE_EQ(parse("12", AxisY), inches(12));
  EXPECT_DOUBLE_EQ(parse("", AxisX), 0);
  pass.format.Unit = 1;
  pass.format.Scale = {2.0, 1.0};
  EXPECT_DOUBLE_EQ(parse("120000", AxisX), test::millimetres(12) / 2);
}

// Where a use lands: an undefined code is kept with size 0, a draw with a square or special
// aperture links to its flash row and counts a use there, so that its size reaches the file.
TEST(GerberTextPass, UsesOfUndefinedSquareAndSpecialApertures) {
  GerberPass pass;
  ASSERT_EQ(pass.run("%ADD10C,0.01*%%ADD11R,0.02X0.02*%%ADD13R,0.02X0.04*%D99*X0Y0D02*X100Y0D01*"
                     "D11*X0Y0D02*X100Y0D01*D13*X200Y0D01*D98*X5Y5D03*M02*"),
            0);
  const ApertureLists& lists = pass.scan.Lists;
  EXPECT_THAT(lists.DrawList, Contains(ApertureUse{99, 0, 1}));
  EXPECT_THAT(lists.RoundPadList, Contains(ApertureUse{98, 0, 1}));
  EXPECT_EQ(lists.DefinedDCodes, (std::set<int32_t>{10, 11, 13}));
  EXPECT_EQ(pass.stream().back().N, 98);
  EXPECT_EQ(findRow(lists.DrawList, 11)->Size, LinkToSquarePad);
  EXPECT_EQ(findRow(lists.DrawList, 13)->Size, LinkToSpecial);
  EXPECT_EQ(findRow(lists.SquarePadList, 11)->Uses, 1);
  EXPECT_EQ(findRow(lists.SpecialList, 13)->Uses, 1);
  EXPECT_EQ(findRow(lists.DrawList, 10)->Uses, 0);
}

TEST(GerberTextPass, ApertureTableGivesTheListsUntilTheFirstDefinition) {
  const std::vector<ApertureTableRow> table = {{1000, 10, 20, 0}, {2000, 11, 0, 30}};
  GerberPass plain;
  plain.table = table;
  ASSERT_EQ(plain.run("D10*X0Y0D02*X100Y0D01*D30*X5Y5D03*D20*X6Y6D03*M02*"), 0);
  const ApertureLists& lists = plain.scan.Lists;
  EXPECT_EQ(*findRow(lists.DrawList, 10), (ApertureUse{10, 1000, 1}));
  EXPECT_EQ(*findRow(lists.SquarePadList, 30), (ApertureUse{30, 2000, 1}));
  EXPECT_EQ(findRow(lists.RoundPadList, 20)->Uses, 1);
  EXPECT_EQ(findRow(lists.DrawList, 11)->Uses, 0);

  // D20 flashes from the table; the first AD then empties the table's lists and D20 is new, in
  // another row than before: rows cached from the table must not be used.
  GerberPass defined;
  defined.table = table;
  ASSERT_EQ(defined.run("D20*X0Y0D03*X1Y1D03*%ADD21C,0.02*%%ADD20C,0.05*%X2Y2D03*D10*X3Y3D01*M02*"),
            0);
  const ApertureLists& after = defined.scan.Lists;
  EXPECT_THAT(after.RoundPadList, ElementsAre(ApertureUse{21, toInt32(inches(0.02)), 0},
                                              ApertureUse{20, toInt32(inches(0.05)), 1}));
  EXPECT_EQ(findRow(after.DrawList, 10)->Size, 0) << "the table's D10 is gone";
  EXPECT_FALSE(after.DefinedDCodes.count(10));
}

// The single-quadrant centre for every direction of travel: P is the pen, E the end; I and J are
// magnitudes, given here with signs that must be ignored.
TEST(GerberTextPass, SingleQuadrantCentreByDirection) {
  struct Case {
    int mode;
    double ex, ey;
    double cx, cy;
  };
  const double i = 3, j = 4;
  const Case cases[] = {
      // counter-clockwise
      {3, -5, 5, -i, -j},
      {3, -5, -5, +i, -j},
      {3, 5, -5, +i, +j},
      {3, 5, 5, -i, +j},
      // clockwise
      {2, 5, -5, -i, -j},
      {2, 5, 5, +i, -j},
      {2, -5, 5, +i, +j},
      {2, -5, -5, -i, +j},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << "G0" << c.mode << " to " << c.ex << "," << c.ey);
    for (double si : {1.0, -1.0}) {
      double cx = 0, cy = 0;
      ASSERT_TRUE(arcCentre(74, c.mode, 0, 0, c.ex, c.ey, si * i, -si * j, cx, cy));
      EXPECT_EQ(std::pair(cx, cy), std::pair(c.cx, c.cy));
    }
  }
  double cx = 7, cy = 7;
  // A tie goes to the first line that fits: no travel at all is the first counter-clockwise line.
  ASSERT_TRUE(arcCentre(74, 3, 1, 1, 1, 1, i, j, cx, cy));
  EXPECT_EQ(std::pair(cx, cy), std::pair(1 - i, 1 - j));
  EXPECT_FALSE(arcCentre(74, 1, 0, 0, 1, 1, i, j, cx, cy)) << "no arc mode";
  ASSERT_TRUE(arcCentre(75, 1, 10, 10, 1, 1, -i, j, cx, cy));
  EXPECT_EQ(std::pair(cx, cy), std::pair(10 - i, 10 + j));
}

// The layout of TMP.ART for a small file, byte for byte; an earlier file is replaced.
TEST(GerberTextPass, IntermediateFileOfASmallFileByteForByte) {
  GerberPass pass;
  std::ofstream(pass.art, std::ios::binary) << std::string(21 * 40, 'x');
  ASSERT_EQ(pass.run("%FSLAX33Y33*%\r\n%MOMM*%\r\n%ADD10C,0.1*%\r\nD10*\r\nX1000Y2000D02*\r\n"
                     "X3000Y2000D01*\r\nX5000Y5000D03*\r\nM02*\r\n"),
            0);
  const ArtRecord expected[] = {
      {1, 0, 300000, 200000},      // extents minimum, without the first move
      {1, 0, 500000, 500000},      // extents maximum; no polarity blocks
      {1, 0, 100000, 100000},      // store units of one millimetre
      {1, 0, 10, 12},              // sections 10 and 20
      {1, 0, 14, 15},              // sections 30 and 40
      {Start, 1, 100000, 200000},  // the path from the move
      {Point, 10, 300000, 200000},
      {Flash, 10, 500000, 500000},
      {End, 0, 0, 0},
      {10, 10, 10000, 1},  // D10 draws 0.1 mm wide, once
      {19, 0, 0, 0},
      {20, 10, 10000, 1},  // and flashes once
      {29, 0, 0, 0},
      {39, 0, 0, 0},
      {49, 0, 0, 0},
  };
  std::string want;
  for (const ArtRecord& r : expected) {
    const ArtRecordBytes b = encodeArtRecord(r);
    want.append(reinterpret_cast<const char*>(b.data()), b.size());
  }
  EXPECT_EQ(test::readBytes(pass.art), want);
  EXPECT_EQ(pass.scan.StreamRecords, 4);
  EXPECT_EQ(pass.format.Unit, 1) << "the file's own MO stays in the format";
}

TEST(GerberTextPass, ReadsALargeSourceInPiecesWithProgress) {
  GerberPass pass;
  const std::string source = pass.dir.file("big.gbr");
  std::string text = "%FSLAX24Y24*%%ADD10C,0.01*%D10*X0Y0D02*";
  for (int n = 1; n <= 20000; ++n)
    text += "X" + std::to_string(n) + "Y" + std::to_string(n % 97) + "D01*\n";
  std::ofstream(source, std::ios::binary) << text << "M02*\n";
  ASSERT_EQ(pass.runFile(source), 0) << pass.shown().front().prompt;
  // Progress goes to the progress line as the pieces are read, none to the main window.
  ASSERT_GE(pass.progressLines.size(), 2u);
  EXPECT_EQ(pass.progressLines.front(), "Preprocessed 0%");
  EXPECT_EQ(pass.progressLines.back().rfind("Preprocessed 9", 0), 0u);
  EXPECT_TRUE(pass.mainLines.empty());
  EXPECT_EQ(findRow(pass.scan.Lists.DrawList, 10)->Uses, 20000);
  EXPECT_DOUBLE_EQ(pass.scan.Header.MaxX, inches(2.0));
  EXPECT_EQ(pass.scan.StreamRecords, 20000 + 2);
  EXPECT_EQ(pass.files.openCount(), 0);
}

// A failure shows its one message, removes TMP.ART and says "Cancelled" in the main window.
void expectCancelled(const GerberPass& pass, const std::string& message) {
  ASSERT_EQ(pass.shown().size(), 1u);
  EXPECT_EQ(pass.shown()[0].prompt, message);
  EXPECT_FALSE(pass.artExists());
  EXPECT_THAT(pass.mainLines, ElementsAre("Cancelled"));
}

TEST(GerberTextPass, FailuresCancelThePass) {
  const std::string ad = "%ADD10C,0.01*%D10*X0Y0D03*";
  // "SOURCE" stands for the source file's path.
  const std::string foreign = "SOURCE - import of files in this format is not supported";
  const struct {
    const char* name;
    std::string text;
    std::string message;
  } cases[] = {
      {"radius", "%ADD10C,0.01*%D10*G75*X0Y0D02*G02X1Y1I99999999J0D01*M02*",
       "Coordinates outside limits\r\nCheck parameters for GERBER file and import again."},
      {"foreign characters", ad + std::string(101, 'q') + "M02*", foreign},
      {"tab", ad + "\tM02*", foreign},
      {"character 255", ad + "\xffM02*", foreign},
      {"extents", "%ADD10C,0.01*%D10*X0Y0D02*X0Y0D03*X180000Y0D03*M02*",
       "Coordinates outside limits\r\nCheck parameters for SOURCE file and import again."},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    GerberPass pass;
    EXPECT_EQ(pass.run(c.text), 1);
    std::string message = c.message;
    if (const size_t at = message.find("SOURCE"); at != std::string::npos)
      message.replace(at, 6, pass.source);
    expectCancelled(pass, message);
  }
  // 100 foreign characters in a row are tolerated; a character of the set resets the count.
  GerberPass lenient;
  const std::string hundred(100, 'q');
  EXPECT_EQ(lenient.run(ad + hundred + "X1Y1D03*" + hundred + "M02*"), 0);

  GerberPass missing;
  const std::string source = missing.dir.file("missing.gbr");
  EXPECT_NE(missing.runFile(source), 0);
  expectCancelled(missing, "Can't read file: " + source);

  GerberPass unwritable;
  unwritable.art = unwritable.dir.file("no/such/folder/TMP.ART");
  EXPECT_EQ(unwritable.run(ad + "M02*"), 1);
  expectCancelled(unwritable, "Can't create/write to file: " + unwritable.art);
}

// What the pass drops or cuts is noted once, at the line where it stands; a sound file gives none.
TEST(GerberTextPassNotes, BadNumbersAndCutFilesAreNotedByLine) {
  const std::string head = "%FSLAX24Y24*%\n%MOIN*%\n";
  const std::string cut = head + "%ADD10C,0.01*%\nD10*\nX0Y0D03*\n";
  const std::vector<InputNote> cutInABlock = {
      {0, 6, "the file ends inside a block, which is dropped"}};
  struct Case {
    std::string text;
    std::vector<InputNote> notes;  // offsets are not compared
  } cases[] = {
      {cut + "M02*\n", {}},  // a sound file
      {head + "%ADD10C,nan*%\n%ADD11R,0.1Xinf*%\n%ADD12C,1e999*%\nD10*\nX0Y0D03*\nM02*\n",
       {{0, 3, "aperture D10: \"nan\" is no number, read as 0"},
        {0, 4, "aperture D11: \"inf\" is no number, read as 0"},
        {0, 5, "aperture D12: \"1e999\" is no number, read as 0"}}},
      {head + "%AMBOX*21,1,nan,inf,0,0,0*%\n%ADD10BOX,0.1*%\n%ADD11BOX,1e999*%\n"
              "%ADD12C,1e-3*%\nD10*\nX0Y0D03*\nM02*\n",
       {{0, 4, "aperture D10 (macro BOX): \"nan\" is no number, read as 0 (and 1 more value)"},
        {0, 5, "aperture D11: \"1e999\" is no number, read as 0"},
        {0, 5, "aperture D11 (macro BOX): \"nan\" is no number, read as 0 (and 1 more value)"},
        {0, 6, "aperture D12: \"1e-3\" is no plain decimal, read as 0.001"}}},
      {head + "%AMBOX*21,1,$1/0,$1,0,0,0*%\n%ADD10BOX,0.1*%\nD10*\nX0Y0D03*\nM02*\n",
       {{0, 4,
         "aperture D10 (macro BOX): 1 step of its arithmetic gave no number (a division "
         "by zero or an overflow), passed over"}}},
      {head + "%SRX5000Y1I0.1J0.1*%\n%SRX100Y200I0.1J0.1*%\n%ADD10C,0.01*%\nD10*\nX0Y0D03*\n"
              "%SR*%\nM02*\n",
       {{0, 3, "step and repeat: X count 5000 cut to 1000"},
        {0, 4, "step and repeat: Y count cut to 100, for at most 10000 copies"}}},
      {cut, {{0, 6, "the file ends without M02"}}},
      {cut + "X100Y1", cutInABlock},
      {cut + "%ADD11C,0.0", cutInABlock},  // in a parameter block
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    test::GerberPass pass;
    EXPECT_EQ(pass.run(c.text), 0);
    std::vector<InputNote> notes = pass.scan.Notes;
    for (InputNote& note : notes)
      note.Offset = 0;
    EXPECT_EQ(notes, c.notes);
  }
}

TEST(GerberTextPassNotes, NotesBeyondTheMostAreCounted) {
  std::string text = "%FSLAX24Y24*%\n";
  for (int i = 0; i < 105; ++i)
    text += "%ADD" + std::to_string(10 + i) + "C,x*%\n";
  test::GerberPass pass;
  EXPECT_EQ(pass.run(text + "M02*\n"), 0);
  ASSERT_EQ(pass.scan.Notes.size(), ParameterInterpreter::MostNotes);
  EXPECT_EQ(pass.scan.MoreNotes, 5u);
  EXPECT_EQ(pass.scan.Notes.back().Line, 101);
  EXPECT_EQ(noteTexts(pass.scan).back(), "and 5 more of the same kinds");
}

// TMP.ART: the layout of a record, random access by record number, truncated files; the tables
// with their sections written by the pass and read back, edited sizes written into place, and
// the buffered record streams underneath.
std::string hex(const std::string& bytes) {
  static const char digits[] = "0123456789abcdef";
  std::string out;
  for (unsigned char c : bytes) {
    if (!out.empty())
      out += ' ';
    out += digits[c >> 4];
    out += digits[c & 15];
  }
  return out;
}

std::string hex(const ArtRecordBytes& bytes) {
  return hex(std::string(bytes.begin(), bytes.end()));
}

TEST(ArtRecordTest, LayoutIsTwentyOneLittleEndianBytesFieldByField) {
  // Type at 0, N at 1, X at 5, Y at 13; the byte order of N shows in 0x01020304, the doubles are
  // 1.5 and -2.0 in IEEE form.
  EXPECT_EQ(hex(encodeArtRecord({5, 0x01020304, 1.5, -2.0})),
            "05 04 03 02 01 00 00 00 00 00 00 f8 3f 00 00 00 00 00 00 00 c0");
  const ArtRecord negative{1, -2, -254000.0, 0.1};
  EXPECT_EQ(hex(encodeArtRecord(negative)),
            "01 fe ff ff ff 00 00 00 00 80 01 0f c1 9a 99 99 99 99 99 b9 3f");
  EXPECT_EQ(decodeArtRecord(encodeArtRecord(negative)), negative);
}

// Reading by record number is the truncation test's; a write goes into its place, or past the end
// over records of zeros.
TEST(ArtFileTest, WritesGoIntoPlaceOrPastTheEndOverZeros) {
  TempDir dir;
  ArtFile art;
  ASSERT_TRUE(art.create(dir.file("TMP.ART")));
  for (int i = 1; i <= 3; ++i)
    ASSERT_TRUE(art.append({static_cast<uint8_t>(i), i * 10, i * 1.5, -i * 2.5}));
  // Header records are written into place last, over their placeholders.
  ASSERT_TRUE(art.write(2, {1, 6, 123.25, -7.0}));
  ASSERT_TRUE(art.write(6, {9, 0, 0, 0}));
  ArtRecord r;
  for (const auto& [n, record] : {std::pair{2, ArtRecord{1, 6, 123.25, -7.0}},
                                  {3, ArtRecord{3, 30, 4.5, -7.5}},
                                  {5, ArtRecord{}}}) {
    ASSERT_TRUE(art.read(n, r));
    EXPECT_EQ(r, record) << n;
  }
  EXPECT_EQ(art.recordCount(), 6);
  art.close();
  EXPECT_FALSE(art.write(1, {}));  // closed
}

TEST(ArtFileTest, TruncatedFileIsReadAsFarAsWholeRecordsGo) {
  TempDir dir;
  const std::string path = dir.file("TMP.ART");
  {
    ArtFile art;
    ASSERT_TRUE(art.create(path));
    for (int i = 1; i <= 3; ++i)
      ASSERT_TRUE(art.append({static_cast<uint8_t>(i), i, 0, 0}));
  }
  for (int size : {63, 50, 42, 20, 0}) {
    SCOPED_TRACE(size);
    std::filesystem::resize_file(path, size);
    ArtFile art;
    ASSERT_TRUE(art.open(path));
    EXPECT_EQ(art.recordCount(), size / 21);
    EXPECT_EQ(art.hasPartialRecord(), size % 21 != 0);
    ArtRecord r;
    for (int n = 1; n <= size / 21; ++n) {
      ASSERT_TRUE(art.read(n, r));
      EXPECT_EQ(r.N, n);
    }
    r = {77, 77, 77, 77};
    EXPECT_FALSE(art.read(size / 21 + 1, r));
    EXPECT_FALSE(art.read(0, r));
    EXPECT_FALSE(art.read(-1, r));
    EXPECT_EQ(r.N, 77);  // a refused read leaves the record alone
  }
  ArtFile missing;
  EXPECT_FALSE(missing.open(dir.file("NONE.ART")));
  ArtRecord r;
  EXPECT_FALSE(missing.read(1, r));
}

ApertureLists sampleLists() {
  ApertureLists lists;
  lists.DrawList = {{10, 2540, 3}, {11, 0, 0}, {12, LinkToSquarePad, 1.5}};
  lists.RoundPadList = {{10, 2540, 4}};
  lists.SquarePadList = {{12, 5080, 1}, {13, 5080, 0}};
  lists.SpecialList = {{20, 1, 2}, {21, 4, 0}, {22, 6, 5}};
  lists.PrimitiveList = {
      {primitive::Macro, 20, 1, 1, "AB"},        {primitive::Macro, 20, 0, 900, ""},
      {primitive::Macro, 20, -3, 0, ""},         {primitive::Oval, 21, 0, 7, ""},
      {primitive::Oval, 21, 0, 8, ""},           {primitive::RegularPolygon, 22, 0, 3000, ""},
      {primitive::RegularPolygon, 22, 0, 6, ""},
  };
  return lists;
}

// Writes the four sections behind a minimal header and stream, the way the pass does.
std::string writeArt(const test::TempDir& dir, const ApertureLists& lists, ArtHeader& header) {
  const std::string path = dir.file("TMP.ART");
  ArtWriter out;
  EXPECT_TRUE(out.create(path));
  for (int32_t n = 1; n <= artrecord::HeaderRecords; ++n)
    out.append({artrecord::Header, 0, 0, 0});
  out.append({artrecord::Flash, 10, 1, 2});
  out.append({artrecord::EndOfStream, 0, 0, 0});
  for (int which = 0; which < 4; ++which) {
    header.SectionRecords[size_t(which)] = out.recordCount() + 1;
    for (const ArtRecord& r : sectionRecords(lists, which))
      out.append(r);
  }
  const auto records = headerRecords(header);
  for (int32_t n = 1; n <= artrecord::HeaderRecords; ++n)
    out.writeAt(n, records[size_t(n - 1)]);
  EXPECT_TRUE(out.close());
  return path;
}

// LoadArtHeader over the file at path into scan: its status, -1 when the file does not open.
int32_t loadHeader(const std::string& path, GerberScan& scan, test::Reporting& reporting) {
  ArtFile art;
  if (!art.open(path))
    return -1;
  int32_t status = -1;
  LoadArtHeader(status, art, false, scan, reporting.reporter);
  return status;
}

// What the pass wrote reads back; sizes edited in the lists are written into place, and a file
// too short for its header is reported.
TEST(ArtSections, LoadArtHeaderReadsWhatThePassWroteAndWritesEditsBack) {
  test::TempDir dir;
  test::Reporting reporting;
  ArtHeader header;
  header.MinX = -5;
  header.MaxY = 7.5;
  header.FeatureFlags = featureflag::DarkLayer;
  header.UnitX = header.UnitY = 2540000;
  GerberScan scan;
  scan.Lists.DrawList = {{99, 1, 1}};  // emptied on reading
  const std::string path = writeArt(dir, sampleLists(), header);
  const size_t size = std::filesystem::file_size(path);
  {
    ArtFile art;
    ASSERT_TRUE(art.open(path));
    int32_t status = -1;
    LoadArtHeader(status, art, false, scan, reporting.reporter);
    ASSERT_EQ(status, 0);
    EXPECT_EQ(scan.Header, header);
    EXPECT_THAT(scan.Lists.DrawList,
                ElementsAre(ApertureUse{10, 2540, 3}, ApertureUse{12, LinkToSquarePad, 1.5}));
    EXPECT_THAT(scan.Lists.RoundPadList, ElementsAre(ApertureUse{10, 2540, 4}));
    EXPECT_THAT(scan.Lists.SquarePadList, ElementsAre(ApertureUse{12, 5080, 1}));
    // The special rows point at their primitive rows anew.
    EXPECT_THAT(scan.Lists.SpecialList, ElementsAre(ApertureUse{20, 1, 2}, ApertureUse{22, 4, 5}));
    ASSERT_EQ(scan.Lists.PrimitiveList.size(), 5u);
    EXPECT_EQ(scan.Lists.PrimitiveList[0], (PrimitiveRow{primitive::Macro, 20, 1, 1, "AB"}));
    EXPECT_EQ(scan.Lists.PrimitiveList[3],
              (PrimitiveRow{primitive::RegularPolygon, 22, 0, 3000, ""}));
    scan.Lists.RoundPadList[0].Size = 9999;
    scan.Lists.PrimitiveList[1].Value = 1234;
    LoadArtHeader(status, art, true, scan, reporting.reporter);
    ASSERT_EQ(status, 0);
  }
  EXPECT_EQ(std::filesystem::file_size(path), size);
  GerberScan again;
  ASSERT_EQ(loadHeader(path, again, reporting), 0);
  EXPECT_EQ(again.Lists.RoundPadList[0].Size, 9999);
  EXPECT_EQ(again.Lists.PrimitiveList[1].Value, 1234);
  EXPECT_EQ(again.Lists.DrawList, scan.Lists.DrawList);
  EXPECT_TRUE(reporting.prompts.shown.empty());

  std::filesystem::resize_file(path, 21 * 3);
  EXPECT_EQ(loadHeader(path, again, reporting), 1);
  EXPECT_EQ(test::boxesOf(reporting.prompts),
            std::vector<std::string>{"Artwork File - Incorrect format"});
}

TEST(ArtStream, WriterKeepsEveryRecordAcrossItsBuffers) {
  test::TempDir dir;
  const std::string path = dir.file("stream.art");
  const int32_t count = int32_t(ArtWriter::BufferRecords) * 2 + 17;
  ArtWriter out;
  ASSERT_TRUE(out.create(path));
  for (int32_t n = 1; n <= count; ++n)
    ASSERT_TRUE(out.append({uint8_t(n % 200), n, n * 0.5, -n * 1.0}));
  ASSERT_TRUE(out.writeAt(2, {77, -1, 1, 2}));
  ASSERT_TRUE(out.append({9, 0, 0, 0}));
  EXPECT_FALSE(out.writeAt(count + 2, {}));
  EXPECT_TRUE(out.failed()) << "a failed write stays failed";
  EXPECT_FALSE(out.append({}));
  EXPECT_FALSE(out.close());

  ArtFile in;
  ASSERT_TRUE(in.open(path));
  ASSERT_EQ(in.recordCount(), count + 1);
  ArtRecord record;
  for (int32_t n = 1; n <= count; ++n) {
    ASSERT_TRUE(in.read(n, record));
    if (n == 2)
      EXPECT_EQ(record, (ArtRecord{77, -1, 1, 2}));
    else
      ASSERT_EQ(record, (ArtRecord{uint8_t(n % 200), n, n * 0.5, -n * 1.0}));
  }
}

TEST(ApertureSummary, ShapesUsesAndUndefinedCodes) {
  test::GerberPass pass;
  ASSERT_EQ(pass.run("%AMDOT*1,1,$1,0,0*%%ADD10C,0.01*%%ADD11R,0.02X0.02*%%ADD12DOT,0.05*%"
                     "%ADD13O,0.02X0.04*%D10*X0Y0D02*X1Y1D01*X2Y2D01*D11*X3Y3D01*D12*X4Y4D03*"
                     "D13*X5Y5D03*D77*X6Y6D03*M02*"),
            0);
  const std::vector<ApertureInfo> rows = describeApertures(pass.scan.Lists);
  // One row as "<role>/<shape> <size> x<uses>", with " undefined" for a code without definition.
  const auto row = [&rows](int32_t code, ApertureRole role) -> std::string {
    for (const ApertureInfo& r : rows)
      if (r.DCode == code && r.Role == role)
        return std::string(apertureRoleWord(r.Role)) + "/" + apertureShapeWord(r.Shape) + " " +
               std::to_string(r.Size) + " x" + std::to_string(int(r.Uses)) +
               (r.Defined ? "" : " undefined");
    return "none";
  };
  EXPECT_EQ(row(10, ApertureRole::Draw), "draw/round 25400 x2");
  EXPECT_EQ(row(11, ApertureRole::Draw), "draw/square 0 x1") << "a draw linked to a square pad";
  EXPECT_EQ(row(12, ApertureRole::SpecialPad), "special/macro 0 x1");
  EXPECT_EQ(row(13, ApertureRole::SpecialPad), "special/oval 0 x1");
  EXPECT_EQ(row(77, ApertureRole::RoundPad), "round pad/round 0 x1 undefined");
  const auto macro = std::find_if(rows.begin(), rows.end(), [](const ApertureInfo& r) {
    return r.Shape == ApertureShape::Macro;
  });
  ASSERT_NE(macro, rows.end());
  EXPECT_EQ(macro->MacroName, "DOT");
  EXPECT_THAT(macro->Values, ElementsAre(1, 127000, 0, 0));
}

}  // namespace
}  // namespace tvx
