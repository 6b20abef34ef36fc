// Tells a chosen file's kind from its text alone: Gerber RS-274-X or RS-274-D, Excellon Format Two
// or One, AutoCAD DXF or HPGL. The whole file is read once into memory and each test looks at it
// in place, so even files of hundreds of megabytes are classified at memory speed; a large file
// whose first megabytes show the marks of no kind is refused on them alone.
#pragma once

#include "import/core/ImportJob.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace tvx {

class FileLayer;
class SystemServices;

// The characters of Gerber blocks; the block reader works with a character's position in it.
inline constexpr std::string_view GerberCharacterSet = "*DXYMGIJ+-0123456789%AB.";
// The characters of Excellon text, for the test here and the Excellon reader.
inline constexpr std::string_view ExcellonCharacterSet = "|TCMGXY+-0123456789.%";
// What separates the arguments of plotter commands, for the HPGL reader.
inline constexpr std::string_view PlotterSeparatorSet = ", ;+-0123456789.";
// The plotter commands: two letters and a bar each. "RA" stands in it twice.
inline constexpr std::string_view HpglCommandTable =
    "DF|IN|IP|SC|IW|RO|PG|PU|PD|PA|PR|AA|AR|CI|EA|ER|EW|RA|RA|RR|WG|FT|LT|PW|SM|SP|TL|XT|YT|PT|CS|"
    "CA|SS|SA|DT|LB|DI|DR|CP|SI|SR|SL|UC|VS|WU|";

namespace recognition {
// Characters a walk handles between two looks at the clock.
inline constexpr std::size_t WalkChunk = 16 * 1024;
// Characters a search covers between two looks at the clock.
inline constexpr std::size_t SearchChunk = 1024 * 1024;
// How much of a large file is looked at before the rest is read.
inline constexpr std::size_t PrefixBytes = std::size_t(4) << 20;
}  // namespace recognition

// Keeps the event loop served while a test walks a long text: the callback runs whenever the
// interval has passed since it last ran (or since the clock was made). The walks look at the clock
// once per chunk of characters, never per character. An empty callback costs nothing.
class YieldClock {
public:
  static constexpr std::chrono::milliseconds DefaultInterval{30};

  explicit YieldClock(std::function<void()> yield = {},
                      std::chrono::milliseconds interval = DefaultInterval);

  void poll() {
    if (yield_)
      pollClock();
  }

private:
  void pollClock();

  std::function<void()> yield_;
  std::chrono::steady_clock::duration interval_;
  std::chrono::steady_clock::time_point last_;
};

// The four tests; each gives its kind or Unknown. Searches are case-sensitive and plain.
// Excellon and HPGL refuse a text with the Gerber format statement and %AD or %MO.
ImportKind IsGerber(std::string_view text, YieldClock& clock);
ImportKind IsExcellon(std::string_view text, YieldClock& clock);
ImportKind IsDxf(std::string_view text, YieldClock& clock);
ImportKind IsHpgl(std::string_view text, YieldClock& clock);

ImportKind IsGerber(std::string_view text);
ImportKind IsExcellon(std::string_view text);
ImportKind IsDxf(std::string_view text);
ImportKind IsHpgl(std::string_view text);

// Second looks, for texts all four tests refused: real files the tests leave out.
// Gerber: a format or unit statement, attributes, drawing codes or aperture selections, and the
// character walk passed once comment insides and NULs padding the end are set aside. Files of no
// draws (empty layers) are Gerber too. RS-274-X when it has %FS and %AD.
ImportKind SecondChanceGerber(std::string_view text, YieldClock& clock);
// Excellon: M48 or an INCH or METRIC line, a tool block of any number (T and digits at the start
// of a line) and a coordinate block behind it, and the character walk passed. Format Two when a
// tool block carries a diameter (C and a number).
ImportKind SecondChanceExcellon(std::string_view text, YieldClock& clock);
// HPGL: a device escape (ESC) in the text, IN the only command that failed its follow test, and
// one of PU, PD, PA or PR passed it.
ImportKind SecondChanceHpgl(std::string_view text, YieldClock& clock);

ImportKind SecondChanceGerber(std::string_view text);
ImportKind SecondChanceExcellon(std::string_view text);
ImportKind SecondChanceHpgl(std::string_view text);

// The four tests in their fixed order, then the second looks in the same order; the first kind
// found wins. An empty text is Unknown.
ImportKind recogniseText(std::string_view text, YieldClock& clock);

// Why a file has no kind.
enum class Refusal {
  None,          // it has one
  Unreadable,    // it could not be read; the file layer has said why
  Empty,         // it holds nothing
  Unrecognised,  // its text is of no kind the viewer reads
};

// Reads files whole and recognises them. Messages of failed reads come from the file layer.
class FileRecogniser {
public:
  FileRecogniser(FileLayer& files, const SystemServices& services)
      : files_(files), services_(services) {}

  // The main window's message line, told the file's name and "Processing" before a read.
  std::function<void(const std::string&)> editMsgLine;
  // Hands control to the event loop during long walks (the component passes one that processes
  // pending events; tests pass none).
  std::function<void()> yield;
  // GerberFormat's Unit when the caller has one: an RS-274-X file sets it to inch (0).
  int32_t* gerberUnit = nullptr;

  // Reads the whole file, bytes as they stand (NULs and line ends included). A file that cannot
  // be opened or read gives false, an empty text and the file layer's read message.
  bool LoadWholeFile(const std::string& path, std::string& text);

  // The kind of the file by its text; Unknown for an unreadable or unrecognised file, with the
  // reason in refusal.
  ImportKind RecogniseFile(const std::string& path);
  Refusal refusal = Refusal::None;

private:
  // Reads the file; with mayRefuseEarly a file of more than four megabytes whose first four show
  // the marks of no kind is not read further (refusedEarly_, an empty text and true).
  bool load(const std::string& path, std::string& text, bool mayRefuseEarly);

  FileLayer& files_;
  const SystemServices& services_;
  bool refusedEarly_ = false;
};

}  // namespace tvx
