// The Gerber format's part of the import road: the scan writes TMP.ART into the work folder, the
// import restores the apertures from it and draws its stream, and a damaged file is reported.
#include "GerberPassSupport.h"

#include "import/core/ImportDriver.h"
#include "import/gerber/GerberFileReader.h"
#include "kernel/Store.h"
#include "store/LayerSymbol.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace tvx {
namespace {

TEST(GerberFileReader, ScanThenImportDrawsTheFileAndReportsADamagedIntermediateFile) {
  test::GerberPass pass;
  const std::string source = pass.dir.file("board.gbr");
  std::ofstream(source, std::ios::binary)
      << "%FSLAX24Y24*%%MOIN*%%ADD10C,0.0100*%%ADD11R,0.0600X0.0400*%\r\n"
         "D10*X0Y0D02*X10000Y0D01*D11*X5000Y5000D03*X6000Y5000D03*M02*\r\n";
  Store store;
  FileExtents extents;
  GerberPassContext context = pass.context();
  GerberFileReader reader(store, pass.reporting.reporter, context, extents);
  ImportJob job;
  job.WorkDirectory = pass.dir.path().string();
  job.SourcePath = source;
  job.Kind = ImportKind::ArtworkRS274X;
  ASSERT_EQ(reader.scan(job), ScanResult::Scanned);
  ASSERT_EQ(job.IntermediatePath, pass.dir.file("TMP.ART"));
  const ArtHeader header = pass.scan.Header;
  EXPECT_EQ(extents.MaxX, header.MaxX);

  auto layers = test::makeLayers();
  LayerRecord& layer = layers[0];
  LayerFileRecord& file = StartLayerFile(job, layer, true);
  const auto run = [&] {
    pass.reporting.prompts.shown.clear();
    pass.scan = GerberScan{};
    EnsureLayerSymbol(store, layer, true);
    int32_t status = 99;  // set anew by the reader
    reader.importFile(status, job, layer, file);
    return status;
  };
  const auto elements = [&] {
    return store.OA_GetCount(store.S_SymbolItemArray(layer.SymbolHandle)) +
           store.OA_GetCount(store.S_SymbolEntryArray(layer.SymbolHandle));
  };
  const auto lastBox = [&] {
    const auto& shown = pass.reporting.prompts.shown;
    return shown.empty() ? std::string() : shown.back().prompt;
  };

  ASSERT_EQ(run(), 0);
  EXPECT_EQ(pass.scan.Header, header) << "the import restores what the scan found";
  ASSERT_EQ(pass.scan.Lists.DrawList.size(), 1u);
  EXPECT_EQ(pass.scan.Lists.DrawList[0], (ApertureUse{10, 25400, 1}));
  ASSERT_EQ(pass.scan.Lists.SpecialList.size(), 1u);
  EXPECT_EQ(pass.scan.Lists.SpecialList[0].Uses, 2);
  const int32_t drawn = elements();
  EXPECT_EQ(drawn, 5) << "the draw and the two flashes";
  EXPECT_TRUE(pass.shown().empty());

  // A cut-off last record: the whole records are drawn, then the damage is reported.
  const std::string& path = job.IntermediatePath;
  const auto records = std::filesystem::file_size(path) / 21;
  std::filesystem::resize_file(path, records * 21 - 10);
  EXPECT_EQ(run(), 1);
  EXPECT_EQ(lastBox(), "Artwork File - Incorrect format");

  std::filesystem::resize_file(path, 4 * 21);
  EXPECT_EQ(run(), 1);
  EXPECT_EQ(elements(), 0) << "no header, nothing to replay";
  EXPECT_EQ(lastBox(), "Artwork File - Incorrect format");

  std::filesystem::remove(path);
  EXPECT_EQ(run(), 1);
  EXPECT_EQ(lastBox(), "Can't load " + path);
}

TEST(GerberFileReader, AFailedScanLeavesNothingToImport) {
  test::GerberPass pass;
  Store store;
  FileExtents extents;
  GerberPassContext context = pass.context();
  GerberFileReader reader(store, pass.reporting.reporter, context, extents);
  ImportJob job;
  job.SourcePath = pass.dir.file("missing.gbr");
  job.Kind = ImportKind::ArtworkRS274X;
  EXPECT_EQ(reader.scan(job), ScanResult::Failed);
  EXPECT_TRUE(job.IntermediatePath.empty());
  EXPECT_FALSE(job.Prepared);
}

}  // namespace
}  // namespace tvx
