#include "import/core/FileRecognition.h"

#include "common/FileLayer.h"
#include "platform/SystemServices.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace tvx {

using recognition::PrefixBytes;
using recognition::SearchChunk;
using recognition::WalkChunk;

YieldClock::YieldClock(std::function<void()> yield, std::chrono::milliseconds interval)
    : yield_(std::move(yield)), interval_(interval), last_(std::chrono::steady_clock::now()) {}

void YieldClock::pollClock() {
  if (std::chrono::steady_clock::now() - last_ < interval_)
    return;
  yield_();
  // The next turn of the loop comes after a full interval of work, however long this one took.
  last_ = std::chrono::steady_clock::now();
}

namespace {

constexpr std::size_t NotFound = std::string_view::npos;

// First position of needle at or after from. The text is searched a chunk at a time, chunks
// overlapping by the needle's length less one, so that the clock is looked at in between.
std::size_t find(std::string_view text, std::string_view needle, YieldClock& clock,
                 std::size_t from = 0) {
  const std::size_t n = needle.size();
  if (n == 0 || from > text.size() || text.size() - from < n)
    return NotFound;
  for (std::size_t start = from;; start += SearchChunk) {
    const std::size_t left = text.size() - start;
    const std::size_t length = std::min(left, SearchChunk + n - 1);
    const void* hit = memmem(text.data() + start, length, needle.data(), n);
    if (hit)
      return static_cast<std::size_t>(static_cast<const char*>(hit) - text.data());
    if (length == left)
      break;
    clock.poll();
  }
  return NotFound;
}

bool has(std::string_view text, std::string_view needle, YieldClock& clock) {
  return find(text, needle, clock) != NotFound;
}

// A walk keeps a counter of characters outside its set: each character sets it to
// (counter & keep) + add, and the text is rejected when it exceeds MaxOutside. A character that
// rejects at once adds more than MaxOutside.
struct WalkStep {
  uint32_t keep = 0;
  uint32_t add = 0;
};
using WalkTable = std::array<WalkStep, 256>;

constexpr uint32_t MaxOutside = 100;
constexpr WalkStep ResetStep{0, 0};
constexpr WalkStep PassStep{~0u, 0};
constexpr WalkStep CountStep{~0u, 1};
constexpr WalkStep RejectStep{~0u, MaxOutside + 1};

constexpr bool inSet(std::string_view set, int c) {
  return set.find(static_cast<char>(c)) != NotFound;
}

// Outside the set, control characters other than those passed over reject, and so does 255.
constexpr WalkStep outsideStep(int c) { return c < 32 || c > 254 ? RejectStep : CountStep; }

// Gerber: a character of the set clears the counter; CR and LF leave it as it is.
constexpr WalkTable makeGerberWalk() {
  WalkTable table{};
  for (int c = 0; c < 256; ++c) {
    if (inSet(GerberCharacterSet, c))
      table[c] = ResetStep;
    else if (c == '\r' || c == '\n')
      table[c] = PassStep;
    else
      table[c] = outsideStep(c);
  }
  return table;
}

// Excellon: the letters T, C, M, G, X, Y clear the counter. The set's other characters clear it
// too but are then counted like any other character, so they leave it at 1. CR, LF and tab are
// passed over.
constexpr WalkTable makeExcellonWalk() {
  WalkTable table{};
  for (int c = 0; c < 256; ++c) {
    if (inSet("TCMGXY", c))
      table[c] = ResetStep;
    else if (inSet(ExcellonCharacterSet, c))
      table[c] = WalkStep{0, 1};
    else if (c == '\r' || c == '\n' || c == '\t')
      table[c] = PassStep;
    else
      table[c] = outsideStep(c);
  }
  return table;
}

constexpr WalkTable GerberWalk = makeGerberWalk();
constexpr WalkTable ExcellonWalk = makeExcellonWalk();

// True when the walk rejects the text.
bool walkRejects(std::string_view text, const WalkTable& table, YieldClock& clock) {
  const auto* p = reinterpret_cast<const unsigned char*>(text.data());
  std::size_t left = text.size();
  uint32_t counter = 0;
  while (left > 0) {
    const std::size_t n = std::min(left, WalkChunk);
    for (std::size_t i = 0; i < n; ++i) {
      const WalkStep step = table[p[i]];
      counter = (counter & step.keep) + step.add;
      if (counter > MaxOutside)
        return true;
    }
    p += n;
    left -= n;
    clock.poll();
  }
  return false;
}

// Whether the text behind a plotter command continues it the way a command's arguments or a
// following command would.
bool followTest(std::string_view text, std::size_t from, YieldClock& clock) {
  char window[2] = {0, 0};
  int held = 0;
  for (std::size_t chunk = from; chunk < text.size(); chunk += WalkChunk) {
    const std::size_t end = std::min(text.size(), chunk + WalkChunk);
    for (std::size_t i = chunk; i < end; ++i) {
      const auto c = static_cast<unsigned char>(text[i]);
      if (c < ' ')
        continue;
      if (c == ';')
        return true;
      if (c < '0')
        continue;
      if (c <= '9')
        return true;
      window[held++] = static_cast<char>(c);
      if (held == 2)
        return HpglCommandTable.find(std::string_view(window, 2)) != NotFound;
    }
    clock.poll();
  }
  return false;
}

// The plotter commands whose arguments are looked at; the positions of all other entries of the
// table decide nothing, so they are not searched for.
bool followTested(std::string_view command) {
  return command == "IN" || command == "PU" || command == "PD" || command == "PA" ||
         command == "PR";
}

// What the follow test said of the first occurrence of each tested plotter command.
struct PlotterLook {
  bool anyPassed = false;
  bool initFailed = false;   // IN
  bool otherFailed = false;  // PU, PD, PA or PR
};

PlotterLook lookAtPlotterCommands(std::string_view text, YieldClock& clock) {
  PlotterLook look;
  for (std::size_t entry = 0; entry + 2 <= HpglCommandTable.size(); entry += 3) {
    const std::string_view command = HpglCommandTable.substr(entry, 2);
    if (!followTested(command))
      continue;
    const std::size_t at = find(text, command, clock);
    if (at == NotFound)
      continue;
    if (followTest(text, at + 2, clock))
      look.anyPassed = true;
    else if (command == "IN")
      look.initFailed = true;
    else
      look.otherFailed = true;
  }
  return look;
}

// The Gerber format statement with an aperture definition or a unit: no drill or plotter file
// holds these.
bool holdsGerberFormat(std::string_view text, YieldClock& clock) {
  return has(text, "%FS", clock) && (has(text, "%AD", clock) || has(text, "%MO", clock));
}

bool hasDrawingCodes(std::string_view text, YieldClock& clock) {
  auto contains = [&](std::string_view s) { return has(text, s, clock); };
  return (contains("D02*") && contains("D01*")) || contains("D03*") ||
         (contains("D2*") && contains("D1*")) || contains("D3*");
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// An aperture selection: D, a number of 10 or more and the star, standing at the start of a block
// (at the start of the text, behind a star or a line end, or behind G54).
bool hasApertureSelection(std::string_view text, YieldClock& clock) {
  std::size_t polled = 0;
  for (std::size_t at = find(text, "D", clock); at != NotFound;
       at = find(text, "D", clock, at + 1)) {
    if (at - polled >= WalkChunk) {
      clock.poll();
      polled = at;
    }
    const bool blockStart = at == 0 || text[at - 1] == '*' || text[at - 1] == '\n' ||
                            text[at - 1] == '\r' || (at >= 3 && text.substr(at - 3, 3) == "G54");
    if (!blockStart)
      continue;
    std::size_t end = at + 1;
    uint32_t code = 0;
    while (end < text.size() && isDigit(text[end]) && end - at <= 6)
      code = code * 10 + static_cast<uint32_t>(text[end++] - '0');
    if (end < text.size() && text[end] == '*' && code >= 10)
      return true;
  }
  return false;
}

// Whether the text says it is Gerber: a format or unit statement, file or object attributes
// (as blocks or in comments), drawing codes or aperture selections.
bool hasGerberSign(std::string_view text, YieldClock& clock) {
  for (std::string_view sign :
       {"%FS", "%MO", "%TF.", "%TA.", "%TO.", "G04 #@! TF.", "G04 #@! TA.", "G04 #@! TO."})
    if (has(text, sign, clock))
      return true;
  return hasDrawingCodes(text, clock) || hasApertureSelection(text, clock);
}

// The Gerber walk over the text without the NULs that pad its end and without the insides of
// its comments (from G04 to the star that closes the block), whose words are free text.
bool gerberWalkRejectsOutsideComments(std::string_view text, YieldClock& clock) {
  const std::size_t last = text.find_last_not_of('\0');
  text = last == NotFound ? std::string_view() : text.substr(0, last + 1);
  std::size_t from = 0;
  while (from < text.size()) {
    const std::size_t comment = find(text, "G04", clock, from);
    const std::size_t stop = comment == NotFound ? text.size() : comment + 3;
    // Every segment starts on a character of the set (the star), so the counter starts at 0.
    if (walkRejects(text.substr(from, stop - from), GerberWalk, clock))
      return true;
    if (comment == NotFound)
      break;
    const std::size_t close = find(text, "*", clock, stop);
    if (close == NotFound)
      break;
    from = close;
  }
  return false;
}

// The lines of a text, each without its line end and its leading and trailing blanks.
template <typename Visit> void forEachLine(std::string_view text, YieldClock& clock, Visit visit) {
  std::size_t polled = 0;
  for (std::size_t from = 0; from < text.size();) {
    std::size_t end = text.find('\n', from);
    if (end == NotFound)
      end = text.size();
    std::string_view line = text.substr(from, end - from);
    const std::size_t first = line.find_first_not_of(" \t\r");
    line = first == NotFound ? std::string_view() : line.substr(first);
    line = line.substr(0, line.find_last_not_of(" \t\r") + 1);
    if (!visit(line))
      return;
    from = end + 1;
    if (from - polled >= WalkChunk) {
      clock.poll();
      polled = from;
    }
  }
}

// A coordinate block: X or Y and a number, behind any G codes of the block.
bool isCoordinateBlock(std::string_view line) {
  std::size_t at = 0;
  while (at < line.size() && line[at] == 'G') {
    ++at;
    while (at < line.size() && isDigit(line[at]))
      ++at;
  }
  if (at + 1 >= line.size() || (line[at] != 'X' && line[at] != 'Y'))
    return false;
  const char c = line[at + 1];
  return isDigit(c) || c == '+' || c == '-' || c == '.';
}

}  // namespace

ImportKind IsGerber(std::string_view text, YieldClock& clock) {
  if (!hasDrawingCodes(text, clock))
    return ImportKind::Unknown;
  const bool extended = has(text, "%FS", clock) && has(text, "%AD", clock);
  if (walkRejects(text, GerberWalk, clock))
    return ImportKind::Unknown;
  return extended ? ImportKind::ArtworkRS274X : ImportKind::ArtworkRS274D;
}

ImportKind IsExcellon(std::string_view text, YieldClock& clock) {
  auto contains = [&](std::string_view s) { return has(text, s, clock); };
  // Gerber headers hold T, X and Y too (in attributes and the format statement).
  if (holdsGerberFormat(text, clock))
    return ImportKind::Unknown;

  // A walk that ends without rejection has passed every character, so its counts of T, C, X and
  // Y are above zero exactly when the letters occur in the text.
  const bool hasT = contains("T");
  const bool hasXY = contains("X") && contains("Y");
  const bool hasC = contains("C");
  const bool toolCall = hasT && (contains("T001") || contains("T01") || contains("T1"));
  // Without a tool call on coordinates both formats give Unknown, header or not.
  if (!toolCall || !hasXY)
    return ImportKind::Unknown;
  const bool toolDefinition =
      hasT && hasC && (contains("T001C") || contains("T01C") || contains("T1C"));

  // The Format Two header runs from "M48" to three characters past the first "%" behind it
  // (or, without one, the first "M95"), so that "M95" itself is inside.
  bool hasHeader = false;
  const std::size_t start = find(text, "M48", clock);
  if (start != NotFound) {
    std::size_t end = find(text, "%", clock, start);
    if (end == NotFound)
      end = find(text, "M95", clock, start);
    if (end != NotFound) {
      const std::string_view header = text.substr(start, end + 3 - start);
      hasHeader = has(header, "INCH", clock) || has(header, "METRIC", clock);
    }
  }
  if (!hasHeader)
    hasHeader = contains("M72") || contains("M71");

  if (walkRejects(text, ExcellonWalk, clock))
    return ImportKind::Unknown;
  return hasHeader && toolDefinition ? ImportKind::ExcellonFormatTwo
                                     : ImportKind::ExcellonFormatOne;
}

ImportKind IsDxf(std::string_view text, YieldClock& clock) {
  // Positions count from 1; 0 stands for a word that is absent.
  auto position = [&](std::string_view s) -> std::size_t {
    const std::size_t at = find(text, s, clock);
    return at == NotFound ? 0 : at + 1;
  };
  const std::size_t entities = position("ENTITIES");
  if (entities == 0)
    return ImportKind::Unknown;
  const std::size_t header = position("HEADER");
  const std::size_t tables = position("TABLES");
  return tables >= header ? ImportKind::Dxf : ImportKind::Unknown;
}

ImportKind IsHpgl(std::string_view text, YieldClock& clock) {
  // A Gerber unit statement (%MOIN) holds IN.
  if (holdsGerberFormat(text, clock))
    return ImportKind::Unknown;
  const PlotterLook look = lookAtPlotterCommands(text, clock);
  const bool failed = look.initFailed || look.otherFailed;
  return look.anyPassed && !failed ? ImportKind::Hpgl : ImportKind::Unknown;
}

ImportKind SecondChanceGerber(std::string_view text, YieldClock& clock) {
  if (!hasGerberSign(text, clock) || gerberWalkRejectsOutsideComments(text, clock))
    return ImportKind::Unknown;
  const bool extended = has(text, "%FS", clock) && has(text, "%AD", clock);
  return extended ? ImportKind::ArtworkRS274X : ImportKind::ArtworkRS274D;
}

ImportKind SecondChanceExcellon(std::string_view text, YieldClock& clock) {
  if (holdsGerberFormat(text, clock))
    return ImportKind::Unknown;
  bool header = has(text, "M48", clock);
  bool tool = false;
  bool diameter = false;
  bool coordinates = false;
  forEachLine(text, clock, [&](std::string_view line) {
    if (line.starts_with("INCH") || line.starts_with("METRIC"))
      header = true;
    if (line.size() >= 2 && line[0] == 'T' && isDigit(line[1])) {
      tool = true;
      // A diameter: C and a number anywhere behind the tool number.
      for (std::size_t c = line.find('C', 2); c != NotFound && !diameter; c = line.find('C', c + 1))
        diameter = c + 1 < line.size() && (isDigit(line[c + 1]) || line[c + 1] == '.');
    } else if (tool && isCoordinateBlock(line)) {
      coordinates = true;
    }
    return true;
  });
  if (!header || !coordinates || walkRejects(text, ExcellonWalk, clock))
    return ImportKind::Unknown;
  return diameter ? ImportKind::ExcellonFormatTwo : ImportKind::ExcellonFormatOne;
}

ImportKind SecondChanceHpgl(std::string_view text, YieldClock& clock) {
  if (!has(text, "\x1B", clock) || holdsGerberFormat(text, clock))
    return ImportKind::Unknown;
  const PlotterLook look = lookAtPlotterCommands(text, clock);
  return look.anyPassed && look.initFailed && !look.otherFailed ? ImportKind::Hpgl
                                                                : ImportKind::Unknown;
}

namespace {

// A test run on a clock of its own, for callers that serve no event loop.
template <ImportKind (*Test)(std::string_view, YieldClock&)>
ImportKind withOwnClock(std::string_view text) {
  YieldClock clock;
  return Test(text, clock);
}

}  // namespace

ImportKind IsGerber(std::string_view text) { return withOwnClock<IsGerber>(text); }
ImportKind IsExcellon(std::string_view text) { return withOwnClock<IsExcellon>(text); }
ImportKind IsDxf(std::string_view text) { return withOwnClock<IsDxf>(text); }
ImportKind IsHpgl(std::string_view text) { return withOwnClock<IsHpgl>(text); }
ImportKind SecondChanceGerber(std::string_view text) {
  return withOwnClock<SecondChanceGerber>(text);
}
ImportKind SecondChanceExcellon(std::string_view text) {
  return withOwnClock<SecondChanceExcellon>(text);
}
ImportKind SecondChanceHpgl(std::string_view text) { return withOwnClock<SecondChanceHpgl>(text); }

ImportKind recogniseText(std::string_view text, YieldClock& clock) {
  using Test = ImportKind (*)(std::string_view, YieldClock&);
  static constexpr Test Tests[] = {IsGerber,        IsExcellon,         IsDxf,
                                   IsHpgl,          SecondChanceGerber, SecondChanceExcellon,
                                   SecondChanceHpgl};
  for (Test test : Tests) {
    const ImportKind kind = test(text, clock);
    if (kind != ImportKind::Unknown)
      return kind;
  }
  return ImportKind::Unknown;
}

namespace {

// A large file is read in pieces of this size.
constexpr std::uintmax_t ReadPieceBytes = std::uintmax_t(8) << 20;

// Whether a file that starts with prefix may be of a kind, so that the rest is worth reading.
// Each kind must show its marks in the prefix: a Gerber sign, and no character the Gerber walk
// rejects; a tool letter, and no character the drill walk rejects; a drawing's
// section or the binary drawing's signature; plotter commands that pass the plotter tests. The
// walks reject a text whose prefix they reject, so binary content is refused on its prefix.
bool mayBeOfAKind(std::string_view prefix) {
  YieldClock clock;
  const auto has = [&](std::string_view s) { return find(prefix, s, clock) != NotFound; };
  if (hasGerberSign(prefix, clock) && !gerberWalkRejectsOutsideComments(prefix, clock))
    return true;
  if (has("T") && !walkRejects(prefix, ExcellonWalk, clock))
    return true;
  if (prefix.starts_with("AutoCAD Binary DXF") || has("SECTION") || has("ENTITIES"))
    return true;
  return IsHpgl(prefix, clock) != ImportKind::Unknown ||
         SecondChanceHpgl(prefix, clock) != ImportKind::Unknown;
}

}  // namespace

bool FileRecogniser::LoadWholeFile(const std::string& path, std::string& text) {
  return load(path, text, false);
}

bool FileRecogniser::load(const std::string& path, std::string& text, bool mayRefuseEarly) {
  refusedEarly_ = false;
  text.clear();
  if (editMsgLine)
    editMsgLine(path + " " + services_.LocalMessage("Processing", "62441"));

  // Only a plain file has a length to read: a folder, a device or a pipe is refused before it is
  // opened, since opening or reading some of them never ends.
  if (files_.refuseUnlessPlainFile(path))
    return false;
  std::error_code error;

  int32_t status = 0;
  int16_t handle = 0;
  files_.OpenForBinary(status, handle, path);
  if (status != 0)
    return false;
  const std::uintmax_t length = std::filesystem::file_size(path, error);
  if (error || length > static_cast<std::uintmax_t>(INT32_MAX)) {
    files_.ReportReadError(path, error ? error.value() : EFBIG);
    files_.CloseFile(false, handle, path);
    return false;
  }
  if (mayRefuseEarly && length > PrefixBytes) {
    // A large file that no test could take is refused on its first megabytes: the rest is never
    // read.
    files_.ReadCharacters(status, handle, text, static_cast<int32_t>(PrefixBytes));
    if (status == 0 && !mayBeOfAKind(text)) {
      files_.CloseFile(false, handle, path);
      text.clear();
      refusedEarly_ = true;
      return true;
    }
    // The rest follows in pieces, the event loop served between them: a large file takes a
    // tenth of a second to read.
    YieldClock clock(yield);
    text.reserve(size_t(length));
    std::string piece;
    for (std::uintmax_t done = PrefixBytes; status == 0 && done < length;) {
      const std::uintmax_t count = std::min<std::uintmax_t>(length - done, ReadPieceBytes);
      files_.ReadCharacters(status, handle, piece, static_cast<int32_t>(count));
      text += piece;
      done += count;
      clock.poll();
    }
  } else if (length > 0) {
    files_.ReadCharacters(status, handle, text, static_cast<int32_t>(length));
  }
  files_.CloseFile(false, handle, path);
  if (status != 0) {
    text.clear();
    return false;
  }
  return true;
}

ImportKind FileRecogniser::RecogniseFile(const std::string& path) {
  std::string text;
  refusal = Refusal::Unreadable;
  if (!load(path, text, true))
    return ImportKind::Unknown;
  if (refusedEarly_) {
    refusal = Refusal::Unrecognised;
    return ImportKind::Unknown;
  }
  YieldClock clock(yield);
  const ImportKind kind = recogniseText(text, clock);
  refusal = kind != ImportKind::Unknown ? Refusal::None
            : text.empty()              ? Refusal::Empty
                                        : Refusal::Unrecognised;
  if (kind == ImportKind::ArtworkRS274X && gerberUnit)
    *gerberUnit = 0;
  return kind;
}

}  // namespace tvx
