#include "common/widgets/frmTVXMsgBox.h"

#include "common/QueryBoxModel.h"
#include "platform/widgets/WindowPlace.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QStyle>

namespace tvx {

namespace {

// The design, in pixels: the icon and the prompt side by side over the row of buttons.
constexpr QRect IconPlace(12, 12, 32, 32);
constexpr QRect PromptPlace(56, 12, 292, 48);
constexpr QSize ButtonSize(80, 26);
constexpr int ButtonsTop = 76;
constexpr int ButtonsLeft = 12;
constexpr int ButtonStep = 86;
constexpr QSize DesignSize(362, 114);

BoxSize twips(QSize size) { return {size.width() * TwipsPerPixel, size.height() * TwipsPerPixel}; }

}  // namespace

frmTVXMsgBox::frmTVXMsgBox(const SystemServices& services, QWidget* parent)
    : QDialog(parent), model_(services) {
  setObjectName("frmTVXMsgBox");
  Image1 = new QLabel(this);
  Image1->setObjectName("Image1");
  Image1->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxQuestion).pixmap(IconPlace.size()));
  lblPrompt = new QLabel(this);
  lblPrompt->setObjectName("lblPrompt");
  lblPrompt->setWordWrap(true);
  lblPrompt->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  for (int i = 0; i < MessageBoxModel::ButtonCount; ++i) {
    cmdBut[size_t(i)] = new QPushButton(QString::fromStdString(model_.caption(i)), this);
    cmdBut[size_t(i)]->setObjectName(QString("cmdBut%1").arg(i));
    cmdBut[size_t(i)]->setAutoDefault(false);
    connect(cmdBut[size_t(i)], &QPushButton::clicked, this, [this, i] { cmdBut_Click(i); });
  }
}

void frmTVXMsgBox::load(const std::string& prompt, int flags, const std::string& title) {
  model_.ShowMe(prompt, flags, title);
  lblPrompt->setText(QString::fromStdString(prompt).replace("\r\n", "\n"));
  setWindowTitle(QString::fromStdString(title));
  const std::array<int, MessageBoxModel::ButtonCount>& order = model_.tabOrder();
  for (size_t place = 1; place < order.size(); ++place)
    setTabOrder(cmdBut[size_t(order[place - 1])], cmdBut[size_t(order[place])]);
  cmdBut[size_t(order[0])]->setFocus();

  // Fit: the window grows by what the prompt needs beyond the label's design size.
  const QSize needed = lblPrompt->fontMetrics()
                           .boundingRect(QRect(QPoint(), QSize(PromptPlace.width(), 1 << 20)),
                                         Qt::TextWordWrap, lblPrompt->text())
                           .size();
  const BoxFit fit = Fit(twips(PromptPlace.size()), twips(needed), twips(DesignSize));
  Image1->setGeometry(IconPlace);
  lblPrompt->setGeometry(PromptPlace.left(), PromptPlace.top(), fit.prompt.width / TwipsPerPixel,
                         fit.prompt.height / TwipsPerPixel);
  const QPoint shift(fit.buttonsRight / TwipsPerPixel, fit.buttonsDown / TwipsPerPixel);
  for (int i = 0; i < MessageBoxModel::ButtonCount; ++i)
    cmdBut[size_t(i)]->setGeometry(
        QRect(QPoint(ButtonsLeft + i * ButtonStep, ButtonsTop) + shift, ButtonSize));
  setFixedSize(fit.window.width / TwipsPerPixel, fit.window.height / TwipsPerPixel);
  const QRect screenArea = screen()->geometry();
  const FormPlace place = SetForm(screenArea.width(), screenArea.height(), width(), height());
  move(screenArea.left() + place.left, screenArea.top() + place.top);
}

int16_t frmTVXMsgBox::ShowMe(const std::string& prompt, int flags, const std::string& title) {
  load(prompt, flags, title);
  QApplication::setOverrideCursor(Qt::ArrowCursor);
  const QPointer<frmTVXMsgBox> self(this);
  exec();
  QApplication::restoreOverrideCursor();
  // A box whose owner went during the loop went with it: that counts as closing.
  return self ? model_.result() : int16_t(2);
}

void frmTVXMsgBox::cmdBut_Click(int index) {
  model_.click(index);
  accept();
}

void frmTVXMsgBox::keyPressEvent(QKeyEvent* event) {
  if (event->modifiers() == Qt::NoModifier || event->modifiers() == Qt::ShiftModifier) {
    const int button = model_.pressKey(event->text().toStdString());
    if (button >= 0) {
      accept();
      return;
    }
  }
  QDialog::keyPressEvent(event);
}

}  // namespace tvx
