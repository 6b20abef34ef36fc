#include "common/widgets/QtUserPrompts.h"

#include "common/widgets/TvxQuery.h"
#include "common/widgets/frmTVXMsgBox.h"
#include "platform/SystemServices.h"

#include <QApplication>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QString>

#include <vector>

namespace tvx {

namespace {

// Answers beyond those the header names.
constexpr int AnswerAbort = 3;
constexpr int AnswerRetry = 4;
constexpr int AnswerIgnore = 5;
constexpr int IconInformation = 0x40;
constexpr int DefaultSecond = 0x100;
constexpr int DefaultThird = 0x200;

struct ButtonChoice {
  QMessageBox::StandardButton button;
  int answer;
};

std::vector<ButtonChoice> buttonSet(int flags) {
  switch (flags & 0xF) {
  case 1:
    return {{QMessageBox::Ok, answer::Ok}, {QMessageBox::Cancel, answer::Cancel}};
  case 2:
    return {{QMessageBox::Abort, AnswerAbort},
            {QMessageBox::Retry, AnswerRetry},
            {QMessageBox::Ignore, AnswerIgnore}};
  case 3:
    return {{QMessageBox::Yes, answer::Yes},
            {QMessageBox::No, answer::No},
            {QMessageBox::Cancel, answer::Cancel}};
  case msgbox::YesNo:
    return {{QMessageBox::Yes, answer::Yes}, {QMessageBox::No, answer::No}};
  case 5:
    return {{QMessageBox::Retry, AnswerRetry}, {QMessageBox::Cancel, answer::Cancel}};
  default:
    return {{QMessageBox::Ok, answer::Ok}};
  }
}

QMessageBox::Icon iconOf(int flags) {
  switch (flags & msgbox::IconMask) {
  case msgbox::Critical:
    return QMessageBox::Critical;
  case msgbox::Question:
    return QMessageBox::Question;
  case msgbox::Exclamation:
    return QMessageBox::Warning;
  case IconInformation:
    return QMessageBox::Information;
  default:
    return QMessageBox::NoIcon;
  }
}

// A box stands over the active window, or over the first of its owners that stays: a window
// already hidden or closing (a file request whose answer started this, the name completer of
// that request) is deleted in the box's own loop and would take the box with it.
QWidget* boxOwner() {
  QWidget* over = QApplication::activeWindow();
  while (over && (!over->isVisible() || over->testAttribute(Qt::WA_DeleteOnClose) ||
                  over->windowType() == Qt::Popup))
    over = over->parentWidget() ? over->parentWidget()->window() : nullptr;
  return over;
}

// Boxes live on the heap and are watched: should the parent go all the same, the box goes with
// it (its answer is then closing's) and is not deleted twice.
template <typename Box, typename Run> auto runBox(Box* made, Run run) {
  QPointer<Box> box = made;
  auto answer = run(*made);
  delete box.data();
  return answer;
}

}  // namespace

int QtUserPrompts::messageBox(const std::string& prompt, int flags, const std::string& title) {
  QString caption = QString::fromStdString(title);
  if (caption.isEmpty())
    caption = QApplication::applicationDisplayName();
  const std::vector<ButtonChoice> choices = buttonSet(flags);
  const auto pressed =
      runBox(new QMessageBox(iconOf(flags), caption, QString::fromStdString(prompt),
                             QMessageBox::NoButton, boxOwner()),
             [&](QMessageBox& box) {
               QMessageBox::StandardButtons buttons;
               for (const ButtonChoice& c : choices)
                 buttons |= c.button;
               box.setStandardButtons(buttons);
               size_t defaultIndex = (flags & DefaultThird) ? 2 : (flags & DefaultSecond) ? 1 : 0;
               if (defaultIndex < choices.size())
                 box.setDefaultButton(choices[defaultIndex].button);
               // Escape gives Cancel where there is one, otherwise the only or the last button.
               box.setEscapeButton(choices.back().button);
               if (flags & msgbox::SystemModal)
                 box.setWindowModality(Qt::ApplicationModal);
               return static_cast<QMessageBox::StandardButton>(box.exec());
             });
  for (const ButtonChoice& c : choices)
    if (c.button == pressed)
      return c.answer;
  return choices.back().answer;
}

int QtUserPrompts::fourButtonBox(const std::string& prompt, int flags, const std::string& title) {
  static const SystemServices untranslated;
  return runBox(new frmTVXMsgBox(services_ ? *services_ : untranslated, boxOwner()),
                [&](frmTVXMsgBox& box) { return int(box.ShowMe(prompt, flags, title)); });
}

QueryAnswer QtUserPrompts::query(const QueryRequest& request) {
  return runBox(new TvxQuery(boxOwner(), services_), [&](TvxQuery& box) {
    box.setHelpHandler(help_);
    return box.QUERY(request);
  });
}

void QtUserPrompts::beep() { QApplication::beep(); }

}  // namespace tvx
