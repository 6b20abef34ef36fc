// The blocks of an Excellon text ("|" closes each) and the six fields of a block. Shared by the
// scan and the import so that both read a block alike.
#pragma once

#include "common/ToNumber.h"
#include "import/core/FileRecognition.h"
#include "import/gerber/GerberFormat.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tvx {

// The fields of one block. A field letter opens its field, also when it was open before in the
// block (its string then goes on growing); value characters go to the open field; any other
// character closes it. "T01C0.8" gives T "01" and C "0.8"; "T1F00S00C0.032" gives T "1" and
// C "0.032". Behind "G85" the letters X and Y open SlotX and SlotY: "X1Y2G85X3Y2" is a slot from
// (1, 2) to (3, 2). A is an arc's radius, I and J its centre's offsets, R a repeat count.
struct ExcellonBlock {
  enum Field : int { T, C, M, G, X, Y, A, I, J, R, SlotX, SlotY, FieldCount };
  std::array<std::string, FieldCount> fields;

  const std::string& operator[](Field f) const { return fields[f]; }
  std::string& operator[](Field f) { return fields[f]; }
};

// The role of every character: the field it opens (the order of ExcellonBlock::Field), or one of
// these. The Excellon set "|TCMGXY+-0123456789.%" gives the block end, the first six fields and
// the value characters; A, I, J and R open the fields of routed arcs and repeats.
namespace excellonrole {
inline constexpr int8_t CloseField = -1;  // "%" and every character outside the set
inline constexpr int8_t EndOfBlock = -2;
inline constexpr int8_t Value = -3;

constexpr std::array<int8_t, 256> makeRoles() {
  std::array<int8_t, 256> roles{};
  for (auto& r : roles)
    r = CloseField;
  roles[size_t('|')] = EndOfBlock;
  constexpr std::string_view letters = "TCMGXYAIJR";
  for (size_t i = 0; i < letters.size(); ++i)
    roles[size_t(letters[i])] = int8_t(i);
  for (char c : std::string_view("+-0123456789."))
    roles[size_t(static_cast<unsigned char>(c))] = Value;
  return roles;
}
inline constexpr std::array<int8_t, 256> Roles = makeRoles();
}  // namespace excellonrole

// Walks a text block by block. The field strings are reused from block to block, so a long file
// costs no allocation per block.
class ExcellonBlockWalker {
public:
  explicit ExcellonBlockWalker(std::string_view text) : text_(text) {}

  // Reads the next block into block; false when the text is used up. A text that does not end
  // with "|" still gives its last block.
  bool next(ExcellonBlock& block) {
    if (position_ >= text_.size())
      return false;
    for (std::string& field : block.fields)
      field.clear();
    int open = -1;
    while (position_ < text_.size()) {
      const char c = text_[position_++];
      const int8_t role = excellonrole::Roles[static_cast<unsigned char>(c)];
      if (role == excellonrole::EndOfBlock)
        break;
      if (role >= 0)
        open = (role == ExcellonBlock::X || role == ExcellonBlock::Y) &&
                       block.fields[ExcellonBlock::G] == "85"
                   ? role + (ExcellonBlock::SlotX - ExcellonBlock::X)
                   : role;
      else if (role == excellonrole::Value) {
        if (open >= 0)
          block.fields[size_t(open)] += c;
      } else {
        open = -1;
      }
    }
    return true;
  }

private:
  std::string_view text_;
  size_t position_ = 0;
};

// Programs of one file: an "M30" ends a program, and the tool codes of the next one count from
// 100 further, so that they do not collide with the first program's.
inline constexpr int64_t ProgramOffsetStep = 100;

// An M value of exactly 30 ("M030" too, "M300" not).
inline bool isEndOfProgram(const std::string& m) { return !m.empty() && ToNumber(m) == 30.0; }

// The tool code of a T field in the current program.
inline int32_t toolCodeOf(const std::string& t, int64_t programOffset) {
  return toInt32(ToNumber(t) + static_cast<double>(programOffset));
}

// Walks the blocks of a drill program and hands each to visit(block, toolCode), which returns false
// to stop the walk: toolCode is the code that the block's T field selects in the current program,
// empty when it has none. Yields to the event loop by time, looking at the clock every yieldBlocks
// blocks.
template <typename Visit>
void walkExcellonProgram(std::string_view text, const std::function<void()>& yield,
                         size_t yieldBlocks, Visit&& visit) {
  int64_t programOffset = 0;
  YieldClock clock(yield);
  size_t blocks = 0;
  ExcellonBlock block;
  ExcellonBlockWalker walker(text);
  while (walker.next(block)) {
    if (++blocks % yieldBlocks == 0)
      clock.poll();
    if (isEndOfProgram(block[ExcellonBlock::M]))
      programOffset += ProgramOffsetStep;
    const std::string& t = block[ExcellonBlock::T];
    if (!visit(block, t.empty() ? std::optional<int32_t>() : toolCodeOf(t, programOffset)))
      return;
  }
}

}  // namespace tvx
