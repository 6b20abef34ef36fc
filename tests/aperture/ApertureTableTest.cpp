// Aperture table files: reading every kind of line, writing whole, and finding a size's row.
#include "aperture/ApertureTable.h"

#include "import/gerber/ImportTestSupport.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fstream>
#include <random>

namespace tvx {
namespace {

using Rows = std::vector<ApertureTableRow>;
const Rows OneRow{{1, 0, 0, 0}};

using test::readBytes;

TEST(ApertureTable, LinesAreReadByTheirFields) {
  struct Case {
    const char* name;
    std::string text;
    Rows rows;
  };
  const Case cases[] = {
      {"rows and the quoted end line",
       "1000,10,0,0\r\n2540,11,20,30\r\n\"#\",\"#\",\"#\",\"#\"\r\n",
       {{1000, 10, 0, 0}, {2540, 11, 20, 30}}},
      {"an unquoted end line ends alike",
       "1000,10,0,0\n#,#,#,#\n2000,12,0,0\n",
       {{1000, 10, 0, 0}}},
      {"blank lines and a lone # are passed over", "\n#\n1000,10,0,0\n\n", {{1000, 10, 0, 0}}},
      {"a text in a number's place is 0, extra fields ignored",
       "abc,10,x,30,99\n",
       {{0, 10, 0, 30}}},
      {"numbers are made whole and held to 32 bits",
       "2540.6,1e12,-1e12,7\n",
       {{2541, 2147483647, -2147483647 - 1, 7}}},
      {"order and repeats are kept as they stand",
       "5000,10,0,0\n1000,10,10,0\n",
       {{5000, 10, 0, 0}, {1000, 10, 10, 0}}},
      {"a size without codes is read", "2540,0,0,0\n", {{2540, 0, 0, 0}}},
      {"only the end line: the one-row table", "\"#\",\"#\",\"#\",\"#\"\r\n", OneRow},
      {"an empty file: the one-row table", "", OneRow},
      {"binary text: the one-row table", std::string("\x01\xff\0,,\x80", 6), OneRow},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(ApertureTable::parse(c.text), c.rows);
  }
}

TEST(ApertureTable, LoadSaveAndReloadKeepTheRowsWithCodes) {
  QTemporaryDir folder;
  ASSERT_TRUE(folder.isValid());
  const std::string dir = folder.path().toStdString();
  std::ofstream(dir + "/Job1.apt", std::ios::binary) << "1000,10,0,0\r\n2540,0,0,0\r\n";

  ApertureTable table;
  table.current = "JOB1";
  ASSERT_TRUE(table.load(dir)) << "names match case-blind";
  EXPECT_EQ(table.rows, (Rows{{1000, 10, 0, 0}, {2540, 0, 0, 0}}));

  ASSERT_TRUE(table.save(dir, "JOB1"));
  const std::string written = readBytes(dir + "/Job1.apt");
  EXPECT_EQ(written, "1000,10,0,0\r\n\"#\",\"#\",\"#\",\"#\"\r\n")
      << "the size without a code goes";
  ASSERT_TRUE(table.load(dir));
  EXPECT_EQ(table.rows, (Rows{{1000, 10, 0, 0}}));
  ASSERT_TRUE(table.save(dir, "JOB1"));
  EXPECT_EQ(readBytes(dir + "/Job1.apt"), written) << "write then read gives the same bytes";

  ASSERT_TRUE(table.save(dir, "JOB2"));
  EXPECT_EQ(table.current, "JOB2");
  EXPECT_FALSE(table.save(dir + "/no-such-folder", "JOB3"));
  EXPECT_EQ(table.current, "JOB2") << "a failed save changes nothing";

  table.current = "MISSING";
  EXPECT_FALSE(table.load(dir));
  EXPECT_EQ(table.rows, OneRow);
  EXPECT_EQ(table.current, "MISSING") << "the name is kept";
}

TEST(ApertureTable, FindSizeRowAgreesWithALinearSearch) {
  std::mt19937 rng(9);
  for (int count = 1; count <= 40; ++count) {
    ApertureTable table;
    table.rows.clear();
    int32_t size = 0;
    for (int i = 0; i < count; ++i)
      table.rows.push_back({size += 1 + int32_t(rng() % 3) * 1000, 10, 0, 0});
    for (int32_t probe = 0; probe <= size + 1; probe += 1 + int32_t(rng() % 700)) {
      SizeRow expected{0, count + 1};
      for (int i = 0; i < count; ++i)
        if (table.rows[size_t(i)].Size >= probe) {
          expected = {table.rows[size_t(i)].Size == probe ? i + 1 : 0, i + 1};
          break;
        }
      ASSERT_EQ(table.findSizeRow(probe), expected) << count << " rows, size " << probe;
    }
    for (int i = 0; i < count; ++i)  // every size of the table is found at its row
      ASSERT_EQ(table.findSizeRow(table.rows[size_t(i)].Size).row, i + 1);
  }
}

}  // namespace
}  // namespace tvx
