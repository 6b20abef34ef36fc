// A plain RS-274-D file corrected in "Apertures & Sizes" and its layer looked at in the layer
// properties, through the real windows with real X input: a size typed for D10 draws the traces
// that wide, a table made there becomes the current one, "*LP" lists the layer's apertures with
// their uses, a click lights D10's traces and a palette square recolours the layer. On the demo
// board the drill layer's tools add up to its holes.
#include "e2e/HostDriver.h"

#include <QFile>
#include <QFileInfo>

namespace {

using test::ScreenRect;
using test::waitUntil;

class ApertureUseRoad : public test::HostDriver {
protected:
  // A table's rows as shown, each its cells.
  std::vector<QStringList> table(const QString& name) {
    std::vector<QStringList> rows;
    for (const QString& line : ask("TARVEX,TABLE," + name, "TABLE," + name)) {
      const QStringList cells = line.split('\t');
      if (cells.size() > 3 && cells[1] == "TABLEROW")
        rows.push_back(cells.mid(3));
    }
    return rows;
  }
  // A window's property grid, caption to value.
  std::map<QString, QString> grid(const QString& window) {
    std::map<QString, QString> rows;
    for (const QString& line : ask("TARVEX,GRID," + window, "GRID," + window)) {
      const QStringList parts = line.split('\t');
      if (parts.size() == 4 && parts[1] == "GRIDROW")
        rows[parts[2]] = parts[3];
    }
    return rows;
  }
  void clickPlace(const QString& name) {
    ScreenRect where;
    waitUntil([&] { return (where = place("PLACE," + name, "PLACE,")).valid(); });
    ASSERT_TRUE(where.valid()) << name.toStdString();
    click(where, where.width / 2);
  }
  // Opens the apertures display from the import window.
  void openDisplay() {
    const ScreenRect button = place("CELL,Apertures used", "CELL,");
    ASSERT_TRUE(button.valid());
    click(button, button.width / 2);
    ASSERT_FALSE(visibleWindow("Apertures & Sizes").isEmpty());
  }
  // Types "*LP" into the view: key 0 of function 1, the layer properties.
  void openProperties() {
    const ScreenRect viewPlace = place("PLACE,ViewPicture", "PLACE,");
    xdo({"windowfocus", "--sync", visibleWindow("Viewer & Import")});
    xdo({"mousemove", QString::number(viewPlace.x + 20), QString::number(viewPlace.y + 20)});
    xdo({"type", "--delay", "20", "*LP"});
    ASSERT_FALSE(visibleWindow("Layer properties").isEmpty());
  }
};

TEST_F(ApertureUseRoad, ASizeTypedThereDrawsTheTracesAndTheLayerShowsItsUses) {
  const QString tableFile = QFileInfo(test::binary("gbrview")).absolutePath() + "/SYS/plain.APT";
  QFile::remove(tableFile);
  importIntoLayer(writeHomeFile("plain.gbr", test::PlainTracesAndPads), "Artwork Top");

  // 0.3 mm typed into D10's mm cell, then the file updated: the traces are 0.3 mm wide.
  openDisplay();
  std::vector<QStringList> lines = table("egrdApts0");
  int d10 = -1;
  for (size_t row = 0; row < lines.size(); ++row)
    if (lines[row].value(0) == "D10*")
      d10 = int(row);
  ASSERT_GE(d10, 0) << "D10 is not listed";
  const ScreenRect mmCell =
      place(QString("TABLECELL,egrdApts0,%1,2").arg(d10), "TABLECELL,egrdApts0");
  ASSERT_TRUE(mmCell.valid());
  click(mmCell, mmCell.width / 2);
  xdo({"type", "--delay", "20", "0.3"});
  xdo({"key", "Return"});
  waitUntil([&] { return table("egrdApts0").at(size_t(d10)).value(2) == "0.300"; });
  EXPECT_EQ(table("egrdApts0").at(size_t(d10)).value(1), "0.01181");
  clickPlace("cmdUpdate0");
  waitUntil([&] { return layer(3).widest == 30000; });
  EXPECT_EQ(layer(3).widest, 30000);

  // The table made of the lists is named after the file and read with from now on.
  openDisplay();
  clickPlace("cmdUpdate1");
  auto rows = rowsWhen([](auto& r) { return r["Aperture Table"] == "plain"; });
  EXPECT_EQ(rows["Aperture Table"], "plain");
  QFile written(tableFile);
  ASSERT_TRUE(written.open(QIODevice::ReadOnly)) << "no table written";
  EXPECT_TRUE(written.readAll().startsWith("30000,10,0,0\r\n"));
  written.remove();
  clickPlace("cmdCmd1");  // the import window closes

  // The layer's properties: D10 made the two traces, D11 the two pads.
  openProperties();
  std::map<QString, QString> properties;
  waitUntil([&] { return (properties = grid("GBRVIEWER_GISIMP")).size() > 5; });
  QString d10Caption;
  for (const auto& [caption, value] : properties)
    if (caption.startsWith("D10*"))
      d10Caption = caption;
  ASSERT_FALSE(d10Caption.isEmpty());
  EXPECT_EQ(properties[d10Caption], "2");
  EXPECT_EQ(properties["Lines"], "2");

  const QImage before = view("before.png");
  const ScreenRect d10Row = place("GRIDCELL,GBRVIEWER_GISIMP," + d10Caption, "GRIDCELL,");
  ASSERT_TRUE(d10Row.valid());
  click(d10Row, d10Row.width / 2);
  QImage lit;
  waitUntil([&] { return test::pixelsInNewColours(before, lit = view("lit.png")) > 50; });
  EXPECT_GT(test::pixelsInNewColours(before, lit), 50) << "the traces are not lit";
  click(d10Row, d10Row.width / 2);  // the light goes out

  // Palette square 5 recolours the layer, and the colour is kept.
  const ScreenRect colourCell =
      place("GRIDCELL,GBRVIEWER_GISIMP,Change display color", "GRIDCELL,");
  ASSERT_TRUE(colourCell.valid());
  click(colourCell, colourCell.width - 8);
  xdo({"type", "--delay", "20", "Selected from palette"});
  xdo({"key", "Return"});
  clickPlace("picColor5");
  QImage recoloured;
  waitUntil(
      [&] { return test::pixelsInNewColours(before, recoloured = view("colour.png")) > 200; });
  EXPECT_GT(test::pixelsInNewColours(before, recoloured), 200);
  QFile settings(home.filePath("config/tarvex/tarvex.ini"));
  ASSERT_TRUE(settings.open(QIODevice::ReadOnly));
  EXPECT_TRUE(settings.readAll().contains("[LAYERCOLORS]"));
}

TEST_F(ApertureUseRoad, TheDemoBoardsToolsAddUpToItsHoles) {
  startOnDemoBoard();  // the drill layer is the current one
  openProperties();
  std::map<QString, QString> properties;
  waitUntil([&] { return (properties = grid("GBRVIEWER_GISIMP")).count("Drilled holes") > 0; });
  int holes = 0;
  int tools = 0;
  for (const auto& [caption, value] : properties)
    if (caption.startsWith("T") && caption.endsWith(")")) {
      holes += caption.section('(', 1).chopped(1).toInt();
      ++tools;
    }
  EXPECT_GT(tools, 1);
  EXPECT_EQ(QString::number(holes), properties["Drilled holes"]);
}

}  // namespace
