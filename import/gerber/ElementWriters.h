// The element writers of the Gerber drawing pass: each turns one piece of a flash or one draw into
// an item of the layer's symbol, honouring the file's element filters, its exclusion list and
// clear polarity.
#pragma once

#include "import/core/PlaceHole.h"
#include "import/gerber/ApertureLabel.h"
#include "import/gerber/ApertureLists.h"
#include "import/gerber/OutlineArcs.h"
#include "kernel/PlaneGeometry.h"
#include "store/ColourSlots.h"
#include "store/LayerRecord.h"

#include <cstdint>
#include <vector>

namespace tvx {

class Store;

// Attribute words handed to the writers.
namespace flashword {
inline constexpr int32_t Drawn = 0;
inline constexpr int32_t Single = attr::Flashed;                    // a one-piece flash
inline constexpr int32_t Piece = attr::Flashed + attr::FlashPiece;  // piece of a composite flash
}  // namespace flashword

// Force words: a piece of a flash passes them so that a filter meant for drawn lines or arcs does
// not drop it.
namespace force {
inline constexpr int32_t None = 0;
inline constexpr int32_t Stroke = filter::AF_ILN;
inline constexpr int32_t Disc = filter::AF_IPA;
}  // namespace force

// How an aperture is known to the writers: its list and its size there.
enum ApertureKind : int32_t {
  RoundAperture = 0,    // Size is the diameter (RoundPadList, or DrawList for a draw)
  SquareAperture = 1,   // Size is the side
  SpecialAperture = 2,  // Size is the number (from 1) of its first row in PrimitiveList
};

// Writes into the symbol of one layer for one file record. The file's ClearPolarity is read at
// each element, so the drawing pass and a macro's clear primitives switch it while writing. The
// exclusion list is read when the writer is made.
class ElementWriter {
public:
  ElementWriter(Store& store, const std::vector<PrimitiveRow>& primitives, LayerRecord& layer,
                LayerFileRecord& file, int32_t clearColour = slotCode(colourslot::ClearColour));

  bool excluded(int32_t dCode) { return exclusions_.excluded(dCode); }
  // The colour of the next element: the file's, or the clear colour under clear polarity.
  uint8_t colour() const;

  // A circle; LineWidth and Style as given (Style 0 with a LineWidth is a ring).
  void AddDisc(double x, double y, double radius, int32_t lineWidth, int32_t style, int32_t force,
               int32_t attributes, int32_t dCode);
  // A rectangle with its lower left corner at (x, y), rotated by angle (thousandths of a degree)
  // about that corner.
  void AddBox(double x, double y, double width, double height, int32_t angle, int32_t style,
              int32_t lineWidth, int32_t attributes, int32_t dCode);
  // The painted hole of a special aperture: a disc of diameter holeX, or a holeX by holeY box,
  // centred on the point, always in the clear colour.
  void AddHole(double x, double y, double holeX, double holeY, int32_t dCode);
  // One draw with the pen of an aperture: a round pen writes a line, a square pen a filled box
  // that covers the stroke with square ends.
  void AddStroke(double x1, double y1, double x2, double y2, int32_t size, int32_t listKind,
                 int32_t dCode, int32_t force, int32_t attributes);
  // A counter-clockwise arc of radius about the centre from the direction of start to that of end,
  // drawn with a pen of width size.
  void AddArc(Point centre, int32_t radius, Point start, Point end, int32_t size, int32_t dCode,
              int32_t force);
  // A closed outline (points from 1, offset in point 0) as a run of polygon sides.
  void AddOutlinePolygon(const OutlinePoints& points, int32_t link, int32_t attributes);
  // The hole or pad position of a flash.
  void placeHole(double x, double y, int32_t dCode);

  const std::vector<PrimitiveRow>& primitives() const { return primitives_; }
  LayerFileRecord& file() { return file_; }

private:
  bool passes(int32_t bit, int32_t force) const { return ((file_.FilterMask | force) & bit) != 0; }
  void write(ItemRecord& record, int32_t dCode, int32_t attributes);

  Store& store_;
  const std::vector<PrimitiveRow>& primitives_;
  LayerRecord& layer_;
  LayerFileRecord& file_;
  int32_t clearColour_;
  ExclusionCache exclusions_;
  // The points on which the layer's pads stand: a flash on one of them places no second pad,
  // found without a cover search of the layer.
  PlacedPoints placed_;
};

}  // namespace tvx
