// Handles, records and bit values that cross the artwork store's interface.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace tvx {

// All handles and keys are 32-bit; 0 (None) means none or failure.
// Objects (items, entries, symbols, pad stacks), arrays and maps have handle types of their own,
// so that one is never passed for another or for a count or key; all of them are entries of the
// store's one table of objects.
enum class ObjectHandle : int32_t { None = 0 };
enum class ArrayHandle : int32_t { None = 0 };
enum class MapHandle : int32_t { None = 0 };
constexpr int32_t tableEntry(ObjectHandle h) { return static_cast<int32_t>(h); }
constexpr int32_t tableEntry(ArrayHandle h) { return static_cast<int32_t>(h); }
constexpr int32_t tableEntry(MapHandle h) { return static_cast<int32_t>(h); }
constexpr ObjectHandle objectHandle(int32_t entry) { return static_cast<ObjectHandle>(entry); }
constexpr ArrayHandle arrayHandle(int32_t entry) { return static_cast<ArrayHandle>(entry); }
constexpr MapHandle mapHandle(int32_t entry) { return static_cast<MapHandle>(entry); }
using SymbolId = int32_t;

// Store units per millimetre.
inline constexpr int32_t StoreUnitsPerMm = 100000;

// The limit of the world on both axes, in store units; readers refuse coordinates beyond it.
inline constexpr double WorldLimit = 220000000.0;

// The first field of ItemRecord.
enum ItemType : int32_t {
  ItemLine = 1,        // X, Y start; Width, Height the vector to the end
  ItemTriangle = 2,    // X, Y a corner; (Width, Height) and (Angle, Sweep) the other two as offsets
  ItemRectangle = 3,   // X, Y lower left; Angle rotation about it; Width, Height the size
  ItemCircle = 4,      // X, Y centre; Width radius
  ItemArc = 5,         // X, Y centre; Width radius; Height start angle; Sweep swept angle
  ItemVectorText = 6,  // X, Y; Angle; Width the text height, Height the character width; Text
  ItemTrueTypeText = 8,  // as vector text, and Face
  ItemPadEntry = 22,     // never stored as an item: AddElement places an entry
};

// Bits of an object's Attributes word.
namespace attr {
inline constexpr int32_t Shown = 0x1;
inline constexpr int32_t MadeBySystem =
    0x2;  // on a symbol: a layer or category symbol of this system
inline constexpr int32_t PolygonSide = 0x8;
inline constexpr int32_t PolygonFirst = 0x10;
inline constexpr int32_t PolygonLast = 0x20;
inline constexpr int32_t Selected = 0x100;
inline constexpr int32_t ElementFrameMark = 0x200;
inline constexpr int32_t PolygonFrameMark = 0x800;
// Set on texts, and on the pieces of an open chain (a drawing's polyline): never read as "a
// text" (the item's Type says that).
inline constexpr int32_t Text = 0x10000;
inline constexpr int32_t OpenChain = 0x10000;
inline constexpr int32_t CircleOutline = 0x800000;  // a closed outline that is a circle
inline constexpr int32_t FlashPiece = 0x400000;
inline constexpr int32_t Flashed = 0x8000000;
}  // namespace attr

// Style byte values.
inline constexpr uint8_t StyleOpen = 0;
inline constexpr uint8_t StyleFilled = 16;

// Bit 128 of a colour value: pad stack items on artwork layers, clear elements in mono view.
inline constexpr uint8_t ColourMarkBit = 128;

// The numeric fields of an item, as the store keeps them.
struct ItemFields {
  int32_t Type = 0;
  int32_t Attributes = 0;
  int32_t Link = 0;  // D-code or tool code that made the element; for a pad entry the pad stack key
  int32_t X = 0;
  int32_t Y = 0;
  uint8_t Colour = 0;
  uint8_t Style = 0;
  int32_t LineWidth = 0;
  int32_t Gap = 0;
  int32_t Angle = 0;
  int32_t Width = 0;
  int32_t Height = 0;
  int32_t Sweep = 0;

  bool operator==(const ItemFields&) const = default;
};

// One drawn element as it crosses the interface: its fields and its texts. Callers
// value-initialise it before filling it; designated initialisers name the fields in an inner
// brace, {{.Type = ItemLine, .X = 1}}.
struct ItemRecord : ItemFields {
  std::string Text{};  // types 6 and 8
  std::string Face{};  // type 8

  bool operator==(const ItemRecord&) const = default;
};

// A placed pad as read with S_ReadEntry. Reserved holds the store's own bytes, copied whole.
struct EntryRecord {
  int32_t StoreOwn = 0;
  int32_t Attributes = 0;
  int32_t X = 0;
  int32_t Y = 0;
  int32_t Rotation = 0;
  int32_t PadStack = 0;
  std::array<uint8_t, 16> Reserved{};

  bool operator==(const EntryRecord&) const = default;
};

struct PadStackRecord {
  int32_t StoreOwn = 0;
  int32_t HoleDiameter = 0;
  int32_t HoleKind = 0;
};

// Minimum X, minimum Y, maximum X, maximum Y. All zeros stands for no extent.
struct FrameRect {
  int32_t MinX = 0;
  int32_t MinY = 0;
  int32_t MaxX = 0;
  int32_t MaxY = 0;

  bool operator==(const FrameRect&) const = default;
  bool isEmpty() const { return MinX == 0 && MinY == 0 && MaxX == 0 && MaxY == 0; }
  // Grows the frame to hold other as well.
  void unite(const FrameRect& other) {
    MinX = MinX < other.MinX ? MinX : other.MinX;
    MinY = MinY < other.MinY ? MinY : other.MinY;
    MaxX = MaxX > other.MaxX ? MaxX : other.MaxX;
    MaxY = MaxY > other.MaxY ? MaxY : other.MaxY;
  }
};

// Symbol ids that the system chooses.
inline constexpr SymbolId LayerSymbolBase = -76500;     // layer n: -76500 - n
inline constexpr SymbolId CategorySymbolBase = -76000;  // category n: -76000 - n
inline constexpr SymbolId UndoSymbolBase = -76550;      // undo depth n: -76550 - n

}  // namespace tvx
