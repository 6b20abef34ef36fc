#include "import/readers/WindowlessLayers.h"

namespace tvx {

WindowlessLayers::WindowlessLayers(SystemServices& services, UserPrompts& prompts)
    : kernel(std::make_unique<Kernel>()), tables(std::make_unique<LayerTables>()) {
  colours.build(kernel->strings);
  BuildLayerTables(kernel->store, services, colours, false, *tables);
  session = std::make_unique<ImportSession>(kernel->store, services, prompts);
}

}  // namespace tvx
