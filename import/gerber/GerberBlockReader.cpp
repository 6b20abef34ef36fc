#include "import/gerber/GerberBlockReader.h"

#include "common/TextHelpers.h"
#include "common/ToNumber.h"
#include "import/core/FileRecognition.h"
#include "import/gerber/ParameterBlocks.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace tvx {

namespace {

constexpr std::array<uint8_t, 256> makePositions() {
  std::array<uint8_t, 256> positions{};
  for (size_t i = 0; i < GerberCharacterSet.size(); ++i)
    positions[static_cast<unsigned char>(GerberCharacterSet[i])] = static_cast<uint8_t>(i + 1);
  return positions;
}
constexpr std::array<uint8_t, 256> Positions = makePositions();

// Positions in the character set.
enum : int {
  PosStar = 1,
  PosFirstLetter = 2,  // D X Y M G I J
  PosLastLetter = 8,
  PosFirstDigit = 9,  // "+", "-" and the digits
  PosLastDigit = 20,
  PosPercent = 21,
};

constexpr double ExactPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                       1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                       1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

double powerOfTen(int64_t exponent) {
  if (exponent >= 0 && exponent <= 22)
    return ExactPowersOfTen[exponent];
  return std::pow(10.0, static_cast<double>(exponent));
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// The number at the start of a run of digits and signs, as the lenient number reader gives it.
double valueOf(std::string_view text) {
  if (!text.empty() && text.size() <= 18) {
    int64_t value = 0;
    size_t i = 0;
    for (; i < text.size() && isDigit(text[i]); ++i)
      value = value * 10 + (text[i] - '0');
    if (i == text.size())
      return static_cast<double>(value);
  }
  return ToNumber(text);
}

}  // namespace

int gerberCharacterPosition(unsigned char c) { return Positions[c]; }

void GerberBlockReader::reset(Refill refill, std::function<void()> progress) {
  refill_ = std::move(refill);
  progress_ = std::move(progress);
  piece_ = {};
  pos_ = 0;
  consumedBefore_ = 0;
  untilCheck_ = CheckInterval;
  atEnd_ = false;
  programEnded_ = false;
  clearLetters();
  foreign_ = 0;
  inComment_ = false;
  inParameter_ = false;
  items_.clear();
  item_.clear();
  X = Y = I = J = 0;
  Operation = 0;
  CurrentD = 0;
  InterpolationMode = LineMode;
  ArcMode = false;
  QuadrantMode = 74;
  InPolygon = PolygonEnd = PolygonStart = false;
}

bool GerberBlockReader::refill(int32_t& status) {
  if (atEnd_)
    return false;
  consumedBefore_ += static_cast<int64_t>(pos_);
  pos_ = 0;
  piece_ = {};
  // Empty pieces are passed over; the end comes only when the source says so.
  while (piece_.empty()) {
    if (!refill_ || !refill_(status, piece_) || status != 0) {
      piece_ = {};
      atEnd_ = true;
      return false;
    }
  }
  return true;
}

void GerberBlockReader::noteEnd() {
  parameters_.NoteOffset = consumed();
  const bool openBlock = inParameter_ || inComment_ ||
                         std::any_of(letters_.begin(), letters_.end(),
                                     [](const LetterText& l) { return l.length > 0; });
  if (openBlock)
    parameters_.note("the file ends inside a block, which is dropped");
  else if (!programEnded_)
    parameters_.note("the file ends without M02");
}

void GerberBlockReader::clearLetters() {
  for (LetterText& letter : letters_)
    letter.length = 0;
  letter_ = NoLetter;
}

// Progress runs once every CheckInterval characters read.
inline void GerberBlockReader::countPassed(int characters) {
  if (characters < untilCheck_) {
    untilCheck_ -= characters;
    return;
  }
  untilCheck_ = CheckInterval;
  if (progress_)
    progress_();
}

void GerberBlockReader::ReadBlock(int32_t& status) {
  for (;;) {
    if (pos_ >= piece_.size() && !refill(status)) {
      Operation = operation::Stop;
      if (status == 0)
        noteEnd();
      return;
    }
    const char c = piece_[pos_++];
    countPassed(1);
    const int k = Positions[static_cast<unsigned char>(c)];
    if (k != 0)
      foreign_ = 0;
    if (inComment_) {
      if (c == '*') {
        inComment_ = false;
        if (endOfBlock())
          return;
      }
      continue;
    }
    if (inParameter_) {
      if (parameterCharacter(c))
        return;
      continue;
    }
    if (k == PosStar) {
      if (endOfBlock())
        return;
    } else if (k >= PosFirstLetter && k <= PosLastLetter) {
      letter_ = k - PosFirstLetter;
    } else if (k >= PosFirstDigit && k <= PosLastDigit) {
      if (letter_ == LetterG || letter_ == NoLetter)
        appendToLetter(c);
      else
        appendDigitRun(c);
    } else if (k == PosPercent) {
      inParameter_ = true;
    } else if (c != '\r' && c != '\n') {
      const auto code = static_cast<unsigned char>(c);
      if (++foreign_ > MostForeignCharacters || code < 32 || code > 254) {
        Operation = operation::Garbage;
        return;
      }
    }
  }
}

void GerberBlockReader::appendToLetter(char c) {
  if (letter_ == NoLetter)
    return;
  LetterText& letter = letters_[size_t(letter_)];
  if (letter.length < letter.text.size())
    letter.text[letter.length++] = c;
  if (letter_ == LetterG)
    interpretG();
}

// The rest of a run of digits of a coordinate or a code, taken from the piece at once: the letter
// keeps what fits, as character by character.
void GerberBlockReader::appendDigitRun(char c) {
  size_t end = pos_;
  while (end < piece_.size()) {
    const int k = Positions[static_cast<unsigned char>(piece_[end])];
    if (k < PosFirstDigit || k > PosLastDigit)
      break;
    ++end;
  }
  LetterText& letter = letters_[size_t(letter_)];
  if (letter.length < letter.text.size())
    letter.text[letter.length++] = c;
  const size_t room = letter.text.size() - letter.length;
  const size_t taken = std::min(room, end - pos_);
  std::memcpy(letter.text.data() + letter.length, piece_.data() + pos_, taken);
  letter.length += taken;
  countPassed(int(end - pos_));
  pos_ = end;
}

// A G-code takes effect as soon as it has one digit or two; "1", "2" and "3" act at once and may
// be followed by further digits.
void GerberBlockReader::interpretG() {
  LetterText& g = letters_[LetterG];
  const std::string_view code = g.view();
  if (code.size() == 1) {
    switch (code[0]) {
    case '4':
      inComment_ = true;
      g.length = 0;
      break;
    case '1':
      ArcMode = false;
      if (!InPolygon)
        InterpolationMode = LineMode;
      break;
    case '2':
    case '3':
      ArcMode = true;
      InterpolationMode = code[0] - '0';
      break;
    default:
      break;
    }
    return;
  }
  if (code == "04") {
    inComment_ = true;
  } else if (code == "01") {
    ArcMode = false;
    if (!InPolygon)
      InterpolationMode = LineMode;
  } else if (code == "02" || code == "03") {
    ArcMode = true;
    InterpolationMode = code[1] - '0';
  } else if (code == "36") {
    ArcMode = false;
    InPolygon = true;
    PolygonStart = true;
    InterpolationMode = RegionMode;
  } else if (code == "37") {
    ArcMode = false;
    PolygonEnd = true;
    InterpolationMode = LineMode;
  } else if (code == "74" || code == "75") {
    QuadrantMode = code[1] == '4' ? 74 : 75;
  }
  g.length = 0;
}

bool GerberBlockReader::parameterCharacter(char c) {
  if (c == '*') {
    if (items_.size() < MostItems)
      items_.emplace_back(TrimBlanks(item_));
    item_.clear();
  } else if (c == '%') {
    parameters_.NoteOffset = consumed();
    const int32_t result = parameters_.InterpretParameterBlock(items_);
    items_.clear();
    item_.clear();
    inParameter_ = false;
    if (result != 0) {
      Operation = result;
      return true;
    }
  } else if (c != '\r' && c != '\n') {
    if (item_.size() < MostItemCharacters)
      item_ += c;
  }
  return false;
}

// The end of a block, at its "*". False for a block without D, X, Y, M, I or J: the reader goes
// on with the next block.
bool GerberBlockReader::endOfBlock() {
  const LetterText& d = letters_[LetterD];
  const LetterText& x = letters_[LetterX];
  const LetterText& y = letters_[LetterY];
  const LetterText& m = letters_[LetterM];
  const LetterText& i = letters_[LetterI];
  const LetterText& j = letters_[LetterJ];
  if (!d.length && !x.length && !y.length && !m.length && !i.length && !j.length) {
    clearLetters();
    return false;
  }
  if (m.length) {
    const double value = valueOf(m.view());
    if (value == 0 || value == 2) {
      Operation = operation::Stop;
      programEnded_ = true;
      clearLetters();
      return true;
    }
  }
  if (x.length)
    X = ParseCoordinate(x.view(), AxisX);
  if (y.length)
    Y = ParseCoordinate(y.view(), AxisY);
  I = i.length ? ParseCoordinate(i.view(), AxisX) : 0;
  J = j.length ? ParseCoordinate(j.view(), AxisY) : 0;
  if (d.length) {
    const double value = valueOf(d.view());
    if (value != 0) {
      if (value > 9) {
        CurrentD = toInt32(value);
        Operation = operation::ApertureSelect;
      } else {
        Operation = toInt32(value);
      }
    }
  } else if (Operation == operation::ApertureSelect) {
    Operation = operation::Move;
  }
  clearLetters();
  return true;
}

double GerberBlockReader::ParseCoordinate(std::string_view text, int axis) const {
  const int64_t decimals = format_.DecimalDigits[size_t(axis)];
  int64_t total = int64_t(format_.IntegerDigits[size_t(axis)]) + decimals;
  double sign = 1;
  // Most coordinates are a few digits alone: read at once, as valueOf reads them. Eighteen digits
  // at most fit the 64-bit sum; a longer run is read by valueOf.
  constexpr size_t MostFastDigits = 18;
  size_t run = 0;
  int64_t digits = 0;
  while (run < text.size() && run < MostFastDigits && isDigit(text[run]))
    digits = digits * 10 + (text[run++] - '0');
  double value = static_cast<double>(digits);
  if (run != text.size()) {
    if (const size_t plus = text.find('+'); plus != std::string_view::npos)
      text = text.substr(plus + 1);
    if (const size_t minus = text.find('-'); minus != std::string_view::npos) {
      text = text.substr(minus + 1);
      sign = -1;
    }
    run = 0;
    while (run < text.size() && isDigit(text[run]))
      ++run;
    value = valueOf(text.substr(0, run));
  }
  const auto length = static_cast<int64_t>(text.size());
  if (length > total)
    total = length;
  // Trailing zeros omitted: the digits are left-aligned in the full width. Leading zeros omitted
  // (or any other setting): padding on the left changes nothing. A sign left in the text ends the
  // number, whatever padding follows.
  if (format_.OmittedZeros == 0 && run == text.size() && value != 0)
    value *= powerOfTen(total - length);
  return value / powerOfTen(decimals) / unitTableValue(format_.Unit) / format_.Scale[size_t(axis)] *
         unitsPerMm_ * sign;
}

}  // namespace tvx
