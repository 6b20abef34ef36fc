// Gerber files from their path into an artwork layer without a window: the text pass in stage one,
// the layer chosen among those offered, the drawing into its symbol with hole positions, and every
// Gerber file of the shared corpus.
#include "import/readers/WindowlessImport.h"

#include "ExcellonTestSupport.h"
#include "kernel/Kernel.h"
#include "store/ColourSlots.h"
#include "store/Layers.h"
#include "support/CorpusPath.h"

#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>

namespace tvx {
namespace {

struct ImportWorld {
  ImportWorld() {
    ColourSlots colours;
    colours.build(kernel->strings);
    BuildLayerTables(kernel->store, reporting.services, colours, false, *tables);
    session.state.Job.WorkDirectory = folder.path().string();
  }
  WindowlessImportResult run(const std::string& path, WindowlessImportOptions options = {}) {
    ImportOwners owners = session.owners(tables->Layers);
    return ImportWithoutWindow(owners, path, options);
  }
  int32_t itemCount(int32_t layer) const {
    return kernel->store.OA_GetCount(
        kernel->store.S_SymbolItemArray(tables->layer(layer).SymbolHandle));
  }
  std::vector<ItemRecord> items(int32_t layer) const {
    std::vector<ItemRecord> all;
    const ArrayHandle array = kernel->store.S_SymbolItemArray(tables->layer(layer).SymbolHandle);
    for (int32_t i = 1; i <= kernel->store.OA_GetCount(array); ++i) {
      ItemRecord r;
      kernel->store.I_ReadItem(kernel->store.OA_Object(array, i), r);
      all.push_back(r);
    }
    return all;
  }

  test::TempDir folder;
  std::unique_ptr<Kernel> kernel = std::make_unique<Kernel>();
  test::Reporting reporting;
  std::unique_ptr<LayerTables> tables = std::make_unique<LayerTables>();
  ImportSession session{kernel->store, reporting.services, reporting.prompts};
};

TEST(GerberImport, AnArtworkFileGoesIntoTheLayerChosenWithItsPadPositions) {
  ImportWorld world;
  const std::string path = world.folder.file("top.gbr");
  std::ofstream(path, std::ios::binary)
      << "G04 two pads and a track*\n%FSLAX24Y24*%\n%MOIN*%\n%ADD10C,0.0100*%\n"
         "%ADD11R,0.0600X0.0600*%\nD11*\nX0Y0D03*\nX10000Y0D03*\nD10*\nX0Y0D02*\n"
         "X10000Y0D01*\nM02*\n";
  WindowlessImportResult result = world.run(path);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.kind, ImportKind::ArtworkRS274X);
  const int32_t first = result.layer;
  ASSERT_GE(first, 1);
  EXPECT_NE(first, 31) << "artwork never goes to the drill layer by itself";
  EXPECT_TRUE(world.reporting.prompts.shown.empty());
  EXPECT_EQ(result.scanned.MaxX - result.scanned.MinX, 2540000);

  const auto all = world.items(first);
  ASSERT_EQ(all.size(), 3u);
  // Own coordinates are kept: the track runs from 0 to 1 inch, 2540000 units.
  EXPECT_EQ(all[0].Type, ItemRectangle);
  EXPECT_EQ((std::array{all[0].X, all[0].Y, all[0].Width}), (std::array{-76200, -76200, 152400}));
  EXPECT_EQ(all[2].Type, ItemLine);
  EXPECT_EQ((std::array{all[2].X, all[2].Width, all[2].LineWidth}),
            (std::array{0, 2540000, 25400}));
  const LayerRecord& layer = world.tables->layer(first);
  EXPECT_EQ(test::padsOf(world.kernel->store, layer),
            (std::vector<test::Pad>{{0, 0, 11}, {2540000, 0, 11}}));
  EXPECT_EQ(layer.Files.at(0).FileName, world.session.state.Job.IntermediatePath);
  EXPECT_EQ(layer.LastFile, path);

  // Another layer by choice; centred without NoCenter.
  WindowlessImportOptions options;
  options.layer = 3;
  options.noCenter = false;
  result = world.run(path, options);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.layer, 3);
  const auto centred = world.items(3);
  ASSERT_EQ(centred.size(), 3u);
  EXPECT_EQ((std::array{centred[2].X, centred[2].Width}), (std::array{-1270000, 2540000}));
}

TEST(GerberImport, WithoutAWorkDirectoryTheScanGoesToTheTemporaryFolder) {
  ImportWorld world;
  const std::string path = world.folder.file("pad.gbr");
  std::ofstream(path, std::ios::binary) << "%FSLAX24Y24*%%MOIN*%%ADD10C,0.01*%D10*X0Y0D03*M02*";
  world.session.state.Job.WorkDirectory.clear();
  EXPECT_EQ(world.run(path).status, 0);
  const std::filesystem::path art = world.session.state.Job.IntermediatePath;
  EXPECT_EQ(art.parent_path(), std::filesystem::temp_directory_path());
  EXPECT_EQ(art.filename(), "TMP.ART");
  std::error_code ec;
  std::filesystem::remove(art, ec);
}

struct CorpusFile {
  std::string path;
  std::string format;
};

std::vector<CorpusFile> gerberFilesOfTheManifest(const std::string& dir) {
  std::vector<CorpusFile> files;
  std::ifstream in(dir + "/MANIFEST.tsv");
  std::string line;
  std::getline(in, line);  // column names
  while (std::getline(in, line)) {
    std::istringstream fields(line);
    CorpusFile file;
    if (std::getline(fields, file.path, '\t') && std::getline(fields, file.format, '\t') &&
        file.format.rfind("gerber", 0) == 0)
      files.push_back(file);
  }
  return files;
}

TEST(GerberImport, EveryCorpusGerberFileImportsWithAPlausibleFrame) {
  const std::string dir = test::corpusDir();
  if (dir.empty())
    GTEST_SKIP() << "no corpus found (set TVX_CORPUS_DIR)";
  const std::vector<CorpusFile> files = gerberFilesOfTheManifest(dir);
  ASSERT_GE(files.size(), 10u);
  for (const CorpusFile& file : files) {
    SCOPED_TRACE(file.path);
    ImportWorld world;
    WindowlessImportResult result = world.run(dir + "/" + file.path);
    if (result.kind == ImportKind::Unknown && file.format == "gerber-d") {
      // A plain RS-274-D file need not show what it is; the user then chooses its kind. The
      // settings' format (2.3 inch, trailing zeros omitted) reads its coordinates up to 100
      // inches, beyond the world when kept in place, so it is imported centred.
      EXPECT_EQ(world.reporting.prompts.shown.size(), 1u);
      world.reporting.prompts.shown.clear();
      WindowlessImportOptions chosen;
      chosen.kind = ImportKind::ArtworkRS274D;
      chosen.noCenter = false;
      result = world.run(dir + "/" + file.path, chosen);
    }
    for (const auto& shown : world.reporting.prompts.shown)
      ADD_FAILURE() << "message: " << shown.prompt;
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(isGerberKind(result.kind)) << int(result.kind);
    if (result.layer < 1) {
      ADD_FAILURE() << "no layer bound";
      continue;
    }
    const int32_t count = world.itemCount(result.layer);
    EXPECT_GT(count, 0);
    FrameRect frame;
    ASSERT_NE(world.kernel->store.S_FrameSymbolItems(world.tables->layer(result.layer).SymbolHandle,
                                                     -1, frame),
              0);
    // The picture lies where the scan found the file's coordinates (moved to the origin's middle
    // when centred): the frame of the items reaches beyond the scanned extents by no more than
    // the largest flash of these files (a 2 inch circle) would.
    FileExtents e = result.scanned;
    if (!world.tables->layer(result.layer).Files.at(0).OriginalCoordinates) {
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
