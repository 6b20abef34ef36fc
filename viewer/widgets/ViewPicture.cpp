#include "viewer/widgets/ViewPicture.h"

#include <QImage>
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

}  // namespace tvx
