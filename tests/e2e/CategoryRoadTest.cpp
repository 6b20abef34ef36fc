// The demo board sorted into the board categories through Tools > Import Categories, the window
// of options and the via question, with real X input; the suite's modules are told.
#include "e2e/HostDriver.h"

#include <QDir>

namespace {

using test::ScreenRect;

class CategoryRoad : public test::HostDriver {
protected:
  // The window's rows, caption and check state ("[x]", "[ ]"), in order.
  QStringList gridRows() {
    QStringList rows;
    for (const QString& line : ask("TARVEX,GRID,GBRVIEWER_GIEIMP", "GRID,GBRVIEWER_GIEIMP"))
      if (line.contains("GRIDROW"))
        rows << line.section('\t', 2, 3);
    return rows;
  }
  // Pads of a category, or -1 without its symbol.
  int padsOf(int category) {
    for (const QString& line : ask("TARVEX,CATEGORIES", "CATEGORIES,"))
      if (line.contains("CATEGORY," + QString::number(category) + ","))
        return line.section(',', 3, 3).isEmpty() ? -1 : line.section(',', 3, 3).toInt();
    return -1;
  }
  void clickCheckBox(const QString& caption) {
    const ScreenRect cell = place("GRIDCELL,GBRVIEWER_GIEIMP," + caption, "GRIDCELL,");
    ASSERT_TRUE(cell.valid()) << caption.toStdString();
    // From elsewhere, as a hand moves: the box is made anew at each change.
    xdo({"mousemove", QString::number(cell.x - 40), QString::number(cell.y)});
    click(cell, 8);
  }
  // True once the host has printed text, a command the viewer sent, count times.
  bool printed(const QString& text, int count = 1) {
    return test::waitUntil([&] {
      host.waitForReadyRead(50);
      output += QString::fromUtf8(host.readAllStandardOutput());
      return output.count(text) >= count;
    });
  }
  void openWindow() {
    choose("M_Edit", "t", "M_ImportCategories");
    ASSERT_FALSE(visibleWindow("Import to categories").isEmpty());
  }

  // The host on the whole demo board, with the shell and the layout module running.
  void startOnLayers() {
    startOnAllLayers();
    ask("TARVEX,RUN,TARVEX", "RUN,");
    ask("TARVEX,RUN,TVNLAYPS", "RUN,");
  }
  void clickOK() {
    const ScreenRect ok = place("PLACE,cmdOK", "PLACE,");
    ASSERT_TRUE(ok.valid());
    click(ok, ok.width / 2);
  }
};

TEST_F(CategoryRoad, TheDemoBoardSortsIntoPadsViasTracksAndPours) {
  startOnLayers();
  openWindow();
  const QStringList all = gridRows();
  ASSERT_EQ(all.size(), 16);
  EXPECT_EQ(all[0], "Board outlines\t[x]");
  EXPECT_EQ(all[1], "Duplicate in 'Board Cutouts'\t[ ]");
  clickCheckBox("Board outlines");
  EXPECT_TRUE(test::waitUntil([&] { return gridRows().size() == 13; })) << "children hidden";
  clickCheckBox("Board outlines");
  EXPECT_TRUE(test::waitUntil([&] { return gridRows() == all; })) << "children back";

  clickOK();
  // The via question lists the pads' apertures; the round 0.8 mm one is D30.
  ASSERT_FALSE(visibleWindow("Via hole pad positions filter").isEmpty());
  const ScreenRect list = place("PLACE,cboList", "PLACE,");
  ASSERT_TRUE(list.valid());
  click(list, 20);
  xdo({"type", "--delay", "20", "D30"});
  xdo({"key", "Return"});
  ASSERT_TRUE(printed("TVNLAYPS\tTVNLAYPS,GIE"));
  EXPECT_LT(output.indexOf("TARVEX\tTARVEX,FMG,TVNGBRVIEWER"), output.indexOf("TVNLAYPS,GIE"));
  EXPECT_EQ(padsOf(4), 22) << "through pads";
  EXPECT_EQ(padsOf(8), 3) << "vias";
  EXPECT_EQ(padsOf(5), 2) << "surface pads on the component side";
  EXPECT_EQ(padsOf(13), 0);
  EXPECT_EQ(messageLine(), "Pads: 22 through, 3 vias, 2 SMD top, 0 SMD bottom; holes on a pad: "
                           "25 of 25");

  // Again without "Remove previous import" for the pads: no pad twice.
  openWindow();
  const ScreenRect padsRemove =
      place("GRIDCELL,GBRVIEWER_GIEIMP,Pads & pads positions", "GRIDCELL,");
  ASSERT_TRUE(padsRemove.valid());
  xdo({"mousemove", QString::number(padsRemove.x - 40), QString::number(padsRemove.y)});
  xdo({"mousemove", QString::number(padsRemove.x + 8),
       QString::number(padsRemove.y + padsRemove.height * 3 / 2)});
  xdo({"click", "1"});
  ASSERT_TRUE(test::waitUntil([&] { return gridRows()[12] == "Remove previous import\t[ ]"; }));
  clickOK();
  ASSERT_FALSE(visibleWindow("Via hole pad positions filter").isEmpty());
  click(place("PLACE,cboList", "PLACE,"), 20);
  xdo({"type", "--delay", "20", "D30"});
  xdo({"key", "Return"});
  ASSERT_TRUE(printed("TVNLAYPS\tTVNLAYPS,GIE", 2));
  EXPECT_EQ(padsOf(4), 22);
  EXPECT_EQ(padsOf(8), 3);
}

TEST_F(CategoryRoad, NothingCheckedIsNothingToImportAndTellsNoModule) {
  startOnLayers();
  openWindow();
  for (const char* parent : {"Board outlines", "Silkscreen", "Traces", "Pads & pads positions",
                             "Copper pour (polygons only)"})
    clickCheckBox(parent);
  ASSERT_TRUE(test::waitUntil([&] { return gridRows().size() == 9; })) << "parents and gaps";
  clickOK();
  ScreenRect box;
  ASSERT_TRUE(test::waitUntil([&] {
    return (box = place("PLACE,qt_msgbox_label", "PLACE,")).valid();
  })) << "no message";
  xdo({"key", "Return"});
  ask("TARVEX,MSGLINE", "MSGLINE");
  EXPECT_FALSE(output.contains("TVNLAYPS,GIE"));
  EXPECT_FALSE(output.contains("FMG,"));
}

}  // namespace
