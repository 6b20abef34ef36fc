#include "import/readers/dxf/DxfInterpreter.h"

#include "common/WholeNumber.h"
#include "import/gerber/OutlineArcs.h"
#include "import/readers/dxf/DxfGeometry.h"
#include "kernel/PlaneGeometry.h"
#include "kernel/Store.h"
#include "store/AddElement.h"
#include "store/LayerRecord.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace tvx {

namespace {

constexpr double OutOfRangeSize = 440000000;  // 4400 mm
constexpr double FarMargin = 100000000;       // 1000 mm
constexpr int MaxNesting = 64;                // blocks inside blocks, deeper ones are not copied
constexpr int32_t RemovalMark = attr::Selected;

bool fits(const OutlinePoints& points) {
  return std::all_of(points.begin(), points.end(), [](const OutlinePoint& p) {
    return roundToInt32(p.X).has_value() && roundToInt32(p.Y).has_value();
  });
}

}  // namespace

DxfHeader dxfHeaderOf(const std::vector<DxfRecord>& records) {
  DxfHeader h;
  for (size_t i = 0; i + 1 < records.size(); ++i) {
    const DxfRecord& r = records[i];
    if (r.Code == 0 && r.TextValue == "ENDSEC")
      break;  // the header is the first section
    if (r.Code != 9)
      continue;
    if (r.TextValue == "$ACADVER" && records[i + 1].Code == 1)
      h.AcadVer = records[i + 1].TextValue;
    else if (r.TextValue == "$INSUNITS" && records[i + 1].Code == 70)
      h.InsUnits = records[i + 1].IntValue;
  }
  return h;
}

int32_t dxfUnitOfInsUnits(int32_t insUnits) {
  switch (insUnits) {
  case 1:
    return 0;  // inches
  case 4:
    return 1;  // millimetres
  default:
    return -1;
  }
}

DxfInterpreter::DxfInterpreter(Store& store, SymbolId layerSymbol, uint8_t colour,
                               const DxfSettings& settings)
    : store_(store), layer_(layerSymbol), colour_(colour),
      unit_(double(StoreUnitsPerMm) * (settings.Unit == 0 ? 25.4 : 1.0)),
      scale_(settings.Scale > 0 ? settings.Scale : 1.0), widthFlag_(settings.TrueLineSize ? 1 : 0),
      solidStyle_(settings.TrueLineSize ? StyleFilled : StyleOpen), target_(layerSymbol),
      copyBudget_(std::max<int64_t>(0, settings.CopyBudget)) {}

std::array<double, 2> DxfInterpreter::world(const DxfPlane& plane, double px, double py,
                                            double pz) const {
  const std::array<double, 2> w = plane.map(px, py, pz);
  return {w[0] - baseX_, w[1] - baseY_};
}

void DxfInterpreter::place(OutlinePoints& points, const DxfPlane& plane, double elevation) const {
  if (!plane.flat())
    ChordArcs(points);
  for (size_t i = 1; i < points.size(); ++i) {
    OutlinePoint& p = points[i];
    const std::array<double, 2> w = world(plane, p.X, p.Y, elevation);
    p.X = std::nearbyint(w[0]);
    p.Y = std::nearbyint(w[1]);
    if (p.Kind == outlinepoint::ArcMiddle && p.Radius != 0) {
      const std::array<double, 2> c = world(plane, p.CentreX, p.CentreY, elevation);
      const auto cx = roundToInt32(c[0]), cy = roundToInt32(c[1]);
      if (cx && cy) {
        p.CentreX = *cx;
        p.CentreY = *cy;
      } else {
        p.Kind = outlinepoint::Straight;
      }
    }
  }
}

int32_t DxfInterpreter::lineSize(double value) const {
  return roundToInt32(length(value) * widthFlag_ + 1).value_or(1);
}

ItemRecord DxfInterpreter::element(int32_t type, int32_t attributes) const {
  ItemRecord r{};
  r.Type = type;
  r.Attributes = attributes;
  r.Colour = colour_;
  r.LineWidth = 1;
  r.Style = StyleOpen;
  return r;
}

void DxfInterpreter::write(const ItemRecord& record, const std::string& name) {
  int32_t refused = 0, index = 0;
  AddElement(store_, refused, PlaceSymbolItems, target_, record, record.Text, index, std::string());
  status = refused;
  ++report.read[name];
}

void DxfInterpreter::writeOutline(const ItemRecord& templ, const OutlinePoints& points,
                                  const std::string& name) {
  if (points.size() < 3 || !fits(points))
    return;
  int32_t refused = 0, first = 0, last = 0;
  WriteOutline(refused, store_, target_, templ, points, first, last);
  status = refused;
  ++report.read[name];
}

void DxfInterpreter::run(const std::vector<DxfRecord>& records) {
  records_ = &records;
  status = 0;
  size_t at = 0;
  while (at < records.size()) {
    const DxfRecord& r = records[at];
    if (r.Code == 9) {
      header(at);
      continue;
    }
    if (r.Code == 2 && (r.TextValue == "ENTITIES" || r.TextValue == "BLOCKS")) {
      section_ = r.TextValue;
      if (r.TextValue == "ENTITIES") {
        target_ = layer_;
        baseX_ = baseY_ = 0;
      }
      ++at;
      continue;
    }
    if (r.Code != 0) {
      ++at;
      continue;
    }
    const std::string& name = r.TextValue;
    ++at;
    if (name == "BLOCK")
      block(at);
    else if (name == "INSERT")
      insert(at, false);
    else if (name == "DIMENSION")
      insert(at, true);
    else if (name == "LINE")
      line(at);
    else if (name == "ARC")
      arc(at);
    else if (name == "CIRCLE")
      circle(at);
    else if (name == "ELLIPSE")
      ellipse(at);
    else if (name == "SOLID" || name == "TRACE")
      solid(at, name == "TRACE");
    else if (name == "LWPOLYLINE")
      lwpolyline(at);
    else if (name == "SPLINE")
      spline(at);
    else if (name == "POLYLINE")
      polyline(at);
    else if (name == "VERTEX")
      vertex(at);
    else if (name == "SEQEND")
      seqend(at);
    else if (name == "TEXT" || name == "MTEXT")
      text(at, name == "MTEXT");
    else if (name == "HATCH")
      hatch(at);
    else if (name == "3DFACE")
      face(at);
    else if (name == "LEADER")
      leader(at);
    else if (name == "SECTION" || name == "ENDSEC" || name == "EOF")
      section_.clear();
    else if ((section_ == "ENTITIES" || section_ == "BLOCKS") && name != "ENDBLK")
      ++report.passedOver[name];
  }
  expandInserts();
  for (const auto& [name, b] : blocks_)
    store_.OM_Delete(store_.DB_SymbMap(), b.symbol);
  removeFarItems();
  records_ = nullptr;
}

void DxfInterpreter::header(size_t& at) {
  const std::vector<DxfRecord>& r = *records_;
  const std::string& name = r[at].TextValue;
  ++at;
  const bool min = name == "$EXTMIN", max = name == "$EXTMAX";
  if (!min && !max)
    return;
  (min ? haveMin_ : haveMax_) = true;  // a coordinate that is missing stays 0
  // Group 10 and then group 20 at once; the point is in store units without the base point.
  if (at < r.size() && r[at].Code == 10) {
    (min ? minX_ : maxX_) = length(r[at].RealValue);
    ++at;
    if (at < r.size() && r[at].Code == 20) {
      (min ? minY_ : maxY_) = length(r[at].RealValue);
      ++at;
    }
  }
}

void DxfInterpreter::block(size_t& at) {
  baseX_ = baseY_ = 0;
  bool created = false;
  groups(at, [&](const DxfRecord& g) {
    if (g.Code == 2 && !created) {
      const SymbolId symbol = store_.S_CreateSymbol(0, g.TextValue);
      if (symbol == 0)
        return;  // the block's entities go where the entities before went
      created = true;
      target_ = symbol;
      // A later definition of a name stands; the earlier symbol goes at the end all the same.
      Block& b = blocks_[g.TextValue];
      if (b.symbol != 0) {
        blockOfSymbol_[b.symbol] = "\x01" + std::to_string(b.symbol);
        blocks_[blockOfSymbol_[b.symbol]] = b;
      }
      b = Block{symbol, {}, 0};
      blockOfSymbol_[symbol] = g.TextValue;
    } else if (g.Code == 10) {
      baseX_ = length(g.RealValue);
    } else if (g.Code == 20) {
      baseY_ = length(g.RealValue);
    }
  });
}

void DxfInterpreter::insert(size_t& at, bool dimension) {
  Insert ins;
  ins.target = target_;
  double px = 0, py = 0, pz = 0, nx = 0, ny = 0, nz = 1;
  bool paper = false;
  const bool ended = groups(at, [&](const DxfRecord& g) {
    switch (g.Code) {
    case 2:
      ins.name = g.TextValue;
      break;
    case 10:
      px = g.RealValue;
      break;
    case 20:
      py = g.RealValue;
      break;
    case 30:
      pz = g.RealValue;
      break;
    case 41:
      ins.scaleX = g.RealValue;
      break;
    case 42:
      ins.scaleY = g.RealValue;
      break;
    case 50:
      ins.rotation = g.RealValue;
      break;
    case 67:
      paper = g.IntValue == 1;
      break;
    case 210:
      nx = g.RealValue;
      break;
    case 220:
      ny = g.RealValue;
      break;
    case 230:
      nz = g.RealValue;
      break;
    default:
      break;
    }
  });
  const std::string name = dimension ? "DIMENSION" : "INSERT";
  if (!ended || paper || ins.name.empty()) {
    if (paper)
      ++report.passedOver[name];
    return;
  }
  if (dimension) {
    // A dimension's block holds the drawing of it where it stands.
    ins.x = -baseX_;
    ins.y = -baseY_;
    ins.scaleX = ins.scaleY = 1;
    ins.rotation = 0;
  } else {
    const DxfPlane plane = DxfPlane::ofNormal(nx, ny, nz);
    const std::array<double, 2> w = world(plane, length(px), length(py), length(pz));
    ins.x = w[0];
    ins.y = w[1];
    // The block's X direction seen from above; a plane seen from below mirrors it.
    const double a = ins.rotation * RadiansPerDegree;
    const std::array<double, 2> d = plane.map(std::cos(a), std::sin(a), 0);
    const std::array<double, 2> side = plane.map(-std::sin(a), std::cos(a), 0);
    ins.rotation = AngleOf(d[0], d[1]);
    if (d[0] * side[1] - d[1] * side[0] < 0) {
      ins.scaleY = -ins.scaleY;
    }
  }
  ++report.read[name];
  const auto owner = target_ == layer_ ? blocks_.end() : blocks_.find(blockOfSymbol_[target_]);
  if (owner != blocks_.end())
    owner->second.inserts.push_back(ins);
  else
    inserts_.push_back(ins);
}

int64_t DxfInterpreter::expandedSize(Block& block, int depth) {
  if (block.size >= 0)
    return block.size;
  const int64_t own = store_.OA_GetCount(store_.S_SymbolItemArray(block.symbol));
  if (block.sizing || depth > MaxNesting)
    return own;  // a block inside itself adds what it holds so far
  block.sizing = true;
  int64_t total = own;
  for (const Insert& ins : block.inserts)
    if (const auto found = blocks_.find(ins.name); found != blocks_.end())
      total = std::min(total + expandedSize(found->second, depth + 1), copyBudget_ * 4);
  block.sizing = false;
  return block.size = total;
}

void DxfInterpreter::insertBlock(const Insert& ins, int depth) {
  const auto found = blocks_.find(ins.name);
  if (found == blocks_.end())
    return;  // a name no block has: nothing
  Block& block = found->second;
  // Blocks that nest into more elements than the budget left are not copied: said, not drawn.
  const int64_t size = expandedSize(block, depth);
  if (copied_ + 2 * size > copyBudget_) {
    ++report.passedOver["INSERT (too many elements)"];
    return;
  }
  expandBlock(block, depth);
  copyBlock(ins, block);
}

void DxfInterpreter::expandInserts() {
  for (const Insert& ins : inserts_)
    insertBlock(ins, 0);
}

void DxfInterpreter::expandBlock(Block& block, int depth) {
  if (block.state != 0 || depth > MaxNesting)
    return;  // done, or in hand: an insert of a block into itself copies what it has so far
  block.state = 1;
  for (const Insert& ins : block.inserts)
    insertBlock(ins, depth + 1);
  block.state = 2;
}

void DxfInterpreter::copyBlock(const Insert& ins, const Block& block) {
  if (ins.scaleX == 0 || ins.scaleY == 0 || !std::isfinite(ins.scaleX) ||
      !std::isfinite(ins.scaleY) || !std::isfinite(ins.rotation) || !std::isfinite(ins.x) ||
      !std::isfinite(ins.y))
    return;  // gives up the copy
  const double a = ins.rotation * RadiansPerDegree;
  const double c = std::cos(a), s = std::sin(a);
  const double sx = ins.scaleX, sy = ins.scaleY;
  // Scaled, turned, then moved onto the insertion point.
  const auto place = [&](double px, double py, double& outX, double& outY) {
    const double qx = px * sx, qy = py * sy;
    outX = qx * c - qy * s + ins.x;
    outY = qx * s + qy * c + ins.y;
  };
  const bool flipped = (sx < 0) != (sy < 0);
  const double radiusScale = std::abs(sx);
  const int32_t count = store_.OA_GetCount(store_.S_SymbolItemArray(block.symbol));
  const SymbolId kept = target_;
  target_ = ins.target;
  for (int32_t i = 1; i <= count && copied_ < copyBudget_; ++i) {
    ItemRecord r{};
    if (store_.I_ReadItem(store_.S_SymbolItem(block.symbol, i), r) == 0)
      continue;
    double x0 = 0, y0 = 0;
    place(r.X, r.Y, x0, y0);
    double x1 = x0, y1 = y0;
    double width = r.Width, height = r.Height, angle = r.Angle;
    double sweep = r.Sweep;
    switch (r.Type) {
    case ItemLine:
      place(double(r.X) + r.Width, double(r.Y) + r.Height, x1, y1);
      width = x1 - x0;
      height = y1 - y0;
      break;
    case ItemCircle:
      width = r.Width * radiusScale;
      break;
    case ItemArc: {
      width = r.Width * radiusScale;
      // The start's direction goes through the scale's signs and the turn.
      const double start = r.Height / 1000.0 * RadiansPerDegree;
      const double dx = std::cos(start) * (sx < 0 ? -1 : 1),
                   dy = std::sin(start) * (sy < 0 ? -1 : 1);
      height = AngleOf(dx * c - dy * s, dx * s + dy * c) * 1000;
      sweep = flipped ? -sweep : sweep;
      break;
    }
    case ItemVectorText:
    case ItemTrueTypeText:
      width = r.Width * std::abs(sy);
      height = r.Height * std::abs(sx);
      angle = r.Angle + ins.rotation * 1000;
      break;
    default:
      break;
    }
    const auto wx = roundToInt32(x0), wy = roundToInt32(y0), ww = roundToInt32(width),
               wh = roundToInt32(height), wa = roundToInt32(angle), ws = roundToInt32(sweep);
    if (!wx || !wy || !ww || !wh || !wa || !ws)
      continue;
    // Its far end, or its whole circle, must lie within the store's reach too.
    const bool round = r.Type == ItemCircle || r.Type == ItemArc;
    const double farX = round ? std::abs(x0) + std::abs(width) : x0 + width;
    const double farY = round ? std::abs(y0) + std::abs(width) : y0 + height;
    if (!roundToInt32(farX) || !roundToInt32(farY))
      continue;
    r.X = *wx;
    r.Y = *wy;
    r.Width = *ww;
    r.Height = *wh;
    r.Angle = *wa;
    r.Sweep = *ws;
    int32_t refused = 0, index = 0;
    AddElement(store_, refused, PlaceSymbolItems, target_, r, r.Text, index, std::string());
    status = refused;
    ++copied_;
  }
  target_ = kept;
}

void DxfInterpreter::removeFarItems() {
  const ArrayHandle items = store_.S_SymbolItemArray(layer_);
  if (haveMin_ && haveMax_) {
    report.headerExtents = true;
  } else {
    // Without extents in the header the items frame the drawing.
    FrameRect frame;
    store_.S_FrameSymbolItems(layer_, -1, frame);
    minX_ = frame.MinX;
    minY_ = frame.MinY;
    maxX_ = frame.MaxX;
    maxY_ = frame.MaxY;
  }
  if (minX_ > maxX_)
    std::swap(minX_, maxX_);
  if (minY_ > maxY_)
    std::swap(minY_, maxY_);
  report.sizeX = maxX_ - minX_;
  report.sizeY = maxY_ - minY_;
  if (report.sizeX > OutOfRangeSize || report.sizeY > OutOfRangeSize) {
    report.outOfRange = true;
    FrameRect frame;
    store_.S_FrameSymbolItems(layer_, -1, frame);
    minX_ = frame.MinX;
    minY_ = frame.MinY;
    maxX_ = minX_ + OutOfRangeSize;
    maxY_ = minY_ + OutOfRangeSize;
  }
  const double loX = minX_ - FarMargin, loY = minY_ - FarMargin;
  const double hiX = maxX_ + FarMargin, hiY = maxY_ + FarMargin;
  store_.OA_MaskAll(items, 0, RemovalMark);
  const int32_t count = store_.OA_GetCount(items);
  int32_t far = 0;
  for (int32_t i = 1; i <= count; ++i) {
    const ObjectHandle item = store_.S_SymbolItem(layer_, i);
    FrameRect f;
    store_.I_FrameItem(item, f);
    if (f.MinX > loX && f.MinY > loY && f.MaxX < hiX && f.MaxY < hiY)
      continue;
    store_.O_Mask(item, RemovalMark, RemovalMark);
    ++far;
  }
  report.removed = far > 0 ? store_.OA_DeleteMarked(items, RemovalMark) : 0;
}

void ImportDxf(int32_t& status, const std::vector<DxfRecord>& records, Store& store,
               const LayerRecord& layer, const LayerFileRecord& file, const DxfFormat& format,
               DxfReport* report) {
  DxfSettings s;
  s.Unit = format.DxfUnit;
  s.Scale = format.DxfScale;
  s.TrueLineSize = file.TrueLineSize;
  DxfInterpreter interpreter(store, layer.SymbolHandle, uint8_t(file.Colour), s);
  interpreter.run(records);
  status = interpreter.status;
  if (report)
    *report = interpreter.report;
}

}  // namespace tvx
