// The text pass and the section loader plugged into the import driver the way the component does:
// the scan writes TMP.ART, the driver opens it and the loader restores the apertures from it.
#include "GerberPassSupport.h"

#include "import/core/ImportDriver.h"
#include "import/gerber/ArtSections.h"
#include "kernel/Store.h"

#include <gtest/gtest.h>

#include <fstream>

namespace tvx {
namespace {

TEST(GerberReaders, ScanThenImportRestoresTheApertures) {
  test::GerberPass pass;
  const std::string source = pass.dir.file("board.gbr");
  {
    std::ofstream out(source, std::ios::binary);
    out << "%FSLAX24Y24*%%MOIN*%%ADD10C,0.0100*%%ADD11R,0.0600X0.0400*%\r\n"
           "D10*X0Y0D02*X10000Y0D01*D11*X5000Y5000D03*X6000Y5000D03*M02*\r\n";
  }
  const std::function<void(int32_t&, const std::string&, const std::string&)> scan =
      gerberTextPassCallable(pass.context());
  int32_t status = -1;
  scan(status, source, pass.art);
  ASSERT_EQ(status, 0);

  Store store;
  ImportState state;
  GerberScan loaded;
  ReaderSet readers;
  readers.loadArtSections = loadArtSectionsCallable(loaded, pass.reporting.reporter);
  int32_t replayed = 0;
  readers.drawGerberStream = [&replayed](int32_t& drawStatus, ArtFile& art, LayerRecord&,
                                         LayerFileRecord&) {
    ArtRecord record;
    for (int32_t n = artrecord::HeaderRecords + 1; art.read(n, record) && record.Type != 9; ++n)
      ++replayed;
    drawStatus = 0;
  };
  ImportContext context{store, pass.reporting.services, pass.reporting.reporter, state, readers,
                        {}};
  auto layers = test::makeLayers();
  LayerFileRecord file;
  file.FileName = pass.art;
  ImportGerberFile(status, layers[0], file, context);
  ASSERT_EQ(status, 0);
  EXPECT_EQ(replayed, 4);
  EXPECT_EQ(loaded.Header, pass.scan.Header);
  ASSERT_EQ(loaded.Lists.DrawList.size(), 1u);
  EXPECT_EQ(loaded.Lists.DrawList[0], (ApertureUse{10, 25400, 1}));
  ASSERT_EQ(loaded.Lists.SpecialList.size(), 1u);
  EXPECT_EQ(loaded.Lists.SpecialList[0].Uses, 2);
  EXPECT_EQ(loaded.Lists.PrimitiveList.size(), 4u);
  EXPECT_TRUE(pass.shown().empty());
}

}  // namespace
}  // namespace tvx
