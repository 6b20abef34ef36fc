// The import job: the kind of the chosen file, where its scan lies, and the import state that
// lives beside it for as long as the component does.
#pragma once

#include "import/core/DxfRecord.h"
#include "kernel/KernelTypes.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tvx {

class SystemServices;

// What file recognition returns, and what the user may turn a Gerber file into.
enum class ImportKind : int32_t {
  Unknown = 0,
  ArtworkRS274X = 1,
  ArtworkRS274D = 2,
  ExcellonFormatTwo = 3,
  ExcellonFormatOne = 4,
  DrillingRS274X = 5,  // Gerber read as drilling: only by the user's choice of the drill layer
  DrillingRS274D = 6,
  Hpgl = 7,
  Dxf = 8,
};

// A user-visible text: its catalogue id and its default.
struct CatalogueText {
  std::string_view id;
  std::string_view text;
};

// The name under which a kind is shown. Kinds outside 1 to 8 read "unknown file", which has no id.
CatalogueText importKindText(ImportKind kind);
// The same, looked up in the catalogue.
std::string importKindName(const SystemServices& services, ImportKind kind);

// Kinds whose stage one is the Gerber text pass into TMP.ART.
constexpr bool isGerberKind(ImportKind kind) {
  return kind == ImportKind::ArtworkRS274X || kind == ImportKind::ArtworkRS274D ||
         kind == ImportKind::DrillingRS274X || kind == ImportKind::DrillingRS274D;
}
constexpr bool isExcellonKind(ImportKind kind) {
  return kind == ImportKind::ExcellonFormatTwo || kind == ImportKind::ExcellonFormatOne;
}
constexpr bool isPlotterOrCadKind(ImportKind kind) {
  return kind == ImportKind::Hpgl || kind == ImportKind::Dxf;
}

struct ImportJob {
  std::string IntermediatePath;  // full path of TMP.ART; empty when no scan result exists
  std::string WorkDirectory;     // the suite's work directory
  std::string SourcePath;        // the chosen file
  ImportKind Kind = ImportKind::Unknown;
  bool Prepared = false;  // a target layer is bound; ImportFile does nothing without it
  int32_t ApertureTableChoice = 0;
  std::string ExcellonText;      // the Excellon file as blocks, each closed by "|"
  std::string ExcellonComments;  // its comments (";" and what follows) the same way
  // The drill file's own format statements have given the format's start values; later scans of
  // the same file leave the user's corrections alone.
  bool ExcellonFormatStarted = false;
  std::string HpglText;
  std::vector<DxfRecord> DxfText;  // the drawing's groups, in file order
  // The drawing's own unit ($INSUNITS) has given the unit's start value; later scans of the same
  // file leave the user's choice alone.
  bool DxfUnitStarted = false;
};

// One layer that the user may choose in the import dialog.
struct LayerChoice {
  int32_t LayerNumber = 0;
  std::string LayerName;

  bool operator==(const LayerChoice&) const = default;
};

// Extents that a reader leaves, in store units.
struct FileExtents {
  double MinX = 0;
  double MinY = 0;
  double MaxX = 0;
  double MaxY = 0;
};

// The import state of one component. DialogLayer, LayerChoices and LayerListIndex are the import
// dialog's, but the layer binding and the driver fill them, so they are kept with the job.
struct ImportState {
  ImportJob Job;
  int32_t DialogLayer = 0;  // layer the import works on, 1 to 31; 0 for none
  std::vector<LayerChoice> LayerChoices;
  int32_t LayerListIndex = 0;  // chosen index of the dialog's layer list
  SymbolId CurrentSymbol = 0;  // symbol of the bound layer, which the readers write into
  std::string CurrentFile;     // name of the file the Gerber drawing pass replays
  FileExtents Extents;         // what the last reader left
};

}  // namespace tvx
