// The drawing pass: replays the drawing stream of TMP.ART into the symbol of a layer. It places and
// mirrors the picture, repeats it, honours polarity and the element filters, and turns draws, arcs
// and polygons into store items; flashes go to FlashAperture.
#pragma once

#include "import/gerber/ArtFile.h"
#include "import/gerber/ElementWriters.h"
#include "import/gerber/GerberScan.h"
#include "store/ColourSlots.h"
#include "store/LayerRecord.h"

#include <cstdint>
#include <functional>

namespace tvx {

class Store;
class StatusReporter;

// What the pass works with besides the file, the layer and its file record. scan holds the header
// and the aperture lists as LoadArtHeader restored them from the same file. Flashes place their
// holes with PlaceHole into the same store.
struct GerberDrawContext {
  Store& store;
  const StatusReporter& reporter;
  const GerberScan& scan;
  int32_t clearColour = slotCode(colourslot::ClearColour);
  // Hands control to the event loop about every 30 ms while the stream is replayed.
  std::function<void()> yield = {};
};

// Replays records 6 on of the open intermediate file. status 0 when the stream ended, also when
// it ended at an unknown record (reported). An element whose aperture no list holds is left out
// and the pass goes on; after it each such aperture is reported once, by its label, with the
// count of elements it cost. A point outside the world is reported and leaves status 1, as does a
// stream that stops before its end record. What was written stays. Gives the number of elements
// (flashes, draws, regions) the stream held up to where it ended, drawn or not.
int32_t DrawGerberStream(int32_t& status, ArtFile& art, LayerRecord& layer, LayerFileRecord& file,
                         const GerberDrawContext& context);

}  // namespace tvx
