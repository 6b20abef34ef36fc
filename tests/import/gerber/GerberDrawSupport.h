// What the drawing tests share: a layer with its symbol in a kernel of its own, a writer over it,
// the items it holds, the hole positions asked for, and a picture of the layer on an image.
#pragma once

#include "ImportTestSupport.h"

#include "import/gerber/ElementWriters.h"
#include "kernel/Kernel.h"
#include "kernel/Palette.h"
#include "store/LayerSymbol.h"

#include "support/GuiTestApplication.h"

#include <QImage>
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <vector>

namespace tvx::test {

inline constexpr int32_t ArtworkLayer = 2;
inline constexpr int32_t LayerColour = 10;
inline constexpr int32_t ClearCode = slotCode(colourslot::ClearColour);
// All filters on, outlines filled.
inline constexpr int32_t AllFilters = 127 | filter::FilledOutlines;

// An item's corner and extent, to compare in one line.
using Box = std::array<int32_t, 4>;
inline Box box(const ItemRecord& r) { return {r.X, r.Y, r.Width, r.Height}; }

class DrawFixture : public ::testing::Test {
protected:
  DrawFixture() {
    layer.Mask = 1 << (ArtworkLayer - 1);
    layer.SymbolHandle = LayerSymbolBase - ArtworkLayer;
    layer.SymbolName = "$$GIS_CAT" + std::to_string(layer.SymbolHandle);
    layer.ColourNumber = LayerColour;
    layer.PadKind = 5;
    EnsureLayerSymbol(k.store, layer, true);
    file.Colour = LayerColour;
    file.FilterMask = AllFilters;
  }

  // A writer over the layer and file as they stand now (the exclusion list is read here).
  ElementWriter& writer() {
    writer_ = std::make_unique<ElementWriter>(k.store, primitives, layer, file);
    return *writer_;
  }
  // The hole and pad positions placed in the layer.
  std::vector<Pad> holes() const { return padsOf(k.store, layer); }

  std::vector<ItemRecord> items() const { return itemsOf(k.store, layer); }
  void clearLayer() { EnsureLayerSymbol(k.store, layer, true); }

  // The layer drawn on a black image of w x h pixels, scale store units per pixel, centred on the
  // origin. Slot 60, the clear colour, is palette number clearPalette.
  QImage render(int w, int h, int32_t scale, int32_t clearPalette = 2) {
    guiTestApplication();
    k.strings.E_SysTable(1)[colourslot::ClearColour] = static_cast<uint8_t>(clearPalette);
    QImage image(w, h, QImage::Format_RGB32);
    const int32_t dev = k.graphics.G_GetDC(&image);
    EXPECT_EQ(k.graphics.G_OpenDC(dev, ViewSetup{scale, w, h, 0, 0, 4}, 0), 1);
    k.graphics.G_ChangeBackgroundColor(dev, 0);
    k.graphics.G_CreateShadowBitmap(dev);
    k.graphics.S_DrawSymbol(dev, layer.SymbolHandle, 1, 0);
    k.graphics.G_CloseDC(dev, 1);
    k.graphics.G_DeleteDC(dev);
    return image;
  }
  static QRgb colourOf(int paletteNumber) {
    const uint32_t v = paletteRgb()[size_t(paletteNumber)];
    return qRgb(redOf(v), greenOf(v), blueOf(v));
  }

  Kernel k;
  LayerRecord layer;
  LayerFileRecord file;
  std::vector<PrimitiveRow> primitives;

private:
  std::unique_ptr<ElementWriter> writer_;
};

// Rows of one special aperture appended to a primitive list; returns the first row's number.
inline int32_t addSpecial(std::vector<PrimitiveRow>& rows, int32_t kind, int32_t dCode,
                          std::initializer_list<double> values) {
  const auto first = static_cast<int32_t>(rows.size() + 1);
  for (double v : values)
    rows.push_back({kind, dCode, 0, v, {}});
  return first;
}

// One macro primitive of the given code: its rows with the code on the first and minus the count
// on the last, as macro expansion leaves them.
inline void addPrimitive(std::vector<PrimitiveRow>& rows, int32_t dCode, int32_t code,
                         std::initializer_list<double> values) {
  const size_t first = rows.size();
  for (double v : values)
    rows.push_back({primitive::Macro, dCode, 0, v, {}});
  rows[first].Number = code;
  rows.back().Number = -static_cast<int32_t>(values.size());
}

}  // namespace tvx::test
