#include "platform/widgets/WindowHelpers.h"

#include <QCoreApplication>
#include <QPrinter>
#include <QPrinterInfo>
#include <QThread>
#include <QWidget>

namespace tvx {

void SetTopMost(QWidget& window, bool flag) {
  if (window.windowFlags().testFlag(Qt::WindowStaysOnTopHint) == flag)
    return;
  // Changing a window flag re-creates the native window and hides it; it comes back where it
  // was and as large as it was.
  const bool visible = window.isVisible();
  const QRect geometry = window.geometry();
  window.setWindowFlag(Qt::WindowStaysOnTopHint, flag);
  window.setGeometry(geometry);
  if (visible)
    window.show();
}

namespace {
template <typename Flag> void waitWhileSet(Flag& flag) {
  while (flag) {
    QCoreApplication::processEvents();
    if (!flag)
      break;
    QThread::msleep(100);
  }
}
}  // namespace

void WaitWhileSet(int16_t& flag) {
  flag = -1;
  waitWhileSet(flag);
}

void WaitWhileSet(bool& flag) {
  flag = true;
  waitWhileSet(flag);
}

PrinterState probePrinters() {
  PrinterState state;
  state.Count = static_cast<int32_t>(QPrinterInfo::availablePrinterNames().size());
  const QPrinterInfo info = QPrinterInfo::defaultPrinter();
  if (!info.isNull()) {
    QPrinter printer(info, QPrinter::ScreenResolution);
    state.DefaultReadable = printer.isValid() && printer.pageLayout().isValid();
  }
  return state;
}

bool IsPrinterReady(const PrinterState& state) { return state.Count > 0 && state.DefaultReadable; }

bool IsPrinterReady() { return IsPrinterReady(probePrinters()); }

}  // namespace tvx
