// The demo board of samples/ through "gbrview render --mono": each file renders, and places whose
// copper the board's layout fixes are lit or dark. Window -1,-1 to 41,31 mm at 254 dpi: 10 pixels
// per millimetre, pixel (0, 0) at the top left.
#include "support/CliProcess.h"

#include <QFileInfo>
#include <QImage>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

struct Place {
  const char* what;
  double x, y;  // mm
  bool lit;
};

struct Layer {
  const char* file;
  bool near;  // lit places are thin lines: looked for in the 3 x 3 pixels round the point
  std::vector<Place> places;
};

// The pixel that holds the world point, cut at half intensity, or with near the 3 x 3 round it.
bool litAt(const QImage& image, double x, double y, bool near) {
  const int px = int((x + 1.0) * 10.0), py = int((31.0 - y) * 10.0);
  for (int dy = near ? -1 : 0; dy <= (near ? 1 : 0); ++dy)
    for (int dx = near ? -1 : 0; dx <= (near ? 1 : 0); ++dx)
      if (image.valid(px + dx, py + dy) && qGray(image.pixel(px + dx, py + dy)) >= 128)
        return true;
  return false;
}

// clang-format off
const Layer Layers[] = {
    {"demo-top.gbr", false, {
         {"pour", 2.0, 15.0, true},
         {"outside the pour", 0.5, 15.0, false},
         {"oval pad U1.2", 18.73, 11.19, true},
         {"clearance above U1.2", 18.73, 12.45, false},
         {"corner of the square pad J1.1", 5.75, 11.94, true},
         {"spoke of the thermal at J1.4", 6.15, 18.81, true},
         {"relief ring of the thermal at J1.4", 5.813, 19.623, false},
         {"track J1.2 to U1.1", 11.0, 12.4, true},
         {"clearance beside that track", 11.45, 12.4, false},
         {"middle of the arc U1.8 to R1.1", 15.549, 23.549, true},
         {"clearance outside that arc", 15.867, 23.867, false},
         {"mounting hole pad", 3.5, 3.5, true},
         {"0805 pad C2.1", 24.05, 5.5, true},
         {"clearance beside C2.1", 24.05, 6.55, false},
     }},
    {"demo-bottom.gbr", false, {
         {"corner pour", 30.0, 2.0, true},
         {"no pour in the upper half", 30.0, 25.0, false},
         {"notch cut by the arc inside the pour", 26.0, 8.5, false},
         {"pour below the notch", 26.0, 7.5, true},
         {"outside the pour's rounded corner", 38.9, 1.1, false},
         {"pad R2.1 in the pour", 31.0, 8.0, true},
         {"clearance above R2.1", 31.0, 9.2, false},
         {"spoke of the mounting hole's thermal", 33.7, 3.5, true},
         {"relief ring of that thermal", 34.52, 1.52, false},
         {"supply track", 10.5, 8.19, true},
     }},
    {"demo.drl", false, {
         {"1.0 mm hole of J1.1", 5.0, 11.19, true},
         {"beside that hole", 5.7, 11.19, false},
         {"3.0 mm mounting hole", 4.7, 3.5, true},
         {"beside the mounting hole", 5.2, 3.5, false},
         {"no hole under the 0805", 24.05, 5.5, false},
         {"via V2", 34.0, 12.0, true},
     }},
    {"demo-mask-top.gbr", false, {
         {"opening over C1.1, 0.1 mm wider than the pad", 15.85, 5.0, true},
         {"beyond that opening", 16.05, 5.0, false},
         {"tented via V1", 10.0, 22.0, false},
     }},
    {"demo-silk-top.gbr", true, {
         {"pin-1 notch of U1, bulging into the body", 16.0, 15.0, true},
         {"left of U1", 14.0, 15.0, false},
         {"circle of C1", 16.27, 7.6, true},
         {"inside the circle of C1", 16.27, 5.0, false},
     }},
    {"demo-outline.gbr", true, {
         {"lower edge", 20.0, 0.0, true},
         {"rounded corner", 0.586, 0.586, true},
         {"right edge", 40.0, 15.0, true},
         {"corner cut off by the arc", 0.1, 0.1, false},
         {"inside the board", 20.0, 15.0, false},
     }},
    {"demo-outline.plt", true, {
         {"lower edge", 20.0, 0.0, true},
         {"middle of the lower left corner's arc", 0.586, 0.586, true},
         {"middle of the upper right corner's arc", 39.414, 29.414, true},
         {"right edge", 40.0, 15.0, true},
         {"half a millimetre inside", 20.0, 0.5, false},
         {"half a millimetre outside", 20.0, -0.5, false},
     }},
    {"demo-outline.dxf", true, {
         {"lower edge", 20.0, 0.0, true},
         {"left edge", 0.0, 15.0, true},
         {"half a millimetre inside the upper edge", 20.0, 29.5, false},
         {"half a millimetre outside the right edge", 40.5, 15.0, false},
         {"middle of the lower left corner's bulge", 0.586, 0.586, true},
         {"middle of the lower right corner's bulge", 39.414, 0.586, true},
         {"middle of the upper right corner's bulge", 39.414, 29.414, true},
         {"middle of the upper left corner's bulge", 0.586, 29.414, true},
         {"corner cut off by the bulge", 0.1, 29.9, false},
         {"rim of the lower left mounting hole", 5.0, 3.5, true},
         {"centre of that hole", 3.5, 3.5, false},
         {"rim of the upper right mounting hole", 36.5, 25.0, true},
         {"centre of that hole", 36.5, 26.5, false},
         {"long arm of the mark at 8,3", 9.3, 3.0, true},
         {"middle of that mark's arc", 8.566, 3.566, true},
         {"long arm of the mark turned by 90 degrees", 33.0, 27.3, true},
         {"middle of that mark's arc", 32.434, 26.566, true},
         {"where the turned mark's long arm would lie unturned", 34.3, 26.0, false},
         {"where it would lie turned the other way", 33.0, 24.7, false},
     }},
};
// clang-format on

TEST(DemoBoardTest, EachLayerLightsItsCopperAndLeavesItsClearancesDark) {
  ASSERT_TRUE(QFileInfo(test::binary("gbrview")).isExecutable()) << "build the target gbrview";
  QTemporaryDir folder;
  ASSERT_TRUE(folder.isValid());
  for (const Layer& layer : Layers) {
    SCOPED_TRACE(layer.file);
    const QString out = folder.filePath(QString(layer.file) + ".png");
    const test::ProcessRun run =
        test::runGbrview({"render", "--mono", "--dpi", "254", "--window", "-1,-1,41,31", "-o", out,
                          QString(TVX_SOURCE_DIR "/samples/") + layer.file},
                         folder.path());
    EXPECT_EQ(run.exitCode, 0) << run.err;
    const QImage image(out);
    ASSERT_EQ(image.size(), QSize(420, 320));
    for (const Place& p : layer.places)
      EXPECT_EQ(litAt(image, p.x, p.y, layer.near && p.lit), p.lit)
          << p.what << " at " << p.x << ", " << p.y << " mm";
  }
}

}  // namespace
