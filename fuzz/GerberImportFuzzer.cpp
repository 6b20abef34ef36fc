// Any bytes as a Gerber file through the whole windowless import: the text pass, the layer binding,
// the drawing pass into the layer's symbol and the centring. No input may crash, hang, read out of
// bounds or grow without end.
#include "import/readers/WindowlessImport.h"
#include "import/readers/WindowlessLayers.h"
#include "kernel/Kernel.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"
#include "store/ColourSlots.h"
#include "store/Layers.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <unistd.h>

namespace {

// A folder of this process for the input and the intermediate file; memory-backed when it can be.
const std::filesystem::path& workFolder() {
  static const std::filesystem::path dir = [] {
    std::error_code ec;
    const std::filesystem::path base = std::filesystem::is_directory("/dev/shm", ec)
                                           ? "/dev/shm"
                                           : std::filesystem::temp_directory_path();
    const std::filesystem::path d = base / ("tvx-fuzz-import-" + std::to_string(getpid()));
    std::filesystem::create_directories(d, ec);
    return d;
  }();
  return dir;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace tvx;
  const std::string path = (workFolder() / "input.gbr").string();
  {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(data), std::streamsize(size));
  }
  ScriptedPrompts prompts;
  SystemServices services(&prompts);
  WindowlessLayers run(services, prompts);
  run.session->state.Job.WorkDirectory = workFolder().string() + "/";
  ImportOwners owners = run.owners();
  WindowlessImportOptions options;
  // The first byte picks RS-274-X or -D, so files that recognition would refuse are drawn too.
  options.kind = size > 0 && (data[0] & 1) ? ImportKind::ArtworkRS274D : ImportKind::ArtworkRS274X;
  options.layer = 3;
  options.noCenter = size > 0 && (data[0] & 2);
  ImportWithoutWindow(owners, path, options);
  return 0;
}
