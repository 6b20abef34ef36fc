// A file from its path into its layer without a window: a drill file's recognition, stage-one scan
// and binding, import, and every way it can fail on the way; the session's yield; Gerber files, the
// scan's work folder and every Gerber file of the shared corpus.
// The import settings: lenient reading of hand-edited values, and values written by one run read
// back the same by the next.
#include "import/gerber/ImportTestSupport.h"
#include "import/readers/ImportSettings.h"
#include "import/readers/excellon/ExcellonTestSupport.h"
#include "platform/IniFile.h"
#include "platform/SystemServices.h"
#include "platform/ViewerWorkFolder.h"
#include "support/CorpusPath.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace tvx {
namespace {

using test::Pad;

constexpr int32_t DrillLayer = 31;

std::string repeated(const std::string& text, size_t times) {
  std::string out;
  for (size_t i = 0; i < times; ++i)
    out += text;
  return out;
}

struct ImportSessionTest : ::testing::Test, test::ImportWorld {
  LayerRecord& drill() { return layer(DrillLayer); }
  std::vector<Pad> drillPads() { return pads(DrillLayer); }
};

constexpr const char* FormatTwo = "M48\r\n; a comment\r\nINCH,TZ\r\nT1C0.02\r\nT2C0.04\r\n%\r\n"
                                  "T1\r\nX1000Y1000\r\nX2000Y2000\r\nT2\r\nX3000Y3000\r\nM30\r\n";

TEST_F(ImportSessionTest, AFormatOneFileStartsFromWhatItStatesAndKeepsTheUsersCorrections) {
  // A stored format of another file; this one states its digits in a comment and shows by its
  // leading zeros that its numbers are left-aligned.
  session->excellonFormat = {1, 3, 3, 1};
  SaveExcellonSettings(reporting.services, session->excellonFormat);
  const std::string path = write("one.drl", ";FILE_FORMAT=2:5\nT1C0.02\nT1\nX0152Y00455\n");
  const ImportResult result = run(path);
  EXPECT_EQ(std::pair(result.status, result.kind), std::pair(0, ImportKind::ExcellonFormatOne));
  // Millimetres stay (nothing states a unit), the digits and zeros are the file's.
  EXPECT_EQ(session->excellonFormat, (ExcellonFormat{1, 2, 5, 0}));
  // The user corrects the digits in the grid; the next run of stage one on the same file keeps
  // them, a new file starts from its statements again.
  session->excellonFormat.XYFormB = 3;
  EXPECT_EQ(session->applyFile(tables->Layers, true), ScanResult::Scanned);
  EXPECT_EQ(session->excellonFormat, (ExcellonFormat{1, 3, 5, 0}));
  run(path);
  EXPECT_EQ(session->excellonFormat, (ExcellonFormat{1, 2, 5, 0}));
}

TEST(ImportSessionsSideBySide, TwoViewersOnOneWorkDirectoryDoNotSeeEachOthersFiles) {
  // Two viewers on one work directory, each scanning its own board before either draws.
  test::TempDir work;
  const std::string boards[] = {TVX_SOURCE_DIR "/samples/demo-top.gbr",
                                TVX_SOURCE_DIR "/samples/demo-silk-top.gbr"};
  const auto alone = [](const std::string& path) {
    test::ImportWorld world;
    ImportOptions options;
    options.layer = 3;
    world.run(path, options);
    return world.items(3).size();
  };
  test::ImportWorld worlds[2];
  std::unique_ptr<ViewerWorkFolder> folders[2];
  for (int i = 0; i < 2; ++i) {
    folders[i] = std::make_unique<ViewerWorkFolder>(work.path().string());
    ImportSession& session = *worlds[i].session;
    session.state.Job.WorkDirectory = folders[i]->path();
    session.startJob(boards[i], ImportKind::ArtworkRS274X);
    ASSERT_EQ(session.applyFile(worlds[i].tables->Layers, true), ScanResult::Scanned);
  }
  for (int i = 0; i < 2; ++i) {
    SCOPED_TRACE(boards[i]);
    ImportSession& session = *worlds[i].session;
    session.chooseLayer(worlds[i].tables->Layers, 3, true);
    EXPECT_EQ(session.importBoundLayer(worlds[i].tables->Layers), 0);
    EXPECT_EQ(worlds[i].items(3).size(), alone(boards[i]));
  }
}

TEST_F(ImportSessionTest, AChosenKindSkipsRecognition) {
  // Without a header or a unit line, and without a call of tool one, the text is not recognised;
  // the user may still choose Excellon. It has no header unit, so it is read as Format One.
  const std::string path = write("t3.drl", "T03C0.8\nM71\nT03\nX2550Y80000\n");
  EXPECT_EQ(run(path).status, 1);
  EXPECT_EQ(boxes(),
            std::vector<std::string>{path + " - import of files in this format is not supported"});
  EXPECT_TRUE(drillPads().empty());

  ImportOptions chosen;
  chosen.kind = ImportKind::ExcellonFormatTwo;
  const ImportResult result = run(path, chosen);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.kind, ImportKind::ExcellonFormatOne);
  EXPECT_EQ(drillPads(), (std::vector<Pad>{{255000, 8000000, 3}}));
}

TEST_F(ImportSessionTest, AFileThatCannotBeReadLeavesTheLayerAsItWas) {
  ASSERT_EQ(run(write("board.txt", FormatTwo)).status, 0);
  const std::string missing = folder.file("missing.drl");
  const ImportResult result = run(missing);
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.layer, 0);
  // Said once, by the file layer; no second box calls it of an unsupported format.
  EXPECT_EQ(boxes(), (std::vector<std::string>{"Can't read file: " + missing}));
  EXPECT_EQ(drillPads().size(), 3u);
  EXPECT_EQ(session->state.Job.SourcePath, missing);
  EXPECT_TRUE(session->state.Job.ExcellonText.empty());  // nothing of the last file's scan stays
}

TEST_F(ImportSessionTest, WithoutAListedDrillLayerNothingIsBound) {
  drill().Listed = false;
  const ImportResult result = run(write("board.txt", FormatTwo));
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.layer, 0);
  EXPECT_EQ(boxes(), std::vector<std::string>{folder.file("board.txt") + " No available layers"});
  EXPECT_TRUE(drillPads().empty());
}

TEST_F(ImportSessionTest, BadInputEndsWithAStatusNeverACrash) {
  struct Case {
    std::string text;
    int32_t status;
    size_t pads;
  } cases[] = {
      {"T1C0.1\nT1\nX" + std::string(5'000'000, '1') + "Y1\n", 0, 1},  // five million digits
      {"T1\nX01Y01\nT7\nX02Y02\n", 0, 0},                              // tools never sized
      {"T1\nX01Y01\nT1C0.05\nX09Y09\n", 0, 2},    // a tool used before its size
      {"X01Y01\nT1C0.05\nT1\nX09Y09\n", 0, 1},    // coordinates without a tool
      {"T1C0.5\nT1\nX99999999999.5Y01\n", 1, 0},  // an absurd coordinate
      // An absurd tool size: a pad that covers the world; a hole beside its centre is still a
      // hole of its own.
      {"T1C99999999999\nT1\nX01Y01\nX02Y02\nX01Y01\n", 0, 2},
      // An absurd tool number.
      {"T1C0.1\nT99999999999999C0.2\nT1\nX01Y01\nT99999999999999\nX09Y09\n", 0, 2},
      {repeated("M30\n", 200'000) + "T1C0.1\nT1\nX01Y01\n", 0, 1},  // many ends of programs
      {std::string("\x01\x02T1\xffX1Y1\x00", 10), 1, 0},            // binary junk
      {"", 1, 0},                                                   // an empty file
      // Gerber goes into the first artwork layer offered, never the drill layer.
      {"%FSLAX24Y24*%\n%ADD10C,0.1*%\nD10*\nX0Y0D03*\n", 0, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text.substr(0, 40));
    const ImportResult result = run(write("bad.drl", c.text));
    EXPECT_EQ(result.status, c.status);
    EXPECT_EQ(drillPads().size(), c.pads);
    EnsureLayerSymbol(kernel->store, drill(), true);
  }
}

// The session's yield serves every reading; a file's own yield replaces it for that file only.
TEST_F(ImportSessionTest, AFilesOwnYieldServesThatFileOnly) {
  int sessionYields = 0, fileYields = 0;
  session->setYield([&] { ++sessionYields; });
  ImportOptions options;
  options.yield = [&] { ++fileYields; };
  const std::string path =
      write("board.drl", "M48\r\nINCH,TZ\r\nT1C0.02\r\n%\r\nT1\r\nX1000Y1000\r\nM30\r\n");
  EXPECT_EQ(run(path, options).status, 0);
  // After the file, the readers hand control through the session's yield again.
  ASSERT_TRUE(session->gerberPass.yield && session->excellon.yield);
  session->gerberPass.yield();
  session->excellon.yield();
  EXPECT_EQ(sessionYields, 2);
  session->setYield({});
  EXPECT_FALSE(session->gerberPass.yield || session->excellon.yield);
  EXPECT_EQ(run(path).status, 0) << "a session without a yield reads through";
}

// Gerber files from their path into an artwork layer without a window: the scan's work folder, and
// every Gerber file of the shared corpus imported into the first layer offered.
TEST(GerberImport, WithoutAWorkDirectoryTheScanGoesToTheTemporaryFolder) {
  test::ImportWorld world;
  const std::string path =
      world.write("pad.gbr", "%FSLAX24Y24*%%MOIN*%%ADD10C,0.01*%D10*X0Y0D03*M02*");
  world.session->state.Job.WorkDirectory.clear();
  EXPECT_EQ(world.run(path).status, 0);
  const std::filesystem::path art = world.session->state.Job.IntermediatePath;
  EXPECT_EQ(art.parent_path(), std::filesystem::temp_directory_path());
  EXPECT_EQ(art.filename(), "TMP.ART");
  std::error_code ec;
  std::filesystem::remove(art, ec);
}

TEST(GerberImport, EveryCorpusGerberFileImportsWithAPlausibleFrame) {
  const std::string dir = test::corpusDir();
  if (dir.empty())
    GTEST_SKIP() << "no corpus found (set TVX_CORPUS_DIR)";
  const auto files = test::manifestFiles(dir, "gerber");
  ASSERT_GE(files.size(), 10u);
  for (const auto& [path, format] : files) {
    SCOPED_TRACE(path);
    test::ImportWorld world;
    ImportResult result = world.run(dir + "/" + path);
    if (format == "gerber-d") {
      // A plain RS-274-D file is read in the settings' format, which need not be its own: its
      // coordinates lie beyond the world when kept in place, so it is centred.
      EXPECT_EQ(result.kind, ImportKind::ArtworkRS274D);
      EXPECT_EQ(world.reporting.prompts.shown.size(), 1u);
      world.reporting.prompts.shown.clear();
      ImportOptions centred;
      centred.noCenter = false;
      result = world.run(dir + "/" + path, centred);
    }
    for (const auto& shown : world.reporting.prompts.shown)
      ADD_FAILURE() << "message: " << shown.prompt;
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(isGerberKind(result.kind)) << int(result.kind);
    if (result.layer < 1) {
      ADD_FAILURE() << "no layer bound";
      continue;
    }
    EXPECT_FALSE(world.items(result.layer).empty());
    FrameRect frame;
    ASSERT_NE(
        world.kernel->store.S_FrameSymbolItems(world.layer(result.layer).SymbolHandle, -1, frame),
        0);
    // The frame meets the scanned extents (centred when the file was) and reaches beyond them by
    // no more than the largest flash of these files, a 2 inch circle.
    FileExtents e = result.scanned;
    if (!world.layer(result.layer).Files.at(0).OriginalCoordinates) {
      const double halfX = (e.MaxX - e.MinX) / 2, halfY = (e.MaxY - e.MinY) / 2;
      e = {-halfX, -halfY, halfX, halfY};
    }
    constexpr double Reach = 30 * StoreUnitsPerMm;
    EXPECT_LT(frame.MinX, e.MaxX);
    EXPECT_GT(frame.MaxX, e.MinX);
    EXPECT_LT(frame.MinY, e.MaxY);
    EXPECT_GT(frame.MaxY, e.MinY);
    EXPECT_GE(frame.MinX, e.MinX - Reach);
    EXPECT_LE(frame.MaxX, e.MaxX + Reach);
    EXPECT_GE(frame.MinY, e.MinY - Reach);
    EXPECT_LE(frame.MaxY, e.MaxY + Reach);
  }
}

class ImportSettingsTest : public ::testing::Test {
protected:
  ImportSettingsTest() { services.SetIniFile(folder.file("tarvex.ini")); }
  void writeSettings(const std::string& text) {
    std::ofstream(folder.file("tarvex.ini"), std::ios::binary) << text;
  }
  std::vector<std::string> keysOf(const std::string& section) {
    return IniDocument(test::readBytes(folder.file("tarvex.ini"))).keys(section);
  }

  test::TempDir folder;
  SystemServices services;
};

TEST_F(ImportSettingsTest, HandEditedValuesAreReadLenientlyAndWithoutRangeChecks) {
  writeSettings("[DXF]\nXYunit=0\nScale=1,5\n"
                "[EXCELLON]\nXYunit=7\nXYFormB=2.5\nXYFormA=3,5\nOMZeros=none\n"
                "[GERBER]\nXYFormBX=-4\nXScale= 2.25mm\nYScale=1e3\n");
  DxfFormat dxf;
  LoadDxfSettings(services, dxf);
  EXPECT_EQ(dxf, (DxfFormat{0, 1.5}));  // the first comma is the decimal point
  ExcellonFormat excellon;
  LoadExcellonSettings(services, excellon);
  // 7 is out of range and kept, halves go to the even neighbour, "none" holds no number.
  EXPECT_EQ(excellon, (ExcellonFormat{7, 2, 4, 0}));
  GerberFormat gerber;
  LoadGerberSettings(services, gerber);
  EXPECT_EQ(gerber.IntegerDigits[AxisX], -4);
  EXPECT_EQ(gerber.DecimalDigits[AxisX], 3);  // missing key: its default
  EXPECT_DOUBLE_EQ(gerber.Scale[AxisX], 2.25);
  EXPECT_DOUBLE_EQ(gerber.Scale[AxisY], 1000.0);
}

TEST_F(ImportSettingsTest, SavedGroupsReadBackTheSameInAFreshServiceObject) {
  const ExcellonFormat excellon{1, 3, 3, 1};
  const GerberFormat gerber{1, {4, 3}, {2, 5}, 1, {0.3937007874015748, -2.5}};
  const DxfFormat dxf{0, 1e-7};
  SaveExcellonSettings(services, excellon);
  SaveGerberSettings(services, gerber);
  SaveDxfSettings(services, dxf);

  SystemServices fresh;
  fresh.SetIniFile(folder.file("tarvex.ini"));
  ExcellonFormat excellonRead;
  GerberFormat gerberRead;
  DxfFormat dxfRead;
  LoadExcellonSettings(fresh, excellonRead);
  LoadGerberSettings(fresh, gerberRead);
  LoadDxfSettings(fresh, dxfRead);
  EXPECT_EQ(excellonRead, excellon);
  EXPECT_EQ(gerberRead, gerber);  // doubles bit for bit
  EXPECT_EQ(dxfRead, dxf);

  // Every key of a group, in the order of loading.
  EXPECT_EQ(keysOf("EXCELLON"),
            (std::vector<std::string>{"XYunit", "XYFormB", "XYFormA", "OMZeros"}));
  EXPECT_EQ(keysOf("GERBER"),
            (std::vector<std::string>{"XYunit", "XYFormBX", "XYFormAX", "XYFormBY", "XYFormAY",
                                      "OMZeros", "XScale", "YScale"}));
  EXPECT_EQ(keysOf("DXF"), (std::vector<std::string>{"XYunit", "Scale"}));
  // Numbers that are not negative begin with a blank.
  EXPECT_EQ(fresh.GetIniString("GERBER", "XYFormBX", ""), " 4");
  EXPECT_EQ(fresh.GetIniString("DXF", "XYunit", ""), " 0");
  EXPECT_EQ(fresh.GetIniString("GERBER", "YScale", ""), "-2.5");
}

}  // namespace
}  // namespace tvx
