#include "viewer/ElementEditor.h"

#include "common/CallHook.h"
#include "kernel/Graphics.h"
#include "kernel/ItemGeometry.h"
#include "kernel/Store.h"
#include "platform/SystemServices.h"
#include "store/ElementRuns.h"
#include "store/LayerSymbol.h"
#include "store/Layers.h"
#include "viewer/DisplayUnits.h"
#include "viewer/Redraw.h"
#include "viewer/ViewState.h"

#include <cmath>
#include <numbers>

namespace tvx {

namespace {

// The two top bits of a layer mask: the drill layer and the sign.
constexpr int32_t WithoutTopBits = 0x3FFFFFFF;

VertexRow vertexOf(const ItemFields& side) {
  VertexRow row;
  row.LineWidth = side.LineWidth;
  row.Colour = side.Colour;
  if (side.Type != ItemArc) {
    row.X = side.X;
    row.Y = side.Y;
    return row;
  }
  const double start = side.Height / 1000.0 * std::numbers::pi / 180.0;
  row.Kind = ItemArc;
  row.CentreX = side.X;
  row.CentreY = side.Y;
  row.Radius = side.Width;
  row.Start = side.Height;
  row.Sweep = side.Sweep;
  row.X = int32_t(std::lround(side.X + side.Width * std::cos(start)));
  row.Y = int32_t(std::lround(side.Y + side.Width * std::sin(start)));
  return row;
}

bool frameInBox(const FrameRect& frame, const FrameRect& box) {
  return Graphics::DB_CoverRectangle(frame.MinX, frame.MinY, 1, box.MinX, box.MinY, box.MaxX,
                                     box.MaxY) &&
         Graphics::DB_CoverRectangle(frame.MaxX, frame.MaxY, 1, box.MinX, box.MinY, box.MaxX,
                                     box.MaxY);
}

// Every position of an array, for the walks when the box holds all of it.
std::vector<int32_t> allPositions(const Store& store, ArrayHandle array) {
  std::vector<int32_t> positions(size_t(std::max(0, store.OA_GetCount(array))));
  for (size_t i = 0; i < positions.size(); ++i)
    positions[i] = int32_t(i + 1);
  return positions;
}

}  // namespace

std::string DcodeName(int32_t code) { return "D" + std::to_string(code) + "*"; }
std::string ToolName(int32_t code) { return "T" + std::to_string(code); }

ElementEditor::ElementEditor(Store& store, SystemServices& services, LayerTables& tables,
                             ViewState& view, ViewRedraw& redraw)
    : store_(store), services_(services), tables_(tables), view_(view), redraw_(redraw) {}

SymbolId ElementEditor::WorkingSymbol() const {
  return tables_.layer(tables_.CurrentLayer).SymbolHandle;
}

std::string ElementEditor::text(const editmsg::Text& message) const {
  return services_.LocalMessage(message.text, message.id);
}

bool ElementEditor::ask(const editmsg::Text& question) const {
  return services_.AskYesNo(text(question), hooks.functionTitle ? hooks.functionTitle() : "");
}

void ElementEditor::ElementClick(int32_t x, int32_t y) {
  switch (hooks.currentKey ? hooks.currentKey() : editkey::Inspect) {
  case editkey::Delete:
    Delete(x, y);
    break;
  case editkey::Align:
    callHook(hooks.startAlignment, x, y);
    break;
  case editkey::Clearance:
    callHook(hooks.startClearance, x, y);
    break;
  default:
    Inspect(x, y);
    break;
  }
}

void ElementEditor::clearHighlight() {
  redraw_.HLDCode = 0;
  redraw_.HLPadstack = 0;
  redraw_.HLDCodeText.clear();
  redraw_.HLPadstackText.clear();
}

void ElementEditor::Inspect(int32_t x, int32_t y) {
  const SymbolId symbol = WorkingSymbol();
  int32_t index = 0, kind = 0;
  if (PickInSymbol(symbol, x, y, index, kind) != 0) {
    clearHighlight();
    redraw_.RedrawScreen();
    return;
  }
  ReadElement(symbol, index, kind);
  DescribeElement();
}

int32_t ElementEditor::PickInSymbol(SymbolId symbol, int32_t x, int32_t y, int32_t& index,
                                    int32_t& kind) const {
  int32_t word = 0;
  store_.L_CoverComponent(0, 0, 0, &word, 0, 0, 0);
  index = store_.OA_Cover(store_.S_SymbolEntryArray(symbol), 1, x, y, view_.PickDistance, 15);
  if (index > 0) {
    kind = ItemPadEntry;
    return 0;
  }
  const ArrayHandle items = store_.S_SymbolItemArray(symbol);
  // Inside a filled polygon (a pour) the element drawn on it is meant, when there is one: a hit
  // by area alone gives way to a later element whose own shape is under the pointer.
  const auto areaHit = [&](int32_t i) {
    const ItemFields* f = store_.itemFields(store_.OA_Object(items, i));
    return f && (f->Attributes & attr::PolygonSide) && f->Style == StyleFilled &&
           !itemCovers(*f, 0, x, y, view_.PickDistance);
  };
  const int32_t first = store_.OA_Cover(items, 1, x, y, view_.PickDistance, 0);
  index = first;
  while (index > 0 && areaHit(index))
    index = store_.OA_Cover(items, index + 1, x, y, view_.PickDistance, 0);
  if (index == 0)
    index = first;
  const ItemFields* fields =
      index > 0 ? store_.itemFields(store_.OA_Object(items, index)) : nullptr;
  if (!fields) {
    index = 0;
    return 1;
  }
  kind = fields->Type;
  return 0;
}

int32_t ElementEditor::ReadElement(SymbolId symbol, int32_t index, int32_t kind) {
  Current = CurrentElement{};
  Current.ElementIndex = index;
  Current.ElementKind = kind;
  ItemRecord& r = Current.Record;
  if (kind == ItemPadEntry) {
    EntryRecord entry;
    if (!store_.S_ReadEntry(symbol, index, entry))
      return 1;
    PadStackRecord stack;
    store_.S_ReadPadStack(store_.OM_Object(store_.S_SymbolPadStackMap(symbol), entry.PadStack),
                          stack);
    r.Type = ItemPadEntry;
    r.Attributes = entry.Attributes;
    r.X = entry.X;
    r.Y = entry.Y;
    r.Link = entry.PadStack;
    r.Angle = entry.Rotation;
    r.Width = stack.HoleDiameter;
    r.Height = stack.HoleKind;
    return 0;
  }
  const ArrayHandle items = store_.S_SymbolItemArray(symbol);
  if (!store_.I_ReadItem(store_.OA_Object(items, index), r))
    return 1;
  if (!(r.Attributes & attr::PolygonSide))
    return 0;
  if (!FindPolygonRun(store_, items, index, Current.FirstSide, Current.LastSide))
    return 1;
  Current.PolygonFlag = attr::PolygonSide;
  for (int32_t i = Current.FirstSide; i <= Current.LastSide; ++i)
    Current.Vertices.push_back(vertexOf(*store_.itemFields(store_.OA_Object(items, i))));
  return 0;
}

std::string ElementEditor::holeText() const {
  const ItemRecord& r = Current.Record;
  std::string hole = text(editmsg::HolesWithDiameter) + " ";
  if (r.Width > 0)
    hole += FormatLength(r.Width, view_.DisplayUnit, services_.DatabaseUnitsPerMm());
  if (r.Height == 0)
    return hole + "[" + text(editmsg::OriginalDcode) + " " + DcodeName(r.Link) + "]";
  return hole + text(editmsg::Tool) + " " + ToolName(r.Link);
}

std::string ElementEditor::elementDescription() const {
  switch (Current.ElementKind) {
  case ItemLine:
    return text(editmsg::Line);
  case ItemTriangle:
    return text(editmsg::Triangle);
  case ItemRectangle:
    return text(editmsg::Rectangle);
  case ItemCircle:
    return text(editmsg::Circle);
  case ItemArc:
    return text(editmsg::Arc);
  case ItemPadEntry:
    return text(editmsg::PadPosition);
  default:
    return {};
  }
}

void ElementEditor::DescribeElement() {
  clearHighlight();
  const ItemRecord& r = Current.Record;
  const LayerRecord& layer = tables_.layer(tables_.CurrentLayer);
  std::string description;
  if (Current.PolygonFlag != 0) {
    redraw_.HLDCode = r.Link;
    if (r.Link < 0)
      redraw_.HLDCodeText = text(editmsg::Polygon);  // its sides light up; no aperture row
    else if (r.Link > 0)
      description = text(editmsg::PolygonMacro);
  } else if (Current.ElementKind == ItemPadEntry && (layer.Mask & DrillLayerMask)) {
    redraw_.HLPadstack = r.Link;
    redraw_.HLPadstackText = holeText();
  } else {
    redraw_.HLDCode = r.Link;
    description = elementDescription();
  }
  if (redraw_.HLDCode > 0 && (layer.Mask & WithoutTopBits) != 0) {
    for (const ApertureRow& row : layer.Apertures)
      if (row.Code == redraw_.HLDCode) {
        redraw_.HLDCodeText = text(editmsg::Dcode) + " " + description + " " + row.Text;
        break;
      }
  }
  redraw_.RedrawScreen();
  // An element that no aperture or tool made: what it is, on the message line.
  if (redraw_.HLDCode == 0 && redraw_.HLPadstack == 0)
    redraw_.EditMsgLine(description + " " + text(editmsg::Completed));
}

void ElementEditor::EraseElement(bool remove, SymbolId symbol, int32_t index, int32_t kind) {
  const bool entry = kind == ItemPadEntry;
  const ArrayHandle array =
      entry ? store_.S_SymbolEntryArray(symbol) : store_.S_SymbolItemArray(symbol);
  store_.O_Mask(store_.OA_Object(array, index), 0, attr::Shown);
  if (remove)
    store_.OA_Delete(array, index);
}

void ElementEditor::ErasePolygon(bool remove, SymbolId symbol, int32_t first, int32_t last) {
  const ArrayHandle items = store_.S_SymbolItemArray(symbol);
  for (int32_t i = first; i <= last; ++i)
    store_.O_Mask(store_.OA_Object(items, i), 0, attr::Shown);
  if (remove)
    for (int32_t i = last; i >= first; --i)
      store_.OA_Delete(items, i);
}

void ElementEditor::DrawElementBack(SymbolId symbol, int32_t index, int32_t kind) {
  const ArrayHandle array =
      kind == ItemPadEntry ? store_.S_SymbolEntryArray(symbol) : store_.S_SymbolItemArray(symbol);
  store_.O_Mask(store_.OA_Object(array, index), attr::Shown, attr::Shown);
}

void ElementEditor::Delete(int32_t x, int32_t y) {
  const SymbolId symbol = WorkingSymbol();
  int32_t index = 0, kind = 0;
  if (PickInSymbol(symbol, x, y, index, kind) != 0) {
    callHook(hooks.startBoxDelete, x, y);
    return;
  }
  ReadElement(symbol, index, kind);
  if (!hooks.confirmAtPointer || !hooks.confirmAtPointer(text(editmsg::DeleteElement)))
    return;
  DoUndo(symbol, undomode::Push);
  if (!(Current.Record.Attributes & (attr::PolygonSide | attr::OpenChain))) {
    EraseElement(true, symbol, index, kind);
    redraw_.RedrawScreen();
    return;
  }
  deletePolygonSide(symbol);
}

void ElementEditor::deletePolygonSide(SymbolId symbol) {
  const ArrayHandle items = store_.S_SymbolItemArray(symbol);
  const int32_t index = Current.ElementIndex;
  int32_t first = 0, last = 0;
  // A broken run, or a text marked as a chain piece, stays; only the undo copy was taken.
  if (!FindPolygonRun(store_, items, index, first, last))
    return;
  if ((Current.Record.Attributes & attr::OpenChain) && hooks.confirmAtPointer &&
      hooks.confirmAtPointer(text(editmsg::DeleteSegment))) {
    // The chain is cut at this side: its neighbours become the ends of what remains.
    if (index == first && index != last)
      store_.O_Mask(store_.OA_Object(items, index + 1), attr::PolygonFirst, attr::PolygonFirst);
    if (index == last && index != first)
      store_.O_Mask(store_.OA_Object(items, index - 1), attr::PolygonLast, attr::PolygonLast);
    if (index != first && index != last) {
      store_.O_Mask(store_.OA_Object(items, index + 1), attr::PolygonFirst, attr::PolygonFirst);
      store_.O_Mask(store_.OA_Object(items, index - 1), attr::PolygonLast, attr::PolygonLast);
    }
    EraseElement(true, symbol, index, Current.ElementKind);
  } else {
    ErasePolygon(true, symbol, first, last);
  }
  redraw_.RedrawScreen();
}

bool ElementEditor::DeleteInBox(SymbolId symbol, const FrameRect& box) {
  callHook(hooks.hourglass, true);
  DoUndo(symbol, undomode::Push);
  const ArrayHandle items = store_.S_SymbolItemArray(symbol);
  const ArrayHandle entries = store_.S_SymbolEntryArray(symbol);
  store_.OA_MaskAll(items, 0, attr::Selected);
  store_.OA_MaskAll(entries, 0, attr::Selected);
  const auto shown = [&](ObjectHandle object) {
    return (store_.O_GetStatus(object) & attr::Shown) != 0;
  };
  const auto take = [&](ObjectHandle object) {
    store_.O_Mask(object, attr::Selected, attr::Selected);
    store_.O_Mask(object, 0, attr::Shown);
  };
  // Only what meets the box can lie inside it: the spatial index gives those.
  std::vector<int32_t> candidates;
  if (!store_.membersInBox(items, box, candidates))
    candidates = allPositions(store_, items);
  int32_t marked = 0;
  int32_t passed = 0;  // the last side of a run already judged
  for (int32_t i : candidates) {
    if (i <= passed)
      continue;
    const ObjectHandle item = store_.OA_Object(items, i);
    if (!shown(item))
      continue;
    int32_t first = i, last = i;
    if (store_.O_GetStatus(item) & attr::PolygonSide)
      FindPolygonRun(store_, items, i, first, last);
    // A polygon counts by the frame of its whole run.
    FrameRect frame, side;
    for (int32_t s = first; s <= last; ++s) {
      store_.I_FrameItem(store_.OA_Object(items, s), side);
      if (s == first)
        frame = side;
      else
        frame.unite(side);
    }
    passed = last;
    if (!frameInBox(frame, box))
      continue;
    for (int32_t s = first; s <= last; ++s, ++marked)
      take(store_.OA_Object(items, s));
  }
  if (!store_.membersInBox(entries, box, candidates))
    candidates = allPositions(store_, entries);
  for (int32_t i : candidates) {
    const ObjectHandle entry = store_.OA_Object(entries, i);
    EntryRecord e;
    if (!shown(entry) || !store_.S_ReadEntry(symbol, i, e))
      continue;
    if (Graphics::DB_CoverRectangle(e.X, e.Y, 1, box.MinX, box.MinY, box.MaxX, box.MaxY)) {
      take(entry);
      ++marked;
    }
  }
  callHook(hooks.hourglass, false);
  if (marked == 0)
    return false;
  redraw_.RedrawScreen();  // what would go is off the picture while the question shows
  if (!ask(editmsg::DeleteSelected)) {
    for (ArrayHandle array : {items, entries}) {
      for (int32_t i = store_.OA_SearchMask(array, 1, attr::Selected); i > 0;
           i = store_.OA_SearchMask(array, i + 1, attr::Selected))
        store_.O_Mask(store_.OA_Object(array, i), attr::Shown, attr::Shown);
      store_.OA_MaskAll(array, 0, attr::Selected);
    }
    redraw_.RedrawScreen();
    return false;
  }
  store_.OA_DeleteMarked(items, attr::Selected);
  store_.OA_DeleteMarked(entries, attr::Selected);
  store_.OA_MaskAll(entries, 0, attr::Selected);
  return true;
}

void ElementEditor::DoUndo(SymbolId symbol, int32_t mode) {
  const auto slot = [](int32_t n) { return UndoSymbolBase - n; };
  switch (mode) {
  case undomode::Free:
    UndoDepth = 0;
    for (int32_t n = 1; n <= UndoSlots; ++n)
      if (store_.S_Symbol(slot(n)) != ObjectHandle::None)
        store_.OM_Delete(store_.DB_SymbMap(), slot(n));
    break;
  case undomode::Push:
    if (UndoDepth == UndoSlots) {
      // The oldest copy is lost: each slot takes the one above it, handed down without a copy.
      for (int32_t n = 1; n < UndoSlots; ++n)
        store_.S_MoveSymbol(slot(n + 1), slot(n));
    } else {
      ++UndoDepth;
    }
    store_.S_CopySymbol(symbol, slot(UndoDepth));
    break;
  case undomode::Pop:
    if (UndoDepth > 0) {
      // The slot is not needed again: its symbol becomes the layer's, without a copy.
      store_.S_MoveSymbol(slot(UndoDepth), symbol);
      redraw_.RedrawScreen();
      --UndoDepth;
    }
    break;
  default:
    return;
  }
  callHook(hooks.enableUndo, UndoDepth != 0);
}

void ElementEditor::FunctionOneCommand(int32_t key, int32_t option) {
  if (key == editkey::LayerProperties) {
    callHook(hooks.openLayerProperties);
  } else if (key == editkey::Delete && option == 0 && ask(editmsg::ClearAllElements)) {
    DoUndo(WorkingSymbol(), undomode::Push);
    EnsureLayerSymbol(store_, tables_.layer(tables_.CurrentLayer), true);
    redraw_.RedrawScreen();
  }
}

}  // namespace tvx
