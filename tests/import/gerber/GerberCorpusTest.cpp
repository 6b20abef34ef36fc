// Every Gerber file of the shared corpus goes through the text pass without a failure, and what it
// found is plausible: apertures used, use counts that add up to the stream's records, extents
// inside the world, and no D-code used without a definition unless the file really has one
// (listed below with the reason).
#include "GerberPassSupport.h"

#include "CorpusPath.h"
#include "import/gerber/ApertureSummary.h"
#include "import/gerber/ArtSections.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <set>
#include <sstream>

namespace tvx {
namespace {

// D-codes that a file uses without defining them, by the file's name, and why.
struct Undefined {
  const char* file;
  std::set<int32_t> codes;
  const char* reason;
};

const Undefined KnownUndefined[] = {
    {"l1.off", {}, "an RS-274-D file: every aperture comes from a table, and the pass has none"},
};

const Undefined* knownUndefined(const std::string& path) {
  const std::string name = std::filesystem::path(path).filename().string();
  for (const Undefined& known : KnownUndefined)
    if (name == known.file)
      return &known;
  return nullptr;
}

TEST(GerberCorpus, EveryGerberFilePassesWithPlausibleApertures) {
  const std::string dir = test::corpusDir();
  if (dir.empty())
    GTEST_SKIP() << "no corpus";
  const std::vector<test::ManifestEntry> files = test::readManifest(dir);
  int gerberFiles = 0;
  for (const test::ManifestEntry& file : files) {
    if (file.format != "gerber-x" && file.format != "gerber-d")
      continue;
    ++gerberFiles;
    SCOPED_TRACE(file.path);
    test::GerberPass pass;
    pass.format = GerberFormat{};  // the settings' defaults; the recogniser sets inch for RS-274-X
    ASSERT_EQ(pass.runFile(dir + "/" + file.path), 0);
    EXPECT_TRUE(pass.shown().empty());
    EXPECT_TRUE(pass.mainLines.empty());

    const ApertureLists& lists = pass.scan.Lists;
    const std::vector<ApertureInfo> apertures = describeApertures(lists);
    double uses = 0;
    std::set<int32_t> undefinedUsed;
    std::ostringstream summary;
    for (const ApertureInfo& a : apertures) {
      if (!(a.Uses > 0))
        continue;
      uses += a.Uses;
      if (!a.Defined)
        undefinedUsed.insert(a.DCode);
      summary << " D" << a.DCode << ":" << apertureRoleWord(a.Role) << "/"
              << apertureShapeWord(a.Shape) << "x" << a.Uses;
    }
    if (std::getenv("TVX_CORPUS_VERBOSE"))
      std::cout << file.path << ":" << summary.str() << "\n";

    // Every flash is one use of its aperture (more under step and repeat, plus the links that a
    // draw with a flash shape makes). Polygon sides are no uses: a file of regions alone has none.
    const std::vector<ArtRecord> stream = pass.stream();
    ASSERT_FALSE(stream.empty());
    double flashes = 0;
    bool repeats = false, polygons = false;
    for (const ArtRecord& r : stream) {
      flashes += r.Type == artrecord::Flash;
      repeats = repeats || r.Type == artrecord::StepRepeat;
      polygons = polygons || (r.Type == artrecord::ArcCentreOrPolygonEnd && r.N == -1);
    }
    if (!polygons) {
      EXPECT_GT(uses, 0) << "a file that draws or flashes nothing";
    }
    double flashUses = 0;
    for (const auto* list : {&lists.RoundPadList, &lists.SquarePadList, &lists.SpecialList})
      for (const ApertureUse& row : *list)
        flashUses += row.Uses;
    if (!repeats) {
      EXPECT_GE(flashUses, flashes);
    }

    // RS-274-X files say their own format; an RS-274-D file is read with the settings' default
    // format, which need not be its own, so only the pass's own limit holds for it.
    const ArtHeader& h = pass.scan.Header;
    if (file.format == "gerber-x" && h.MinX <= h.MaxX) {
      EXPECT_GE(h.MinX, -WorldLimit);
      EXPECT_LE(h.MaxX, WorldLimit);
      EXPECT_GE(h.MinY, -WorldLimit);
      EXPECT_LE(h.MaxY, WorldLimit);
    }

    const Undefined* known = knownUndefined(file.path);
    if (known && known->codes.empty()) {
      // A file without definitions: every code it uses is undefined.
      EXPECT_FALSE(undefinedUsed.empty()) << known->reason;
      for (const ApertureInfo& a : apertures) {
        EXPECT_FALSE(a.Defined) << known->reason;
      }
    } else {
      EXPECT_EQ(undefinedUsed, known ? known->codes : std::set<int32_t>{})
          << (known ? known->reason : "no code may be used without a definition");
    }

    // What TMP.ART holds reads back into the same used apertures.
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
