// The files of a gbrview command through the windowless import into one set of layers, each
// failure told as a "gbrview: PATH: reason" line.
#pragma once

#include "aperture/ApertureTable.h"
#include "import/readers/WindowlessLayers.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"
#include "store/LayerOrder.h"

#include <QTemporaryDir>

#include <cstdint>
#include <string>
#include <vector>

namespace tvx {

struct CliImport {
  CliImport();

  // Reads the aperture table (--apt, else the settings' one); an error text, empty when usable.
  std::string useApertureTable(const std::string& path);
  // Imports files in turn with the files' own coordinates: file n into layers[n] where that is
  // given and not 0, the first Gerber file into firstGerberLayer where that is not 0. Messages
  // and notes go to messages. The layer of each file, 0 for one that failed.
  std::vector<int32_t> importFiles(const std::vector<std::string>& files,
                                   const std::vector<int32_t>& layers, int32_t firstGerberLayer,
                                   std::vector<std::string>& messages);

  // The layers of this run in draw order, the drill template on top so that its holes lie over
  // the artwork; visible are the layers of placed. In mono view white.
  std::vector<LayerOrderRow> drawOrder(const std::vector<int32_t>& placed, bool mono) const;

  ScriptedPrompts prompts;  // shows nothing; every message goes to the messages
  SystemServices services;
  WindowlessLayers run;
  ApertureTable apertureTable;
  // A work folder of this run's own for the intermediate file, so that runs side by side never
  // share one; removed with everything in it at the end.
  QTemporaryDir workFolder;
};

}  // namespace tvx
