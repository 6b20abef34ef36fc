// Any bytes as the menu file of a language folder, through its reader into a function table. The
// reader needs no window: it reads through the file layer, so the input is written to a file of
// this process first. No input may crash, hang or read out of bounds.
#include "FuzzWorkFolder.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"
#include "shell/MenuFile.h"

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <memory>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace tvx;
  static const std::string path = (fuzz::workFolder() / MenuFileName).string();
  std::ofstream(path, std::ios::binary | std::ios::trunc)
      .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  ScriptedPrompts prompts;
  SystemServices services(&prompts);
  // The table is large (12 functions of 11 keys of 11 options); it lives on the heap.
  auto table = std::make_unique<FunctionTable>();
  ReadMenuFile(*table, path, services);
  return 0;
}
