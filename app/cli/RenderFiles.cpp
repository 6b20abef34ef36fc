#include "app/cli/RenderFiles.h"
#include "app/cli/CliImport.h"
#include "app/cli/CompactPng.h"

#include "import/readers/ImportSession.h"
#include "import/readers/WindowlessLayers.h"
#include "kernel/Kernel.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"
#include "store/ColourSlots.h"
#include "store/LayerCatalogue.h"
#include "store/LayerDrawing.h"
#include "store/Layers.h"

#include <QFileInfo>
#include <QImage>
#include <QPageLayout>
#include <QPageSize>
#include <QPdfWriter>
#include <QSvgGenerator>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <memory>
#include <variant>

namespace tvx {

namespace {

constexpr double UnitsPerMm = StoreUnitsPerMm;
constexpr double UnitsPerInch = UnitsPerMm * 25.4;
constexpr int32_t PaletteBlack = 0;
constexpr double MinDpi = 1.0;
constexpr double MaxDpi = 20000.0;

enum class OutputKind { Png, Pdf, Svg, None };

OutputKind outputKindOf(const std::string& path) {
  const QString suffix = QFileInfo(QString::fromStdString(path)).suffix().toLower();
  if (suffix == "png")
    return OutputKind::Png;
  if (suffix == "pdf")
    return OutputKind::Pdf;
  if (suffix == "svg")
    return OutputKind::Svg;
  return OutputKind::None;
}

bool fitsStore(double units) {
  return units >= std::numeric_limits<int32_t>::min() &&
         units <= std::numeric_limits<int32_t>::max();
}

// The frame of everything imported, in millimetres, with a margin of 2% of its larger side and
// at least 1 mm, so that a lone hole or a line on the frame is not cut by the picture's edge.
std::optional<WindowMm> framedWindow(Store& store, const LayerTables& tables) {
  FrameRect frame;
  FrameLayers(store, tables.Layers, frame);
  if (frame == FrameRect{})
    return std::nullopt;
  WindowMm w{frame.MinX / UnitsPerMm, frame.MinY / UnitsPerMm, frame.MaxX / UnitsPerMm,
             frame.MaxY / UnitsPerMm};
  const double margin = std::max(1.0, 0.02 * std::max(w.x1 - w.x0, w.y1 - w.y0));
  return WindowMm{w.x0 - margin, w.y0 - margin, w.x1 + margin, w.y1 + margin};
}

enum class Drawn { Whole, Incomplete, Failed };

// Draws the layers on a device over target. Incomplete: an 8-bit picture met a figure that only
// a painter draws. Failed: the device could not be opened.
Drawn drawOn(QPaintDevice& target, Kernel& kernel, const RenderGrid& grid, int32_t background,
             LayerDrawContext& context, std::span<const LayerOrderRow> order,
             std::span<const LayerRecord> layers) {
  Graphics& graphics = kernel.graphics;
  const int32_t dev = graphics.G_GetDC(&target);
  if (dev == 0)
    return Drawn::Failed;
  graphics.G_ChangeBackgroundColor(dev, background);
  ViewSetup view;
  view.Scale = grid.scale;
  view.Width = int32_t(grid.width);
  view.Height = int32_t(grid.height);
  view.OriginX = grid.originX;
  view.OriginY = grid.originY;
  view.Mode = drawmode::Normal;
  if (!graphics.G_OpenDC(dev, view, drawmode::Normal)) {
    graphics.G_DeleteDC(dev);
    return Drawn::Failed;
  }
  graphics.G_CreateShadowBitmap(dev);  // clears the picture to the background
  DrawLayers(context, dev, drawmode::Normal, order, layers);
  graphics.G_CloseDC(dev, 1);
  const bool whole = !graphics.figuresLeftOut(dev);
  graphics.G_DeleteDC(dev);
  return whole ? Drawn::Whole : Drawn::Incomplete;
}

// The picture for a PNG. A monochrome one holds a few colours (black, white, the drill layer's):
// it is drawn with one byte a pixel, a quarter of the memory and time of 32-bit colour, unless it
// holds a figure that only a painter draws, which the 32-bit picture then takes.
std::variant<QImage, std::string> drawPicture(const RenderOptions& options, const RenderGrid& grid,
                                              Kernel& kernel, int32_t background,
                                              LayerDrawContext& context,
                                              std::span<const LayerOrderRow> order,
                                              std::span<const LayerRecord> layers) {
  const QImage::Format formats[] = {QImage::Format_Indexed8, QImage::Format_RGB32};
  for (QImage::Format format : std::span(formats).subspan(options.mono ? 0 : 1)) {
    QImage image(int(grid.width), int(grid.height), format);
    if (image.isNull())
      return "gbrview: " + options.output + ": no memory for a picture of " +
             std::to_string(grid.width) + " x " + std::to_string(grid.height) + " pixels";
    switch (drawOn(image, kernel, grid, background, context, order, layers)) {
    case Drawn::Whole:
      return image;
    case Drawn::Incomplete:
      continue;
    case Drawn::Failed:
      return "gbrview: " + options.output + ": cannot be written";
    }
  }
  return "gbrview: " + options.output + ": cannot be written";
}

std::string writePicture(const RenderOptions& options, const RenderGrid& grid, Kernel& kernel,
                         int32_t background, LayerDrawContext& context,
                         std::span<const LayerOrderRow> order,
                         std::span<const LayerRecord> layers) {
  const QString path = QString::fromStdString(options.output);
  const std::string cannotWrite = "gbrview: " + options.output + ": cannot be written";
  switch (outputKindOf(options.output)) {
  case OutputKind::Png: {
    auto picture = drawPicture(options, grid, kernel, background, context, order, layers);
    if (std::string* error = std::get_if<std::string>(&picture))
      return *error;
    return writeCompactPng(std::get<QImage>(picture), path).ok ? std::string() : cannotWrite;
  }
  case OutputKind::Pdf: {
    QPdfWriter writer(path);
    writer.setResolution(std::max(1, int(std::lround(options.dpi))));
    const QSizeF pageMm(grid.width * 25.4 / options.dpi, grid.height * 25.4 / options.dpi);
    writer.setPageLayout(
        QPageLayout(QPageSize(pageMm, QPageSize::Millimeter, QString(), QPageSize::ExactMatch),
                    QPageLayout::Portrait, QMarginsF(0, 0, 0, 0), QPageLayout::Millimeter));
    if (drawOn(writer, kernel, grid, background, context, order, layers) == Drawn::Failed)
      return cannotWrite;
    break;
  }
  case OutputKind::Svg: {
    QSvgGenerator generator;
    generator.setFileName(path);
    generator.setSize(QSize(int(grid.width), int(grid.height)));
    generator.setViewBox(QRect(0, 0, int(grid.width), int(grid.height)));
    generator.setResolution(std::max(1, int(std::lround(options.dpi))));
    generator.setTitle(QStringLiteral("gbrview render"));
    if (drawOn(generator, kernel, grid, background, context, order, layers) == Drawn::Failed)
      return cannotWrite;
    break;
  }
  case OutputKind::None:
    return "gbrview: " + options.output + ": the output file must end in .png, .pdf or .svg";
  }
  return QFileInfo::exists(path) ? std::string() : cannotWrite;
}

}  // namespace

std::string checkRenderOptions(const RenderOptions& options) {
  if (!std::isfinite(options.dpi) || options.dpi < MinDpi || options.dpi > MaxDpi)
    return "--dpi must be from 1 to 20000";
  if (options.window) {
    const WindowMm& w = *options.window;
    if (!(w.x1 > w.x0) || !(w.y1 > w.y0))
      return "--window must have a positive width and height (x1 > x0 and y1 > y0)";
  }
  if (options.layer && (*options.layer < 1 || *options.layer > LayerCount))
    return "--layer must be a layer number from 1 to 31";
  if (outputKindOf(options.output) == OutputKind::None)
    return "the output file must end in .png, .pdf or .svg";
  if (options.files.empty())
    return "render needs at least one input file";
  return std::string();
}

std::optional<RenderGrid> renderGridOf(const WindowMm& window, double dpi, std::string& error) {
  const double exact = UnitsPerInch / dpi;
  RenderGrid grid;
  grid.scale = int32_t(std::max(1.0, std::round(exact)));
  grid.scaleError = (grid.scale - exact) / exact;
  const double width = std::round((window.x1 - window.x0) / 25.4 * dpi);
  const double height = std::round((window.y1 - window.y0) / 25.4 * dpi);
  if (!(width >= 1) || !(height >= 1)) {
    error = "the window is smaller than one pixel at this dpi";
    return std::nullopt;
  }
  if (width * height > double(MaxRenderPixels)) {
    error = "the picture would be " + std::to_string(int64_t(width)) + " x " +
            std::to_string(int64_t(height)) +
            " pixels, over the limit of 400 megapixels; use a lower --dpi or a smaller --window";
    return std::nullopt;
  }
  grid.width = int64_t(width);
  grid.height = int64_t(height);
  const double originX = window.x0 * UnitsPerMm + grid.width * double(grid.scale) / 2.0;
  const double originY = window.y1 * UnitsPerMm - grid.height * double(grid.scale) / 2.0;
  const double left = std::round(originX) - grid.width * double(grid.scale) / 2.0;
  const double right = std::round(originX) + grid.width * double(grid.scale) / 2.0;
  const double bottom = std::round(originY) - grid.height * double(grid.scale) / 2.0;
  const double top = std::round(originY) + grid.height * double(grid.scale) / 2.0;
  if (!fitsStore(left) || !fitsStore(right) || !fitsStore(bottom) || !fitsStore(top)) {
    error = "the window lies outside the world of +-21474 mm";
    return std::nullopt;
  }
  grid.originX = int32_t(std::round(originX));
  grid.originY = int32_t(std::round(originY));
  return grid;
}

RenderOutcome renderFiles(const RenderOptions& options) {
  RenderOutcome outcome;
  auto badOptions = [&](const std::string& reason) {
    outcome.exitCode = 2;
    outcome.messages.push_back("gbrview: " + reason);
    return outcome;
  };
  if (std::string error = checkRenderOptions(options); !error.empty())
    return badOptions(error);
  std::optional<RenderGrid> grid;
  if (options.window) {
    std::string error;
    grid = renderGridOf(*options.window, options.dpi, error);
    if (!grid)
      return badOptions(error);
  }

  CliImport cli;
  WindowlessLayers& run = cli.run;
  Kernel* kernel = run.kernel.get();
  LayerTables* tables = run.tables.get();
  const ColourSlots& colours = run.colours;
  if (std::string error = cli.useApertureTable(options.apertureTable); !error.empty())
    return badOptions(error);
  outcome.layers = cli.importFiles(options.files, {}, options.layer.value_or(0), outcome.messages);
  const bool failed = std::count(outcome.layers.begin(), outcome.layers.end(), 0) > 0;

  if (!grid) {
    const std::optional<WindowMm> window = framedWindow(kernel->store, *tables);
    if (!window) {
      outcome.exitCode = 1;
      outcome.messages.push_back("gbrview: nothing to draw; " + options.output +
                                 " was not written");
      return outcome;
    }
    // The drawing of the files is too large for a picture: a fault of the files, not of the
    // arguments.
    std::string error;
    grid = renderGridOf(*window, options.dpi, error);
    if (!grid) {
      std::string names;
      for (const std::string& file : options.files)
        names += (names.empty() ? "" : ", ") + file;
      outcome.exitCode = 1;
      outcome.messages.push_back("gbrview: " + names + ": " + error);
      return outcome;
    }
  }

  const std::vector<LayerOrderRow> order = cli.drawOrder(outcome.layers, options.mono);
  int32_t background = colours.backgroundColour();
  if (options.mono)
    background = PaletteBlack;
  LayerDrawContext context(kernel->graphics, kernel->store);
  context.clearColour = colours.ClearColour();

  if (std::string error =
          writePicture(options, *grid, *kernel, background, context, order, tables->Layers);
      !error.empty()) {
    outcome.exitCode = 1;
    outcome.messages.push_back(error);
    return outcome;
  }
  outcome.grid = grid;
  outcome.exitCode = failed ? 1 : 0;
  return outcome;
}

}  // namespace tvx
