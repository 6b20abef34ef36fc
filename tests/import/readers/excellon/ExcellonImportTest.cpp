// Reading a drill file into blocks, and the import of its holes: placement, mirror, modal
// registers, the tool table of the dialog, and the stop at a coordinate beyond the world.
#include "import/readers/excellon/ExcellonTestSupport.h"

#include "common/FileLayer.h"

#include <fstream>

namespace tvx {
namespace {

using test::drillFile;
using test::makeLayer;
using test::Pad;
using test::padsOf;

constexpr int32_t Mm = 100000;

class ImportExcellonTest : public test::ExcellonTest {
protected:
  ImportExcellonTest() { format = {1, 3, 3, 0}; }  // millimetres, 3.3, left-aligned

  // Scans as the layer binding does, then imports.
  int32_t import(const std::string& text, LayerFileRecord& file, int32_t status = 0) {
    reader.ScanExcellonText(text, file.Tools, false, false);
    reader.ImportExcellon(status, text, drill, file);
    return status;
  }

  LayerRecord drill = makeLayer(store, 31, 6);
};

TEST_F(ImportExcellonTest, HolesAreCentredMovedByTheOffsetsAndMirrored) {
  // The pads of "X10.0Y20.0" and "X30.0Y60.0", millimetres.
  struct Case {
    const char* name;
    bool original, mirror;
    int32_t offsetX, offsetY;
    int32_t x1, y1, x2, y2;
  } cases[] = {
      {"centred", false, false, 0, 0, -10 * Mm, -20 * Mm, 10 * Mm, 20 * Mm},
      // The mirror axis of a centred file is its offset.
      {"centred, moved, mirrored", false, true, 500, 700, 10 * Mm + 500, -20 * Mm + 700,
       -10 * Mm + 500, 20 * Mm + 700},
      {"own coordinates", true, false, 0, 0, 10 * Mm, 20 * Mm, 30 * Mm, 60 * Mm},
      // With the file's own coordinates the axis is still half the width: x becomes 20 mm - x.
      {"own coordinates, mirrored", true, true, 0, 0, 10 * Mm, 20 * Mm, -10 * Mm, 60 * Mm},
      {"own coordinates, moved", true, false, -3, 4, 10 * Mm - 3, 20 * Mm + 4, 30 * Mm - 3,
       60 * Mm + 4},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EnsureLayerSymbol(store, drill, true);
    LayerFileRecord file = drillFile();
    file.OriginalCoordinates = c.original;
    file.Mirror = c.mirror;
    file.OffsetX = c.offsetX;
    file.OffsetY = c.offsetY;
    EXPECT_EQ(import("T1C1|X10.0Y20.0|X30.0Y60.0|", file, 1), 0);  // an inherited failure goes
    EXPECT_EQ(padsOf(store, drill), (std::vector<Pad>{{c.x1, c.y1, 1}, {c.x2, c.y2, 1}}));
    // Kept coordinates leave the minima at 0 for the ones that follow.
    EXPECT_EQ(extents.MinX, c.original ? 0.0 : 10.0 * Mm);
    EXPECT_EQ(extents.MinY, c.original ? 0.0 : 20.0 * Mm);
  }
}

TEST_F(ImportExcellonTest, CoordinateRegistersAreModalEvenAcrossFiles) {
  LayerFileRecord file = drillFile();
  EXPECT_EQ(import("T1C1|X1.0Y2.0|X3.0|Y4.0|", file), 0);
  EXPECT_EQ(padsOf(store, drill),
            (std::vector<Pad>{{1 * Mm, 2 * Mm, 1}, {3 * Mm, 2 * Mm, 1}, {3 * Mm, 4 * Mm, 1}}));
  // The next file gives no Y yet: the last file's Y stands.
  LayerFileRecord next = drillFile();
  EXPECT_EQ(import("T1C1|X5.0|", next), 0);
  EXPECT_EQ(padsOf(store, drill).back(), (Pad{5 * Mm, 4 * Mm, 1}));
}

TEST_F(ImportExcellonTest, ACoordinateBeyondTheWorldStopsTheImportAndKeepsWhatWasPlaced) {
  LayerFileRecord file = drillFile();
  EXPECT_EQ(import("T1C1|X1.0Y1.0|X2.0Y2.0|X99999999999999|X3.0Y3.0|", file), 1);
  EXPECT_EQ(padsOf(store, drill), (std::vector<Pad>{{1 * Mm, 1 * Mm, 1}, {2 * Mm, 2 * Mm, 1}}));
  ASSERT_EQ(boxes().size(), 1u);
  EXPECT_NE(boxes()[0].find("Coordinates outside limits"), std::string::npos);

  // Exactly at the limit is inside.
  reporting.prompts.shown.clear();
  EnsureLayerSymbol(store, drill, true);
  LayerFileRecord edge = drillFile();
  EXPECT_EQ(import("T1C1|X2200.0Y-2200.0|", edge), 0);
  EXPECT_EQ(padsOf(store, drill), (std::vector<Pad>{{220000000, -220000000, 1}}));
  EXPECT_TRUE(boxes().empty());
}

TEST_F(ImportExcellonTest, TheDialogsToolSizesReachThePads) {
  // The user gave tool 1 its own size; tool 2 is new to the table and has none.
  LayerFileRecord file = drillFile({{1, 12345, 1, 0}});
  const std::string text = "T1C0.5|T2C0.6|X1.0Y1.0|T2|X2.0Y2.0|T1|X1.0Y1.0|";
  int32_t status = 0;
  reader.ImportExcellon(status, text, drill, file);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(file.Tools, (std::vector<ToolEntry>{{1, 12345, 1, 1}, {2, 0, 1, 2}}));
  EXPECT_EQ(padsOf(store, drill), (std::vector<Pad>{{1 * Mm, 1 * Mm, 1}}));
  EXPECT_EQ(reader.LastImport, (HoleTally{1, 0, 2, 0}));
  PadStackRecord hole;
  store.S_ReadPadStack(store.OM_Object(store.S_SymbolPadStackMap(drill.SymbolHandle), 1), hole);
  EXPECT_EQ(hole.HoleDiameter, 12344);  // twice the radius 6172.5 rounded to even
}

TEST_F(ImportExcellonTest, HolesWithoutAKnownToolGoOnlyIntoOtherLayers) {
  // Coordinates before any tool, and a tool that is used but never given a size.
  const std::string text = "X1.0Y1.0|T5|X2.0Y2.0|T1C1|X3.0Y3.0|";
  LayerFileRecord file = drillFile();
  EXPECT_EQ(import(text, file), 0);
  EXPECT_EQ(padsOf(store, drill), (std::vector<Pad>{{3 * Mm, 3 * Mm, 1}}));
  EXPECT_EQ(reader.LastImport.WithoutSize, 2);

  LayerRecord artwork = makeLayer(store, 3, 5);
  LayerFileRecord other = drillFile();
  int32_t status = 0;
  reader.ScanExcellonText(text, other.Tools, false, false);
  reader.ImportExcellon(status, text, artwork, other);
  EXPECT_EQ(padsOf(store, artwork),
            (std::vector<Pad>{{1 * Mm, 1 * Mm, 0}, {2 * Mm, 2 * Mm, 5}, {3 * Mm, 3 * Mm, 1}}));
}

TEST_F(ImportExcellonTest, ASecondProgramUsesItsOwnTools) {
  LayerFileRecord file = drillFile();
  EXPECT_EQ(import("T1C1|X1.0Y1.0|M30|T1C2|X2.0Y2.0|", file), 0);
  EXPECT_EQ(padsOf(store, drill), (std::vector<Pad>{{1 * Mm, 1 * Mm, 1}, {2 * Mm, 2 * Mm, 101}}));
  EXPECT_EQ(file.Tools, (std::vector<ToolEntry>{{1, 100000, 1, 1}, {101, 200000, 1, 1}}));
}

class ReadExcellonTextTest : public ::testing::Test {
protected:
  std::string write(const std::string& bytes) {
    const std::string path = folder.file("drill.txt");
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
  }

  test::TempDir folder;
  test::Reporting reporting;
  FileLayer files{reporting.services, &reporting.prompts};
};

TEST_F(ReadExcellonTextTest, LinesBecomeUpperCaseBlocksWithoutComments) {
  std::string text;
  std::vector<std::string> lines;
  const std::string path =
      write("m48\r\n  inch,lz ; comment\r\n\r\n;only a comment\n\tT1c0.02\rx1y1  \n   \nM30");
  EXPECT_TRUE(ReadExcellonText(files, reporting.services, path, text,
                               [&](const std::string& line) { lines.push_back(line); }));
  EXPECT_EQ(text, "M48|INCH,LZ |T1C0.02|X1Y1|M30|");
  EXPECT_EQ(lines, std::vector<std::string>{path + " Processing"});
  EXPECT_TRUE(reporting.prompts.shown.empty());
  EXPECT_EQ(files.openCount(), 0);

  EXPECT_TRUE(ReadExcellonText(files, reporting.services, write(""), text));
  EXPECT_EQ(text, "");
  const std::string longLine(3'000'000, '7');
  EXPECT_TRUE(ReadExcellonText(files, reporting.services, write("x" + longLine), text));
  EXPECT_EQ(text, "X" + longLine + "|");
}

TEST_F(ReadExcellonTextTest, AFileThatCannotBeReadGivesFalseAndAMessage) {
  for (const std::string& path : {folder.file("missing.drl"), folder.path().string()}) {
    SCOPED_TRACE(path);
    reporting.prompts.shown.clear();
    std::string text = "stale";
    EXPECT_FALSE(ReadExcellonText(files, reporting.services, path, text));
    EXPECT_EQ(text, "");
    ASSERT_EQ(reporting.prompts.shown.size(), 1u);
    EXPECT_EQ(reporting.prompts.shown[0].prompt, "Can't read file: " + path);
    EXPECT_EQ(files.openCount(), 0);
  }
}

}  // namespace
}  // namespace tvx
