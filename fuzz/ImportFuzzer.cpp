// Any bytes as a file of any kind through the whole windowless import: recognition or the user's
// choice of kind, the scan, the layer binding, the reader into the layer's symbol and the centring.
// No input may crash, hang, read out of bounds or grow without end.
#include "FuzzWorkFolder.h"
#include "import/readers/ImportSession.h"
#include "import/readers/WindowlessLayers.h"
#include "kernel/Kernel.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"
#include "store/ColourSlots.h"
#include "store/LayerCatalogue.h"
#include "store/Layers.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace tvx;
  const std::string path = (fuzz::workFolder() / "input").string();
  {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (size > 1)
      out.write(reinterpret_cast<const char*>(data + 1), std::streamsize(size - 1));
  }
  ScriptedPrompts prompts;
  SystemServices services(&prompts);
  WindowlessLayers run(services, prompts);
  run.session->state.Job.WorkDirectory = fuzz::workFolder().string() + "/";
  ImportOptions options;
  // The first byte is not part of the file: it picks the kind as a user would (so files that
  // recognition would refuse are read too) or leaves it to recognition, and the centring.
  static constexpr ImportKind kinds[] = {ImportKind::Unknown,
                                         ImportKind::ArtworkRS274X,
                                         ImportKind::ArtworkRS274D,
                                         ImportKind::ExcellonFormatTwo,
                                         ImportKind::ExcellonFormatOne,
                                         ImportKind::DrillingRS274X,
                                         ImportKind::DrillingRS274D,
                                         ImportKind::Hpgl,
                                         ImportKind::Dxf};
  const uint8_t choice = size > 0 ? data[0] : 0;
  options.kind = kinds[(choice >> 1) % std::size(kinds)];
  options.layer =
      options.kind == ImportKind::DrillingRS274X || options.kind == ImportKind::DrillingRS274D
          ? DrillLayer
          : 3;
  options.noCenter = choice & 1;
  run.session->importFile(run.layers(), path, options);
  return 0;
}
