#include "import/gerber/ParameterBlocks.h"

#include "common/ParseList.h"
#include "common/TextHelpers.h"
#include "common/ToNumber.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

namespace tvx {

namespace {

// A value written as no plain decimal, and what it is read as, for a note.
std::string badNumberText(std::string_view written, double value) {
  char read[32];
  std::snprintf(read, sizeof read, "%g", value);
  return "\"" + std::string(written) + "\" is " + (value == 0 ? "no number" : "no plain decimal") +
         ", read as " + read;
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// The value of one character as a digit; anything else reads 0.
int32_t digitValue(std::string_view text, size_t at) {
  return at < text.size() && isDigit(text[at]) ? text[at] - '0' : 0;
}

// Digits as a D-code, held to the 32-bit range.
int32_t digitsToCode(std::string_view digits) {
  int64_t value = 0;
  for (char c : digits) {
    value = value * 10 + (c - '0');
    if (value > std::numeric_limits<int32_t>::max())
      return std::numeric_limits<int32_t>::max();
  }
  return static_cast<int32_t>(value);
}

}  // namespace

LetterValues letterValuesOf(std::string_view argument) {
  LetterValues values;
  std::string* current = nullptr;
  for (char c : argument) {
    if (c == '*')
      break;
    switch (c) {
    case 'X':
      current = &values.X;
      break;
    case 'Y':
      current = &values.Y;
      break;
    case 'I':
      current = &values.I;
      break;
    case 'J':
      current = &values.J;
      break;
    case 'A':
      current = &values.A;
      break;
    case 'B':
      current = &values.B;
      break;
    default:
      if (current && (isDigit(c) || c == '+' || c == '-' || c == '.'))
        *current += c;
    }
  }
  return values;
}

void ParameterInterpreter::note(std::string what) {
  if (Notes.size() < MostNotes)
    Notes.push_back({NoteOffset, 0, std::move(what)});
  else
    ++MoreNotes;
}

void ParameterInterpreter::reset() {
  Notes.clear();
  MoreNotes = 0;
  NoteOffset = 0;
  Step = {};
  ImagePolarity = 0;
  LayerPolarity = 0;
  Macros.clear();
  FileAttributes.clear();
  DroppedAttributes = 0;
  attributeSet_.clear();
  standardApertureSeen_ = false;
}

int32_t ParameterInterpreter::InterpretParameterBlock(const std::vector<std::string>& items) {
  int32_t result = NothingToWrite;
  for (size_t n = 0; n < items.size(); ++n) {
    const std::string& item = items[n];
    if (item.size() < 2)
      continue;
    const std::string_view code = std::string_view(item).substr(0, 2);
    const std::string_view argument = std::string_view(item).substr(2);
    if (code == "MO") {
      if (argument == "IN")
        format_.Unit = 0;
      else if (argument == "MM")
        format_.Unit = 1;
    } else if (code == "FS") {
      formatStatement(argument);
    } else if (code == "SF") {
      const LetterValues values = letterValuesOf(argument);
      if (!values.A.empty())
        format_.Scale[AxisX] = ToNumber(values.A);
      if (!values.B.empty())
        format_.Scale[AxisY] = ToNumber(values.B);
    } else if (code == "OF") {
      // A file offset never moves the image; the import's own offset does that.
    } else if (code == "SR") {
      stepAndRepeat(argument);
      result = WriteStepRepeat;
    } else if (code == "AM") {
      // The rest of the block is the macro's lines. They are still walked as items below, where
      // their first two characters match no code.
      Macros.define(std::string(argument), std::span<const std::string>(items).subspan(n + 1));
    } else if (code == "AD") {
      defineAperture(argument);
    } else if (code == "IP") {
      if (argument == "POS")
        ImagePolarity = 0;
      else if (argument == "NEG")
        ImagePolarity = 1;
      result = WriteImagePolarity;
    } else if (code == "LP") {
      if (argument == "D")
        LayerPolarity = 0;
      else if (argument == "C")
        LayerPolarity = 1;
      result = WriteLayerPolarity;
    } else if (code == "TF" || code == "TA" || code == "TO") {
      keepAttribute(item);
    }
    // Everything else (IN, LN, AS, IR, MI, TD, LM, LR, LS, AB, ...) has no effect here.
  }
  return result;
}

void ParameterInterpreter::formatStatement(std::string_view argument) {
  // The zero letters are tested in this order and the last one found wins.
  if (argument.find('L') != std::string_view::npos)
    format_.OmittedZeros = 1;
  if (argument.find('T') != std::string_view::npos)
    format_.OmittedZeros = 0;
  if (argument.find('D') != std::string_view::npos)
    format_.OmittedZeros = 1;
  for (GerberAxis axis : {AxisX, AxisY}) {
    const size_t at = argument.find(axis == AxisX ? 'X' : 'Y');
    if (at == std::string_view::npos)
      continue;
    format_.IntegerDigits[axis] = digitValue(argument, at + 1);
    format_.DecimalDigits[axis] = digitValue(argument, at + 2);
  }
}

void ParameterInterpreter::stepAndRepeat(std::string_view argument) {
  if (argument.empty()) {
    Step = {};
    return;
  }
  const LetterValues values = letterValuesOf(argument);
  const auto count = [this](const std::string& text, const char* axis) {
    const double asked = ToNumber(text);
    if (asked > MostRepeatsPerAxis)
      note(std::string("step and repeat: ") + axis + " count " + text + " cut to " +
           std::to_string(int(MostRepeatsPerAxis)));
    return std::min(asked, MostRepeatsPerAxis);
  };
  if (!values.X.empty())
    Step.StepX = count(values.X, "X");
  if (!values.Y.empty())
    Step.StepY = count(values.Y, "Y");
  if (!values.I.empty())
    Step.StepI = scale().length(ToNumber(values.I));
  if (!values.J.empty())
    Step.StepJ = scale().length(ToNumber(values.J));
  // Over the total, the Y count gives way: the rows of X repeats stay whole.
  if (Step.StepX >= 1 && Step.StepX * Step.StepY > MostRepeats) {
    Step.StepY = std::floor(MostRepeats / std::floor(Step.StepX));
    note("step and repeat: Y count cut to " + std::to_string(int(Step.StepY)) + ", for at most " +
         std::to_string(int(MostRepeats)) + " copies");
  }
}

void ParameterInterpreter::defineAperture(std::string_view argument) {
  std::string_view modifiers;
  if (argument.size() > 2) {
    const size_t comma = argument.find(',', 2);
    if (comma != std::string_view::npos) {
      modifiers = argument.substr(comma + 1);
      argument = argument.substr(0, comma);
    }
  }
  // The first character is the "D" of the code and is not looked at.
  size_t end = 1;
  while (end < argument.size() && isDigit(argument[end]))
    ++end;
  if (end >= argument.size())
    return;
  const int32_t dCode = digitsToCode(argument.substr(1, end - 1));
  const std::string_view name = TrimBlanks(argument.substr(end));

  if (const int32_t macro = Macros.find(name); macro >= 0) {
    if (lists_.PrimitiveList.size() >= MostPrimitiveRows)
      return;
    const size_t first = lists_.PrimitiveList.size();
    noteModifiers(dCode, SplitAt(modifiers, "X"));
    MacroFaults faults;
    const bool expanded =
        ExpandMacro(Macros, macro, modifiers, dCode, scale(), lists_.PrimitiveList, &faults);
    const std::string aperture =
        "aperture D" + std::to_string(dCode) + " (macro " + std::string(name) + "): ";
    if (const int32_t more = faults.BadNumbers - 1; more >= 0)
      note(aperture + badNumberText(faults.FirstBadNumber, faults.FirstBadValue) +
           (more == 0 ? std::string()
                      : " (and " + std::to_string(more) +
                            (more == 1 ? " more value)" : " more values)")));
    if (faults.Arithmetic > 0)
      note(aperture + std::to_string(faults.Arithmetic) +
           (faults.Arithmetic == 1 ? " step" : " steps") +
           " of its arithmetic gave no number (a division by zero or an overflow), passed over");
    if (!expanded)
      return;
    if (lists_.PrimitiveList.size() > MostPrimitiveRows) {
      lists_.PrimitiveList.resize(first);
      return;
    }
    lists_.PrimitiveList[first].Text = std::string(name);
    lists_.SpecialList.push_back({dCode, static_cast<int32_t>(first + 1), 0});
    lists_.DefinedDCodes.insert(dCode);
    lists_.changed();
    return;
  }
  standardAperture(dCode, name, modifiers);
}

void ParameterInterpreter::noteModifiers(int32_t dCode, const ParsedList& modifiers) {
  for (int i = 1; i <= modifiers.count(); ++i) {
    if (isPlainDecimal(modifiers.token(i)))
      continue;
    note("aperture D" + std::to_string(dCode) + ": " +
         badNumberText(modifiers.token(i), modifiers.value(i)));
  }
}

void ParameterInterpreter::standardAperture(int32_t dCode, std::string_view name,
                                            std::string_view modifiers) {
  const ParsedList p = SplitAt(modifiers, "X");
  const int n = p.count();
  if (n == 0)
    return;
  noteModifiers(dCode, p);
  // The file's own apertures stand alone: the table's rows go at its first standard aperture.
  if (!standardApertureSeen_) {
    standardApertureSeen_ = true;
    lists_.clearStandardLists();
  }
  const LengthScale units = scale();
  auto length = [&](int i) { return units.length(p.value(i)); };
  auto special = [&](int32_t kind, std::initializer_list<double> values) {
    lists_.SpecialList.push_back({dCode, static_cast<int32_t>(lists_.PrimitiveList.size() + 1), 0});
    for (double value : values)
      lists_.PrimitiveList.push_back({kind, dCode, 0, value, {}});
  };
  auto round = [&] {
    const int32_t size = toInt32(length(1));
    lists_.DrawList.push_back({dCode, size, 0});
    lists_.RoundPadList.push_back({dCode, size, 0});
  };

  if (name == "C") {
    if (n == 1)
      round();
    else
      special(primitive::RoundWithHole, {length(1), length(2), length(3)});
  } else if (name == "R") {
    if (n < 2)
      return;
    if (n == 2 && p.value(1) == p.value(2))
      lists_.SquarePadList.push_back({dCode, toInt32(length(1)), 0});
    else
      special(primitive::Rectangle, {length(1), length(2), length(3), length(4)});
  } else if (name == "O") {
    if (n < 2)
      return;
    if (n == 2 && p.value(1) == p.value(2))
      round();
    else
      special(primitive::Oval, {length(1), length(2), length(3), length(4)});
  } else if (name == "P") {
    if (n < 2)
      return;
    special(primitive::RegularPolygon, {length(1), wholeNumber(p.value(2)),
                                        wholeNumber(p.value(3) * 1000), length(4), length(5)});
  } else {
    return;
  }
  lists_.DefinedDCodes.insert(dCode);
  lists_.changed();
}

void ParameterInterpreter::keepAttribute(const std::string& item) {
  if (attributeSet_.count(item))
    return;
  if (FileAttributes.size() >= MostAttributes) {
    ++DroppedAttributes;
    return;
  }
  attributeSet_.insert(item);
  FileAttributes.push_back(item);
}

}  // namespace tvx
