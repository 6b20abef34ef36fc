// Stage two of an import: a layer is cleared (or kept) and every file of it goes through the
// reader that its ReaderCode names. Also the layer binding that stage one ends with, and the
// centring of the readers that ignore offsets themselves.
#pragma once

#include "import/core/FileReader.h"
#include "import/core/ImportJob.h"
#include "kernel/KernelTypes.h"
#include "store/LayerRecord.h"

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <string>

namespace tvx {

class Store;
class StatusReporter;

// The readers built into this program, by reader code. A code without a reader is a format that
// is not built in: its files are reported with status 93 ("import of files in this format is not
// supported").
class ReaderTable {
public:
  void add(int32_t readerCode, FileReader& reader);
  FileReader* byCode(int32_t readerCode) const;
  // The reader of stage one for a recognised kind.
  FileReader* forKind(ImportKind kind) const;

private:
  std::array<FileReader*, ReaderDxf + 1> readers_{};
};

// The reader code whose reader scans files of kind (Gerber kinds share the artwork code).
int32_t readerCodeOf(ImportKind kind);

using MessageLine = std::function<void(const std::string&)>;

// Clears the layer when its ImportMode is 0 or less and runs the reader of every file, in order.
// The loop goes on after a reader has failed; the last file's status is the result. editMsgLine
// shows each file's name with "Importing".
void ImportIntoLayer(int32_t& status, LayerRecord& layer, ImportState& state,
                     const ReaderTable& readers, Store& store, const StatusReporter& reporter,
                     const MessageLine& editMsgLine = {});

// The shift that moves a frame's lower left corner to its offset from the frame's centre, rounded
// half away from zero to whole millimetres. Zero with original coordinates.
struct Shift {
  int64_t x = 0;
  int64_t y = 0;
};
Shift centringShift(const FrameRect& frame, bool originalCoordinates);

// The centring after an import whose first file is HPGL or DXF: those readers ignore the offsets
// and the centring themselves. Every item of the layer is moved by the shift of its frame and by
// the first file's offsets. When the store gives no frame the reader's extents stand in for it.
void centreImportedLayer(Store& store, const LayerRecord& layer, const FileExtents& readerExtents);

// Binds the layer that a scanned file goes into, by the job's kind: the layer choices of the
// import dialog, and for Excellon, HPGL and DXF the target layer at once, whose file record the
// kind's reader completes. Sets Prepared. layers holds the 31 slots, layer n at index n - 1;
// noCenter is the setting of the same name.
void bindLayers(ImportState& state, std::span<LayerRecord> layers, bool noCenter,
                const ReaderTable& readers);

// The user's choice of a layer for a Gerber or DXF file: a Gerber file becomes drilling on the
// drill layer and artwork on any other, and the layer gets one new file record for the kind's
// reader. A Gerber layer keeps the file's own coordinates when noCenter is set. Other kinds get an
// empty record.
LayerFileRecord& StartLayerFile(ImportJob& job, LayerRecord& layer, bool noCenter);

}  // namespace tvx
