// The Gerber format's part of the import road: stage one is the text pass from the source file
// into the intermediate file TMP.ART; stage two loads that file's header and aperture sections
// and replays its drawing stream into the layer.
#pragma once

#include "import/core/FileReader.h"
#include "import/gerber/GerberTextPass.h"
#include "store/ColourSlots.h"

#include <string>

namespace tvx {

class Store;
class StatusReporter;

// The intermediate file's path in a work directory.
std::string intermediatePathIn(const std::string& workDirectory);

class GerberFileReader : public FileReader {
public:
  // pass holds the format in force and receives the scan; extents receives the scan's extents as
  // the board's.
  GerberFileReader(Store& store, const StatusReporter& reporter, GerberPassContext& pass,
                   FileExtents& extents)
      : store_(store), reporter_(reporter), pass_(pass), extents_(extents) {}

  // Writes TMP.ART into the job's work folder, or the system's temporary folder when the job has
  // none. A failed pass leaves no intermediate path, and so nothing to import.
  ScanResult scan(ImportJob& job) override;

  // Opens the intermediate file that the file record names, loads its header and sections,
  // replays the stream into the layer, and closes the file (which stays).
  void importFile(int32_t& status, const ImportJob& job, LayerRecord& layer,
                  LayerFileRecord& file) override;

  std::vector<std::string> notes() const override;

  // Palette code in which clear elements are drawn.
  int32_t clearColour = slotCode(colourslot::ClearColour);

private:
  Store& store_;
  const StatusReporter& reporter_;
  GerberPassContext& pass_;
  FileExtents& extents_;
};

}  // namespace tvx
