// TMP.ART: the layout of a record, random access by record number, truncated files; the table
// part with its sections written by the pass and read back, edited sizes written into place, and
// the buffered record streams underneath.
#include "import/gerber/ArtFile.h"
#include "GerberPassSupport.h"
#include "import/gerber/ApertureSummary.h"
#include "import/gerber/ArtSections.h"
#include "import/gerber/ArtStream.h"
#include "import/gerber/ImportTestSupport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace tvx {
namespace {

using test::TempDir;

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

TEST(ArtFileTest, RandomAccessByRecordNumber) {
  TempDir dir;
  // An earlier scan's file is removed, not overwritten in part.
  const std::string path = dir.write("TMP.ART", std::string(100, 'x'));
  ArtFile art;
  ASSERT_TRUE(art.create(path));
  EXPECT_EQ(art.recordCount(), 0);
  for (int i = 1; i <= 7; ++i)
    ASSERT_TRUE(art.append({static_cast<uint8_t>(i), i * 10, i * 1.5, -i * 2.5}));
  // Header records are written into place last, over their placeholders.
  ASSERT_TRUE(art.write(2, {1, 6, 123.25, -7.0}));
  ArtRecord r;
  ASSERT_TRUE(art.read(2, r));
  EXPECT_EQ(r, (ArtRecord{1, 6, 123.25, -7.0}));
  ASSERT_TRUE(art.read(7, r));
  EXPECT_EQ(r, (ArtRecord{7, 70, 10.5, -17.5}));
  EXPECT_EQ(art.recordCount(), 7);
  // Writing past the end fills the records between with zeros.
  ASSERT_TRUE(art.write(10, {9, 0, 0, 0}));
  ASSERT_TRUE(art.read(8, r));
  EXPECT_EQ(r, ArtRecord{});
  EXPECT_EQ(art.recordCount(), 10);
  art.close();

  const std::string bytes = test::readBytes(path);
  ASSERT_EQ(bytes.size(), 210u);
  EXPECT_EQ(
      bytes.substr(21, 21),
      std::string(reinterpret_cast<const char*>(encodeArtRecord({1, 6, 123.25, -7.0}).data()), 21));
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

using test::findRow;
using ::testing::ElementsAre;

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

TEST(ArtSections, OnlyUsedAperturesAreWrittenWithTheirPrimitivesAndMacroName) {
  const ApertureLists lists = sampleLists();
  using namespace artrecord;
  constexpr uint8_t Macro = primitive::Macro, Polygon = primitive::RegularPolygon;
  EXPECT_THAT(sectionRecords(lists, 0),
              ElementsAre(ArtRecord{DrawSection, 10, 2540, 3},
                          ArtRecord{DrawSection, 12, LinkToSquarePad, 1.5},
                          ArtRecord{DrawSectionEnd, 0, 0, 0}));
  EXPECT_THAT(sectionRecords(lists, 2), ElementsAre(ArtRecord{SquarePadSection, 12, 5080, 1},
                                                    ArtRecord{SquarePadSectionEnd, 0, 0, 0}));
  EXPECT_THAT(sectionRecords(lists, 3),
              ElementsAre(ArtRecord{SpecialSection, 20, 1, 2},
                          ArtRecord{MacroNameCharacter, 20, 1, 'A'},
                          ArtRecord{MacroNameCharacter, 20, 2, 'B'}, ArtRecord{Macro, 20, 1, 1},
                          ArtRecord{Macro, 20, 0, 900}, ArtRecord{Macro, 20, -3, 0},
                          ArtRecord{SpecialSection, 22, 6, 5}, ArtRecord{Polygon, 22, 0, 3000},
                          ArtRecord{Polygon, 22, 0, 6}, ArtRecord{SpecialSectionEnd, 0, 0, 0}));
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
