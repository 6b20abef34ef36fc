// The block reader of the Gerber text pass: takes the text one character at a time, follows
// comments, parameter blocks and G-codes as they come, and at the end of each block that has
// something to do leaves the block's coordinates, D function and modes in its public state.
#pragma once

#include "import/gerber/GerberFormat.h"

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tvx {

class ParameterInterpreter;

// Values of GerberBlockReader::Operation.
namespace operation {
inline constexpr int32_t ApertureSelect = 0;  // a D-code of 10 or more
inline constexpr int32_t Draw = 1;            // D01
inline constexpr int32_t Move = 2;            // D02, or no D-code seen yet
inline constexpr int32_t Flash = 3;           // D03
inline constexpr int32_t Stop = 90;           // M00, M02, the end of the file
inline constexpr int32_t Garbage = 92;        // text that is no Gerber
}  // namespace operation

// The position of each character in the Gerber character set "*DXYMGIJ+-0123456789%AB.", from 1;
// 0 for a character outside it.
int gerberCharacterPosition(unsigned char c);

// Interpolation modes as the path starts of the stream carry them: G01, G02, G03, and a region's
// (G36) on the start of each of its contours.
inline constexpr int32_t LineMode = 1;
inline constexpr int32_t ClockwiseMode = 2;
inline constexpr int32_t CounterClockwiseMode = 3;
inline constexpr int32_t RegionMode = 36;

class GerberBlockReader {
public:
  // Gives the next piece of the text: false at the end of the text, or with status set when the
  // text could not be read. The piece stays valid until the next call.
  using Refill = std::function<bool(int32_t& status, std::string_view& piece)>;

  // Characters between two calls of the progress callback.
  static constexpr int CheckInterval = 4096;
  // Characters kept of one letter's digits, and of one parameter item; the rest are dropped.
  static constexpr size_t MostLetterCharacters = 255;
  static constexpr size_t MostItemCharacters = 1 << 20;
  static constexpr size_t MostItems = 1 << 20;
  // Consecutive characters outside the character set that make the text garbage.
  static constexpr int MostForeignCharacters = 100;

  GerberBlockReader(const GerberFormat& format, ParameterInterpreter& parameters,
                    int32_t unitsPerMm)
      : format_(format), parameters_(parameters), unitsPerMm_(unitsPerMm) {}

  // The state of a new pass, reading from refill. progress runs every CheckInterval characters.
  void reset(Refill refill, std::function<void()> progress = {});

  // Reads up to the end of the next block that has something to do and sets the state from it.
  // At the end of the text Operation becomes Stop. status is set only by a failed read.
  void ReadBlock(int32_t& status);

  // The digits of one coordinate letter in store units, by the format of the axis.
  double ParseCoordinate(std::string_view text, int axis) const;

  // Characters taken from the text so far.
  int64_t consumed() const { return consumedBefore_ + static_cast<int64_t>(pos_); }

  // The reader's state, modal between blocks. The record writer clears I and J after an arc and
  // handles the polygon flags.
  double X = 0, Y = 0;  // current point, store units
  double I = 0, J = 0;  // centre offsets
  int32_t Operation = 0;
  int32_t CurrentD = 0;
  double InterpolationMode = LineMode;  // last G01, G02, G03 or G36 (RegionMode) as a number
  bool ArcMode = false;                 // after G02 or G03
  double QuadrantMode = 74;             // last G74 or G75
  bool InPolygon = false;
  bool PolygonEnd = false;
  bool PolygonStart = false;

private:
  // The letters that collect digits, in the order of their positions in the character set.
  enum Letter : int {
    NoLetter = -1,
    LetterD,
    LetterX,
    LetterY,
    LetterM,
    LetterG,
    LetterI,
    LetterJ
  };
  struct LetterText {
    std::array<char, MostLetterCharacters> text{};
    size_t length = 0;
    std::string_view view() const { return {text.data(), length}; }
  };

  bool refill(int32_t& status);
  // At the end of the text: notes a block left open, or a file that ends without M02.
  void noteEnd();
  bool endOfBlock();
  void appendToLetter(char c);
  void appendDigitRun(char c);
  void countPassed(int characters);
  void interpretG();
  bool parameterCharacter(char c);
  void clearLetters();

  const GerberFormat& format_;
  ParameterInterpreter& parameters_;
  int32_t unitsPerMm_;

  Refill refill_;
  std::function<void()> progress_;
  std::string_view piece_;
  size_t pos_ = 0;
  int64_t consumedBefore_ = 0;
  int untilCheck_ = CheckInterval;
  bool atEnd_ = false;
  bool programEnded_ = false;  // M00 or M02 ended the pass

  std::array<LetterText, 7> letters_{};
  int letter_ = NoLetter;
  int foreign_ = 0;
  bool inComment_ = false;
  bool inParameter_ = false;
  std::vector<std::string> items_;
  std::string item_;
};

}  // namespace tvx
