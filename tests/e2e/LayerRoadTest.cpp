// The layer menu worked as the user does on the demo board: PCB Layer lists the board's layers
// with the current one checked; "Add inner layer" asks and lists Inner Layer (A); a click makes
// it current and offers to remove it; Remove asks and takes it away again.
#include "e2e/HostDriver.h"

#include <QDir>

namespace {

using test::ScreenRect;
using test::waitUntil;

struct MenuEntry {
  QString name, caption;
  bool shown = false, checked = false, enabled = false;
  ScreenRect place;
};

class LayerRoad : public test::HostDriver {
protected:
  std::map<QString, MenuEntry> menu() {
    std::map<QString, MenuEntry> entries;
    for (const QString& line : ask("TARVEX,MENU,M_ActiveCategory", "MENU,")) {
      const QStringList f = line.split('\t');
      if (f.size() != 8 || f[1] != "MENUITEM")
        continue;
      MenuEntry e{f[2], f[3], f[4] == "shown", f[5] == "checked", f[6] == "enabled", {}};
      const QStringList r = f[7].split(',');
      if (r.size() == 4)
        e.place = {r[0].toInt(), r[1].toInt(), r[2].toInt(), r[3].toInt()};
      entries[e.name] = e;
    }
    return entries;
  }
  QStringList shownCaptions() {
    QStringList shown;
    for (const auto& [key, e] : menu())
      if (e.shown && e.name.startsWith("M_ActiveCategories_"))
        shown << e.caption;
    return shown;
  }
  MenuEntry row(const QString& caption) {
    for (const auto& [name, e] : menu())
      if (e.caption == caption)
        return e;
    return {};
  }
  QString checkedCaption() {
    for (const auto& [key, e] : menu())
      if (e.checked)
        return e.caption;
    return {};
  }
  void openMenu() {
    xdo({"windowfocus", "--sync", visibleWindow("Viewer & Import")});
    xdo({"key", "alt+l"});
    waitUntil([&] { return menu()["M_AddLayer"].place.valid(); });
  }
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

  const QStringList board = shownCaptions();
  EXPECT_TRUE(board.contains("Artwork Top Layer") && board.contains("Drill Template"));
  EXPECT_FALSE(board.contains("Artwork Inner Layer (A)"));
  EXPECT_EQ(checkedCaption(), "Drill Template") << "the last file's layer is current";
  EXPECT_FALSE(menu()["M_RemoveLayer"].shown) << "an outer layer cannot be removed";

  openMenu();
  ScreenRect add = menu()["M_AddLayer"].place;
  click(add, add.width / 2);
  answerYes("New Artwork Layer");
  waitUntil([&] { return shownCaptions().contains("Artwork Inner Layer (A)"); });
  ASSERT_TRUE(shownCaptions().contains("Artwork Inner Layer (A)"));
  EXPECT_EQ(checkedCaption(), "Drill Template") << "an added layer does not become current";

  openMenu();
  const ScreenRect inner = row("Artwork Inner Layer (A)").place;
  ASSERT_TRUE(inner.valid());
  click(inner, inner.width / 2);
  waitUntil([&] { return checkedCaption() == "Artwork Inner Layer (A)"; });
  EXPECT_EQ(checkedCaption(), "Artwork Inner Layer (A)");
  const MenuEntry remove = menu()["M_RemoveLayer"];
  EXPECT_TRUE(remove.shown);
  EXPECT_EQ(remove.caption, "Remove Artwork Inner Layer (A)");

  openMenu();
  const ScreenRect removePlace = menu()["M_RemoveLayer"].place;
  click(removePlace, removePlace.width / 2);
  answerYes("Removing Artwork Layer");
  waitUntil([&] { return !shownCaptions().contains("Artwork Inner Layer (A)"); });
  EXPECT_FALSE(shownCaptions().contains("Artwork Inner Layer (A)"));
  EXPECT_EQ(checkedCaption(), "Silkscreen Bottom") << "the first listed layer below it";
}

}  // namespace
