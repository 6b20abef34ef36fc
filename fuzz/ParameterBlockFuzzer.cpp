// Any text as the parameter blocks of a Gerber file: each piece between two "%" is one block, its
// items the trimmed pieces up to each "*", line ends left out as the block reader does. All blocks
// go through one interpreter, so a macro defined by one block is used by a later aperture. No
// input may crash, hang, read out of bounds or grow without end.
#include "common/TextHelpers.h"
#include "import/gerber/ParameterBlocks.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace tvx;
  if (size == 0)
    return 0;
  // The first byte picks the unit and the zero mode the settings would give.
  GerberFormat format;
  format.Unit = data[0] & 1;
  format.OmittedZeros = (data[0] >> 1) & 1;
  ApertureLists lists;
  ParameterInterpreter interpreter(format, lists, 100000);
  interpreter.reset();

  std::string_view rest(reinterpret_cast<const char*>(data + 1), size - 1);
  std::vector<std::string> items;
  std::string item;
  for (char c : rest) {
    if (c == '\r' || c == '\n')
      continue;
    if (c == '*') {
      items.emplace_back(TrimBlanks(item));
      item.clear();
    } else if (c == '%') {
      interpreter.InterpretParameterBlock(items);
      items.clear();
      item.clear();
    } else {
      item += c;
    }
  }
  if (!item.empty())
    items.emplace_back(TrimBlanks(item));
  if (!items.empty())
    interpreter.InterpretParameterBlock(items);
  return 0;
}
