// Gerber files from their path into an artwork layer without a window: the scan's work folder, and
// every Gerber file of the shared corpus imported into the first layer offered.
#include "import/readers/window/ImportWindowTestSupport.h"
#include "support/CorpusPath.h"

#include <filesystem>

namespace tvx {
namespace {

using test::ImportWorld;

TEST(GerberImport, WithoutAWorkDirectoryTheScanGoesToTheTemporaryFolder) {
  ImportWorld world;
  const std::string path =
      world.write("pad.gbr", "%FSLAX24Y24*%%MOIN*%%ADD10C,0.01*%D10*X0Y0D03*M02*");
  world.session->state.Job.WorkDirectory.clear();
  EXPECT_EQ(world.run(path).status, 0);
  const std::filesystem::path art = world.session->state.Job.IntermediatePath;
  EXPECT_EQ(art.parent_path(), std::filesystem::temp_directory_path());
  EXPECT_EQ(art.filename(), "TMP.ART");
  std::error_code ec;
  std::filesystem::remove(art, ec);
}

TEST(GerberImport, EveryCorpusGerberFileImportsWithAPlausibleFrame) {
  const std::string dir = test::corpusDir();
  if (dir.empty())
    GTEST_SKIP() << "no corpus found (set TVX_CORPUS_DIR)";
  const auto files = test::manifestFiles(dir, "gerber");
  ASSERT_GE(files.size(), 10u);
  for (const auto& [path, format] : files) {
    SCOPED_TRACE(path);
    ImportWorld world;
    ImportResult result = world.run(dir + "/" + path);
    if (format == "gerber-d") {
      // A plain RS-274-D file is read in the settings' format, which need not be its own: its
      // coordinates lie beyond the world when kept in place, so it is centred.
      EXPECT_EQ(result.kind, ImportKind::ArtworkRS274D);
      EXPECT_EQ(world.reporting.prompts.shown.size(), 1u);
      world.reporting.prompts.shown.clear();
      ImportOptions centred;
      centred.noCenter = false;
      result = world.run(dir + "/" + path, centred);
    }
    for (const auto& shown : world.reporting.prompts.shown)
      ADD_FAILURE() << "message: " << shown.prompt;
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(isGerberKind(result.kind)) << int(result.kind);
    if (result.layer < 1) {
      ADD_FAILURE() << "no layer bound";
      continue;
    }
    EXPECT_FALSE(world.items(result.layer).empty());
    FrameRect frame;
    ASSERT_NE(
        world.kernel->store.S_FrameSymbolItems(world.layer(result.layer).SymbolHandle, -1, frame),
        0);
    // The frame meets the scanned extents (centred when the file was) and reaches beyond them by
    // no more than the largest flash of these files, a 2 inch circle.
    FileExtents e = result.scanned;
    if (!world.layer(result.layer).Files.at(0).OriginalCoordinates) {
      const double halfX = (e.MaxX - e.MinX) / 2, halfY = (e.MaxY - e.MinY) / 2;
      e = {-halfX, -halfY, halfX, halfY};
    }
    constexpr double Reach = 30 * StoreUnitsPerMm;
    EXPECT_LT(frame.MinX, e.MaxX);
    EXPECT_GT(frame.MaxX, e.MinX);
    EXPECT_LT(frame.MinY, e.MaxY);
    EXPECT_GT(frame.MaxY, e.MinY);
    EXPECT_GE(frame.MinX, e.MinX - Reach);
    EXPECT_LE(frame.MaxX, e.MaxX + Reach);
    EXPECT_GE(frame.MinY, e.MinY - Reach);
    EXPECT_LE(frame.MaxY, e.MaxY + Reach);
  }
}

}  // namespace
}  // namespace tvx
