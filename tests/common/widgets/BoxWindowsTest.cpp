// The query box and the four-button box as the user meets them through QtUserPrompts: the mode's
// control alone, Enter, letter keys and closing.
#include "common/widgets/QtUserPrompts.h"
#include "common/widgets/TvxQuery.h"
#include "common/widgets/frmTVXMsgBox.h"
#include "platform/widgets/WindowPlace.h"
#include "support/WidgetTestApplication.h"

#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QTimer>
#include <gtest/gtest.h>

#include <functional>

namespace tvx {
namespace {

void press(QWidget* target, int key, const QString& text = {}) {
  QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier, text);
  QApplication::sendEvent(target, &down);
  QKeyEvent up(QEvent::KeyRelease, key, Qt::NoModifier, text);
  QApplication::sendEvent(target, &up);
}

// Runs act on the modal box once its loop has started; a box that act leaves open is closed a
// second later, so that a box deaf to act fails its test instead of hanging it.
void whenShown(std::function<void(QWidget*)> act) {
  QTimer::singleShot(0, [act] {
    QPointer<QWidget> box = QApplication::activeModalWidget();
    act(box);
    QTimer::singleShot(1000, [box] {
      if (box)
        box->close();
    });
  });
}

TEST(BoxWindowsTest, QueryShowsTheModesControlAndEnterAccepts) {
  test::widgetTestApplication();
  struct Row {
    int32_t mode;
    const char* control;
    QueryAnswer enter;  // what Enter in the control answers
  };
  const Row rows[] = {
      {1, "txtText", {"start", 0}},  {2, "cboCombo", {"start", 0}}, {3, "cboDropdown", {"b", 2}},
      {4, "txtTextBlock", {"", -1}}, {5, "cboList", {"b", 2}},      {7, "txtText", {"start", 0}},
  };
  for (const Row& r : rows) {
    SCOPED_TRACE(r.control);
    TvxQuery box;
    box.load({"Title", "Prompt", {"start  ", "a", "b"}, r.mode, 1, false, ""});
    for (QWidget* c : std::initializer_list<QWidget*>{box.txtText, box.cboCombo, box.cboDropdown,
                                                      box.txtTextBlock, box.cboList})
      EXPECT_EQ(c->isVisibleTo(&box), c->objectName() == r.control)
          << c->objectName().toStdString();
    EXPECT_FALSE(box.F_Button->isVisibleTo(&box));
    ASSERT_NE(box.focusWidget(), nullptr);
    EXPECT_EQ(box.focusWidget()->objectName(), r.control);
    press(box.focusWidget(), Qt::Key_Return);
    EXPECT_EQ(std::tuple(box.model().Answer(), box.model().AnswerIndex()),
              std::tuple(r.enter.text, r.enter.index));
  }
  // In the block Enter starts a line; the button accepts.
  TvxQuery block;
  block.load({"", "", {"one"}, 4, 0, false, ""});
  block.txtTextBlock->moveCursor(QTextCursor::End);
  press(block.txtTextBlock, Qt::Key_Return, "\r");
  press(block.cmdCancel, Qt::Key_Return);
  EXPECT_EQ(block.model().AnswerIndex(), -1) << "Enter on a button of the block accepts nothing";
  block.cmdAccept->click();
  EXPECT_EQ(std::tuple(block.model().Answer(), block.model().AnswerIndex()),
            std::tuple("one\n", 0));
}

TEST(BoxWindowsTest, ThroughThePromptsTheQueryAnswersAndALongPromptStopsAtTheCap) {
  test::widgetTestApplication();
  QtUserPrompts prompts;
  QRect shown;
  whenShown([&](QWidget* box) {
    auto* query = qobject_cast<TvxQuery*>(box);
    ASSERT_NE(query, nullptr);
    shown = query->geometry();
    query->txtText->setText("2,5");
    press(query->txtText, Qt::Key_Enter);
  });
  const std::string prompt = QString("A long prompt. ").repeated(2000).toStdString();
  const QueryAnswer answer = prompts.query({"Size", prompt, {"1"}, 1, 0, true, "More"});
  EXPECT_EQ(std::tuple(answer.text, answer.index), std::tuple("2,5", 0));
  const int screenHeight = QApplication::primaryScreen()->geometry().height();
  EXPECT_EQ(shown.height(), screenHeight - 1200 / TwipsPerPixel);

  whenShown([](QWidget* box) { qobject_cast<TvxQuery*>(box)->F_Button->click(); });
  const QueryAnswer button = prompts.query({"Size", "Which?", {"1"}, 5, 0, true, "More"});
  EXPECT_EQ(std::tuple(button.text, button.index), std::tuple("\x01", -100));
}

TEST(BoxWindowsTest, FourButtonBoxTakesLetterKeysAndClosingIsCancel) {
  test::widgetTestApplication();
  QtUserPrompts prompts;
  whenShown([](QWidget* box) { press(box->focusWidget(), Qt::Key_Y, "y"); });
  EXPECT_EQ(prompts.fourButtonBox("Overwrite?", 0x8, "Title"), answer::Yes);
  whenShown([](QWidget* box) { box->close(); });
  EXPECT_EQ(prompts.fourButtonBox("Overwrite?", 0x8, "Title"), answer::Cancel);
  // The first in the tab order has the focus: Yes To All with 0x200.
  whenShown([](QWidget* box) { press(box->focusWidget(), Qt::Key_Space, " "); });
  EXPECT_EQ(prompts.fourButtonBox("Overwrite?", 0x208, "Title"), answer::YesToAll);
}

}  // namespace
}  // namespace tvx
