// Plotter files in HPGL drawn into a layer: a tokeniser that cuts the text into two-letter
// commands with numeric arguments, and the plotter's state (scale, pen, position, mode) that the
// commands change and from which lines, arcs, circles and closed outlines are written.
//
// The text is walked twice: walk 0 only carries the state to its end (a file that does not open
// with "IN" starts walk 1 where walk 0 ended), walk 1 writes. Pen widths start afresh with each
// walk. Device-control escapes (ESC "." ... ":") and the text of labels are passed over.
//
// As current plotter drivers write their files: "PW" widths are millimetres unless "WU1" makes
// them relative, "PW" with a width alone sets every pen, "SC" maps the user's minimum onto P1,
// the filled forms ("RA", "RR", "WG") are written filled, polygons built in polygon mode
// ("PM") are written filled by "FP" and as edges by "EP", and encoded polylines ("PE") are
// drawn. Commands are read case-blind; the text keeps its case for the encoded polylines. The
// text of a label is no command: it is written as vector text at the pen, in the size of "SI"
// and the direction of "DI", and the pen moves to its end.
#pragma once

#include "import/gerber/OutlineArcs.h"
#include "kernel/KernelTypes.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tvx {

class Store;
struct LayerRecord;
struct LayerFileRecord;

// Store units per millimetre.
inline constexpr double HpglUnitsPerMm = StoreUnitsPerMm;
// Millimetres per plotter unit.
inline constexpr double HpglPlotterUnit = 0.025;

struct HpglState {
  int32_t Relative = 0;  // 0 absolute, 1 relative coordinates
  int32_t CommandIndex = 0;
  std::string Command;
  int32_t PenDown = 0;
  double Rotation = 0;  // degrees
  double P1X = 0, P1Y = 0, P2X = 0, P2Y = 0;
  double ScaleX = HpglPlotterUnit;  // millimetres per file unit
  double ScaleY = HpglPlotterUnit;
  int32_t LineType = 0;
  int32_t PenNumber = 0;
  int32_t PenWidth = 1;  // store units
  double CurX = 0, CurY = 0;
  double NextX = 0, NextY = 0;
  double MidX = 0, MidY = 0;
  double CentreX = 0, CentreY = 0;
  double Radius = 0;
  double StartAngle = 0, SweepAngle = 0;  // degrees
  double WidthUnit = 1.0;                 // millimetres per unit of "PW"
  bool RelativeWidths = false;            // "WU1": widths in hundredths of the P1-P2 diagonal
  std::vector<int32_t> PenTable{1};       // width per pen number, store units
  int32_t EveryPenWidth = 1;        // what "PW" with a width alone gave the pens beyond the table
  double OriginX = 0, OriginY = 0;  // where "SC" puts the user's minimum, store units
  // The arguments of the command in hand, from index 1; index 0 takes what comes before any
  // separator.
  std::vector<std::string> Args;
  size_t ArgCount = 0;     // Args in use, index 0 included
  char LabelEnd = '\x03';  // what ends the text of a label
  // Labels: the characters' width and height in centimetres ("SI"), their direction ("DI").
  double CharWidth = 0.187, CharHeight = 0.269;
  double DirectionRun = 1, DirectionRise = 0;
  // Polygon mode ("PM0" to "PM2"): moves build sub-polygons instead of drawing; each holds the
  // zero offset at index 0. The pen goes back to where the mode began when it ends.
  bool PolygonMode = false;
  std::vector<OutlinePoints> Polygon;
  double PolygonStartX = 0, PolygonStartY = 0;
};

// The elements an import wrote, by kind.
struct HpglCounts {
  int32_t lines = 0, arcs = 0, circles = 0, outlines = 0, labels = 0;
  bool operator==(const HpglCounts&) const = default;
};

class HpglInterpreter {
public:
  // Elements go into symbol in colour.
  HpglInterpreter(Store& store, SymbolId symbol, uint8_t colour);

  // Both walks over text (lines trimmed and joined, in their case).
  void run(std::string_view text);

  HpglState state;
  HpglCounts counts;
  // 1 when the store refused an element; the import went on without it.
  int32_t status = 0;
  // Items that the outlines came to.
  int64_t outlinePieces = 0;

  // The command in hand, carried out (ExecuteHpglCommand).
  void execute(int walk);
  // NextX, NextY from two arguments: scaled, turned by Rotation, relative to the pen or not.
  void toPoint(std::string_view argX, std::string_view argY);
  void toPointValues(double valueX, double valueY);
  double toLength(std::string_view arg) const;

private:
  void walk(std::string_view text, int walkNumber);
  size_t skipEscape(std::string_view text, size_t at) const;
  // "LB": the text from at to its terminator, written in walk 1; the position behind it.
  size_t label(std::string_view text, size_t at, int walkNumber);
  // "PE": the encoded pairs from at to the ";", drawn as they are read; the position behind.
  size_t encodedPolyline(std::string_view text, size_t at, int walkNumber);
  void selectPen(int32_t pen);
  std::string_view arg(size_t index) const;
  size_t argumentCount() const { return state.ArgCount == 0 ? 0 : state.ArgCount - 1; }
  void pairs(int walkNumber, bool draw);
  void arc(int walkNumber, int32_t relative);
  void rectangle(int walkNumber, int32_t relative, bool filled);
  void wedge(int walkNumber, bool filled);
  void line(double x0, double y0, double x1, double y1);
  void write(ItemRecord record);
  void writeOutline(const std::vector<std::array<double, 3>>& points, bool filled);
  void writeOutlinePoints(const OutlinePoints& outline, bool filled);
  // A point of an outline in store units; nothing when it lies beyond the store's reach. An arc's
  // middle takes the centre and radius in hand.
  std::optional<OutlinePoint> outlinePoint(int32_t kind, double x, double y) const;
  // Polygon mode: "PM" with its argument, a move to Next (drawn or not), an arc from the pen
  // about the centre in hand, and "FP"/"EP".
  void polygonMode(int32_t step);
  void polygonMove(bool down);
  void polygonArc(double startAngle, double sweep);
  void closeSubPolygon();
  void writePolygon(int walkNumber, bool filled);
  // Store units of a "PW" width.
  double penWidth(double value) const;
  ItemRecord element(int32_t type) const;

  Store& store_;
  SymbolId symbol_;
  uint8_t colour_;
};

// The plotter text of a file record into its layer, in the file's colour. status is left as it
// is: a fault skips its statement, a refused element is dropped, and the import goes on.
void ImportHpgl(int32_t& status, std::string_view text, Store& store, const LayerRecord& layer,
                const LayerFileRecord& file, HpglCounts* counts = nullptr);

}  // namespace tvx
