// The view picture: the widget the kernel's view device draws for. It shows the device's shadow
// image, and hands every paint the window system asks for to the window's paint first, so that a
// pending rebuild happens before the picture is shown.
#pragma once

#include <QWidget>

#include <functional>

class QImage;

namespace tvx {

class ViewPicture : public QWidget {
  Q_OBJECT

public:
  explicit ViewPicture(QWidget* parent = nullptr);

  // The window's ViewPicture_Paint, run at the start of every paint event.
  void setPaintHandler(std::function<void()> handler) { paintHandler_ = std::move(handler); }
  // The picture shown: the view device's shadow image (may be null until the device exists).
  void setImageSource(std::function<const QImage*()> source) { imageSource_ = std::move(source); }
  // Called when the device presents its picture (G_CloseDC with 1): schedules a repaint unless
  // the picture is being painted right now.
  void present();

  // Paint events received and shadow pictures copied to the widget; for diagnostics and tests.
  int paintEvents() const { return paintEvents_; }

protected:
  void paintEvent(QPaintEvent* event) override;

private:
  std::function<void()> paintHandler_;
  std::function<const QImage*()> imageSource_;
  bool painting_ = false;
  int paintEvents_ = 0;
};

}  // namespace tvx
