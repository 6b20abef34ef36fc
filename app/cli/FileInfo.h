// What the readers find in one file, for "gbrview info": its kind; for a drill file the format,
// the tool table, the extents and how the holes went into the drill layer; for a Gerber file the
// format, the extents, its apertures with their draws and flashes, what its drawing stream holds
// and its file attributes.
#pragma once

#include "import/core/ImportJob.h"
#include "import/gerber/ApertureLists.h"
#include "import/gerber/ApertureSummary.h"
#include "import/gerber/GerberFormat.h"
#include "import/gerber/GerberStreamCounts.h"
#include "import/readers/ImportSettings.h"
#include "import/readers/excellon/ExcellonReader.h"
#include "store/LayerRecord.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace tvx {

// One D-code of a Gerber file, its rows of the four aperture lists taken together.
struct ApertureUses {
  int32_t DCode = 0;
  ApertureShape Shape = ApertureShape::Round;  // a pad row's shape before a draw row's
  std::string MacroName;
  int32_t Size = 0;            // store units; 0 for special apertures
  std::vector<double> Values;  // a special aperture's primitive values, as the scan keeps them
  bool Defined = false;
  int64_t Draws = 0;  // operations in the file
  int64_t Flashes = 0;
  double Uses = 0;  // draws and flashes with every copy of a step and repeat

  bool operator==(const ApertureUses&) const = default;
};

// A file attribute (TF) as name and value: "TF.FileFunction,Copper,L1,Top" is FileFunction with
// the value "Copper,L1,Top".
struct FileAttribute {
  std::string name;
  std::string value;

  bool operator==(const FileAttribute&) const = default;
};

// The rows of the lists by D-code, in ascending order, with the stream's draws and flashes; codes
// neither defined nor used are left out.
std::vector<ApertureUses> aperturesByDCode(const std::vector<ApertureInfo>& rows,
                                           const GerberStreamCounts& stream);
// The TF attributes among the texts of attribute blocks, in their order.
std::vector<FileAttribute> fileAttributesOf(const std::vector<std::string>& texts);

struct FileInfo {
  std::string path;
  bool readable = false;
  int64_t bytes = 0;
  ImportKind recognisedKind = ImportKind::Unknown;  // what the text of the file says
  ImportKind kind = ImportKind::Unknown;            // after the scan
  std::string kindName;
  // Drill and Gerber files.
  bool hasExtents = false;
  FileExtents extents;  // store units, as stage one found them
  int32_t importStatus = 0;

  // Drill files.
  bool excellon = false;
  ExcellonFormat format;         // in force after the scan
  std::vector<ToolEntry> tools;  // diameters in store units
  int64_t holes = 0;             // the sum of the tools' hole counts
  int32_t layer = 0;             // the layer the holes went into
  std::string layerName;
  int32_t pads = 0;     // pads in that layer after the import
  HoleTally holeTally;  // how each hole went

  // Gerber files: what the text pass found, and what its intermediate file holds.
  bool gerber = false;
  bool scanned = false;       // the text pass read the file to its end
  GerberFormat gerberFormat;  // in force after the scan
  std::vector<ApertureUses> apertures;
  GerberStreamCounts stream;
  std::vector<FileAttribute> fileAttributes;

  // Plotter files and drawings: the elements written into their layer, by kind, and their frame
  // (extents). Outline pieces are the sides of closed outlines (rectangles, wedges, polygons).
  bool plotter = false;
  int32_t lines = 0, arcs = 0, circles = 0, outlinePieces = 0, texts = 0;

  // Drawings (DXF), beside the elements above: the header's version and unit, the entities
  // drawn and passed over by name, and the elements the range check left out.
  bool drawing = false;
  std::string acadVer;
  int32_t insUnits = -1;
  std::map<std::string, int32_t> entitiesRead, entitiesPassedOver;
  int32_t leftOut = 0;

  // The messages shown while reading (file errors, status messages), in order.
  std::vector<std::string> messages;
  // What the reader dropped or cut, each "line 12: ...".
  std::vector<std::string> notes;

  // True when the file could not be read or its import failed.
  // A file that gbrview does not read (unreadable, empty or of no kind) fails, as in render.
  bool failed() const {
    return !readable || kind == ImportKind::Unknown ||
           ((excellon || gerber || plotter || drawing) && importStatus != 0);
  }
};

// Reads and scans a file on its own store and layers, with the import settings' defaults, and
// imports a drill file into the drill layer with the file's own coordinates kept.
// An RS-274-D file takes its sizes from apertureTable's rows (none: no sizes).
FileInfo gatherFileInfo(const std::string& path,
                        const std::vector<ApertureTableRow>* apertureTable = nullptr);

// The report as lines of text or as one JSON object; both end with a line break and hold the same
// facts. Lengths are in millimetres (5 decimals) and inches (6 decimals).
std::string fileInfoText(const FileInfo& info);
std::string fileInfoJson(const FileInfo& info);

// "gbrview info FILE [--json] [--apt TABLE]": the report on out, a message on err naming the file
// when it failed. Returns the exit code: 0, or 1 when the file could not be read or its import
// failed, 2 when the aperture table cannot be read. Without apertureTablePath the settings' table
// serves.
int runInfoCommand(const std::string& path, bool json, std::string& out, std::string& err,
                   const std::string& apertureTablePath = {});

}  // namespace tvx
