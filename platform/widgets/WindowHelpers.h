// Small window helpers: top-most windows, waiting for a modeless step, the printer's state.
#pragma once

#include <cstdint>

class QWidget;

namespace tvx {

// Puts the window on the top-most list (flag set) or takes it off, keeping its place and size.
void SetTopMost(QWidget& window, bool flag);

// Sets flag to -1 (true), then serves the event loop and sleeps 100 ms in turn until an event
// handler clears it. Needs a QCoreApplication.
void WaitWhileSet(int16_t& flag);
void WaitWhileSet(bool& flag);

// What the platform says about its printers.
struct PrinterState {
  int32_t Count = 0;             // printers listed
  bool DefaultReadable = false;  // the default printer's device can be opened
};
PrinterState probePrinters();

// True when at least one printer is listed and the default one's device can be read; the File
// menu's print entries follow it.
bool IsPrinterReady(const PrinterState& state);
bool IsPrinterReady();

}  // namespace tvx
