// Stage two of an import: a layer is cleared (or kept) and every file of it goes through the
// reader that its ReaderCode names. Also the layer binding that stage one ends with, and the
// centring of the readers that ignore offsets themselves.
#pragma once

#include "import/gerber/ArtFile.h"
#include "import/core/ImportJob.h"
#include "kernel/KernelTypes.h"
#include "store/LayerRecord.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace tvx {

class Store;
class SystemServices;
class StatusReporter;

// The readers, one callable each, filled by the code of each file format. A reader gets the status
// word (0 on entry of the first file; a later file inherits what the earlier one left and sets it
// anew), the layer and the file record, and writes into the layer's symbol.
//
// An empty callable is a reader that is not built into this program: the file is then reported
// with status 93 ("import of files in this format is not supported") and the status word is 1.
struct ReaderSet {
  // ReaderCode 0 and 1, inside ImportGerberFile: read the header and the aperture sections of the
  // open intermediate file, then replay its drawing stream into the layer.
  std::function<void(int32_t& status, ArtFile& art)> loadArtSections;
  std::function<void(int32_t& status, ArtFile& art, LayerRecord& layer, LayerFileRecord& file)>
      drawGerberStream;
  // ReaderCode 2, with ImportJob::ExcellonText.
  std::function<void(int32_t& status, const std::string& text, LayerRecord& layer,
                     LayerFileRecord& file)>
      importExcellon;
  // ReaderCode 3, with ImportJob::HpglText.
  std::function<void(int32_t& status, const std::string& text, LayerRecord& layer,
                     LayerFileRecord& file)>
      importHpgl;
  // ReaderCode 4, with ImportJob::DxfText.
  std::function<void(int32_t& status, const std::vector<std::string>& lines, LayerRecord& layer,
                     LayerFileRecord& file)>
      importDxf;
  // The Excellon scan: fills the tool table and returns the kind it found (0, 3 or 4). The layer
  // binding runs it on the drill layer; without it the kind stays as recognition gave it.
  std::function<int32_t(const std::string& text, std::vector<ToolEntry>& tools, bool readHeader,
                        bool keepTools)>
      scanExcellonText;
};

// The stage-one scans, one callable each, filled by the code of each file format. An empty
// callable is a scan that is not built into this program: the file is reported with status 93.
struct ScanSet {
  // The Gerber text pass from the source file into the intermediate file.
  std::function<void(int32_t& status, const std::string& sourcePath, const std::string& artPath)>
      runGerberTextPass;
  // Loaders; each returns false when the file could not be read.
  std::function<bool(const std::string& fileName, std::string& text)> readExcellonText;
  std::function<bool(const std::string& fileName, std::string& text)> readHpglText;
  std::function<bool(const std::string& fileName, std::vector<std::string>& lines)> readDxfFile;
};

// What the import operations work with.
struct ImportContext {
  Store& store;
  const SystemServices& services;
  const StatusReporter& reporter;
  ImportState& state;
  const ReaderSet& readers;
  std::function<void(const std::string&)> editMsgLine;  // the message line of the window in charge
};

// Clears the layer when its ImportMode is 0 or less and runs the reader of every file, in order.
// The loop goes on after a reader has failed.
void ImportIntoLayer(int32_t& status, LayerRecord& layer, ImportContext& context);

// Stage two of one Gerber file: opens the intermediate file that the file record names, loads its
// header and sections, replays the stream into the layer, and closes the file (which stays).
void ImportGerberFile(int32_t& status, LayerRecord& layer, LayerFileRecord& file,
                      ImportContext& context);

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
// import dialog, and for Excellon, HPGL and DXF the target layer at once. Sets Prepared. layers
// holds the 31 slots, layer n at index n - 1; noCenter is the setting of the same name.
void bindLayers(ImportState& state, std::span<LayerRecord> layers, bool noCenter,
                const ReaderSet& readers);

}  // namespace tvx
