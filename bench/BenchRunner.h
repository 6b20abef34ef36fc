// What every benchmark program does around its benchmarks: a headless Qt platform when there is
// no display, then the benchmark library's runner.
#pragma once

namespace bench {

// Sets QT_QPA_PLATFORM to offscreen when neither DISPLAY nor WAYLAND_DISPLAY is set and the
// variable is not set already, so that a benchmark that makes a QGuiApplication runs without a
// display. Call before any application object exists.
void useOffscreenWithoutDisplay();

// The headless platform, then the library initialised with the arguments and every benchmark
// they select run. defaultFilter, when given, is the --benchmark_filter of a run whose arguments
// name none. Returns the exit code.
int runBenchmarks(int argc, char** argv, const char* defaultFilter = nullptr);

// A line of /proc/self/status in kilobytes: "VmRSS:" the resident memory now, "VmHWM:" its peak
// so far. 0 when the line is missing.
long residentKilobytes(const char* field);

}  // namespace bench
