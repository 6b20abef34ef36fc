// The Gerber text pass: reads an RS-274-D or RS-274-X file once, start to end, and writes TMP.ART:
// every draw, arc, flash, polygon, step and repeat and polarity as a 21-byte record in store units,
// then the aperture lists with their uses and the header with the extents. Nothing reaches the
// store; the drawing pass replays the file as often as the user imports.
#pragma once

#include "import/gerber/ApertureLists.h"
#include "import/gerber/GerberFormat.h"
#include "import/gerber/GerberScan.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace tvx {

class FileLayer;
class StatusReporter;
class SystemServices;

// What the pass works with. format is the format in force: an RS-274-X file's own blocks change
// it, and it stays so for the next file. scan receives the result.
struct GerberPassContext {
  const SystemServices& services;
  const StatusReporter& reporter;
  FileLayer& files;
  GerberFormat& format;
  GerberScan& scan;
  // The aperture table in force, as it stands when a pass starts (a load replaces its rows); the
  // lists start with its rows. None: the lists start empty.
  const std::vector<ApertureTableRow>* apertureTable = nullptr;
  // The import dialog's message line, for the progress; the main window's, for "Cancelled".
  std::function<void(const std::string&)> editMsgLine;
  std::function<void(const std::string&)> mainMsgLine;
  // Hands control to the event loop; called about every 30 ms while the pass runs.
  std::function<void()> yield;
};

// The whole pass from the source file into the intermediate file. status 0 on success. A failure
// shows its message, deletes the intermediate file, shows "Cancelled" in the main window's message
// line, and leaves status 1 (or the file helper's status when the source cannot be read).
void RunGerberTextPass(int32_t& status, const std::string& source, const std::string& intermediate,
                       GerberPassContext& context);

// Gives each note the line (from 1) of the byte it stands at in the source file; the notes stand
// in the order of the file. A note after the last line takes the last line.
void numberNoteLines(const std::string& source, std::vector<InputNote>& notes);

// The notes of the last pass as texts, "line 12: ...", with a count of the rest.
std::vector<std::string> noteTexts(const GerberScan& scan);

// Store units of one file unit, as record 3 holds them.
double storeUnitsPerFileUnit(int32_t unit, int32_t unitsPerMm);

// The arc centre of a draw from the pen's point P to the end point E with the offsets I and J.
// Multi-quadrant (G75) adds the offsets as they are; single-quadrant (G74) takes them as
// magnitudes and gives them signs by the direction of travel. False when no centre follows (a G74
// arc with an interpolation mode other than 2 or 3, or no direction that fits).
bool arcCentre(double quadrantMode, double interpolationMode, double px, double py, double ex,
               double ey, double i, double j, double& cx, double& cy);

}  // namespace tvx
