// "gbrview render": files through the windowless import into one set of layers, then the layers
// drawn on an offscreen device and written as PNG, PDF or SVG.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tvx {

// A world rectangle in millimetres.
struct WindowMm {
  double x0 = 0, y0 = 0, x1 = 0, y1 = 0;
};

struct RenderOptions {
  double dpi = 300.0;
  std::optional<WindowMm> window;  // without it the picture frames all layers with a margin
  bool mono = false;               // white on black, clear elements black
  std::optional<int32_t> layer;    // the layer of the first Gerber file
  std::string output;              // ends in .png, .pdf or .svg
  std::string apertureTable;       // --apt: a table file for RS-274-D files, else the settings'
  std::vector<std::string> files;
};

// The picture's grid: its size in pixels and the view that puts world point (x0, y1) at the top
// left corner of pixel (0, 0). The view's scale is a whole number of store units per pixel, the
// nearest to 2540000 / dpi; the size follows the dpi exactly, so the far edges of the window may
// miss the picture's edges by up to scaleError * size pixels.
struct RenderGrid {
  int64_t width = 0;
  int64_t height = 0;
  int32_t scale = 1;        // store units per pixel
  double scaleError = 0.0;  // (scale - 2540000 / dpi) / (2540000 / dpi)
  int32_t originX = 0;      // store coordinates at the picture's centre
  int32_t originY = 0;
};

// The largest picture rendered: 400 megapixels.
inline constexpr int64_t MaxRenderPixels = 400'000'000;

// Checks the options that need no file: the dpi, the window's size, the output name. An error
// text, empty when they are usable.
std::string checkRenderOptions(const RenderOptions& options);

// The grid of window at dpi; an error text in error when it is empty or over MaxRenderPixels.
std::optional<RenderGrid> renderGridOf(const WindowMm& window, double dpi, std::string& error);

struct RenderOutcome {
  int exitCode = 0;                   // 0 done, 1 a file failed or nothing written, 2 bad options
  std::vector<std::string> messages;  // one line each, for stderr
  std::optional<RenderGrid> grid;     // the grid drawn, when a picture was written
  std::vector<int32_t> layers;        // the layer of each file, 0 for a file that failed
};

// Runs the render. Needs a QGuiApplication.
RenderOutcome renderFiles(const RenderOptions& options);

}  // namespace tvx
