// The query box and the four-button message box without their windows: the answer of every way
// out, the window's height, the buttons' results, tab order and letter keys, and the helpers in
// front of them.
#include "common/MessageBoxModel.h"
#include "common/QueryBoxModel.h"
#include "common/UserDialogs.h"
#include "kernel/KernelStrings.h"
#include "platform/SystemServices.h"

#include <gtest/gtest.h>

namespace tvx {
namespace {

enum class Way { Accept, Cancel, Close, Button };

TEST(QueryBoxTest, EveryWayOutOfEveryMode) {
  struct Row {
    int32_t mode;
    Way way;
    std::string typed;  // the control's text (modes 1, 2, 4)
    int32_t row;        // the control's row (modes 3, 5)
    std::string text;
    int32_t index;
  };
  const Row rows[] = {
      {1, Way::Accept, "typed ", 0, "typed ", 0},
      {2, Way::Accept, "new", 1, "new", 0},
      {3, Way::Accept, "", 1, "b", 2},
      {4, Way::Accept, "two\nlines", 0, "two\nlines", 0},
      {5, Way::Accept, "", 2, "c", 3},
      {5, Way::Accept, "", -1, "", 0},
      {5, Way::Accept, "", 3, "", 0},
      {7, Way::Accept, "x", 2, "x", 0},
      {0, Way::Accept, "x", 2, "x", 0},
      {5, Way::Cancel, "", 0, "", -1},
      {5, Way::Close, "", 0, "", -1},
      {1, Way::Close, "", 0, "", -1},
      {3, Way::Button, "", 1, "\x01", -100},
      {4, Way::Button, "text", 0, "\x01", -100},
  };
  for (const Row& r : rows) {
    SCOPED_TRACE(::testing::Message() << "mode " << r.mode << " way " << int(r.way));
    QueryBoxModel model({"Title", "Prompt", {"start", "a", "b", "c"}, r.mode, 1, true, "More"});
    if (r.way == Way::Accept)
      model.Accept(r.typed, r.row);
    else if (r.way == Way::Cancel)
      model.Cancel();
    else if (r.way == Way::Button)
      model.FButton();
    EXPECT_EQ(std::tuple(model.Answer(), model.AnswerIndex()), std::tuple(r.text, r.index));
  }
}

TEST(QueryBoxTest, StartTextLosesTrailingBlanksOnly) {
  EXPECT_EQ(QueryBoxModel({"", "", {"  12.5   "}, 1, 0, false, ""}).startText(), "  12.5");
  EXPECT_EQ(QueryBoxModel({"", "", {}, 1, 0, false, ""}).startText(), "");
}

TEST(QueryBoxTest, HeightFollowsThePromptUpToTheCap) {
  // The label is 4620 wide (4500 for text); "R" 200 high; the control and the button 400.
  struct Row {
    int32_t mode;
    std::string prompt;
    int32_t textWidth;
    bool button;
    int32_t height;
  };
  const Row rows[] = {
      {1, "Short", 900, false, 2000},          // 4 lines: 1200, below the least
      {7, "Short", 900, false, 2000},          // a mode outside 1 to 5 is a text line
      {4, "Short", 900, false, 2400},          // the block and the list need more
      {5, "Short", 900, false, 2400},          //
      {5, "Short", 900, true, 2920},           // the button's row: 120 + 400
      {1, "a\r\nb\r\nc", 45000, false, 3600},  // 10 wrapped + 3 parts + 3 = 16 lines
      {1, "a\r\nb\r\nc", 45000, true, 4120},   //
      {1, "Long", 4500 * 54, false, 12000},    // 58 lines: as high as the screen, kept
      {1, "Long", 4500 * 55, false, 10800},    // higher than the screen: the screen - 1200
      {1, "Long", 4500 * 1000, true, 10800},   //
  };
  for (const Row& r : rows) {
    SCOPED_TRACE(::testing::Message() << "mode " << r.mode << " width " << r.textWidth);
    const QueryBoxModel model({"", r.prompt, {""}, r.mode, 0, r.button, "More"});
    EXPECT_EQ(QueryHeight(model, {4620, r.textWidth, 200, 400, 400, 12000}), r.height);
  }
}

TEST(QueryBoxTest, AskQueryAndAskTextGoThroughThePrompts) {
  ScriptedPrompts prompts;
  prompts.queryAnswers = {{"b", 2}, {"\x01", -100}};
  std::vector<std::string> list{"a ", "a", "b"};
  int32_t index = 0;
  EXPECT_EQ(AskQuery(prompts, "Title", "Which?", list, 5, index, true, "More"), "b");
  EXPECT_EQ(std::tuple(list[0], index, prompts.beeps), std::tuple("b", 2, 1));
  const QueryRequest& asked = prompts.queries.at(0);
  EXPECT_EQ(std::tuple(asked.title, asked.prompt, asked.list.size(), asked.mode, asked.index,
                       asked.showButton, asked.buttonCaption),
            std::tuple("Title", "Which?", 3u, 5, 0, true, "More"));

  EXPECT_EQ(AskText(prompts, "Size:", "Insert", "1.0"), "\x01");
  // Unscripted, the question is cancelled.
  EXPECT_EQ(AskText(prompts, "Size:", "Insert", "1.0"), "");
  const QueryRequest& text = prompts.queries.at(1);
  EXPECT_EQ(
      std::tuple(text.title, text.prompt, text.list, text.mode, text.showButton, prompts.beeps),
      std::tuple("Insert", "Size:", std::vector<std::string>{"1.0"}, 1, false, 1));
}

TEST(MessageBoxTest, ShowMessageTakesFlagEightToTheFourButtonBox) {
  ScriptedPrompts prompts;
  KernelStrings strings;
  // Unscripted, the four-button box says Yes and the platform's box Ok.
  EXPECT_EQ(ShowMessage(prompts, strings, "Replace?", 0x8 | 0x200), answer::Yes);
  EXPECT_EQ(ShowMessage(prompts, strings, "Done", msgbox::Exclamation, "Own title"), answer::Ok);
  strings.E_SetString("PRODUCT_NAME", "Tarvex Suite");
  prompts.answers = {answer::YesToAll};
  EXPECT_EQ(ShowMessage(prompts, strings, "Replace?", 0x8), answer::YesToAll);
  ASSERT_EQ(prompts.shown.size(), 3u);
  EXPECT_EQ(std::tuple(prompts.shown[0].flags, prompts.shown[0].title, prompts.shown[1].title,
                       prompts.shown[2].title),
            std::tuple(0x208, "", "Own title", "Tarvex Suite"));
}

TEST(MessageBoxTest, ButtonsKeysAndTabOrder) {
  SystemServices services;
  MessageBoxModel box(services);
  struct Key {
    std::string key;
    int button;
    int16_t result;  // pressed after ShowMe: 2 when no button has the letter
  };
  for (const Key& k : {Key{"y", 0, 6}, Key{"N", 1, 7}, Key{"t", 2, 8}, Key{"c", -1, 2},
                       Key{"x", -1, 2}, Key{"", -1, 2}}) {
    box.ShowMe("Overwrite?", 0, "Title");
    EXPECT_EQ(box.pressKey(k.key), k.button) << k.key;
    EXPECT_EQ(box.result(), k.result) << k.key;
  }
  // The letters are the translated captions'.
  services.loadCatalogue(TVX_DATA_DIR "/COUNTRY/German");
  MessageBoxModel german(services);
  german.ShowMe("?", 0, "");
  EXPECT_EQ(german.pressKey("a"), 2);
  EXPECT_EQ(german.result(), 8);

  struct Order {
    int flags;
    std::array<int, 4> order;
  };
  for (const Order& o : {Order{0, {0, 1, 2, 3}}, Order{0x100, {0, 1, 2, 3}},
                         Order{0x200, {2, 3, 0, 1}}, Order{0x1308, {0, 3, 1, 2}}}) {
    box.ShowMe("?", o.flags, "");
    EXPECT_EQ(box.tabOrder(), o.order) << o.flags;
  }
}

TEST(MessageBoxTest, FitGrowsTheWindowByWhatThePromptNeeds) {
  const BoxSize prompt{4380, 720}, window{5430, 1710};
  struct Row {
    BoxSize needed;
    BoxFit fit;
  };
  const Row rows[] = {
      {{1000, 200}, {{4380, 720}, {5430, 1710}, 0, 0}},
      {{4980, 1020}, {{4980, 1020}, {6030, 2010}, 300, 300}},
      {{2000, 1500}, {{4380, 1500}, {5430, 2490}, 780, 0}},
  };
  for (const Row& r : rows)
    EXPECT_EQ(Fit(prompt, r.needed, window), r.fit) << r.needed.width << " x " << r.needed.height;
}

}  // namespace
}  // namespace tvx
