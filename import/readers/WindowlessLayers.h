// A kernel with the 31 layers built and an import session over them: what a run without a window
// (the CLI, benchmarks, fuzzing) imports into and draws from.
#pragma once

#include "import/readers/ImportSession.h"
#include "kernel/Kernel.h"
#include "store/ColourSlots.h"
#include "store/Layers.h"

#include <memory>

namespace tvx {

class SystemServices;
class UserPrompts;

struct WindowlessLayers {
  WindowlessLayers(SystemServices& services, UserPrompts& prompts);

  std::span<LayerRecord> layers() { return tables->Layers; }

  std::unique_ptr<Kernel> kernel;
  ColourSlots colours;
  std::unique_ptr<LayerTables> tables;
  std::unique_ptr<ImportSession> session;
};

}  // namespace tvx
