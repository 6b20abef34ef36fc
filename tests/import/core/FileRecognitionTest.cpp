// File kinds told by their text: the four tests, their order, the second looks behind them, and
// whole-file reading and its messages.
// Every real file of the shared corpus is recognised as the kind its format implies, and the
// second looks never change a kind the four tests gave.
#include "import/core/FileRecognition.h"
#include "common/FileLayer.h"
#include "import/gerber/ImportTestSupport.h"
#include "support/CorpusPath.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <tuple>

namespace tvx {
namespace {

std::string run(char c, std::size_t n) { return std::string(n, c); }

// The four tests alone, in their order.
ImportKind firstFour(std::string_view text) {
  using Test = ImportKind (*)(std::string_view);
  const Test tests[] = {IsGerber, IsExcellon, IsDxf, IsHpgl};
  for (Test test : tests)
    if (const ImportKind kind = test(text); kind != ImportKind::Unknown)
      return kind;
  return ImportKind::Unknown;
}

// An empty copper layer as a CAD tool writes it: attributes, format, unit and an aperture, no
// draws.
const std::string EmptyLayer = "G04 #@! TF.CreationDate,2020-01-01T12:00:00+01:00*\n"
                               "%TF.CreationDate,2020-01-01T12:00:00+01:00*%\n"
                               "%FSLAX46Y46*%\n%MOMM*%\n%LPD*%\n%ADD10C,0.100000*%\nM02*\n";

struct Case {
  const char* name;
  std::string text;
  int kind;
};

// Each of the four tests alone: the codes and blocks that decide it, and its character walk that
// rejects controls and long runs outside its character set.
TEST(KindTests, EachTestDecidesByItsOwnMarks) {
  const std::string flash = "X1Y1D03*\r\n", drill = "M48\nINCH\nT1C0.03\n%\nT1\nX1Y2\n";
  const std::string header = "0\nSECTION\n2\nHEADER\n0\nENDSEC\n";
  const std::string tables = "0\nSECTION\n2\nTABLES\n0\nENDSEC\n";
  const std::string entities = "0\nSECTION\n2\nENTITIES\n0\nENDSEC\n0\nEOF\n";
  const std::pair<ImportKind (*)(std::string_view), std::vector<Case>> groups[] = {
      {IsGerber,
       {
           {"move and draw", "X1Y1D02*X2Y2D01*", 2},
           {"flashes only", "X1Y1D03*X5D03*", 2},
           {"short flash only", "X1Y1D3*", 2},
           {"draws without move or flash", "X1Y1D01*X2Y2D01*", 0},
           {"short move without short draw", "X1Y1D2*X3D2*", 0},
           {"short move and draw", "X1Y1D2*X2D1*", 2},
           {"long move with short draw", "X1Y1D02*X2D1*", 0},
           {"code without its star", "X1Y1D03\n", 0},
           {"lower case", "x1y1d03*", 0},
           {"extended: %FS and %AD", "%FSLAX24Y24*%\n%ADD10C,0.01*%\nX1Y1D03*\n", 1},
           {"%FS without %AD", "%FSLAX24Y24*%\nX1Y1D03*\n", 2},
           {"%AD without %FS", "%ADD10C,0.01*%\nX1Y1D03*\n", 2},
           {"lower case block", "%fsLAX24Y24*%%ADD10C*%D03*", 2},
           {"tab in a comment", "G04 a\tcomment*\n" + flash, 0},
           {"NUL", flash + std::string(1, '\0'), 0},
           {"end-of-file mark", flash + "\x1A", 0},
           {"code 255", flash + "\xFF", 0},
           {"codes 128 and 254", flash + "\x80\xFE", 2},
           {"100 outside the set", run('c', 100) + flash, 2},
           {"101 outside the set", run('c', 101) + flash, 0},
           {"a set character clears", run('c', 100) + "*" + run('c', 100) + flash, 2},
           {"line ends do not clear", run('c', 60) + "\r\n" + run('c', 41) + flash, 0},
           {"line ends do not count", run('c', 60) + "\r\n" + run('c', 40) + flash, 2},
       }},
      {IsExcellon,
       {
           {"format two", "M48\nINCH,LZ\nT1C0.032\n%\nT1\nX1000Y2000\nM30\n", 3},
           {"metric header", "M48\nMETRIC\nT1C0.8\n%\nT1\nX10Y20\n", 3},
           {"header closed by M95", "M48\nINCH\nT1C0.03\nM95\nT1\nX1Y2\n", 3},
           {"unit behind the closing mark", "M48\nT1C0.03\n%\nINCH\nT1\nX1Y2\n", 4},
           {"percent ahead of M48 closes nothing", "%\nM48\nINCH\nT1C0.03\nT1\nX1Y2\n", 4},
           {"M71 stands for a header", "M71\nT1C0.8\nT1\nX1Y2\n", 3},
           {"M72 with T01", "M72\nT01C0.03\nT01\nX1Y2\n", 3},
           {"T001", "M48\nINCH\nT001C0.03\n%\nT001\nX1Y2\n", 3},
           {"header without definition", "M48\nINCH\n%\nT1\nX1Y2\n", 4},
           {"T10 calls but does not define T1", "M48\nINCH\nT10C0.03\n%\nT10\nX1Y2\n", 4},
           {"no header", "T1C0.03\nT1\nX1Y2\n", 4},
           {"header and definition, no X", "M48\nINCH\nT1C0.03\n%\nT1\nY2\nY3\n", 0},
           {"header and definition, no Y", "M48\nINCH\nT1C0.03\n%\nT1\nX2\n", 0},
           {"no tool one", "M48\nINCH\nT2C0.03\n%\nT2\nX1Y2\n", 0},
           {"lower case", "m48\ninch\nt1c0.03\n%\nt1\nx1y2\n", 0},
           {"tab", "M48\tINCH\nT1C0.03\n%\nT1\tX1Y2\n", 3},
           {"NUL", drill + std::string(1, '\0'), 0},
           {"100 outside the set", run('c', 100) + drill, 3},
           {"101 outside the set", run('c', 101) + drill, 0},
           {"a letter clears", run('c', 100) + "X" + run('c', 100) + drill, 3},
           {"a digit leaves one", run('c', 100) + "5" + run('c', 100) + drill, 0},
           {"a digit then 99", run('c', 100) + "5" + run('c', 99) + drill, 3},
       }},
      {IsDxf,
       {
           {"all three in order", header + tables + entities, 8},
           {"entities only", entities, 8},
           {"entities first in the text", "ENTITIES\n0\nEOF\n", 8},
           {"tables without header", tables + entities, 8},
           {"entities ahead of both", entities + header + tables, 8},
           {"tables ahead of header", tables + header + entities, 0},
           {"header without tables", header + entities, 0},
           {"header first in the text, no tables", "HEADER\n" + entities, 0},
           {"no entities", header + tables + "0\nEOF\n", 0},
           {"lower case", "entities\n", 0},
       }},
      // The first occurrence of each pen command must be followed soundly.
      {IsHpgl,
       {
           {"plain plot", "IN;SP1;PU0,0;PD100,0,100,100;PU;", 7},
           {"PUZZ fails all", "IN;SP1;PUZZ;PU0,0;PD100,100;", 0},
           {"later PUZZ is not looked at", "IN;PU0,0;PD1,1;PUZZ;", 7},
           {"a command follows", "INSP1PA10,10", 7},
           {"blanks and line ends passed over", "IN \r\n ;", 7},
           {"a pair with a bar of the table", "PUF|", 7},
           {"a letter then a digit", "PUa1", 7},
           {"a pair that is no command", "PUab", 0},
           {"command at the end", "SP1;PU", 0},
           {"only blanks to the end", "PU   \r\n", 0},
           {"relative pen", "PR10,10;", 7},
           {"no pen command", "SP1;LT;VS10;", 0},
           {"lower case", "in;pu;", 0},
           {"characters above 127", "PU\xC4\xD6", 0},
       }},
  };
  for (const auto& [test, cases] : groups)
    for (const Case& c : cases)
      EXPECT_EQ(static_cast<int>(test(c.text)), c.kind) << c.name;
}

TEST(RecogniseTextTest, FirstTestInTheFixedOrderWins) {
  struct Ordered {
    const char* name;
    std::string text;
    int gerber, excellon, dxf, hpgl, result;
  };
  const Ordered cases[] = {
      {"gerber before excellon", "T1C0.8\nT1\nX1Y1D03*\n", 2, 4, 0, 0, 2},
      {"tab sends gerber text on", "T1C0.8\tT1\nX1Y1D03*\n", 0, 4, 0, 0, 4},
      {"tab in a plain gerber comment: second look", "G04 a\tb*\nX1Y1D03*\n", 0, 0, 0, 0, 2},
      {"dxf before hpgl", "IN;PU0,0;\nENTITIES\n", 0, 0, 8, 7, 8},
      {"hpgl last", "IN;PU0,0;PD5,5;\n", 0, 0, 0, 7, 7},
      {"empty", "", 0, 0, 0, 0, 0},
      // T1 of a date with X and Y of the format passed the drill test; IN of %MOIN the plotter
      // test: Gerber headers are neither drill nor plotter files.
      {"empty layer", EmptyLayer, 0, 0, 0, 0, 1},
      {"format with inch unit", "%FSLAX24Y24*%\n%MOIN*%\nM02*\n", 0, 0, 0, 0, 2},
      {"format alone", "%FSLAX24Y24*%\nT1\nX1Y1\n", 0, 4, 0, 0, 4},
      {"unit alone", "%MOIN*%\nPU0,0;\n", 0, 0, 0, 7, 7},
  };
  for (const Ordered& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(static_cast<int>(IsGerber(c.text)), c.gerber);
    EXPECT_EQ(static_cast<int>(IsExcellon(c.text)), c.excellon);
    EXPECT_EQ(static_cast<int>(IsDxf(c.text)), c.dxf);
    EXPECT_EQ(static_cast<int>(IsHpgl(c.text)), c.hpgl);
    YieldClock clock;
    EXPECT_EQ(static_cast<int>(recogniseText(c.text, clock)), c.result);
  }
}

TEST(RecogniseTextTest, YieldsBetweenChunksWithoutChangingTheResult) {
  std::string text = "%FSLAX24Y24*%\n%ADD10C,0.01*%\n";
  while (text.size() < 20 * recognition::WalkChunk)
    text += "X123456Y654321D02*\r\nX654321D01*\r\n";
  int yields = 0;
  YieldClock everyChunk([&] { ++yields; }, std::chrono::milliseconds(0));
  EXPECT_EQ(recogniseText(text, everyChunk), ImportKind::ArtworkRS274X);
  EXPECT_GE(yields, 20);
  // The same text with a tab at its end: the walk runs to the last chunk before it rejects.
  text += "\t";
  yields = 0;
  EXPECT_EQ(IsGerber(text, everyChunk), ImportKind::Unknown);
  EXPECT_GE(yields, 20);
}

TEST(RecogniseTextTest, MatchesAcrossChunkBoundaries) {
  const std::size_t boundary = recognition::SearchChunk;
  // Searches: a code that straddles the end of the first chunk of a search is found.
  for (std::size_t shift = 1; shift < 4; ++shift) {
    SCOPED_TRACE(shift);
    std::string text = run('0', boundary - shift) + "D03*" + run('0', 100);
    EXPECT_EQ(IsGerber(text), ImportKind::ArtworkRS274D);
    text = run('0', boundary - shift) + "ENTITIES";
    EXPECT_EQ(IsDxf(text), ImportKind::Dxf);
  }
  // Walks: a run outside the set that straddles a chunk boundary still counts as one run.
  const std::size_t walk = recognition::WalkChunk;
  EXPECT_EQ(IsGerber("D03*" + run('0', walk - 54) + run('c', 101)), ImportKind::Unknown);
  EXPECT_EQ(IsGerber("D03*" + run('0', walk - 54) + run('c', 100) + "*"),
            ImportKind::ArtworkRS274D);
}

TEST(SecondChanceTest, EachLookTakesWhatTheFourTestsRefusedAndNothingElse) {
  using Look = ImportKind (*)(std::string_view);
  const Look gerber = SecondChanceGerber, drill = SecondChanceExcellon, plot = SecondChanceHpgl;
  const std::string nuls(300, '\0'), esc = "\x1b%0B";
  // Each row: the look, the text, the kind both the look and the whole recogniser give.
  const std::tuple<const char*, Look, std::string, int> cases[] = {
      {"rs274d padded with nuls", gerber, "X1Y1D02*\nX2Y2D01*\nM02*\n" + nuls, 2},
      {"rs274x padded with nuls", gerber, "%FSLAX24Y24*%%ADD10C,0.01*%D10*X1Y1D03*" + nuls, 1},
      {"tab in a comment", gerber, "G04 made\tby hand*\nX1Y1D03*\n", 2},
      {"long comment", gerber, "G04 " + run('c', 150) + "*\nX1Y1D03*\n", 2},
      {"empty layer", gerber, EmptyLayer, 1},
      {"aperture selection and a move", gerber, "G54D10*\nX0Y0D02*\nM02*\n", 2},
      {"nul inside the text", gerber, "X1Y1D03*" + std::string(1, '\0') + "X2D03*\n", 0},
      {"tab outside a comment", gerber, "X1Y1D03*\tX2Y2D03*\n", 0},
      {"selection below 10", gerber, "D5*\nM02*\n" + nuls, 0},
      {"aperture list", gerber, "D10 ROUND 4.00 0.102\nD11 SQUARE 6.00 0.152\n", 0},
      {"tools three and two", drill, "M48\nMETRIC,TZ\nT03C0.8\nT02C1.0\n%\nT03\nG00X2550Y8000\n",
       3},
      {"size behind further fields", drill, "M48\nINCH\nT02C0.008F1B1S6H2000\n%\nT02\nX1Y2\n", 3},
      {"tool without a size", drill, "M48\nINCH\n%\nT2\nX1Y2\n", 4},
      {"unit line without M48", drill, "INCH,LZ\nT4\nX100Y200\n", 4},
      {"no header", drill, "T2C0.03\nT2\nX1Y2\n", 0},
      {"coordinates only ahead of the tool", drill, "M48\nINCH\nX1Y2\nT2C0.03\nM30\n", 0},
      {"T without digits", drill, "M48\nINCH\nTX\nX1Y2\n", 0},
      {"control character", drill, "M48\nINCH\nT2\nX1Y2\n\x01", 0},
      {"escape, IN followed by PS", plot, esc + "BPINPSNPPC;PU20,1759;PD30,40;", 7},
      {"no escape", plot, "BPINPSNPPC;PU20,1759;PD30,40;", 0},
      {"a pen command fails too", plot, esc + "INPS;PUZZ;", 0},
      {"no pen command", plot, esc + "INPS;SP1;", 0},
  };
  for (const auto& [name, look, text, kind] : cases) {
    SCOPED_TRACE(name);
    EXPECT_EQ(static_cast<int>(look(text)), kind);
    YieldClock clock;
    EXPECT_EQ(static_cast<int>(recogniseText(text, clock)), kind);
    if (kind != 0) {
      EXPECT_EQ(firstFour(text), ImportKind::Unknown) << "a case of the four tests";
    }
  }
}

class FileRecogniserTest : public ::testing::Test {
protected:
  test::TempDir dir_;
  ScriptedPrompts prompts_;
  SystemServices services_{&prompts_};
  FileLayer files_{services_, &prompts_};
  FileRecogniser recogniser_{files_, services_};
};

TEST_F(FileRecogniserTest, LoadWholeFileKeepsEveryByteAndNamesTheFile) {
  const std::string bytes("G04 x*\r\nX1\0\0Y2D03*\n\xFF\x01 end", 23);
  const std::string path = dir_.write("bytes.gbr", bytes);
  std::vector<std::string> lines;
  recogniser_.editMsgLine = [&](const std::string& line) { lines.push_back(line); };
  std::string text = "stale";
  ASSERT_TRUE(recogniser_.LoadWholeFile(path, text));
  EXPECT_EQ(text, bytes);
  EXPECT_EQ(lines, std::vector<std::string>{path + " Processing"});
  EXPECT_TRUE(prompts_.shown.empty());
  EXPECT_EQ(files_.openCount(), 0);

  // The word comes from the catalogue.
  dir_.write("GBRVIEWER.MSG", "62441\tVerarbeitung\n");
  services_.loadCatalogue(dir_.path().string());
  ASSERT_TRUE(recogniser_.LoadWholeFile(path, text));
  EXPECT_EQ(lines.back(), path + " Verarbeitung");
}

TEST_F(FileRecogniserTest, UnreadableFilesGiveUnknownAndTheReadMessage) {
  const std::string missing = dir_.file("missing.gbr");
  const std::string folder = dir_.file("folder.gbr");
  std::filesystem::create_directory(folder);
  for (const std::string& path : {missing, folder}) {
    SCOPED_TRACE(path);
    prompts_.shown.clear();
    std::string text = "stale";
    EXPECT_FALSE(recogniser_.LoadWholeFile(path, text));
    EXPECT_EQ(text, "");
    EXPECT_EQ(recogniser_.RecogniseFile(path), ImportKind::Unknown);
    ASSERT_EQ(prompts_.shown.size(), 2u);
    EXPECT_EQ(prompts_.shown[0].prompt, "Can't read file: " + path);
    EXPECT_EQ(prompts_.shown[0].flags & msgbox::IconMask, msgbox::Exclamation);
    EXPECT_FALSE(prompts_.shown[0].title.empty());
    EXPECT_EQ(files_.openCount(), 0);
  }
}

TEST_F(FileRecogniserTest, KindsOfFilesWithEmptyAndBinaryContents) {
  int32_t unit = 1;
  recogniser_.gerberUnit = &unit;
  const std::string nul(3, '\0');
  struct FileCase {
    const char* name;
    std::string bytes;
    ImportKind kind;
    int32_t unit;
  };
  const FileCase cases[] = {
      {"empty", "", ImportKind::Unknown, 1},
      {"rs274d", "X1Y1D02*X2D01*M02*\n", ImportKind::ArtworkRS274D, 1},
      {"entities behind nuls", "0\nSECTION" + nul + "2\nENTITIES\n0\nEOF\n", ImportKind::Dxf, 1},
      {"rs274x", "%FSLAX24Y24*%%ADD10C,0.01*%D10*X1Y1D03*M02*\n", ImportKind::ArtworkRS274X, 0},
  };
  for (const FileCase& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(recogniser_.RecogniseFile(dir_.write(c.name, c.bytes)), c.kind);
    EXPECT_EQ(unit, c.unit);
  }
  EXPECT_TRUE(prompts_.shown.empty());
}

// Files larger than the prefix that recognition looks at first: refused on it when it shows the
// marks of no kind (binary noise, text without a Gerber, drill, drawing or plotter mark), read
// whole when a test could still take them.
TEST_F(FileRecogniserTest, LargeFilesAreJudgedByTheirPrefix) {
  const size_t large = recognition::PrefixBytes + 4096;
  std::string noise(large, '\0');
  uint32_t state = 7;
  for (char& c : noise) {
    state = state * 1664525u + 1013904223u;
    c = static_cast<char>(state >> 24);
  }
  const std::string devices(large, '\x01');  // control bytes of a plotter's device sequences
  std::string prose;
  while (prose.size() < large)
    prose += "the copper of the board, a trace; a hole\n";
  const std::string codes = "X1Y1D02*X2D01*M02*\n";
  struct LargeCase {
    const char* name;
    std::string bytes;
    ImportKind kind;
    Refusal refusal;
  } cases[] = {
      {"noise", noise, ImportKind::Unknown, Refusal::Unrecognised},
      {"noise with drawing codes beyond the prefix", noise + codes, ImportKind::Unknown,
       Refusal::Unrecognised},
      {"text with drawing codes beyond the prefix", prose + codes, ImportKind::Unknown,
       Refusal::Unrecognised},
      {"binary drawing file", "AutoCAD Binary DXF\r\n\x1a" + devices + "\nENTITIES\n",
       ImportKind::Dxf, Refusal::None},
      {"plotter commands among device codes", "IN;SP1;PU0,0;PD100,0;" + devices, ImportKind::Hpgl,
       Refusal::None},
      {"drawing codes, then blank lines", codes + std::string(large, '\n'),
       ImportKind::ArtworkRS274D, Refusal::None},
      {"a drill file", "M48\nINCH\nT1C0.02\n%\nT1\n" + std::string(large, '\n') + "X1Y1\nM30\n",
       ImportKind::ExcellonFormatTwo, Refusal::None},
  };
  for (const LargeCase& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(recogniser_.RecogniseFile(dir_.write("large.bin", c.bytes)), c.kind);
    EXPECT_EQ(recogniser_.refusal, c.refusal);
  }
}

const std::string CorpusDir = test::corpusDir();

// Kinds that a format of the manifest implies. Aperture tables and the rest are no import files.
std::set<int> impliedKinds(const std::string& format) {
  static const std::map<std::string, std::set<int>> kinds = {
      {"gerber-x", {1}}, {"gerber-d", {2}}, {"excellon", {3, 4}}, {"dxf", {8}}, {"hpgl", {7}}};
  auto it = kinds.find(format);
  return it == kinds.end() ? std::set<int>{0} : it->second;
}

// The files that only a second look recognises, and the look that does.
const std::map<std::string, ImportKind (*)(std::string_view)> SecondLooks = {
    {"gerbv/ekf/l1.off", SecondChanceGerber},
    {"boards/gerbv-ekf2/l0.grb", SecondChanceGerber},
    {"gerbv/amacro-ref/jj1.drl", SecondChanceExcellon},
    {"gerbv/test-inputs/test-drill-slot-drilled-g85.exc", SecondChanceExcellon},
    {"boards/limesdr-mini-1v3/LimeSDR_Mini_1v3_Rounded_panel-SlotHoles.TXT", SecondChanceExcellon},
    {"hp2xx/hp-tests/spectrum.plt", SecondChanceHpgl},
};

TEST(RecognitionCorpusTest, EveryFileIsTheKindItsFormatImplies) {
  if (CorpusDir.empty())
    GTEST_SKIP() << "no corpus found (set TVX_CORPUS_DIR)";
  std::vector<test::ManifestEntry> entries = test::readManifest(CorpusDir);
  const std::vector<test::ManifestEntry> boards = test::readManifest(CorpusDir + "/boards");
  ASSERT_FALSE(entries.empty());
  ASSERT_FALSE(boards.empty());
  entries.insert(entries.end(), boards.begin(), boards.end());

  ScriptedPrompts prompts;
  SystemServices services(&prompts);
  FileLayer files(services, &prompts);
  FileRecogniser recogniser(files, services);
  std::set<std::string> seen;
  for (const test::ManifestEntry& e : entries) {
    SCOPED_TRACE(e.path + " (" + e.format + ")");
    const int kind = static_cast<int>(recogniser.RecogniseFile(CorpusDir + "/" + e.path));
    EXPECT_TRUE(impliedKinds(e.format).count(kind)) << "recognised as " << kind;

    const std::string text = test::readBytes(CorpusDir + "/" + e.path);
    const ImportKind first = firstFour(text);
    const auto look = SecondLooks.find(e.path);
    if (look == SecondLooks.end()) {
      EXPECT_EQ(static_cast<int>(first), kind) << "the four tests decide this file";
      continue;
    }
    seen.insert(e.path);
    EXPECT_EQ(first, ImportKind::Unknown);
    EXPECT_EQ(static_cast<int>(look->second(text)), kind);
  }
  EXPECT_EQ(seen.size(), SecondLooks.size()) << "a file of the second looks left the manifest";
  EXPECT_TRUE(prompts.shown.empty());
}

}  // namespace
}  // namespace tvx
