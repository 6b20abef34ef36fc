// Function 1 of the viewer without widgets: the editor of the working layer. A left click inspects
// the element under the pointer (its aperture or tool lights up and is named on the message line)
// or deletes it; a box deletes every element inside it; every change is preceded by a copy of the
// layer on an undo stack of five.
//
// The model changes the store and the view's highlight; the question pop-up, the box tool, the
// pointer shape and the undo entry of the window are reached through ElementEditorHooks, so that
// tests drive the editor with numbers.
#pragma once

#include "kernel/KernelTypes.h"
#include "viewer/MessageText.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace tvx {

class Store;
class SystemServices;
class ViewRedraw;
class ViewState;
struct LayerTables;

// Message ids and default texts of the editor.
namespace editmsg {
using Text = MessageText;
inline constexpr Text Polygon{"14578", "Polygon"};
inline constexpr Text PolygonMacro{"2941", "Polygon (macro or special aperture)"};
inline constexpr Text Line{"62321", "Line"};
inline constexpr Text Triangle{"4950", "Triangle"};
inline constexpr Text Rectangle{"4951", "Rectangle"};
inline constexpr Text Circle{"62233", "Circle"};
inline constexpr Text Arc{"4952", "Arc"};
inline constexpr Text PadPosition{"2944", "Pad position"};
inline constexpr Text HolesWithDiameter{"2942", "Holes with diameter"};
inline constexpr Text OriginalDcode{"2943", "Original Dcode:"};
inline constexpr Text Tool{"15428", "Tool:"};
inline constexpr Text Dcode{"2940", "Dcode:"};
inline constexpr Text Completed{"62399", "Completed"};
inline constexpr Text DeleteElement{"625", "Delete element?"};
inline constexpr Text DeleteSegment{"626", "Delete selected polyline segment only?"};
inline constexpr Text DeleteSelected{"468", "Delete Selected items"};
inline constexpr Text ClearAllElements{"62101", "Clear all elements"};
}  // namespace editmsg

// Keys of function 1 that change what a click does; any other key inspects.
namespace editkey {
inline constexpr int32_t LayerProperties = 0;
inline constexpr int32_t Inspect = 2;
inline constexpr int32_t Delete = 7;
inline constexpr int32_t Align = 8;
inline constexpr int32_t Clearance = 9;
}  // namespace editkey

// Modes of DoUndo.
namespace undomode {
inline constexpr int32_t Free = 0;
inline constexpr int32_t Push = 1;
inline constexpr int32_t Pop = 2;
}  // namespace undomode
inline constexpr int32_t UndoSlots = 5;

// One side of a polygon as ReadElement gives it: where it starts, whether it is straight (Kind 1)
// or an arc (Kind 5, with its centre, radius, start and sweep), and its own pen and colour, so
// that a run can be written back side by side.
struct VertexRow {
  int32_t Kind = ItemLine;
  int32_t X = 0;
  int32_t Y = 0;
  int32_t CentreX = 0;
  int32_t CentreY = 0;
  int32_t Radius = 0;
  int32_t Start = 0;  // thousandths of a degree
  int32_t Sweep = 0;
  int32_t LineWidth = 0;
  uint8_t Colour = 0;

  bool operator==(const VertexRow&) const = default;
};

// The element last read.
struct CurrentElement {
  int32_t ElementIndex = 0;  // 1-based, in the item array, or in the entry array for kind 22
  int32_t ElementKind = 0;   // the item's type; 22 for a pad entry
  ItemRecord Record;         // for a pad entry: Link the pad stack, Width and Height its hole
  int32_t PolygonFlag = 0;   // attr::PolygonSide when the element is a side of a polygon
  int32_t FirstSide = 0;
  int32_t LastSide = 0;
  std::vector<VertexRow> Vertices;
};

// "D10*" and "T3": the names of an aperture and of a drill tool.
std::string DcodeName(int32_t code);
std::string ToolName(int32_t code);

// What the editor asks of the window. Every hook may be left empty.
struct ElementEditorHooks {
  // The current key of function 1.
  std::function<int32_t()> currentKey;
  // ConfirmYESNO: the question as a pop-up at the pointer; true is yes.
  std::function<bool(const std::string& question)> confirmAtPointer;
  // Delete on nothing: the box tool 302 starts at the world point, snapped to the raster.
  std::function<void(int32_t x, int32_t y)> startBoxDelete;
  // Key 8: the alignment tool starts at the world point (measuring).
  std::function<void(int32_t x, int32_t y)> startAlignment;
  // Key 9: the clearance between the element at the world point and a second one (measuring).
  std::function<void(int32_t x, int32_t y)> startClearance;
  // The caption of the current function's row, the title of the editor's questions.
  std::function<std::string()> functionTitle;
  // The hourglass pointer while a walk over the layer runs.
  std::function<void(bool busy)> hourglass;
  // M_Undo is enabled exactly when there is something to undo.
  std::function<void(bool enabled)> enableUndo;
  // Key 0: the layer properties window of the current layer.
  std::function<void()> openLayerProperties;
};

class ElementEditor {
public:
  ElementEditor(Store& store, SystemServices& services, LayerTables& tables, ViewState& view,
                ViewRedraw& redraw);

  ElementEditorHooks hooks;
  CurrentElement Current;
  int32_t UndoDepth = 0;

  // The symbol of the current layer.
  SymbolId WorkingSymbol() const;

  // A left click at a world point in function 1: delete with key 7, the alignment with key 8,
  // the clearance with key 9, inspect with any other key.
  void ElementClick(int32_t x, int32_t y);
  void Inspect(int32_t x, int32_t y);
  void Delete(int32_t x, int32_t y);

  // The element at a world point: entries first (kind 22), then items (their type). Status 0 when
  // one was found, 1 when nothing.
  int32_t PickInSymbol(SymbolId symbol, int32_t x, int32_t y, int32_t& index, int32_t& kind) const;
  // Fills Current; a polygon side brings its whole run into Vertices. Status 1 when the element
  // cannot be read or its run is broken.
  int32_t ReadElement(SymbolId symbol, int32_t index, int32_t kind);
  // Sets the highlight and its texts from Current, and redraws.
  void DescribeElement();

  // Takes one element off the picture (its shown bit falls) and, with remove, out of the store.
  void EraseElement(bool remove, SymbolId symbol, int32_t index, int32_t kind);
  // The same for the sides first to last of a polygon run.
  void ErasePolygon(bool remove, SymbolId symbol, int32_t first, int32_t last);
  // Undoes EraseElement without remove: the element is shown again.
  void DrawElementBack(SymbolId symbol, int32_t index, int32_t kind);

  // Deletes what lies wholly inside the box, after one question; true when something went.
  bool DeleteInBox(SymbolId symbol, const FrameRect& box);

  // Free (0), push a copy of symbol (1), or pop the last copy into symbol (2).
  void DoUndo(SymbolId symbol, int32_t mode);
  void M_Undo_Click() { DoUndo(WorkingSymbol(), undomode::Pop); }

  // The commands of function 1's keys and options that have a command: key 0 opens the layer
  // properties, key 7 option 0 clears the layer after a question.
  void FunctionOneCommand(int32_t key, int32_t option);

private:
  std::string text(const editmsg::Text& message) const;
  std::string elementDescription() const;
  std::string holeText() const;
  bool ask(const editmsg::Text& question) const;
  // Delete of a polygon side: the side alone (an open chain, after a question) or its whole run.
  void deletePolygonSide(SymbolId symbol);
  void clearHighlight();

  Store& store_;
  SystemServices& services_;
  LayerTables& tables_;
  ViewState& view_;
  ViewRedraw& redraw_;
};

}  // namespace tvx
