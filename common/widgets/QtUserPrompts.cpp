#include "common/widgets/QtUserPrompts.h"

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

}  // namespace

int QtUserPrompts::messageBox(const std::string& prompt, int flags, const std::string& title) {
  QString caption = QString::fromStdString(title);
  if (caption.isEmpty())
    caption = QApplication::applicationDisplayName();
  // The box stands over the active window, or over the first of its owners that stays: a window
  // already hidden or closing (a file request whose answer started this, the name completer of
  // that request) is deleted in the box's own loop and would take the box with it.
  QWidget* over = QApplication::activeWindow();
  while (over && (!over->isVisible() || over->testAttribute(Qt::WA_DeleteOnClose) ||
                  over->windowType() == Qt::Popup))
    over = over->parentWidget() ? over->parentWidget()->window() : nullptr;
  // On the heap and watched: should its parent go all the same, the box goes with it and the
  // answer is the escape button's.
  QPointer<QMessageBox> box = new QMessageBox(
      iconOf(flags), caption, QString::fromStdString(prompt), QMessageBox::NoButton, over);
  const std::vector<ButtonChoice> choices = buttonSet(flags);
  QMessageBox::StandardButtons buttons;
  for (const ButtonChoice& c : choices)
    buttons |= c.button;
  box->setStandardButtons(buttons);
  size_t defaultIndex = (flags & DefaultThird) ? 2 : (flags & DefaultSecond) ? 1 : 0;
  if (defaultIndex < choices.size())
    box->setDefaultButton(choices[defaultIndex].button);
  // Escape gives Cancel where there is one, otherwise the only or the last button.
  box->setEscapeButton(choices.back().button);
  if (flags & msgbox::SystemModal)
    box->setWindowModality(Qt::ApplicationModal);

  const auto pressed = static_cast<QMessageBox::StandardButton>(box->exec());
  delete box.data();
  for (const ButtonChoice& c : choices)
    if (c.button == pressed)
      return c.answer;
  return choices.back().answer;
}

void QtUserPrompts::beep() { QApplication::beep(); }

}  // namespace tvx
