#include "viewer/widgets/ViewPicture.h"

#include <QImage>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>

namespace tvx {

ViewPicture::ViewPicture(QWidget* parent) : QWidget(parent) {
  setObjectName("ViewPicture");
  // The shadow image covers every pixel; Qt need not clear the widget first.
  setAttribute(Qt::WA_OpaquePaintEvent);
  setFocusPolicy(Qt::StrongFocus);
  setMouseTracking(true);
}

void ViewPicture::present() {
  if (!painting_)
    update();
}

void ViewPicture::paintEvent(QPaintEvent* event) {
  ++paintEvents_;
  painting_ = true;
  if (paintHandler_)
    paintHandler_();
  painting_ = false;
  QPainter painter(this);
  const QImage* image = imageSource_ ? imageSource_() : nullptr;
  if (image && !image->isNull())
    painter.drawImage(event->rect(), *image, event->rect());
  else
    painter.fillRect(event->rect(), Qt::black);
}

namespace {

int buttonBits(Qt::MouseButtons buttons) {
  return (buttons & Qt::LeftButton ? 1 : 0) | (buttons & Qt::RightButton ? 2 : 0) |
         (buttons & Qt::MiddleButton ? 4 : 0);
}

int shiftBits(Qt::KeyboardModifiers modifiers) {
  return (modifiers & Qt::ShiftModifier ? 1 : 0) | (modifiers & Qt::ControlModifier ? 2 : 0) |
         (modifiers & Qt::AltModifier ? 4 : 0);
}

}  // namespace

void ViewPicture::forward(PointerAction action, QMouseEvent* event, int button) {
  if (!pointerHandler_ || button == 0)
    return;
  const QPointF at = event->position();
  pointerHandler_(action, button, shiftBits(event->modifiers()), at.x(), at.y());
  event->accept();
}

void ViewPicture::mousePressEvent(QMouseEvent* event) {
  forward(PointerAction::Press, event, buttonBits(event->button()));
}

void ViewPicture::mouseMoveEvent(QMouseEvent* event) {
  // A move without a button held is a move all the same: button 0 becomes "none held".
  if (pointerHandler_) {
    const QPointF at = event->position();
    pointerHandler_(PointerAction::Move, buttonBits(event->buttons()),
                    shiftBits(event->modifiers()), at.x(), at.y());
  }
}

void ViewPicture::mouseReleaseEvent(QMouseEvent* event) {
  forward(PointerAction::Release, event, buttonBits(event->button()));
}

}  // namespace tvx
