// The tool bands with real X input: a function tool fills the option band, a raster typed with a
// comma is taken in millimetres, the dot raster added and taken away, the view's keys, a band
// hidden through View > Toolbar, and every band where it was after the viewer is started again.
#include "e2e/HostDriver.h"

#include <QFile>
#include <QRegularExpression>

namespace {

using test::ScreenRect;

class ToolBandRoad : public test::HostDriver {
protected:
  // The tool as the host tells it: "checked|-,enabled|disabled,shown|hidden<TAB>caption<TAB>text".
  QString tool(const QString& name) {
    const QStringList lines = ask("TARVEX,TOOL," + name, "TOOL," + name);
    return lines.isEmpty() ? QString() : lines.back().section(',', 2);
  }
  // The eight numbers of every band as the settings file keeps them.
  QStringList storedPlaces() {
    QFile file(home.filePath("config/tarvex/tarvex.ini"));
    QStringList places;
    if (file.open(QIODevice::ReadOnly))
      for (const QByteArray& line : file.readAll().split('\n'))
        if (line.startsWith("ATV-atvPostPro-") && !line.startsWith("ATV-atvPostPro-Layout"))
          places << QString::fromUtf8(line).trimmed();
    return places;
  }
};

TEST_F(ToolBandRoad, BandsWorkAndStayWhereTheyWere) {
  startOnDemoBoard();
  // Delete in the function band: its option band offers "Clear all".
  ScreenRect deleteTool;
  ASSERT_TRUE(
      test::waitUntil([&] { return (deleteTool = place("PLACE,3007", "PLACE,")).valid(); }));
  xdo({"mousemove", QString::number(deleteTool.x + 4), QString::number(deleteTool.y + 4)});
  click(deleteTool, deleteTool.width / 2);
  EXPECT_TRUE(test::waitUntil([&] {
    return tool("4000").startsWith("-,enabled,shown\tClear all");
  })) << tool("4000").toStdString();
  EXPECT_TRUE(tool("3007").startsWith("checked"));

  // Millimetres, then 0,5 typed into the raster combo and Return.
  xdo({"windowfocus", "--sync", visibleWindow("Viewer & Import")});
  xdo({"key", "alt+v"});
  xdo({"key", "u"});
  xdo({"key", "m"});
  const ScreenRect raster = place("PLACE,ATB_GridValue", "PLACE,");
  ASSERT_TRUE(raster.valid());
  click(raster, raster.width / 3);
  xdo({"key", "ctrl+a"});
  xdo({"type", "--delay", "20", "0,5"});
  xdo({"key", "Return"});
  EXPECT_TRUE(test::waitUntil([&] { return tool("ATB_GridValue").endsWith("\t0.500"); }))
      << tool("ATB_GridValue").toStdString();
  // Too large a step beeps and keeps the one before.
  click(raster, raster.width / 3);
  xdo({"key", "ctrl+a"});
  xdo({"type", "--delay", "20", "999"});
  xdo({"key", "Return"});
  EXPECT_TRUE(test::waitUntil([&] { return tool("ATB_GridValue").endsWith("\t0.500"); }));

  // The raster tool in dot mode: the dots are added to the picture and taken away again,
  // leaving it as it was.
  const QImage bare = view("bare");
  const ScreenRect grid = place("PLACE,ATB_Grid", "PLACE,");
  ASSERT_TRUE(grid.valid());
  click(grid, 4);
  ASSERT_TRUE(test::waitUntil([&] { return tool("ATB_Grid").startsWith("checked"); }));
  EXPECT_NE(view("dots"), bare);
  click(grid, 4);
  ASSERT_TRUE(test::waitUntil([&] { return tool("ATB_Grid").startsWith("-"); }));
  EXPECT_EQ(view("dots-gone"), bare);

  // The view's own keys still work though the menus show them: Shift+Z the long cursor, and
  // Alt+W the redraw in board mode, back to the board fitted.
  const auto precision = [&] {
    return ask("TARVEX,VIEWSTATE", "VIEWSTATE").filter("VIEWSTATE,").value(0).section(',', 1, 1);
  };
  xdo({"key", "Home"});  // the board fitted to the view as it now stands
  QString fitted;
  ASSERT_TRUE(test::waitUntil([&] {
    const QString before = fitted;
    fitted = precision();
    return fitted == before;
  }));
  xdo({"key", "shift+z"});
  EXPECT_TRUE(test::waitUntil([&] {
    return ask("TARVEX,MENU,M_View", "MENU,M_View")
        .filter("M_LCursor")
        .value(0)
        .contains("\tchecked");
  }));
  xdo({"key", "shift+u"});
  ASSERT_TRUE(test::waitUntil([&] { return precision() != fitted; }));
  xdo({"key", "alt+w"});
  EXPECT_TRUE(test::waitUntil([&] { return precision() == fitted; })) << precision().toStdString();

  // The layer band dragged by its handle off the bar: it floats.
  const ScreenRect layers = place("PLACE,B_Layer", "PLACE,");
  ASSERT_TRUE(layers.valid());
  xdo({"mousemove", QString::number(layers.x + 4), QString::number(layers.y + layers.height / 2)});
  xdo({"mousedown", "1"});
  for (int step = 1; step <= 8; ++step)
    xdo({"mousemove", QString::number(layers.x + 4 - 60 * step),
         QString::number(layers.y + layers.height / 2 + 5 * step)});
  xdo({"mousemove", "700", QString::number(layers.y + layers.height + 20)});
  xdo({"mouseup", "1"});
  ASSERT_TRUE(test::waitUntil([&] { return place("PLACE,B_Layer", "PLACE,").y > layers.y; }));

  // View > Toolbar > Tools hides the band.
  xdo({"windowfocus", "--sync", visibleWindow("Viewer & Import")});
  xdo({"key", "alt+v"});
  xdo({"key", "Right"});
  xdo({"key", "Down", "Down", "Return"});
  ASSERT_TRUE(test::waitUntil([&] { return !place("PLACE,B_Tools", "PLACE,").valid(); }));

  restart();
  const QStringList first = storedPlaces();
  ASSERT_EQ(first.size(), 8) << first.join(' ').toStdString();
  EXPECT_FALSE(first.filter(QRegularExpression("^ATV-atvPostPro-B_Tools=0,")).isEmpty())
      << first.join(" ").toStdString();
  EXPECT_FALSE(first.filter(QRegularExpression("^ATV-atvPostPro-B_Layer=1,16,")).isEmpty())
      << "floating";
  ASSERT_FALSE(visibleWindow("Viewer & Import").isEmpty());
  EXPECT_FALSE(place("PLACE,B_Tools", "PLACE,").valid()) << "still hidden";
  const QStringList menu = ask("TARVEX,MENU,M_TbarMenu", "MENU,M_TbarMenu");
  EXPECT_TRUE(menu.filter("M_ToolS").value(0).contains("\t-\t")) << "its entry unchecked";
  stop();
  // Read back as saved: each band shown or hidden, docked in its area and line as before, and the
  // floating band where it was (a docked band's offset and length are the layout's own).
  const auto kept = [](const QStringList& places) {
    QStringList out;
    for (const QString& place : places)
      out << (place.contains("=1,16,") ? place : place.section(',', 0, 2));
    return out;
  };
  EXPECT_EQ(kept(storedPlaces()), kept(first));
}

}  // namespace
