// The layer menu worked as the user does on the demo board: PCB Layer lists the board's layers
// with the current one checked; "Add inner layer" asks and lists Inner Layer (A); a click makes
// it current and offers to remove it; Remove asks and takes it away again.
#include "e2e/HostDriver.h"

#include <QDir>

namespace {

using test::MenuFacts;
using test::ScreenRect;
using test::waitUntil;

class LayerRoad : public test::HostDriver {
protected:
  MenuFacts menu() { return HostDriver::menu("M_ActiveCategory"); }
  void choose(const QString& entry) { HostDriver::choose("M_ActiveCategory", "l", entry); }
  void answerYes(const QString& title) {
    const QString box = visibleWindow(title);
    ASSERT_FALSE(box.isEmpty()) << title.toStdString();
    xdo({"windowfocus", "--sync", box});
    xdo({"key", "Return"});
  }
};

TEST_F(LayerRoad, AnInnerLayerIsAddedChosenAndRemoved) {
  QStringList files;
  for (const char* name : {"demo-top.gbr", "demo-outline.gbr", "demo.drl"})
    files << QDir(TVX_SOURCE_DIR).filePath(QString("samples/") + name);
  host.start(test::binary("tarvex-gbrviewer"), files);
  ASSERT_TRUE(host.waitForStarted(10000));
  waitUntil([&] { return messageLine().endsWith("Import successful"); });
  const MenuFacts board = menu();
  EXPECT_TRUE(board.shown.contains("Artwork Top Layer") && board.shown.contains("Drill Template"));
  EXPECT_FALSE(board.shown.contains("Artwork Inner Layer (A)"));
  EXPECT_EQ(board.checked, "Drill Template") << "the last file's layer is current";

  choose("M_AddLayer");
  answerYes("New Artwork Layer");
  waitUntil([&] { return menu().shown.contains("Artwork Inner Layer (A)"); });
  ASSERT_TRUE(menu().shown.contains("Artwork Inner Layer (A)"));
  EXPECT_EQ(menu().checked, "Drill Template") << "an added layer does not become current";

  choose("Artwork Inner Layer (A)");
  waitUntil([&] { return menu().checked == "Artwork Inner Layer (A)"; });
  EXPECT_EQ(menu().places["M_RemoveLayer"].first, "Remove Artwork Inner Layer (A)");
  choose("M_RemoveLayer");
  answerYes("Removing Artwork Layer");
  waitUntil([&] { return !menu().shown.contains("Artwork Inner Layer (A)"); });
  EXPECT_FALSE(menu().shown.contains("Artwork Inner Layer (A)"));
  EXPECT_EQ(menu().checked, "Silkscreen Bottom") << "the first listed layer below it";
}

}  // namespace
