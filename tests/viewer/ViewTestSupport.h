// What the view tests share: a kernel with the start-up tables, a device over an image of 400 by
// 300 pixels, three layer symbols as the cover, and the view over them.
#pragma once

#include "kernel/Kernel.h"
#include "platform/SystemServices.h"
#include "store/LayerRecord.h"
#include "viewer/ViewState.h"

#include "support/GuiTestApplication.h"
#include "support/ItemBuilder.h"

#include <QImage>
#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace tvx::test {

// The kernel's tables as start-up fills them from the default settings.
inline void writeStartupTables(KernelStrings& strings) {
  const auto write = [&](int32_t number, const std::vector<int32_t>& values) {
    KernelStrings::E_MemCopy(strings.E_SysTable(number), values.data(),
                             int32_t(values.size() * sizeof(int32_t)));
  };
  write(5, {2,      508000, 254000, 127000, 63500,  25400,  12700,  254000, 200000,
            130000, 100000, 65000,  50000,  2,      254000, 200000, 130000, 100000,
            65000,  50000,  508000, 254000, 127000, 63500,  25400,  12700});
  write(7, {3, 1000, 5000, 15000, 30000, 45000, 90000});
  write(8, {2, 1, 2, 4, 8});
  write(21, {12,    254,   508,   1270,   2540,   5080,  6350,  10160, 12700,  15240, 19050,
             20320, 25400, 50800, 127000, 254000, 12,    100,   500,   1000,   2500,  5000,
             7500,  10000, 12500, 15000,  17500,  20000, 25000, 50000, 125000, 250000});
}

class ViewFixture : public ::testing::Test {
protected:
  static constexpr int Width = 400;
  static constexpr int Height = 300;

  ViewFixture() : image(Width, Height, QImage::Format_RGB32), view(k.graphics, services) {}

  void SetUp() override {
    guiTestApplication();
    image.fill(Qt::black);
    writeStartupTables(k.strings);
    for (size_t i = 0; i < layers.size(); ++i) {
      layers[i].SymbolHandle = LayerSymbolBase - SymbolId(i + 1);
      k.store.S_CreateSymbol(layers[i].SymbolHandle, "L" + std::to_string(i + 1));
    }
    dc = k.graphics.G_GetDC(&image);
    view.setDevice(dc);
    view.setPictureSize(Width, Height);
    view.setCoverSource(LayersCover(k.store, layers));
    view.readKernelTables(k.strings);
    view.takeDefaultPrecision();
  }
  // The view leaves its device open for drawing; the device goes before the image does.
  void TearDown() override { k.graphics.G_DeleteDC(dc); }

  // A shown, filled circle of radius 0 at (x, y), in palette colour 15.
  static ItemRecord dotRecord(int32_t x, int32_t y) {
    return Item(ItemCircle).at(x, y).colour(15).filled();
  }
  // A filled rectangle from (x0, y0) to (x1, y1) in layer (1 to 3).
  void addBox(int layer, int32_t x0, int32_t y0, int32_t x1, int32_t y1) {
    k.store.OA_Add(k.store.S_SymbolItemArray(layers[size_t(layer - 1)].SymbolHandle),
                   k.store.I_MakeItem(
                       Item(ItemRectangle).at(x0, y0).colour(15).filled().size(x1 - x0, y1 - y0)));
  }

  // Sets the precision, the view flags and the stored centre (Y negated).
  void place(int32_t precision, int32_t flags, int32_t cx, int32_t cy) {
    view.m_Precision = precision;
    view.ViewFlags = flags;
    view.ViewCenterX = cx;
    view.ViewCenterY = cy;
  }

  // The world point of a picture pixel through the view's device, as last opened.
  std::array<int32_t, 2> worldOf(int32_t px, int32_t py) {
    std::array<int32_t, 2> w{};
    EXPECT_TRUE(view.pixelToWorld(px, py, w[0], w[1]));
    return w;
  }

  // The precision and the stored centre (Y negated), and the centre alone.
  std::array<int32_t, 3> zoom() const {
    return {view.m_Precision, view.ViewCenterX, view.ViewCenterY};
  }
  std::array<int32_t, 2> centre() const { return {view.ViewCenterX, view.ViewCenterY}; }

  Kernel k;
  SystemServices services;
  QImage image;
  std::array<LayerRecord, 3> layers;
  ViewState view;
  int32_t dc = 0;
};

}  // namespace tvx::test
