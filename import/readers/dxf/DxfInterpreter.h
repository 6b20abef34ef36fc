// A DXF drawing's records drawn into one layer: the header's extents and unit, blocks and their
// inserts, and each entity through the geometry of DxfGeometry.h. The drawing's own layers,
// colours and line types are not used: every element goes into the layer in the file's colour.
//
// As current CAD tools write their files: entity angles run counter-clockwise from X whatever
// the header's display settings say; a 2D entity seen from below (extrusion 0, 0, -1) is
// mirrored; a block is scaled, turned and moved with its base point onto the insertion point,
// even when it is defined behind its insert; text is vector text; dimensions are drawn by their
// blocks; paper space is passed over; splines are evaluated as curves; hatch boundaries are
// outlines, filled for a solid hatch; a 3D face is its outline and a leader its line, seen from
// above.
#pragma once

#include "import/core/DxfRecord.h"
#include "import/gerber/OutlineArcs.h"
#include "import/readers/dxf/DxfFormat.h"
#include "import/readers/dxf/DxfGeometry.h"
#include "kernel/KernelTypes.h"

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace tvx {

class Store;
struct LayerRecord;
struct LayerFileRecord;

struct DxfSettings {
  int32_t Unit = 1;  // 0 inches, anything else millimetres
  double Scale = 1.0;
  bool TrueLineSize = false;
  // Elements that block copies may make; an insert that would pass it is left out and said.
  int64_t CopyBudget = 4000000;
};

// What an import did.
struct DxfReport {
  std::map<std::string, int32_t> read;        // entities drawn, by name
  std::map<std::string, int32_t> passedOver;  // entities of the drawing not drawn, by name
  int32_t removed = 0;          // items 1000 mm or more outside the extents, taken out
  bool headerExtents = false;   // the header gave both extents
  bool outOfRange = false;      // the extents span more than 4400 mm on an axis
  double sizeX = 0, sizeY = 0;  // the extents' size, store units
};

// The header's facts that the import window and the info command show.
struct DxfHeader {
  std::string AcadVer;    // $ACADVER, empty when the header has none
  int32_t InsUnits = -1;  // $INSUNITS, -1 when the header has none
};
DxfHeader dxfHeaderOf(const std::vector<DxfRecord>& records);

// The unit row's value for a drawing's $INSUNITS (0 inches, 1 millimetres); -1 for a unit the
// row does not have.
int32_t dxfUnitOfInsUnits(int32_t insUnits);

class DxfInterpreter {
public:
  DxfInterpreter(Store& store, SymbolId layerSymbol, uint8_t colour, const DxfSettings& settings);

  void run(const std::vector<DxfRecord>& records);

  // 0, or 1 when the store refused an element (the import went on without it).
  int32_t status = 0;
  DxfReport report;

private:
  struct Insert {
    SymbolId target = 0;
    std::string name;
    double x = 0, y = 0, rotation = 0, scaleX = 1, scaleY = 1;
  };
  struct Block {
    SymbolId symbol = 0;
    std::vector<Insert> inserts;  // inserts inside the block, expanded before it is used
    int state = 0;                // 0 not expanded, 1 expanding, 2 expanded
    int64_t size = -1;            // its elements with every insert expanded, once known
    bool sizing = false;
  };

  // Each entity reads the records from at up to the next code 0 and leaves at there. True when a
  // code 0 ended it (the end of the table ends it without the entity's final step).
  template <typename OnGroup> bool groups(size_t& at, OnGroup onGroup) {
    const std::vector<DxfRecord>& r = *records_;
    for (; at < r.size(); ++at) {
      if (r[at].Code == 0)
        return true;
      onGroup(r[at]);
    }
    return false;
  }
  void header(size_t& at);
  void block(size_t& at);
  void insert(size_t& at, bool dimension);
  void line(size_t& at);
  void arc(size_t& at);
  void circle(size_t& at);
  void ellipse(size_t& at);
  void solid(size_t& at, bool trace);
  void lwpolyline(size_t& at);
  void spline(size_t& at);
  void polyline(size_t& at);
  void vertex(size_t& at);
  void seqend(size_t& at);
  void text(size_t& at, bool mtext);
  void hatch(size_t& at);
  void face(size_t& at);
  void leader(size_t& at);

  // The groups that arcs and circles share: centre, radius, width, paper space, plane.
  struct RoundShape {
    double cx = 0, cy = 0, cz = 0, radius = 0;
    int32_t width = 1;
    bool paper = false;
    DxfNormal normal;
  };
  bool roundGroup(const DxfRecord& g, RoundShape& shape) const;
  // An entity read to its end and not in paper space is drawn; paper space is counted.
  bool drawn(bool ended, bool paper, const std::string& name);

  void expandInserts();
  // The elements a block comes to with its inserts expanded.
  int64_t expandedSize(Block& block, int depth);
  // One insert: its block expanded first, then copied into the insert's target.
  void insertBlock(const Insert& insert, int depth);
  void expandBlock(Block& block, int depth);
  void copyBlock(const Insert& insert, const Block& block);
  void removeFarItems();

  double length(double value) const { return value * scale_ * unit_; }
  // A coordinate of the drawing in store units; a block's base point lands on the insertion point.
  double x(double value) const { return length(value) - baseX_; }
  double y(double value) const { return length(value) - baseY_; }
  // A point of an entity's plane (store units) seen from above, the base point taken off.
  std::array<double, 2> world(const DxfPlane& plane, double x, double y, double z) const;
  // A chain of points in its plane (store units, bulges resolved) onto the drawing: moved with a
  // flat plane (mirrored from below), cut into chords and mapped with a slanted one.
  void place(OutlinePoints& points, const DxfPlane& plane, double elevation) const;
  int32_t lineSize(double value) const;
  ItemRecord element(int32_t type, int32_t attributes) const;
  void write(const ItemRecord& record, const std::string& name);
  void writeOutline(const ItemRecord& templ, const OutlinePoints& points, const std::string& name);
  void finishChain(OutlinePoints& points, bool closed, const DxfPlane& plane, double elevation,
                   const ItemRecord& templ, int32_t tolerance, const std::string& name);
  // An arc or a circle of a slanted plane: an elliptic chain.
  void writeSlantedArc(const DxfPlane& plane, double cx, double cy, double cz, double radius,
                       double start, double end, int32_t width, const std::string& name);

  Store& store_;
  SymbolId layer_;
  uint8_t colour_;
  double unit_;
  double scale_;
  int32_t widthFlag_;
  uint8_t solidStyle_;
  SymbolId target_;
  double baseX_ = 0, baseY_ = 0;
  double minX_ = 0, minY_ = 0, maxX_ = 0, maxY_ = 0;
  bool haveMin_ = false, haveMax_ = false;
  std::map<std::string, Block> blocks_;
  std::map<SymbolId, std::string> blockOfSymbol_;
  std::vector<Insert> inserts_;  // inserts into the layer, in file order
  int64_t copied_ = 0;           // items that block copies have made
  int64_t copyBudget_;
  std::string section_;  // the section in hand, for the report only
  const std::vector<DxfRecord>* records_ = nullptr;
  // The polyline that VERTEX and SEQEND build.
  OutlinePoints polyline_;
  bool polylineOpen_ = false, polylineClosed_ = false;
  bool polylinePaper_ = false;
  DxfPlane polylinePlane_;
  double polylineElevation_ = 0;
  int32_t polylineWidth_ = 1;
  // An arc's angles stay from the arc before when an arc has none.
  double arcStart_ = 0, arcEnd_ = 0;
};

// The drawing's records into the layer, in the file's colour and with its true line sizes, by
// the user's unit and scale. status is 0, or 1 when the store refused an element.
void ImportDxf(int32_t& status, const std::vector<DxfRecord>& records, Store& store,
               const LayerRecord& layer, const LayerFileRecord& file, const DxfFormat& format,
               DxfReport* report = nullptr);

}  // namespace tvx
