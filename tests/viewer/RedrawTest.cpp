// The paint with its guards, the rebuild's draw order, the mono background slots, the raster's
// adjustment, the highlights and the display options.
#include "support/ItemBuilder.h"
#include "support/WidgetTestApplication.h"

#include "kernel/Kernel.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"
#include "store/ColourSlots.h"
#include "store/LayerCatalogue.h"
#include "store/Layers.h"
#include "viewer/Redraw.h"
#include "viewer/ViewState.h"

#include <QImage>
#include <QWidget>

#include "RedrawWorld.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace tvx::test {
namespace {

constexpr int Width = 120;
constexpr int Height = 90;
constexpr int32_t Precision = 10000;  // 0.1 mm a pixel: the picture is 12 by 9 mm

class RedrawTest : public ::testing::Test, public RedrawWorld {
protected:
  void SetUp() override {
    build(Width, Height, Precision);
    redraw.applyMono();
    redraw.hooks.showBusy = [this](bool busy) { busyShown.push_back(busy); };
    redraw.hooks.messagePanel = [this](const std::string& text) { panel = text; };
  }

  // A filled circle of radius r (store units) at (x, y) in layer number.
  ObjectHandle addDisc(int32_t number, int32_t x, int32_t y, int32_t r, int32_t link = 0) {
    const ObjectHandle item = kernel.store.I_MakeItem(
        Item(ItemCircle).at(x, y).colour(tables.layer(number).ColourNumber).filled().size(r));
    kernel.store.I_ChangeItemLink(item, link);
    kernel.store.OA_Add(kernel.store.S_SymbolItemArray(tables.layer(number).SymbolHandle), item);
    return item;
  }

  // The shown colour at a world point (view centred on 0,0, Y up).
  QRgb pixelAt(int32_t x, int32_t y) const {
    const QImage* image = kernel.graphics.shadowImage(view.device());
    return image->pixel(Width / 2 + x / Precision, Height / 2 - y / Precision);
  }
  QRgb paletteColour(int32_t number) const {
    const int32_t rgb = colours.rgbOf(number);
    return qRgb(rgb & 0xFF, (rgb >> 8) & 0xFF, (rgb >> 16) & 0xFF);
  }
  QRgb backgroundColour() const {
    return paletteColour(colours[colourslot::Background].ColourNumber);
  }

  std::vector<bool> busyShown;
  std::string panel;
};

TEST_F(RedrawTest, GuardsKeepAPaintFromRebuilding) {
  // A paint while a paint runs returns at once, leaving the busy picture alone; one during a
  // resize's layout clears that flag; one while a rebuild runs leaves it. None rebuilds.
  redraw.RedrawPending = true;
  struct Guard {
    bool ViewRedraw::*flag;
    bool after;
  };
  for (const Guard& g : {Guard{&ViewRedraw::PaintBusy, true}, Guard{&ViewRedraw::ResizeBusy, false},
                         Guard{&ViewRedraw::RedrawBusy, true}}) {
    const bool paintBusy = g.flag == &ViewRedraw::PaintBusy;
    SCOPED_TRACE(busyShown.size());
    redraw.*g.flag = true;
    redraw.ViewPicture_Paint();
    EXPECT_EQ(std::tuple(redraw.*g.flag, redraw.PaintBusy, busyShown, redraw.RedrawPending,
                         redraw.rebuilds()),
              std::tuple(g.after, paintBusy, std::vector<bool>(paintBusy ? 0 : 1, true), true, 0));
    redraw.*g.flag = false;
    busyShown.clear();
  }
  redraw.ResizePending = true;
  redraw.ViewPicture_Paint();
  EXPECT_EQ(std::tuple(redraw.rebuilds(), redraw.RedrawPending, redraw.ResizePending,
                       redraw.PaintBusy, busyShown),
            std::tuple(1, false, false, false, std::vector<bool>{true, false}));
}

TEST_F(RedrawTest, OnlyARebuildDrawsAndRowOneLiesOnTop) {
  redraw.RedrawScreen();
  addDisc(3, 0, 0, 200000);
  addDisc(4, 0, 0, 200000);
  ASSERT_NE(tables.layer(3).ColourNumber, tables.layer(4).ColourNumber);
  redraw.ViewPicture_Paint();
  EXPECT_EQ(redraw.rebuilds(), 1);
  EXPECT_EQ(pixelAt(0, 0), backgroundColour()) << "a plain repaint shows the old picture";

  auto rowOf = [this](int32_t number) {
    for (int32_t row = 1; row <= LayerCount; ++row)
      if (tables.orderRow(row).LayerNumber == number)
        return row;
    return 0;
  };
  for (int32_t top : {4, 3}) {
    std::swap(tables.orderRow(1), tables.orderRow(rowOf(top)));
    redraw.RedrawScreen();
    EXPECT_EQ(pixelAt(0, 0), paletteColour(tables.layer(top).ColourNumber)) << top;
  }
  // Hidden rows are the layer drawing's (LayerDrawingTest).
  EXPECT_EQ(redraw.rebuilds(), 3);
}

TEST_F(RedrawTest, MonoSetsTheBackgroundSlotsOnlyForThePass) {
  const uint8_t* table = kernel.strings.E_SysTable(1);
  const int32_t ownDot = colours[colourslot::GridDot].ColourNumber;
  const int32_t ownBackground = colours[colourslot::Background].ColourNumber;
  ASSERT_NE(ownBackground, MonoBackgroundColour);
  std::vector<std::pair<int, int>> duringPass;
  redraw.hooks.drawReferencePoint = [&](int32_t) {
    duringPass.emplace_back(table[colourslot::GridDot], table[colourslot::Background]);
  };
  addDisc(3, 0, 0, 200000);

  redraw.RedrawScreen();
  redraw.toggle(DisplayOption::Mono);
  EXPECT_EQ(duringPass, (std::vector<std::pair<int, int>>{
                            {ownDot, ownBackground}, {MonoGridDotColour, MonoBackgroundColour}}));
  EXPECT_EQ(std::tuple(int(table[colourslot::GridDot]), int(table[colourslot::Background])),
            std::tuple(ownDot, ownBackground));
  // Paper-like: the background is the mono background, the layer in the mono colour.
  EXPECT_EQ(std::tuple(pixelAt(-500000, 400000), pixelAt(0, 0)),
            std::tuple(paletteColour(MonoBackgroundColour), paletteColour(redraw.MonoColour)));
  for (const LayerOrderRow& row : tables.LayerOrder)
    EXPECT_TRUE(row.Mono);
  EXPECT_EQ(redraw.HighlightColour, MonoHighlightColour);
}

TEST_F(RedrawTest, ARasterTooFineIsAdjustedWithMessageAndBeep) {
  std::vector<int32_t> shownSteps;
  redraw.hooks.showRasterStep = [&](int32_t step) { shownSteps.push_back(step); };
  redraw.GridOn = true;
  redraw.RasterStep = 100000;  // 10 pixels apart: drawn as asked
  redraw.RedrawScreen();
  EXPECT_EQ(std::tuple(prompts.beeps, redraw.MessageLine, shownSteps),
            std::tuple(0, "", std::vector<int32_t>{100000}));

  redraw.RasterStep = 10000;  // one pixel apart: too fine
  redraw.RedrawScreen();
  EXPECT_EQ(std::tuple(prompts.beeps, panel),
            std::tuple(1, "Selected raster cannot be displayed in current precision. Raster "
                          "interval adjusted "));
  EXPECT_EQ(redraw.MessageLine + " ", panel);
  ASSERT_EQ(shownSteps.size(), 2u);
  EXPECT_GE(shownSteps[1] / Precision, Graphics::MinimumGridPixels);

  redraw.GridOn = false;
  redraw.RedrawScreen();
  EXPECT_EQ(shownSteps.size(), 2u);
}

TEST_F(RedrawTest, RasterToolsGiveThePictureARebuildWouldGive) {
  // Each step from the raster off, over a disc so that dots fall on artwork too: the picture
  // after the tool is the one a rebuild in the new state draws, and the dot and cross rasters
  // change it without a rebuild.
  addDisc(3, 0, 0, 300000);
  const auto shown = [&] { return kernel.graphics.shadowImage(view.device())->copy(); };
  struct Step {
    const char* what;
    std::function<void()> act;
    int32_t mode;
    bool on;
    int32_t step;
    bool rebuilds;
  };
  const std::vector<Step> steps{
      {"dots on", [&] { redraw.chooseGridMode(1); }, 1, true, 100000, false},
      {"dots off", [&] { redraw.toggleRaster(); }, 1, false, 100000, false},
      {"dots on again", [&] { redraw.toggleRaster(); }, 1, true, 100000, false},
      {"dots finer", [&] { redraw.changeRasterStep(60000); }, 1, true, 60000, false},
      {"dots in mono", [&] { redraw.toggle(DisplayOption::Mono); }, 1, true, 60000, true},
      {"mono dots off", [&] { redraw.toggleRaster(); }, 1, false, 60000, false},
      {"mono dots on", [&] { redraw.toggleRaster(); }, 1, true, 60000, false},
      {"in colour again", [&] { redraw.toggle(DisplayOption::Mono); }, 1, true, 60000, true},
      {"crosses", [&] { redraw.chooseGridMode(3); }, 3, true, 60000, true},
      {"crosses coarser", [&] { redraw.changeRasterStep(200000); }, 3, true, 200000, false},
      {"lines", [&] { redraw.chooseGridMode(2); }, 2, true, 200000, true},
      {"dots from lines", [&] { redraw.chooseGridMode(1); }, 1, true, 200000, true},
      {"lines off",
       [&] {
         redraw.chooseGridMode(2);
         redraw.toggleRaster();
       },
       2, false, 200000, true},
  };
  // The picture a rebuild draws without the raster.
  const auto bare = [&] {
    const bool on = std::exchange(redraw.GridOn, false);
    redraw.RedrawScreen();
    const QImage picture = shown();
    redraw.GridOn = on;
    return picture;
  };
  redraw.RasterStep = 100000;
  redraw.RedrawScreen();
  for (const Step& step : steps) {
    SCOPED_TRACE(step.what);
    const int32_t before = redraw.rebuilds();
    step.act();
    EXPECT_EQ(redraw.rebuilds() > before, step.rebuilds);
    EXPECT_EQ(
        std::tuple(kernel.graphics.G_GetGridMode(view.device()), redraw.GridOn, redraw.RasterStep),
        std::tuple(step.mode, step.on, step.step));
    const QImage afterTool = shown();
    EXPECT_EQ(afterTool == bare(), !step.on);
    redraw.RedrawScreen();
    EXPECT_TRUE(afterTool == shown());
  }
}

TEST_F(RedrawTest, ApertureHighlightRecoloursItsItemsAndTellsWhatItIs) {
  tables.CurrentLayer = 3;
  const ObjectHandle marked = addDisc(3, -300000, 0, 100000, 10);
  addDisc(3, 300000, 0, 100000, 11);
  const QRgb layerColour = paletteColour(tables.layer(3).ColourNumber);
  const QRgb highlight = paletteColour(colours[colourslot::Highlight].ColourNumber);
  ASSERT_NE(layerColour, highlight);

  redraw.EditMsgLine("left by a tool");
  redraw.RedrawScreen();
  EXPECT_EQ(std::tuple(redraw.MessageLine, pixelAt(-300000, 0)),
            std::tuple("left by a tool", layerColour));

  redraw.HLDCode = 10;
  redraw.HLDCodeText = "D10 round 2 mm";
  redraw.RedrawScreen();
  EXPECT_EQ(std::tuple(pixelAt(-300000, 0), pixelAt(300000, 0), redraw.MessageLine),
            std::tuple(highlight, layerColour, "D10 round 2 mm"));
  // The item keeps its own colour in the store.
  EXPECT_EQ(kernel.store.itemFields(marked)->Colour, tables.layer(3).ColourNumber);
}

TEST_F(RedrawTest, DisplayOptionsToggleTheirFlagsAndAreRemembered) {
  const int32_t start = view.ViewFlags;
  const std::tuple<DisplayOption, int32_t, bool> cases[] = {
      {DisplayOption::TrueSize, viewflag::Outline, false},
      {DisplayOption::PadFrame, viewflag::PadFrames, true},
      {DisplayOption::Mirror, viewflag::Mirror, true}};
  for (const auto& [option, bit, checkedWhenSet] : cases) {
    SCOPED_TRACE(bit);
    const bool before = redraw.isChecked(option);
    const int32_t rebuilds = redraw.rebuilds();
    redraw.toggle(option);
    EXPECT_EQ((view.ViewFlags ^ start) & bit, bit);
    EXPECT_EQ(redraw.isChecked(option), ((view.ViewFlags & bit) != 0) == checkedWhenSet);
    EXPECT_EQ(std::tuple(redraw.isChecked(option), redraw.RememberedViewFlags, redraw.rebuilds()),
              std::tuple(!before, view.ViewFlags, rebuilds + 1));
  }
  // Pad positions are not remembered.
  const int32_t remembered = redraw.RememberedViewFlags;
  view.PadPositions = 0;
  redraw.RememberedViewFlags = 0;
  redraw.toggle(DisplayOption::PadPosition);
  EXPECT_EQ(std::tuple(view.PadPositions, redraw.isChecked(DisplayOption::PadPosition),
                       redraw.RememberedViewFlags),
            std::tuple(1, true, 0));
  EXPECT_NE(remembered, 0);
}

TEST_F(RedrawTest, FocusCentresOnThePointAndMarksIt) {
  redraw.RedrawScreen();
  const int32_t before = redraw.rebuilds();
  redraw.RedrawScreenFocus(500000, -200000);
  EXPECT_EQ(std::tuple(view.ViewCenterX, view.ViewCenterY, redraw.rebuilds()),
            std::tuple(500000, 200000, before + 1));
  // The mark lies at the picture's centre, where the background was.
  ASSERT_NE(paletteColour(colours[colourslot::Highlight].ColourNumber), backgroundColour());
  const QImage* image = kernel.graphics.shadowImage(view.device());
  bool marked = false;
  for (int dx = -3; dx <= 3; ++dx)
    marked |= image->pixel(Width / 2 + dx, Height / 2) != backgroundColour();
  EXPECT_TRUE(marked);
}

}  // namespace
}  // namespace tvx::test
