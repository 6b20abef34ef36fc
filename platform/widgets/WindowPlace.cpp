#include "platform/widgets/WindowPlace.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

#include <charconv>
#include <cmath>
#include <limits>

namespace tvx {

namespace {

const char* const Keys[] = {"_TOP", "_LEFT", "_HEIGHT", "_WIDTH"};

// A stored value as a whole number, a half to the even neighbour; -1 when there is no number.
int32_t wholeNumber(const std::string& text) {
  size_t b = text.find_first_not_of(" \t");
  size_t e = text.find_last_not_of(" \t");
  if (b == std::string::npos)
    return -1;
  if (text[b] == '+')
    ++b;
  double value = 0;
  const char* first = text.data() + b;
  const char* last = text.data() + e + 1;
  auto [end, error] = std::from_chars(first, last, value);
  if (error != std::errc() || end != last || !std::isfinite(value))
    return -1;
  value = std::nearbyint(value);
  if (value < std::numeric_limits<int32_t>::min() || value > std::numeric_limits<int32_t>::max())
    return -1;
  return static_cast<int32_t>(value);
}

std::string windowName(const QWidget& window) {
  const QString name = window.objectName();
  return name.isEmpty() ? std::string(window.metaObject()->className()) : name.toStdString();
}

}  // namespace

void SaveWindowPlace(UserStore& store, const std::string& name, const WindowPlace& place) {
  const int32_t values[] = {place.Top, place.Left, place.Height, place.Width};
  const UserStoreSave save(store);
  for (int i = 0; i < 4; ++i)
    store.SaveSetting(UserStoreApplication, UserStoreSection, name + Keys[i],
                      std::to_string(values[i]));
}

bool RestoreWindowPlace(const UserStore& store, const std::string& name, const WorkArea& work,
                        int32_t presentWidth, int32_t presentHeight, WindowPlace& place) {
  int32_t values[4];
  for (int i = 0; i < 4; ++i)
    values[i] =
        wholeNumber(store.GetSetting(UserStoreApplication, UserStoreSection, name + Keys[i], "-1"));
  place = {values[0], values[1], values[3], values[2]};

  bool usable = true;
  // A top or left edge in the last fortieth of the work area would leave the window out of
  // reach; the fortieth is a true division, not a whole one.
  if (place.Top + work.Height / 40.0 > work.Height || place.Top < 0) {
    place.Top = 0;
    usable = false;
  }
  if (place.Left + work.Width / 40.0 > work.Width || place.Left < 0) {
    place.Left = 0;
    usable = false;
  }
  if (place.Height < 1)
    place.Height = presentHeight;
  if (place.Width < 1)
    place.Width = presentWidth;
  return usable;
}

WindowPlace placeOf(const QWidget& window) {
  const QPoint at = window.pos();
  return {at.y() * TwipsPerPixel, at.x() * TwipsPerPixel, window.width() * TwipsPerPixel,
          window.height() * TwipsPerPixel};
}

WorkArea workAreaOf(const QWidget& window) {
  const QScreen* screen = window.screen();
  if (!screen)
    screen = QGuiApplication::primaryScreen();
  if (!screen)
    return {};
  const QRect area = screen->availableGeometry();
  return {area.width() * TwipsPerPixel, area.height() * TwipsPerPixel};
}

void SaveWindowPlace(UserStore& store, const QWidget& window) {
  SaveWindowPlace(store, windowName(window), placeOf(window));
}

bool RestoreWindowPlace(const UserStore& store, const QWidget& window, int32_t& Top, int32_t& Left,
                        int32_t& Width, int32_t& Height) {
  const WindowPlace present = placeOf(window);
  WindowPlace place;
  const bool usable = RestoreWindowPlace(store, windowName(window), workAreaOf(window),
                                         present.Width, present.Height, place);
  Top = place.Top;
  Left = place.Left;
  Width = place.Width;
  Height = place.Height;
  return usable;
}

void moveToPlace(QWidget& window, const WindowPlace& place) {
  window.move(place.Left / TwipsPerPixel, place.Top / TwipsPerPixel);
  window.resize(place.Width / TwipsPerPixel, place.Height / TwipsPerPixel);
}

}  // namespace tvx
