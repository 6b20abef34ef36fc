// The longest time the user-interface thread went without turning its event loop. A timer asks to
// run every few milliseconds: during an import the readers' yields let it run, and a redraw holds
// it up for as long as the redraw takes. The gaps between its runs are the pauses the user feels.
// The host makes one when TVX_MEASURE_PAUSES is set; the query PAUSE reads it.
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <cstdint>

namespace tvx {

class PauseMeter : public QObject {
public:
  explicit PauseMeter(QObject* parent = nullptr);
  ~PauseMeter() override;

  // The longest gap since the meter started or was last read, in milliseconds (the timer's own
  // step of a few milliseconds included); the next reading starts from now.
  int64_t takeLongest();
  // The meter of this process, or nullptr when none runs.
  static PauseMeter* running();

  static constexpr int StepMilliseconds = 2;

private:
  QTimer timer_;
  QElapsedTimer clock_;
  int64_t last_ = 0;
  int64_t longest_ = 0;
};

}  // namespace tvx
