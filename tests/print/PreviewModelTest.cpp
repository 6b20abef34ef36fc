// The preview's sheets on a scripted 600 dpi A4 printer: counts, centres and margins, the scale
// and zoom boxes, the keys and the grid that follows the current sheet.
#include "print/PreviewModel.h"
#include "platform/UserPrompts.h"
#include "print/ScriptedPrinter.h"
#include "viewer/DisplayUnits.h"

#include <Qt>
#include <gtest/gtest.h>

namespace tvx {
namespace {

constexpr int32_t Mm = StoreUnitsPerMm;

class PreviewModelTest : public ::testing::Test {
protected:
  // Opens the preview on a frame with all margins at marginMm.
  void open(const FrameRect& frame, float marginMm = 0, int32_t leastPixels = 0) {
    printer = ScriptedPrinter({{"Scripted A4", "LPT1:", 600, leastPixels}});
    model.Begin(frame, 4);
    record.ScaleMode = printer.ScaleMode = scalemode::Millimetres;
    record.MarginBt = record.MarginLt = record.MarginRt = record.MarginTp = marginMm;
    model.Build();
    model.SetContainer(300, 200);
    model.LayoutOrZoom();
  }

  ScriptedPrinter printer;
  PrinterSettings record;
  ScriptedPrompts prompts;
  PreviewModel model{record, printer, displayunit::Millimetre, nullptr, &prompts};
};

TEST_F(PreviewModelTest, SheetCountsFollowFrameAndScale) {
  open({0, 0, 10 * Mm, 10 * Mm});
  const int32_t sheetW = int32_t(model.PageWidth), sheetH = int32_t(model.PageHeight);
  ASSERT_GT(sheetW, 200 * Mm);
  struct Case {
    FrameRect frame;
    const char* scale;
    int32_t across, down;
  };
  const Case cases[] = {
      {{0, 0, sheetW - 1, sheetH - 1}, "1:1", 1, 1}, {{0, 0, sheetW, sheetH}, "1:1", 1, 1},
      {{0, 0, sheetW + 1, sheetH}, "1:1", 2, 1},     {{0, 0, sheetW, sheetH + 1}, "1:1", 1, 2},
      {{0, 0, 3 * sheetW, 2 * sheetH}, "1:1", 3, 2}, {{0, 0, 3 * sheetW, 2 * sheetH}, "1:2", 2, 1},
      {{0, 0, sheetW, sheetH}, "2:1", 2, 2},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.scale);
    model.PreviewFrame = c.frame;
    model.ScaleEntered(c.scale);
    EXPECT_EQ(model.PagesAcross, c.across);
    EXPECT_EQ(model.PagesDown, c.down);
    EXPECT_EQ(model.PageCount, c.across * c.down);
    EXPECT_EQ(model.PageRows.size(), size_t(c.across * c.down));
  }
}

TEST_F(PreviewModelTest, CentresGoRowByRowFromTopLeftAndMarginsShiftTheOrigin) {
  for (float margin : {0.0f, 10.0f}) {
    SCOPED_TRACE(margin);
    open({-50 * Mm, -40 * Mm, 350 * Mm, 500 * Mm}, margin);
    model.ScaleEntered("1:1");
    const double w = model.PageWidth, h = model.PageHeight;
    const double m = margin * Mm;
    EXPECT_DOUBLE_EQ(model.LeftMargin, m);
    ASSERT_EQ(model.PagesAcross, 2);
    ASSERT_EQ(model.PagesDown, 2);
    const double originX = -50 * Mm - m, originY = 500 * Mm + m;
    for (int32_t r = 0; r < 2; ++r)
      for (int32_t c = 0; c < 2; ++c) {
        const PageRow& row = model.PageRows[size_t(r * 2 + c)];
        EXPECT_NEAR(row.CentreX, originX + (c + 0.5) * w, 1);
        EXPECT_NEAR(row.CentreY, originY - (r + 0.5) * h, 1);
      }
  }
}

TEST_F(PreviewModelTest, CentreCommandCentresTheFrameOnItsSheets) {
  open({0, 0, 100 * Mm, 50 * Mm}, 10);
  model.Command("ATB_CentreImage");
  const PageRow& row = model.PageRows.front();
  EXPECT_NEAR(row.CentreX, 50 * Mm, 1);
  EXPECT_NEAR(row.CentreY, 25 * Mm, 1);
  EXPECT_NEAR(model.LeftMargin, (model.PageWidth - 100 * Mm) / 2, 1);
  EXPECT_FALSE(model.CentreImage);
}

TEST_F(PreviewModelTest, BoxesReadAndBoundTheirValues) {
  open({0, 0, 100 * Mm, 100 * Mm});
  struct Case {
    const char* typed;
    const char* shown;
  };
  for (const Case& c : {Case{"2.5:1", "2.50:1"}, Case{"20:1", "10:1"}, Case{"1:20", "1:10"},
                        Case{"0:3", "1:3"}, Case{"3", "3:1"}, Case{"1:2", "1:2"}}) {
    SCOPED_TRACE(c.typed);
    EXPECT_EQ(model.ScaleEntered(c.typed), c.shown);
    EXPECT_EQ(model.ZoomMode, 0);
  }
  for (const Case& c : {Case{"300%", "250%"}, Case{"5", "10%"}, Case{"75", "75%"}}) {
    SCOPED_TRACE(c.typed);
    EXPECT_EQ(model.ZoomEntered(c.typed), c.shown);
    EXPECT_EQ(model.ZoomMode, 1);
  }
}

TEST_F(PreviewModelTest, PlusAndMinusStepTheScale) {
  open({0, 0, 100 * Mm, 100 * Mm});
  model.KeyPressed(Qt::Key_Minus, false);
  EXPECT_EQ(model.ScaleText(), "1:2");
  model.KeyPressed(Qt::Key_Plus, false);
  EXPECT_EQ(model.ScaleText(), "2:2");
  EXPECT_EQ(model.PrintZoom, 2540000 / 600);
}

TEST_F(PreviewModelTest, FitAboveMostZoomFallsBackToZoomPercent) {
  open({0, 0, 100 * Mm, 100 * Mm});
  model.SetContainer(3000, 3000);  // a cell far larger than 250% of the sheet
  model.ZoomEntered("80");
  model.ZoomMode = 0;
  model.Command("ATB_Fitpage");
  EXPECT_EQ(model.ZoomMode, 1);
  EXPECT_EQ(model.ZoomPercent, 80);
  EXPECT_GT(model.PrecisionMult, 1.0);
  EXPECT_EQ(model.PageCount, 1);
}

TEST_F(PreviewModelTest, FrameWithoutSizeLeavesTheFitAlone) {
  open({5 * Mm, 5 * Mm, 5 * Mm, 5 * Mm});
  model.ScaleEntered("2:1");
  model.Command("ATB_Fitpage");
  EXPECT_EQ(model.ScaleText(), "2:1");
}

TEST_F(PreviewModelTest, GridOfManySheetsFollowsTheCurrentSheet) {
  open({0, 0, 10 * Mm, 10 * Mm});
  model.PreviewFrame = {0, 0, int32_t(10 * model.PageWidth), int32_t(6 * model.PageHeight)};
  model.ScaleEntered("1:1");
  ASSERT_EQ(model.PageCount, 60);
  EXPECT_EQ(model.ViewAcross * model.ViewDown, 32);
  model.SelectPage(45);
  EXPECT_EQ(model.ViewRows[size_t(model.CurrentCell)].Number, 45);
  model.KeyPressed(Qt::Key_End, true);
  EXPECT_EQ(model.CurrentPage, 60);
  EXPECT_EQ(model.ViewRows.back().Number, 60);
  model.KeyPressed(Qt::Key_Home, true);
  EXPECT_EQ(model.ViewRows.front().Number, 1);
}

TEST_F(PreviewModelTest, ThousandsOfSheetsOpenOnAGridOf32) {
  open({0, 0, 1000 * Mm, 1000 * Mm});
  model.ScaleEntered("10:1");
  EXPECT_EQ(model.PageCount, 48 * 34);
  EXPECT_EQ(model.ViewRows.size(), 32u);
  model.KeyPressed(Qt::Key_End, true);
  EXPECT_EQ(model.ViewRows.back().Number, model.PageCount);
}

TEST_F(PreviewModelTest, PageKeysStayWithinTheSheets) {
  open({0, 0, 10 * Mm, 10 * Mm});
  model.PreviewFrame = {0, 0, int32_t(3 * model.PageWidth), int32_t(2 * model.PageHeight)};
  model.ScaleEntered("1:1");
  ASSERT_EQ(model.ViewAcross, 3);
  struct Step {
    int key;
    bool ctrl;
    int32_t from, to;
  };
  const Step steps[] = {
      {Qt::Key_Left, false, 1, 1}, {Qt::Key_Right, false, 6, 6}, {Qt::Key_Up, false, 2, 1},
      {Qt::Key_Down, false, 5, 6}, {Qt::Key_Down, false, 2, 5},  {Qt::Key_Home, false, 6, 4},
      {Qt::Key_End, false, 4, 6},  {Qt::Key_End, false, 2, 3},   {Qt::Key_Home, true, 5, 1},
      {Qt::Key_End, true, 2, 6},   {Qt::Key_Right, false, 3, 4},
  };
  for (const Step& s : steps) {
    SCOPED_TRACE(testing::Message() << s.key << " from " << s.from);
    model.SelectPage(s.from);
    EXPECT_TRUE(model.KeyPressed(s.key, s.ctrl));
    EXPECT_EQ(model.CurrentPage, s.to);
  }
  model.SelectPage(5);
  EXPECT_EQ(model.PagePanel(), "Page 5" + std::string(35, ' ') + "5/6");
}

TEST_F(PreviewModelTest, MovesToTheTypedPage) {
  open({0, 0, 10 * Mm, 10 * Mm});
  model.PreviewFrame = {0, 0, int32_t(3 * model.PageWidth), int32_t(2 * model.PageHeight)};
  model.ScaleEntered("1:1");
  for (const char* answer : {"4", "9", "x", "2.7"}) {
    prompts.queryAnswers.push_back({answer, 0});
    model.Command("ATB_MPage");
  }
  EXPECT_EQ(model.CurrentPage, 2);
  EXPECT_EQ(prompts.queries.front().prompt, "Enter page to select (1 to 6): ");
}

TEST_F(PreviewModelTest, PrintManagerRecordGoesInAndComesBack) {
  PrintManagerRecord manager;
  manager.PrecisionMult = "0";  // no scale: the preview fits on opening
  manager.MarginLt = 12;
  model.PrintManager = &manager;
  model.Begin({0, 0, 100 * Mm, 50 * Mm}, 4);
  model.ReadPrintManager(manager);
  EXPECT_TRUE(model.FitOnOpen);
  model.Build();
  EXPECT_FALSE(model.FitOnOpen);
  EXPECT_GT(model.PrecisionMult, 1.0);  // the fit enlarged the frame
  EXPECT_EQ(model.PageCount, 1);
  struct Case {
    double mult, div;
    const char* backMult;
    const char* backDiv;
  };
  for (const Case& c : {Case{2.5, 1, "2.50", "1.00"}, Case{1.0 / 3, 1, "0.32", "1.01"}}) {
    model.PrecisionMult = c.mult;
    model.PrecisionDiv = c.div;
    model.WritePrintManager(manager);
    EXPECT_EQ(manager.PrecisionMult, c.backMult);
    EXPECT_EQ(manager.PrecisionDiv, c.backDiv);
  }
  EXPECT_NEAR(manager.MarginLt, 12, 1e-3);
  EXPECT_EQ(manager.unit, 1);
}

TEST_F(PreviewModelTest, CommandsAreRefusedWhileADocumentIsOpen) {
  open({0, 0, 10 * Mm, 10 * Mm});
  model.DocOpen = true;
  EXPECT_EQ(model.Command("ATB_PrintAll"), PreviewAction::None);
  EXPECT_FALSE(model.KeyPressed(Qt::Key_Plus, false));
  EXPECT_EQ(model.ScaleText(), "1:1");
}

}  // namespace
}  // namespace tvx
