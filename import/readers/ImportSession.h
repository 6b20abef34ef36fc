// The import road of one component, without any window: recognition, stage one (the reader's scan
// and the layer binding), the layer choice, stage two into the bound layer with the centring after
// it, and the loop over many files. The import window, the host's command line and every gbrview
// verb go through it; a window adds only what it shows.
#pragma once

#include "common/FileLayer.h"
#include "import/core/FileRecognition.h"
#include "import/core/ImportDriver.h"
#include "import/core/ImportJob.h"
#include "import/core/ReportStatus.h"
#include "import/gerber/GerberFileReader.h"
#include "import/gerber/GerberScan.h"
#include "import/gerber/GerberTextPass.h"
#include "import/readers/ImportSettings.h"
#include "import/readers/dxf/DxfFileReader.h"
#include "import/readers/excellon/ExcellonFileReader.h"
#include "import/readers/excellon/ExcellonReader.h"
#include "import/readers/hpgl/HpglFileReader.h"
#include "store/LayerRecord.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace tvx {

class Store;
class SystemServices;
class UserPrompts;

struct ImportOptions {
  // The kind the file is known to be; Unknown lets recognition decide.
  ImportKind kind = ImportKind::Unknown;
  // The layer for a kind whose binding only offers layers (Gerber, DXF); 0 takes the first offered.
  int32_t layer = 0;
  // The setting NoCenter: new imports keep the file's own coordinates.
  bool noCenter = true;
  MessageLine editMsgLine;
  std::function<void()> yield;
};

struct ImportResult {
  int32_t status = 1;                     // 0 when the file was imported
  ImportKind kind = ImportKind::Unknown;  // as recognised or given, then as the scan found it
  int32_t layer = 0;                      // the layer bound, 0 for none
  // A Gerber file found no empty Gerber layer, or a plotter or drawing file the outline layer
  // taken: refused with status 200.
  bool noFreeLayer = false;
  FileExtents scanned{};  // the extents that stage one found
  // What the reader dropped or cut, each "line 12: ..." by the line of the file; said once, after
  // the import, by whoever shows the outcome.
  std::vector<std::string> notes;
};

// An import's outcome for a message line with its first note: "... Import successful - line 12:
// ... (and 2 more)".
std::string outcomeWithNotes(const std::string& outcome, const std::vector<std::string>& notes);

// The Gerber layers in the order new Gerber files take them: 3, 4, 1, 6, 2, 5, 7, 8, ... 29.
std::vector<int32_t> gerberLayerOrder();

class ImportSession {
public:
  ImportSession(Store& store, SystemServices& services, UserPrompts& prompts);
  ImportSession(const ImportSession&) = delete;
  ImportSession& operator=(const ImportSession&) = delete;

  // The kind of a file by its text; Unknown when it is none of ours or cannot be read (reported
  // by the file layer). Without a yield of its own the session's serves.
  ImportKind recognise(const std::string& path, const MessageLine& editMsgLine = {},
                       const std::function<void()>& yield = {});

  // How every reading of the session hands control to the event loop (about every 30 ms): the
  // host's window gives one, so that it keeps painting while a large file is read. None: the
  // readings run through. ImportOptions::yield replaces it for one file.
  void setYield(std::function<void()> yield);

  // Why the last recognised file has no kind.
  Refusal lastRefusal = Refusal::None;
  // Says why a file has no kind, once: an empty file is named empty, an unrecognised one is not
  // supported (status 93); an unreadable one the file layer has named already. True when the
  // file may be offered as text (it is readable and not empty).
  bool reportRefusal(const std::string& path);

  // A new job for path: nothing of the last file's scan or layer choice stays.
  void startJob(const std::string& path, ImportKind kind);

  // Stage one for the job's file and kind, then the layer binding when the scan succeeded. A kind
  // whose reader is not built in is reported with status 93 and gives Failed.
  ScanResult applyFile(std::span<LayerRecord> layers, bool noCenter);

  // The user's choice of an offered layer (by its number) for a Gerber or DXF file.
  void chooseLayer(std::span<LayerRecord> layers, int32_t number, bool noCenter);

  // Stage two into the bound layer, then its LastFile and the centring of HPGL and DXF. The
  // status: 0 when imported.
  int32_t importBoundLayer(std::span<LayerRecord> layers, const MessageLine& editMsgLine = {});

  // What the reader of the job's kind dropped or cut of the job's file (FileReader::notes).
  std::vector<std::string> notes();

  // One file from its path to its layer. Every failure is reported where it is found: an
  // unreadable file by the file layer, an unrecognised one or one whose reader is missing with
  // status 93, a kind-3 file that scans as Format One with 94 (the import goes on), no layer to
  // bind with 200, and the readers' own failures by the readers.
  ImportResult importFile(std::span<LayerRecord> layers, const std::string& path,
                          const ImportOptions& options = {});

  // Many files, one after another, each into a layer of its own: Gerber files into the empty
  // Gerber layers in gerberLayerOrder (the first one into firstGerberLayer when it is given), DXF
  // into the board outline, drill files where the binding puts them. afterEach sees every result.
  struct BatchOptions {
    int32_t firstGerberLayer = 0;
    // The layer of each path, where the command line binds one; 0 leaves it to the rules above.
    std::vector<int32_t> layers;
    bool noCenter = true;
    MessageLine editMsgLine;
    std::function<void(const std::string& path, const ImportResult& result)> afterEach;
  };
  std::vector<ImportResult> importFiles(std::span<LayerRecord> layers,
                                        const std::vector<std::string>& paths,
                                        const BatchOptions& options);

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
  // What the Gerber text pass found, restored from TMP.ART by each import, and the pass's context.
  GerberScan gerberScan;
  GerberPassContext gerberPass;
  // The readers built into this program, and the table that finds them by reader code.
  ExcellonReader excellon;
  GerberFileReader gerberReader;
  ExcellonFileReader excellonReader;
  HpglFileReader hpglReader;
  DxfFileReader dxfReader;
  ReaderTable readers;
  // The unit of the sizes in a Gerber layer's aperture rows (0 inches, 1 millimetres), which an
  // import without the window fills as the window would.
  int32_t apertureRowUnit = 1;
  // The import window's hole mapping, kept from one window to the next.
  int32_t HoleMapping = 0;
  // An import is under way (its window or a run of files): no second one starts.
  bool running = false;
  // The import window is up: the host's window may not close under it.
  bool windowShown = false;

private:
  // For the kinds whose binding only offers layers: the requested layer, else the first offered.
  bool bindRequestedLayer(std::span<LayerRecord> layers, const ImportOptions& options);

  std::function<void()> yield_;
};

}  // namespace tvx
