#include "BenchRunner.h"

#include <QByteArray>
#include <QtGlobal>
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

long residentKilobytes(const char* field) {
  std::ifstream status("/proc/self/status");
  const std::string_view name(field);
  std::string line;
  while (std::getline(status, line))
    if (line.rfind(name, 0) == 0)
      return std::strtol(line.c_str() + name.size(), nullptr, 10);
  return 0;
}

void useOffscreenWithoutDisplay() {
  if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") &&
      !qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
    qputenv("QT_QPA_PLATFORM", "offscreen");
}

int runBenchmarks(int argc, char** argv, const char* defaultFilter) {
  useOffscreenWithoutDisplay();
  std::vector<char*> args(argv, argv + argc);
  bool filtered = false;
  for (int i = 1; i < argc; ++i)
    filtered = filtered || std::string_view(argv[i]).starts_with("--benchmark_filter");
  std::string filter;
  if (defaultFilter && !filtered) {
    filter = std::string("--benchmark_filter=") + defaultFilter;
    args.push_back(filter.data());
  }
  int count = int(args.size());
  benchmark::Initialize(&count, args.data());
  if (benchmark::ReportUnrecognizedArguments(count, args.data()))
    return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}

}  // namespace bench
