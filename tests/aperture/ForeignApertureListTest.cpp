// Other tools' aperture lists read into table rows: each kind of line, the units, the shapes a
// table cannot hold, and the three lists of the corpus, which must agree with each other.
#include "aperture/ForeignApertureList.h"
#include "support/CorpusPath.h"

#include <gtest/gtest.h>

#include <map>

namespace tvx {
namespace {

using Rows = std::vector<ApertureTableRow>;
using Codes = std::vector<int32_t>;

TEST(ForeignApertureList, LinesOfEachKind) {
  struct Case {
    const char* name;
    const char* text;
    Rows rows;
    Codes leftOut;
  };
  const Case cases[] = {
      {"mil and mm pairs: round draws and flashes, square flashes",
       "! comment\nGAPFile Version 1.0\nD10 ROUND 4.00 0.102 0.00 0.000\n"
       "D71 SQUARE 24.00 0.610 0.00\n",
       {{10160, 10, 10, 0}, {60960, 0, 0, 71}},
       {}},
      {"decimal commas, equal sides, the use named",
       "D10   ROUNDED   13,000  13,000  0,000 LINE\nD44 ROUNDED 50,000 50,000 0,000 FLASH\n"
       "D45 RECTANGULAR 60,000 60,000 0,000 LINE|FLASH\n",
       {{33020, 10, 0, 0}, {127000, 0, 44, 0}, {152400, 45, 0, 45}},
       {}},
      {"unequal sides and other shapes are left out",
       "D11 RECTANGULAR 24,000 80,000 0,000 FLASH\nD12 OBLONG 10 10\nD13 THERMAL 50 40\n",
       {},
       {11, 12, 13}},
      {"numbered rows, a repeated code fills one row, codes sharing a size share a row",
       "Number Size Aux Shape\n  12  8  0  round  0 1 BOTH DRAW   EIE 0.2mm Linie\n"
       "  12  8  0  round  0 1 BOTH FILL_DRAW\n  70  8  0  round  0 1 BOTH FLASH\n"
       "  99  8  0  round  0 1 BOTH DRAW\n",
       {{20320, 12, 70, 0}, {20320, 99, 0, 0}},
       {}},
      {"a unit line sets the unit after it",
       "D10 ROUND 4 \nUnits: MM\nD11 ROUND 0.5\nsizes in INCH\nD12 SQUARE 0.1\n",
       {{10160, 10, 10, 0}, {50000, 11, 11, 0}, {254000, 0, 0, 12}},
       {}},
      {"codes outside 10 to 999 and sizes of nothing are left out",
       "D9 ROUND 4\nD1000 ROUND 4\nD20 ROUND 0\nD21 ROUND -3\n",
       {},
       {9, 1000, 20, 21}},
      {"lines without a shape or a number are no apertures",
       "D10 4.0\nD11 ROUND\nROUND 10 20\nX100Y200D01*\n",
       {},
       {}},
      {"rows come in order of size",
       "D30 ROUND 30\nD10 ROUND 10\nD20 SQUARE 20\n",
       {{25400, 10, 10, 0}, {50800, 0, 0, 20}, {76200, 30, 30, 0}},
       {}},
  };
  for (const Case& c : cases) {
    const ForeignApertureList list = readForeignApertureList(c.text);
    EXPECT_EQ(list.rows, c.rows) << c.name;
    EXPECT_EQ(list.leftOut, c.leftOut) << c.name;
  }
}

TEST(ForeignApertureList, HostileTextReadsWithoutHarm) {
  std::string text = "D10 ROUND 1e308 1e308\nD11 ROUND nan\nD12 SQUARE 99999999999999\n";
  text += std::string(100000, 'D') + " ROUND 4\n";
  text += "\t D14 \t ROUND\t4\t\n";  // tabs part fields as blanks do
  text += std::string("D13 ROUND 4 \0\xff\x01", 15) + "\n";
  const ForeignApertureList list = readForeignApertureList(text);
  EXPECT_EQ(list.leftOut, (Codes{10, 12}));
  EXPECT_EQ(list.codes, (Codes{14, 13}));
}

// The sizes of the corpus's three lists, code by code: the two lists of one board agree where
// they share a code, and each list gives the count of codes it is known to hold.
TEST(ForeignApertureList, CorpusListsAgree) {
  const std::string corpus = test::corpusDir();
  if (corpus.empty())
    GTEST_SKIP() << "no corpus";
  struct Case {
    const char* file;
    size_t codes, leftOut;
  };
  const Case cases[] = {{"gerbv/ekf/ekf.gap", 199, 0},
                        {"gerbv/ekf/ekf_08.apt", 199, 0},
                        {"gerbv/protel-pnp/SE_SG_IF_V2.apr", 56, 70}};
  std::map<std::string, std::map<int32_t, int32_t>> sizes;
  for (const Case& c : cases) {
    const std::optional<ForeignApertureList> list =
        readForeignApertureListFile(corpus + "/" + c.file);
    ASSERT_TRUE(list) << c.file;
    EXPECT_EQ(list->codes.size(), c.codes) << c.file;
    EXPECT_EQ(list->leftOut.size(), c.leftOut) << c.file;
    for (const ApertureTableRow& r : list->rows)
      for (int32_t code : {r.LinesD, r.RoundD, r.SquareD})
        if (code != 0)
          sizes[c.file][code] = r.Size;
  }
  int shared = 0;
  for (const auto& [code, size] : sizes["gerbv/ekf/ekf.gap"])
    if (sizes["gerbv/ekf/ekf_08.apt"].count(code)) {
      ++shared;
      EXPECT_EQ(sizes["gerbv/ekf/ekf_08.apt"][code], size) << "D" << code;
    }
  EXPECT_GT(shared, 150);
  EXPECT_FALSE(readForeignApertureListFile(corpus + "/no such list"));
}

}  // namespace
}  // namespace tvx
