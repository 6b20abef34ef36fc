// Every drill file of the shared corpus goes from its path into the drill layer, and every hole the
// scan counted is accounted for by a pad, or by a pad that already lay on its point.
#include "import/readers/excellon/ExcellonTestSupport.h"
#include "support/CorpusPath.h"

#include <map>
#include <numeric>

namespace tvx {
namespace {

// Drill files without a call of tool one: recognition gives no kind, the user chooses Excellon.
const std::map<std::string, std::string> ChosenAsExcellon = {
    {"gerbv/amacro-ref/jj1.drl", "its tools are T02 and T03"},
    {"gerbv/test-inputs/test-drill-slot-drilled-g85.exc", "its only tool is T4"},
};

// Files in which some holes fall on a pad that is already there, which places no second pad.
struct Covered {
  int32_t holes;
  const char* reason;
};
const std::map<std::string, Covered> CoveredHoles = {
    {"gerbv/test-inputs/test-drill-trailing-zero-suppression.exc",
     {4, "four points at y 116.713 mm are drilled twice, by two tools"}},
    {"gerbv/amacro-ref/jj1.drl",
     {4, "slots routed as points 0.3 mm apart with a 1 mm tool: each later point lies inside the "
         "first one's pad"}},
};

TEST(ExcellonCorpusTest, EveryDrillFileImportsAndAccountsForEveryHole) {
  const std::string corpus = test::corpusDir();
  if (corpus.empty())
    GTEST_SKIP() << "no corpus found (set TVX_CORPUS_DIR)";
  const auto files = test::manifestFiles(corpus, "excellon");
  ASSERT_FALSE(files.empty());
  size_t chosen = 0;
  size_t covered = 0;
  for (const auto& [path, format] : files) {
    SCOPED_TRACE(path);
    test::ImportWorld world;
    ImportOptions options;
    if (auto it = ChosenAsExcellon.find(path); it != ChosenAsExcellon.end()) {
      SCOPED_TRACE(it->second);
      options.kind = ImportKind::ExcellonFormatTwo;
      ++chosen;
    }
    const ImportResult result = world.run(corpus + "/" + path, options);
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(isExcellonKind(result.kind)) << int(result.kind);
    ASSERT_EQ(result.layer, 31);

    const std::vector<ToolEntry>& tools = world.layer(31).Files.at(0).Tools;
    const int32_t holes =
        std::accumulate(tools.begin(), tools.end(), 0,
                        [](int32_t sum, const ToolEntry& t) { return sum + t.HoleCount; });
    EXPECT_GT(holes, 0);
    const HoleTally& tally = world.session->excellon.LastImport;
    const auto pads = static_cast<int32_t>(world.pads(31).size());
    int32_t expectedCovered = 0;
    if (auto it = CoveredHoles.find(path); it != CoveredHoles.end()) {
      SCOPED_TRACE(it->second.reason);
      expectedCovered = it->second.holes;
      ++covered;
    }
    EXPECT_EQ(tally, (HoleTally{pads, expectedCovered, 0, 0}));
    EXPECT_EQ(tally.total(), holes);
    EXPECT_EQ(pads, holes - expectedCovered);
  }
  EXPECT_EQ(chosen, ChosenAsExcellon.size()) << "a listed file left the manifest";
  EXPECT_EQ(covered, CoveredHoles.size()) << "a listed file left the manifest";
}

}  // namespace
}  // namespace tvx
