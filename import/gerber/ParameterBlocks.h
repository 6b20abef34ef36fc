// The parameter blocks of RS-274-X ("%...%"): format, units, scale, step and repeat, polarities,
// aperture definitions and aperture macros. Nothing in a block can fail the import: unknown or
// broken items leave things as they were.
#pragma once

#include "common/ParseList.h"
#include "import/gerber/ApertureLists.h"
#include "import/gerber/GerberFormat.h"
#include "import/gerber/GerberScan.h"
#include "import/gerber/MacroExpansion.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace tvx {

// What a block asks the record writer to write.
enum ParameterResult : int32_t {
  NothingToWrite = 0,
  WriteStepRepeat = -1,
  WriteImagePolarity = -2,
  WriteLayerPolarity = -3,
};

// The most repeats a step and repeat makes along one axis, and in all. Real panels stay far below
// them; a corrupt count would otherwise make the drawing pass fill the memory or loop for hours.
inline constexpr double MostRepeatsPerAxis = 1000.0;
inline constexpr double MostRepeats = 10000.0;

struct StepRepeat {
  double StepX = 1.0;  // repeat counts, at most MostRepeatsPerAxis
  double StepY = 1.0;
  double StepI = 0;  // repeat distances, store units
  double StepJ = 0;

  bool operator==(const StepRepeat&) const = default;
};

// The values of the letters of an SF, OF or SR argument; a letter is present when digits follow it.
struct LetterValues {
  std::string X, Y, I, J, A, B;
};
LetterValues letterValuesOf(std::string_view argument);

class ParameterInterpreter {
public:
  // Attribute texts kept per pass; further distinct ones are counted, not kept.
  static constexpr size_t MostAttributes = 4096;
  // Primitive rows of a pass. A real file needs some thousands; an aperture that would go beyond
  // is dropped, so that a short malformed file cannot make the lists grow without end.
  static constexpr size_t MostPrimitiveRows = 1000000;

  ParameterInterpreter(GerberFormat& format, ApertureLists& lists, int32_t unitsPerMm)
      : format_(format), lists_(lists), unitsPerMm_(unitsPerMm) {}

  // The state of a new pass: no macros, no step and repeat, dark and positive, no attributes.
  void reset();

  // Interprets the items of one block, each the text of one "*"-closed piece, trimmed. Returns the
  // ParameterResult of the last item that set one.
  int32_t InterpretParameterBlock(const std::vector<std::string>& items);

  // Notes of what a block dropped or cut, each at the byte the block reader gives in NoteOffset;
  // beyond MostNotes they are counted in MoreNotes.
  static constexpr size_t MostNotes = 100;
  void note(std::string what);
  int64_t NoteOffset = 0;
  std::vector<InputNote> Notes;
  size_t MoreNotes = 0;

  StepRepeat Step;
  int32_t ImagePolarity = 0;  // 0 positive, 1 negative
  int32_t LayerPolarity = 0;  // 0 dark, 1 clear
  MacroStore Macros;
  // The texts of the file's attribute blocks (TF, TA, TO), each once, in order of appearance.
  std::vector<std::string> FileAttributes;
  size_t DroppedAttributes = 0;

private:
  void formatStatement(std::string_view argument);
  void defineAperture(std::string_view argument);
  void standardAperture(int32_t dCode, std::string_view name, std::string_view modifiers);
  // Notes each modifier of an AD block that is no plain decimal, with the value it is read as.
  void noteModifiers(int32_t dCode, const ParsedList& modifiers);
  void stepAndRepeat(std::string_view argument);
  void keepAttribute(const std::string& item);
  LengthScale scale() const { return {format_.Unit, unitsPerMm_}; }

  GerberFormat& format_;
  ApertureLists& lists_;
  int32_t unitsPerMm_;
  bool standardApertureSeen_ = false;
  std::unordered_set<std::string> attributeSet_;
};

}  // namespace tvx
