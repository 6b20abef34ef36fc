#include "app/PauseMeter.h"

#include <algorithm>

namespace tvx {
namespace {
PauseMeter* meter = nullptr;
}

PauseMeter::PauseMeter(QObject* parent) : QObject(parent) {
  clock_.start();
  timer_.setTimerType(Qt::PreciseTimer);
  timer_.setInterval(StepMilliseconds);
  connect(&timer_, &QTimer::timeout, this, [this] {
    const int64_t now = clock_.elapsed();
    longest_ = std::max(longest_, now - last_);
    last_ = now;
  });
  timer_.start();
  meter = this;
}

PauseMeter::~PauseMeter() {
  if (meter == this)
    meter = nullptr;
}

int64_t PauseMeter::takeLongest() {
  const int64_t now = clock_.elapsed();
  const int64_t longest = std::max(longest_, now - last_);
  longest_ = 0;
  last_ = now;
  return longest;
}

PauseMeter* PauseMeter::running() { return meter; }

}  // namespace tvx
