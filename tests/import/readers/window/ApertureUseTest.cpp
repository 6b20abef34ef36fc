// The apertures display behind the import window's "Apertures used" button: a size typed there
// reaches the traces through the written-back TMP.ART, and a table made there is read with at the
// next scan.
#include "aperture/ApertureSizesModel.h"
#include "import/readers/window/ImportWindowTestSupport.h"

#include <functional>

namespace tvx {
namespace {

TEST(AperturesDisplayRoad, ATypedSizeIsDrawnAndATableMadeOfTheListsIsReadWith) {
  test::ImportWindowWorld world;
  ApertureTable table;
  world.session->gerberPass.apertureTable = &table.rows;
  const std::string sysDir = world.folder.path().string();
  std::string setting;
  std::function<bool(ApertureSizesModel&)> act;
  ImportWindowOwners owners = world.makeOwners();
  owners.window.openApertureUse = [&] {
    ApertureSizesModel display({world.session->gerberScan, world.session->state.Job, table, sysDir,
                                [&setting](const std::string& name) { setting = name; },
                                world.session->reporter, 1});
    display.open();
    EXPECT_TRUE(act(display));
    return (display.ApertureFileCreated ? ApertureFileCreated : 0) |
           (display.ArtworkUpdated ? ArtworkUpdated : 0);
  };
  world.model = std::make_unique<ImportWindowModel>(std::move(owners));
  world.model->apertureUseWindow = true;
  world.model->FormFill();
  world.openAs("plain.gbr", test::PlainTrack, ImportKind::ArtworkRS274D);
  world.choose(world.layer(3).DisplayName);
  ASSERT_TRUE(world.row("IMP_APTUSE").Enabled);
  const auto width = [&] { return world.items(3).empty() ? -1 : world.items(3).back().LineWidth; };

  act = [](ApertureSizesModel& display) {
    EXPECT_TRUE(display.editSize(0, 1, 2, "0.3"));
    return display.updateArtwork();
  };
  world.model->CommitCell(world.model->rowOf("IMP_APTUSE"), "Click for info & setup");
  EXPECT_EQ(width(), 30000) << "0.3 mm";

  act = [](ApertureSizesModel& display) {
    EXPECT_TRUE(display.editSize(0, 1, 2, "0.5"));
    return display.createApertureFile();
  };
  world.model->CommitCell(world.model->rowOf("IMP_APTUSE"), "Click for info & setup");
  EXPECT_EQ(setting, "plain");
  EXPECT_EQ(test::readBytes(sysDir + "/plain.APT"), "50000,10,0,0\r\n\"#\",\"#\",\"#\",\"#\"\r\n");
  EXPECT_EQ(width(), 50000) << "scanned again with the new table";
}

}  // namespace
}  // namespace tvx
