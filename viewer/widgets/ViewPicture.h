// The view picture: the widget the kernel's view device draws for. It shows the device's shadow
// image, and hands every paint the window system asks for to the window's paint first, so that a
// pending rebuild happens before the picture is shown. Presses, moves and releases go to the
// window's pointer handler with the buttons (1 left, 2 right, 4 middle) and Shift bits (1 Shift,
// 2 Ctrl, 4 Alt) of the pointer tools.
#pragma once

#include <QWidget>

#include <functional>

class QImage;
class QMouseEvent;

namespace tvx {

class ViewPicture : public QWidget {
  Q_OBJECT

public:
  explicit ViewPicture(QWidget* parent = nullptr);

  // The window's ViewPicture_Paint, run at the start of every paint event.
  void setPaintHandler(std::function<void()> handler) { paintHandler_ = std::move(handler); }
  // The picture shown: the view device's shadow image (may be null until the device exists).
  void setImageSource(std::function<const QImage*()> source) { imageSource_ = std::move(source); }
  enum class PointerAction { Press, Move, Release };
  using PointerHandler =
      std::function<void(PointerAction, int button, int shift, double x, double y)>;
  void setPointerHandler(PointerHandler handler) { pointerHandler_ = std::move(handler); }

  // Called when the device presents its picture (G_CloseDC with 1): schedules a repaint unless
  // the picture is being painted right now.
  void present();

  // Paint events received and shadow pictures copied to the widget; for diagnostics and tests.
  int paintEvents() const { return paintEvents_; }

protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

private:
  void forward(PointerAction action, QMouseEvent* event, int button);

  PointerHandler pointerHandler_;
  std::function<void()> paintHandler_;
  std::function<const QImage*()> imageSource_;
  bool painting_ = false;
  int paintEvents_ = 0;
};

}  // namespace tvx
