#include "import/gerber/ArtFile.h"

#include "import/gerber/ImportTestSupport.h"

#include <gtest/gtest.h>

#include <filesystem>

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
  const std::string path = dir.file("TMP.ART");
  {
    std::ofstream old(path, std::ios::binary);
    old << std::string(100, 'x');  // an earlier scan's file is removed, not overwritten in part
  }
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

}  // namespace
}  // namespace tvx
