// The count of an intermediate file's stream: streams longer than one read, streams that break off
// or hold a record of no known type, and files that are missing.
#include "import/gerber/GerberStreamCounts.h"

#include "import/gerber/ArtStream.h"
#include "import/gerber/ImportTestSupport.h"

#include <gtest/gtest.h>

namespace tvx {
namespace {

TEST(GerberStreamCountsTest, CountsUpToTheEndRecordAcrossReads) {
  struct Case {
    const char* name;
    int flashes;        // alternately D10 and D11
    bool unknownFirst;  // a record of no known type before the flashes
    bool endRecord;
    bool complete;
    int counted;
  } cases[] = {
      {"a short stream", 11, false, true, true, 11},
      {"many reads of records", 150001, false, true, true, 150001},
      {"no end record", 150001, false, false, false, 150001},
      {"an unknown record", 11, true, true, false, 0},
  };
  test::TempDir folder;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const std::string path = folder.file("TMP.ART");
    ArtWriter out;
    ASSERT_TRUE(out.create(path));
    for (int32_t n = 1; n <= artrecord::HeaderRecords; ++n)
      out.append({artrecord::Header, 0, 0, 0});
    if (c.unknownFirst)
      out.append({99, 0, 0, 0});
    for (int i = 0; i < c.flashes; ++i)
      out.append({artrecord::Flash, 10 + i % 2, double(i), 0});
    if (c.endRecord)
      out.append({artrecord::EndOfStream, 0, 0, 0});
    ASSERT_TRUE(out.close());

    GerberStreamCounts counts;
    EXPECT_EQ(countGerberStream(path, counts), c.complete);
    EXPECT_EQ(std::tuple(counts.Complete, counts.Flashes, counts.ByDCode[10].Flashes,
                         counts.ByDCode[11].Flashes),
              std::tuple(c.complete, c.counted, (c.counted + 1) / 2, c.counted / 2));
  }
  GerberStreamCounts counts;
  EXPECT_FALSE(countGerberStream(folder.file("missing.ART"), counts));
}

}  // namespace
}  // namespace tvx
