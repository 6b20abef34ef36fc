// The picture grid of "gbrview render": whole store units per pixel, the window's top left corner
// on pixel (0, 0), and the limits that refuse a picture before anything is drawn.
#include "app/cli/RenderFiles.h"
#include "import/readers/ImportSession.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tvx {
namespace {

TEST(RenderGrid, WindowCornerLandsOnTheFirstPixelAtAnyDpi) {
  for (const double dpi : {1000.0, 300.0, 326.0, 753.0, 25.4, 20000.0}) {
    SCOPED_TRACE(dpi);
    const WindowMm window{-2.413, 77.978, 10.4902, 83.0072};
    std::string error;
    const std::optional<RenderGrid> grid = renderGridOf(window, dpi, error);
    ASSERT_TRUE(grid) << error;
    const double exact = 2540000.0 / dpi;
    EXPECT_EQ(grid->scale, int32_t(std::round(exact)));
    EXPECT_NEAR(grid->scaleError, (grid->scale - exact) / exact, 1e-12);
    EXPECT_EQ(grid->width, std::llround((window.x1 - window.x0) / 25.4 * dpi));
    EXPECT_EQ(grid->height, std::llround((window.y1 - window.y0) / 25.4 * dpi));
    // The picture's left and top edges, in store units, lie on the window's within a unit.
    const double left = grid->originX - grid->width * double(grid->scale) / 2.0;
    const double top = grid->originY + grid->height * double(grid->scale) / 2.0;
    EXPECT_NEAR(left, window.x0 * 100000.0, 1.0);
    EXPECT_NEAR(top, window.y1 * 100000.0, 1.0);
  }
}

TEST(RenderGrid, TooLargeTooSmallOrOutsideTheWorldIsRefused) {
  std::string error;
  EXPECT_FALSE(renderGridOf({0, 0, 1000, 1000}, 20000, error));
  EXPECT_NE(error.find("400 megapixels"), std::string::npos);
  error.clear();
  EXPECT_FALSE(renderGridOf({0, 0, 0.01, 0.01}, 100, error));
  EXPECT_NE(error.find("one pixel"), std::string::npos);
  error.clear();
  EXPECT_FALSE(renderGridOf({21000, 0, 22000, 10}, 100, error));
  EXPECT_NE(error.find("outside the world"), std::string::npos);
  // Just under the pixel limit is still a picture: 20000 x 20000.
  error.clear();
  EXPECT_TRUE(renderGridOf({0, 0, 2000, 2000}, 254, error)) << error;
}

TEST(RenderGrid, GerberFilesTakeTheCopperLayersFirstThenTheRest) {
  const std::vector<int32_t> order = gerberLayerOrder();
  ASSERT_EQ(order.size(), 29u);
  EXPECT_EQ(std::vector<int32_t>(order.begin(), order.begin() + 7),
            (std::vector<int32_t>{3, 4, 1, 6, 2, 5, 7}));
  EXPECT_EQ(order.back(), 29);
}

}  // namespace
}  // namespace tvx
