// Every Gerber file of the shared corpus goes through the text pass without a failure, and what it
// found is plausible: use counts that add up to the stream's flashes, extents inside the world, no
// D-code used without a definition unless the file has no definitions at all, and a TMP.ART that
// reads back into the same uses.
#include "GerberPassSupport.h"

#include "CorpusPath.h"
#include "import/gerber/ApertureSummary.h"

#include <gtest/gtest.h>

namespace tvx {
namespace {

// An RS-274-D file: every aperture comes from a table, and the pass has none.
constexpr const char* WithoutDefinitions = "l1.off";

TEST(GerberCorpus, EveryGerberFilePassesWithPlausibleApertures) {
  const std::string dir = test::corpusDir();
  if (dir.empty())
    GTEST_SKIP() << "no corpus";
  int gerberFiles = 0;
  for (const test::ManifestEntry& file : test::readManifest(dir)) {
    if (file.format != "gerber-x" && file.format != "gerber-d")
      continue;
    ++gerberFiles;
    SCOPED_TRACE(file.path);
    test::GerberPass pass;
    pass.format = GerberFormat{};  // the settings' defaults; the recogniser sets inch for RS-274-X
    ASSERT_EQ(pass.runFile(dir + "/" + file.path), 0);
    EXPECT_TRUE(pass.shown().empty() && pass.mainLines.empty());

    const ApertureLists& lists = pass.scan.Lists;
    double uses = 0;
    bool undefinedUsed = false, anyDefined = false;
    for (const ApertureInfo& a : describeApertures(lists)) {
      uses += a.Uses;
      undefinedUsed = undefinedUsed || (a.Uses > 0 && !a.Defined);
      anyDefined = anyDefined || a.Defined;
    }
    const bool withoutDefinitions = file.path.ends_with(WithoutDefinitions);
    EXPECT_EQ(undefinedUsed, withoutDefinitions) << "a code used without its definition";
    EXPECT_FALSE(withoutDefinitions && anyDefined);

    // Every flash is one use of its aperture (more under step and repeat). Polygon sides are no
    // uses: a file of regions alone has none.
    double flashes = 0;
    bool repeats = false, polygons = false;
    for (const ArtRecord& r : pass.stream()) {
      flashes += r.Type == artrecord::Flash;
      repeats = repeats || r.Type == artrecord::StepRepeat;
      polygons = polygons || (r.Type == artrecord::ArcCentreOrPolygonEnd && r.N == -1);
    }
    EXPECT_TRUE(polygons || uses > 0) << "a file that draws or flashes nothing";
    double flashUses = 0;
    for (const auto* list : {&lists.RoundPadList, &lists.SquarePadList, &lists.SpecialList})
      for (const ApertureUse& row : *list)
        flashUses += row.Uses;
    EXPECT_TRUE(repeats || flashUses >= flashes);

    // RS-274-X files say their own format; an RS-274-D file is read with the settings' default
    // format, which need not be its own, so only the pass's own limit holds for it.
    const ArtHeader& h = pass.scan.Header;
    if (file.format == "gerber-x" && h.MinX <= h.MaxX) {
      EXPECT_TRUE(h.MinX >= -WorldLimit && h.MaxX <= WorldLimit && h.MinY >= -WorldLimit &&
                  h.MaxY <= WorldLimit);
    }

    GerberScan back;
    ASSERT_EQ(pass.readBack(back), 0);
    double backUses = 0;
    for (const ApertureInfo& a : describeApertures(back.Lists))
      backUses += a.Uses;
    EXPECT_EQ(backUses, uses);
  }
  EXPECT_GT(gerberFiles, 0);
}

}  // namespace
}  // namespace tvx
