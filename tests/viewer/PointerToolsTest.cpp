// The pointer tools and the keys driven with numbers: the buttons, the middle pan (live and
// slow), the box zoom and its ends, the box copy, the snap, what the overlays leave in the
// picture, and the keys that arm, end and pick.
#include "support/ItemBuilder.h"
#include "support/WidgetTestApplication.h"

#include "kernel/Kernel.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"
#include "store/ColourSlots.h"
#include "store/LayerCatalogue.h"
#include "store/Layers.h"
#include "viewer/KeyboardInput.h"
#include "viewer/PointerTools.h"

#include <QClipboard>
#include <QImage>
#include <QWidget>

#include "RedrawWorld.h"

#include <gtest/gtest.h>

namespace tvx::test {
namespace {

constexpr int Width = 200;
constexpr int Height = 150;
constexpr int32_t Precision = 10000;  // 0.1 mm a pixel

using mousebutton::Left;
using mousebutton::Middle;
using mousebutton::Right;

class PointerToolsTest : public ::testing::Test, public RedrawWorld {
public:
  void SetUp() override {
    build(Width, Height, Precision);
    view.setCoverSource(LayersCover(kernel.store, tables.Layers));
    redraw.HighlightColour = 12;
    // A disc the picture shows, so that overlays have something to be drawn over.
    kernel.store.OA_Add(
        kernel.store.S_SymbolItemArray(tables.layer(3).SymbolHandle),
        kernel.store.I_MakeItem(
            Item(ItemCircle).at(0, 0).colour(tables.layer(3).ColourNumber).filled().size(300000)));
    redraw.RedrawScreen();
    tools.hooks.applyViewChange = [this](const ViewChange& c) {
      ++changes;
      if (c.Redraw)
        redraw.RedrawScreen();
    };
    tools.hooks.endOptionChecked = [this] { return endOption; };
    tools.hooks.clearEndOption = [this] { endOption = false; };
  }

  QImage picture() const { return *kernel.graphics.shadowImage(view.device()); }
  std::array<int32_t, 3> zoom() const {
    return {view.m_Precision, view.ViewCenterX, view.ViewCenterY};
  }
  void click(int32_t button, double x, double y, int32_t shift = 0) {
    tools.ViewPicture_MouseDown(button, shift, x, y);
    tools.ViewPicture_MouseUp(button, shift, x, y);
  }
  void move(double x, double y, int32_t button = 0, int32_t shift = 0) {
    tools.ViewPicture_MouseMove(button, shift, x, y);
  }

  PointerTools tools{kernel.graphics, services, view, redraw};
  KeyboardInput keys{tools, view, redraw, services};
  bool endOption = false;
  int changes = 0;
};

TEST_F(PointerToolsTest, ButtonsCentreAndPan) {
  struct Case {
    const char* name;
    bool mirrored, slow;
    std::function<void(PointerToolsTest&)> act;
    std::array<int32_t, 2> centre;  // ViewCenterX, ViewCenterY (Y negated)
  };
  const Case cases[] = {
      {"a right click without Shift does nothing",
       false,
       false,
       [](auto& t) { t.click(Right, 150, 75); },
       {0, 0}},
      {"Shift and a right click centre",
       false,
       false,
       [](auto& t) { t.click(Right, 150, 75, shiftbit::Shift); },
       {500000, 0}},
      {"a still middle click centres",
       false,
       false,
       [](auto& t) { t.click(Middle, 100, 25); },
       {0, -500000}},
      {"a middle drag pans with the pointer",
       false,
       false,
       [](auto& t) {
         t.tools.ViewPicture_MouseDown(Middle, 0, 100, 75);
         t.move(60, 95, Middle);
         t.move(50, 105, Middle);
         t.tools.ViewPicture_MouseUp(Middle, 0, 50, 105);
       },
       {500000, -300000}},
      {"in a mirrored view the pan follows the pointer too",
       true,
       false,
       [](auto& t) {
         t.tools.ViewPicture_MouseDown(Middle, 0, 100, 75);
         t.move(50, 75, Middle);
         t.tools.ViewPicture_MouseUp(Middle, 0, 50, 75);
       },
       {-500000, 0}},
      {"after a slow redraw the pan waits for the release",
       false,
       true,
       [](auto& t) {
         t.tools.ViewPicture_MouseDown(Middle, 0, 100, 75);
         t.move(50, 105, Middle);
         EXPECT_EQ(t.view.ViewCenterX, 0) << "nothing moves before the release";
         t.tools.ViewPicture_MouseUp(Middle, 0, 50, 105);
       },
       {500000, -300000}},
      {"a release without a press is ignored",
       false,
       false,
       [](auto& t) { t.tools.ViewPicture_MouseUp(Middle, 0, 10, 10); },
       {0, 0}},
  };
  for (const Case& c : cases) {
    view.ViewCenterX = view.ViewCenterY = 0;
    view.ViewFlags = c.mirrored ? viewflag::Mirror : 0;
    redraw.RedrawTime = c.slow ? 400 : 0;
    redraw.RedrawScreen();
    c.act(*this);
    EXPECT_EQ((std::array<int32_t, 2>{view.ViewCenterX, view.ViewCenterY}), c.centre) << c.name;
    EXPECT_EQ(tools.MiddleDrag, 0) << c.name;
  }
}

TEST_F(PointerToolsTest, BoxZoomEndsByClickEndOrEscape) {
  const QImage before = picture();
  const std::array<int32_t, 3> start = zoom();
  // Escape (row 10 of the options) ends the running box without effect and leaves no trace.
  tools.armBlockZoom();
  click(Left, 60, 40);
  EXPECT_EQ(tools.ToolCode, toolcode::Box);
  move(90, 60, 0, shiftbit::Shift);
  move(120, 80, 0, shiftbit::Shift);
  EXPECT_TRUE(tools.boxShown());
  EXPECT_NE(picture(), before);
  endOption = true;
  move(120, 80);
  EXPECT_EQ(tools.ToolCode, toolcode::None);
  EXPECT_FALSE(endOption) << "row 10 is cleared";
  EXPECT_EQ(zoom(), start);
  EXPECT_EQ(picture(), before) << "the box drawn twice by exclusive-or is gone";

  // End finishes it with its effect: the box's world fills the view.
  tools.armBlockZoom();
  click(Left, 60, 40);
  move(120, 80, 0, shiftbit::Shift);
  tools.requestEnd();
  EXPECT_EQ(tools.ToolCode, toolcode::None);
  EXPECT_LT(view.m_Precision, start[0]);
  EXPECT_EQ(view.ViewCenterX, -100000) << "the middle of the box, 90 pixels from the left";
  EXPECT_FALSE(tools.BlockZoomArmed || tools.ToolCursor);
}

TEST_F(PointerToolsTest, AWheelStepDuringABoxLeavesOneBox) {
  tools.armBlockZoom();
  click(Left, 60, 40);
  move(120, 80, 0, shiftbit::Shift);
  tools.wheel(1, 100, 75);
  EXPECT_TRUE(tools.boxShown()) << "the move is repeated after the redraw";
  const std::array<int32_t, 3> zoomed = zoom();
  // Taking the one box away must leave the picture as a redraw makes it.
  endOption = true;
  move(120, 80);
  const QImage withoutBox = picture();
  redraw.RedrawScreen();
  EXPECT_EQ(zoom(), zoomed);
  EXPECT_EQ(withoutBox, picture());
}

TEST_F(PointerToolsTest, BoxCopyPutsTheBoxWithoutRubberOnTheClipboard) {
  QGuiApplication::clipboard()->clear();
  const QImage before = picture();
  tools.armBoxCopy();
  click(Left, 30, 20);
  EXPECT_TRUE(tools.BoxCopyArmed) << "stays armed while its box runs";
  move(80, 60, 0, shiftbit::Shift);
  click(Left, 80, 60);
  const QImage copied = QGuiApplication::clipboard()->image();
  EXPECT_EQ(copied.size(), QSize(51, 41));
  EXPECT_EQ(copied.convertToFormat(QImage::Format_RGB32),
            before.copy(30, 20, 51, 41).convertToFormat(QImage::Format_RGB32));
  EXPECT_FALSE(tools.BoxCopyArmed);
}

TEST_F(PointerToolsTest, SnapRoundsHalfAwayFromZero) {
  struct Case {
    int32_t step, x, y;
    bool firstMove;
    std::array<int32_t, 2> snapped;
  };
  const Case cases[] = {
      {100, -120, 120, false, {-100, 100}}, {100, 150, -150, false, {200, -200}},
      {100, 49, -49, false, {0, 0}},        {1, -120, 77, false, {-120, 77}},
      {100, -120, 77, true, {-120, 77}},
  };
  for (const Case& c : cases) {
    redraw.RasterStep = c.step;
    tools.FirstMove = c.firstMove;
    int32_t x = c.x, y = c.y;
    bool unchanged = true;
    tools.SnapToRaster(unchanged, x, y);
    EXPECT_EQ((std::array<int32_t, 2>{x, y}), c.snapped) << c.step << " " << c.x << " " << c.y;
    EXPECT_FALSE(unchanged);
  }
  redraw.RasterStep = 100;
  tools.FirstMove = false;
  int32_t x = 151, y = 0;
  bool unchanged = false;
  tools.SnapToRaster(unchanged, x, y);
  x = 249;
  tools.SnapToRaster(unchanged, x, y);
  EXPECT_TRUE(unchanged) << "the same raster point as the last";
}

TEST_F(PointerToolsTest, KeysArmEndAndPick) {
  bool focused = true;
  std::vector<std::string> said;
  keys.hooks.viewHasFocus = [&focused] { return focused; };
  keys.hooks.setOption = [&](int32_t row, bool check) {
    said.push_back("option " + std::to_string(row) + (check ? " on" : " off"));
  };
  keys.hooks.visibleOptionRow = [&](int32_t n) {
    said.push_back("row of tool " + std::to_string(n));
    return n == 0 ? 3 : -1;
  };
  keys.hooks.lookupShortcut = [&](const std::string& letters) { said.push_back(letters); };
  const auto down = [this](int32_t code, int32_t shift = 0) { keys.Form_KeyDown(code, shift); };
  const auto press = [this](char c) {
    int32_t ascii = c;
    keys.Form_KeyPress(ascii);
  };

  // Shift+B and Shift+S arm; Escape takes both back with the message.
  for (int32_t letter : {'B', 'S'}) {
    down(letter, shiftbit::Shift);
    EXPECT_TRUE(tools.BlockZoomArmed || tools.BoxCopyArmed) << char(letter);
    EXPECT_FALSE(redraw.MessageLine.empty());
    down(keycode::Escape);
    EXPECT_FALSE(tools.BlockZoomArmed || tools.BoxCopyArmed || tools.ToolCursor);
    EXPECT_EQ(redraw.MessageLine, "");
  }
  // Without the view's focus only Escape acts.
  focused = false;
  down('B', shiftbit::Shift);
  press('+');
  EXPECT_FALSE(tools.BlockZoomArmed);
  EXPECT_EQ(view.m_Precision, Precision);
  focused = true;

  // Backspace is F1: the first visible option tool, row 3 here, toggles.
  down(keycode::Backspace);
  EXPECT_EQ(said, (std::vector<std::string>{"row of tool 0", "option 3 on"}));

  // "*" and two letters are looked up; with a tool running "*" starts nothing.
  said.clear();
  press('*');
  EXPECT_TRUE(tools.ShortcutMode);
  down('D');
  EXPECT_TRUE(tools.ShortcutMode) << "letters wait for the second one";
  press('d');
  press('e');
  EXPECT_EQ(said, std::vector<std::string>{"DE"});
  EXPECT_FALSE(tools.ShortcutMode);
  tools.StartTool(toolcode::Box);
  press('*');
  EXPECT_FALSE(tools.ShortcutMode);

  // Escape during a tool checks row 10 of the options, which ends it.
  said.clear();
  down(keycode::Escape);
  EXPECT_EQ(said, std::vector<std::string>{"option 10 on"});
}

}  // namespace
}  // namespace tvx::test
