// Every drill file of the shared corpus goes from its path into the drill layer, and every hole the
// scan counted is accounted for by a pad, or by a pad that already lay on its point.
#include "import/readers/WindowlessImport.h"

#include "ExcellonTestSupport.h"
#include "kernel/Kernel.h"
#include "store/ColourSlots.h"
#include "store/Layers.h"
#include "support/CorpusPath.h"

#include <fstream>
#include <map>
#include <memory>
#include <numeric>
#include <sstream>

namespace tvx {
namespace {

const std::string CorpusDir = test::corpusDir();

// Drill files that recognition does not take, imported as the user's choice of Format Two.
const std::map<std::string, std::string> ChosenAsExcellon = {
    {"gerbv/amacro-ref/jj1.drl", "its tools are T02 and T03: without a call of tool one "
                                 "recognition gives no kind, and the user "
                                 "chooses Excellon in the dialog"},
    {"gerbv/test-inputs/test-drill-slot-drilled-g85.exc",
     "its only tool is T4: without a call of tool one recognition gives no kind, and the user "
     "chooses Excellon in the dialog"},
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
     {4, "its slots are routed as points 0.3 mm apart with a 1 mm tool: each point after the first "
         "of a slot lies inside the first one's pad"}},
};

std::vector<std::string> drillFilesOfTheManifest() {
  std::vector<std::string> paths;
  std::ifstream in(CorpusDir + "/MANIFEST.tsv");
  std::string line;
  std::getline(in, line);  // column names
  while (std::getline(in, line)) {
    std::istringstream fields(line);
    std::string path;
    std::string format;
    if (std::getline(fields, path, '\t') && std::getline(fields, format, '\t') &&
        format == "excellon")
      paths.push_back(path);
  }
  return paths;
}

TEST(ExcellonCorpusTest, EveryDrillFileImportsAndAccountsForEveryHole) {
  if (CorpusDir.empty())
    GTEST_SKIP() << "no corpus found (set TVX_CORPUS_DIR)";
  const std::vector<std::string> paths = drillFilesOfTheManifest();
  ASSERT_FALSE(paths.empty());
  size_t chosen = 0;
  size_t covered = 0;
  for (const std::string& path : paths) {
    SCOPED_TRACE(path);
    auto kernel = std::make_unique<Kernel>();
    test::Reporting reporting;
    ColourSlots colours;
    colours.build(kernel->strings);
    auto tables = std::make_unique<LayerTables>();
    BuildLayerTables(kernel->store, reporting.services, colours, false, *tables);
    ImportSession session(kernel->store, reporting.services, reporting.prompts);
    ImportOwners owners = session.owners(tables->Layers);

    WindowlessImportOptions options;
    if (auto it = ChosenAsExcellon.find(path); it != ChosenAsExcellon.end()) {
      SCOPED_TRACE(it->second);
      options.kind = ImportKind::ExcellonFormatTwo;
      ++chosen;
    }
    const WindowlessImportResult result =
        ImportWithoutWindow(owners, CorpusDir + "/" + path, options);
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(isExcellonKind(result.kind)) << int(result.kind);
    ASSERT_EQ(result.layer, 31);

    const LayerRecord& drill = tables->layer(31);
    const std::vector<ToolEntry>& tools = drill.Files.at(0).Tools;
    const int32_t holes =
        std::accumulate(tools.begin(), tools.end(), 0,
                        [](int32_t sum, const ToolEntry& t) { return sum + t.HoleCount; });
    EXPECT_GT(holes, 0);
    const HoleTally& tally = session.excellon.LastImport;
    const auto pads = static_cast<int32_t>(test::padsOf(kernel->store, drill).size());
    EXPECT_EQ(tally.total(), holes);
    EXPECT_EQ(tally.Placed, pads);
    EXPECT_EQ(tally.WithoutSize, 0);
    EXPECT_EQ(tally.StoreRefused, 0);
    int32_t expectedCovered = 0;
    if (auto it = CoveredHoles.find(path); it != CoveredHoles.end()) {
      SCOPED_TRACE(it->second.reason);
      expectedCovered = it->second.holes;
      ++covered;
    }
    EXPECT_EQ(tally.Covered, expectedCovered);
    EXPECT_EQ(pads, holes - expectedCovered);
  }
  EXPECT_EQ(chosen, ChosenAsExcellon.size()) << "a listed file left the manifest";
  EXPECT_EQ(covered, CoveredHoles.size()) << "a listed file left the manifest";
}

}  // namespace
}  // namespace tvx
