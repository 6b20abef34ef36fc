// A file from its path to its layer without a window: recognition, the stage-one scan with the
// layer binding, the import into the bound layer and the centring after it. The import dialog's
// file-open path, the host's command line and the CLI all go through ImportWithoutWindow.
#pragma once

#include "common/FileLayer.h"
#include "import/gerber/GerberScan.h"
#include "import/gerber/GerberTextPass.h"
#include "import/core/ImportDriver.h"
#include "import/core/ImportJob.h"
#include "import/core/ReportStatus.h"
#include "import/readers/excellon/ExcellonReader.h"
#include "import/readers/ImportSettings.h"
#include "store/LayerRecord.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string>

namespace tvx {

class Store;
class SystemServices;
class UserPrompts;

// The intermediate file's path in a work directory.
std::string intermediatePathIn(const std::string& workDirectory);

// A layer chosen for a Gerber or DXF file: a Gerber file becomes drilling on the drill layer and
// artwork on any other, and the layer gets one new file record for the kind's reader. A Gerber
// layer keeps the file's own coordinates when noCenter is set. Other kinds get an empty record.
LayerFileRecord& StartLayerFile(ImportJob& job, LayerRecord& layer, bool noCenter);

// What an import works with; all of it belongs to the caller.
struct ImportOwners {
  Store& store;
  const SystemServices& services;
  const StatusReporter& reporter;
  FileLayer& files;
  ImportState& state;
  std::span<LayerRecord> layers;  // the 31 slots, layer n at index n - 1
  const ReaderSet& readers;
  const ScanSet& scans;
  // The Gerber format's unit, which recognising an RS-274-X file sets to inch; none when null.
  int32_t* gerberUnit = nullptr;
};

struct WindowlessImportOptions {
  // The kind the user chose for the file; Unknown lets recognition decide.
  ImportKind kind = ImportKind::Unknown;
  // The layer for a kind whose binding only offers layers (Gerber, DXF); 0 takes the first offered.
  int32_t layer = 0;
  // The setting NoCenter: new imports keep the file's own coordinates.
  bool noCenter = true;
  std::function<void(const std::string&)> editMsgLine;
  std::function<void()> yield;
};

struct WindowlessImportResult {
  int32_t status = 1;                     // 0 when the file was imported
  ImportKind kind = ImportKind::Unknown;  // as recognised or chosen, then as the scan found it
  int32_t layer = 0;                      // the layer bound, 0 for none
  FileExtents scanned{};                  // the extents that stage one found
};

// Reads, scans, binds and imports one file. Every failure is reported where it is found: an
// unreadable file by the file layer, an unrecognised one or one whose reader is missing with
// status 93, a kind-3 file that scans as Format One with 94 (the import goes on), no layer to
// bind with 200, and the readers' own failures by the readers.
WindowlessImportResult ImportWithoutWindow(ImportOwners& owners, const std::string& path,
                                           const WindowlessImportOptions& options = {});

// The import state of one component with the readers built into this program, ready for
// ImportWithoutWindow: what the CLI, the host and tests build around a store and services.
class ImportSession {
public:
  ImportSession(Store& store, SystemServices& services, UserPrompts& prompts);
  ImportSession(const ImportSession&) = delete;
  ImportSession& operator=(const ImportSession&) = delete;

  // The owners for an import into layers.
  ImportOwners owners(std::span<LayerRecord> layers);

  Store& store;
  SystemServices& services;
  StatusTitles titles;
  FormatDigits digits;
  StatusReporter reporter;
  FileLayer files;
  ImportState state;
  ExcellonFormat excellonFormat;
  GerberFormat gerberFormat;
  DxfFormat dxfFormat;
  ExcellonReader excellon;
  ReaderSet readers;
  ScanSet scans;
  // The Gerber path: what the text pass found, restored from TMP.ART by each import, and the pass's
  // own context.
  GerberScan gerberScan;
  GerberPassContext gerberPass;
};

}  // namespace tvx
