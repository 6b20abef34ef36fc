// Any bytes through the recognition of a file's kind: the four tests, the second looks and the
// whole order of them, straight on the text in memory. No input may crash, hang or read out of
// bounds.
#include "import/core/FileRecognition.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace tvx;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  // A clock with a callback, so that the walks' looks at it are run too.
  int yields = 0;
  YieldClock clock([&yields] { ++yields; }, std::chrono::milliseconds(0));
  recogniseText(text, clock);
  SecondChanceGerber(text, clock);
  SecondChanceExcellon(text, clock);
  SecondChanceHpgl(text, clock);
  IsGerber(text);
  IsExcellon(text);
  IsDxf(text);
  IsHpgl(text);
  return 0;
}
