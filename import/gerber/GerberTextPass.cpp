#include "import/gerber/GerberTextPass.h"

#include "common/FileLayer.h"
#include "import/core/FileRecognition.h"
#include "import/core/ReportStatus.h"
#include "import/core/StatusCodes.h"
#include "import/gerber/ArtSections.h"
#include "import/gerber/ArtStream.h"
#include "import/gerber/GerberBlockReader.h"
#include "import/gerber/ParameterBlocks.h"
#include "platform/SystemServices.h"

#include <cmath>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <unordered_map>

namespace tvx {

namespace {

// The widest extent the store can hold on one axis.
constexpr double MostExtent = 2 * WorldLimit;
// Bytes read from the source at a time.
constexpr int32_t ChunkBytes = 1 << 16;

// Where an aperture's rows stand, found once per D-code and kept until a definition changes the
// lists.
struct CachedAperture {
  int32_t drawIndex = -1;
  ApertureListKind flashKind = DrawOrRoundList;
  int32_t flashIndex = -1;
};

class TextPass {
public:
  TextPass(GerberPassContext& context, const std::string& sourceName,
           const std::string& intermediate)
      : context_(context), lists_(context.scan.Lists), sourceName_(sourceName),
        intermediate_(intermediate), unitsPerMm_(context.services.DatabaseUnitsPerMm()),
        parameters_(context.format, lists_, unitsPerMm_),
        reader_(context.format, parameters_, unitsPerMm_), clock_(context.yield) {}

  // Runs the pass over the text that refill gives; length is the text's size for the progress.
  // closeSource runs once the text is read or the pass fails.
  void run(int32_t& status, GerberBlockReader::Refill refill, int64_t length,
           const std::function<void()>& closeSource);

  // Cancels before any text is read, for a source that cannot be opened.
  void cancelUnread() { cancel({}); }

  bool createIntermediate(int32_t& status);

private:
  void progress();
  bool writeOperation(int32_t& status);
  bool draw(int32_t& status);
  bool flash();
  void widenExtents();
  bool finish(int32_t& status);
  bool put(const ArtRecord& record) { return out_.append(record); }
  int32_t drawRow();
  std::pair<ApertureListKind, int32_t> flashRow();
  CachedAperture& cached(int32_t dCode);
  void checkSelection();
  void fail(int32_t& status, int32_t code, const std::string& name);
  void writeFailed(int32_t& status);
  void cancel(const std::function<void()>& closeSource);

  GerberPassContext& context_;
  ApertureLists& lists_;
  const std::string& sourceName_;
  const std::string& intermediate_;
  int32_t unitsPerMm_;
  ParameterInterpreter parameters_;
  GerberBlockReader reader_;
  YieldClock clock_;
  ArtWriter out_;
  ArtHeader header_;
  int64_t length_ = 0;
  int64_t shownPercent_ = -1;

  double prevX_ = 0, prevY_ = 0;
  bool needStart_ = false;
  bool firstOperationSeen_ = false;

  // The rows of the selected aperture, forgotten at the next aperture select.
  int32_t drawIndex_ = -1;
  ApertureListKind flashKind_ = DrawOrRoundList;
  int32_t flashIndex_ = -1;
  uint64_t selectedGeneration_ = 0;
  // The rows of every D-code seen, so that switching apertures does not walk the lists.
  std::unordered_map<int32_t, CachedAperture> byCode_;
  uint64_t byCodeGeneration_ = 0;
};

bool TextPass::createIntermediate(int32_t& status) {
  header_ = ArtHeader{};
  context_.scan.NotGerber = false;
  loadApertureTable(lists_, context_.apertureTable
                                ? std::span<const ApertureTableRow>(*context_.apertureTable)
                                : std::span<const ApertureTableRow>());
  parameters_.reset();
  if (!out_.create(intermediate_)) {
    writeFailed(status);
    return false;
  }
  // The header is known only at the end; five placeholders keep its place.
  for (int32_t n = 1; n <= artrecord::HeaderRecords; ++n)
    put({artrecord::Header, 0, 0, 0});
  if (out_.failed()) {
    writeFailed(status);
    return false;
  }
  return true;
}

void TextPass::run(int32_t& status, GerberBlockReader::Refill refill, int64_t length,
                   const std::function<void()>& closeSource) {
  length_ = length;
  reader_.reset(std::move(refill), [this] { progress(); });
  prevX_ = prevY_ = 0;
  needStart_ = false;
  firstOperationSeen_ = false;
  drawIndex_ = flashIndex_ = -1;
  byCode_.clear();
  progress();
  status = 0;
  while (reader_.Operation != operation::Stop) {
    reader_.ReadBlock(status);
    if (status != 0) {
      // The file helper has shown its message; its status stands.
      cancel(closeSource);
      return;
    }
    if (!writeOperation(status)) {
      cancel(closeSource);
      return;
    }
    widenExtents();
  }
  if (closeSource)
    closeSource();
  if (!finish(status))
    cancel({});
}

void TextPass::progress() {
  if (length_ > 0) {
    const int64_t percent = reader_.consumed() * 100 / length_;
    if (percent > shownPercent_) {
      shownPercent_ = percent;
      if (context_.editMsgLine)
        context_.editMsgLine(context_.services.LocalMessage("Preprocessed", "847") + " " +
                             std::to_string(percent) + "%");
    }
  }
  clock_.poll();
}

CachedAperture& TextPass::cached(int32_t dCode) {
  if (byCodeGeneration_ != lists_.generation) {
    byCode_.clear();
    byCodeGeneration_ = lists_.generation;
  }
  return byCode_[dCode];
}

void TextPass::checkSelection() {
  if (selectedGeneration_ != lists_.generation) {
    drawIndex_ = flashIndex_ = -1;
    selectedGeneration_ = lists_.generation;
  }
}

int32_t TextPass::drawRow() {
  checkSelection();
  if (drawIndex_ >= 0)
    return drawIndex_;
  CachedAperture& entry = cached(reader_.CurrentD);
  if (entry.drawIndex < 0) {
    ApertureListKind kind;
    NoteApertureUse(lists_, reader_.CurrentD, 0, kind, entry.drawIndex);
  }
  return drawIndex_ = entry.drawIndex;
}

std::pair<ApertureListKind, int32_t> TextPass::flashRow() {
  checkSelection();
  if (flashIndex_ < 0) {
    CachedAperture& entry = cached(reader_.CurrentD);
    if (entry.flashIndex < 0)
      NoteApertureUse(lists_, reader_.CurrentD, 1, entry.flashKind, entry.flashIndex);
    flashKind_ = entry.flashKind;
    flashIndex_ = entry.flashIndex;
  }
  return {flashKind_, flashIndex_};
}

bool TextPass::writeOperation(int32_t& status) {
  if (reader_.PolygonEnd) {
    reader_.InPolygon = false;
    reader_.PolygonEnd = false;
    if (!put({artrecord::ArcCentreOrPolygonEnd, -1, 0, 0}))
      return writeFailed(status), false;
    // G36 again behind the G37: the next polygon starts at once.
    if (reader_.InterpolationMode == RegionMode)
      reader_.InPolygon = true;
  }
  switch (reader_.Operation) {
  case operation::ApertureSelect:
    drawIndex_ = flashIndex_ = -1;
    break;
  case operation::Draw:
    return draw(status);
  case operation::Move:
    prevX_ = reader_.X;
    prevY_ = reader_.Y;
    needStart_ = true;
    break;
  case operation::Flash:
    if (!flash())
      return writeFailed(status), false;
    break;
  case WriteStepRepeat: {
    const StepRepeat& s = parameters_.Step;
    if (!put({artrecord::StepRepeat, 1, s.StepX, s.StepY}) ||
        !put({artrecord::StepRepeat, 2, s.StepI, s.StepJ}))
      return writeFailed(status), false;
    break;
  }
  case WriteImagePolarity:
    if (!put({artrecord::ImagePolarity, parameters_.ImagePolarity, 0, 0}))
      return writeFailed(status), false;
    header_.FeatureFlags |=
        parameters_.ImagePolarity == 0 ? featureflag::PositiveImage : featureflag::NegativeImage;
    break;
  case WriteLayerPolarity:
    if (!put({artrecord::LayerPolarity, parameters_.LayerPolarity, 0, 0}))
      return writeFailed(status), false;
    header_.FeatureFlags |=
        parameters_.LayerPolarity == 0 ? featureflag::DarkLayer : featureflag::ClearLayer;
    break;
  case operation::Garbage:
    context_.scan.NotGerber = true;
    fail(status, StatusNotSupported, sourceName_);
    return false;
  default:
    // D04 to D09 and the stop: nothing to write.
    break;
  }
  return true;
}

bool TextPass::draw(int32_t& status) {
  GerberBlockReader& r = reader_;
  const int32_t row = drawRow();
  // Arc sides of a polygon have record types of their own.
  const bool polygonArc = r.ArcMode && r.InPolygon;
  if (r.ArcMode) {
    const double radius = std::sqrt(r.I * r.I + r.J * r.J);
    if (radius > WorldLimit) {
      fail(status, StatusOutsideLimits, std::string());
      return false;
    }
    double cx = 0, cy = 0;
    if (arcCentre(r.QuadrantMode, r.InterpolationMode, prevX_, prevY_, r.X, r.Y, r.I, r.J, cx,
                  cy) &&
        !put({artrecord::ArcCentreOrPolygonEnd, toInt32(radius), cx, cy}))
      return writeFailed(status), false;
    r.I = r.J = 0;
    needStart_ = true;
  }
  if (r.PolygonStart) {
    r.PolygonStart = false;
    needStart_ = true;
  }
  if (needStart_) {
    // A straight side that starts a contour of a region says so, even after an arc side left its
    // direction in the interpolation mode: it starts a new outline.
    const double startMode = r.InPolygon && !polygonArc ? RegionMode : r.InterpolationMode;
    if (!put({polygonArc ? artrecord::PolygonArcStart : artrecord::PathStart, toInt32(startMode),
              prevX_, prevY_}))
      return writeFailed(status), false;
    needStart_ = false;
  }
  if (!put({polygonArc ? artrecord::PolygonArcPoint : artrecord::PathPoint, r.CurrentD, r.X, r.Y}))
    return writeFailed(status), false;
  if (r.InterpolationMode > 0 && r.InterpolationMode < 5 && !r.InPolygon)
    lists_.DrawList[size_t(row)].Uses += parameters_.Step.StepX * parameters_.Step.StepY;
  prevX_ = r.X;
  prevY_ = r.Y;
  // Every arc outside a polygon stands alone.
  if (r.ArcMode && !r.InPolygon)
    needStart_ = true;
  return true;
}

bool TextPass::flash() {
  const auto [kind, row] = flashRow();
  if (!put({artrecord::Flash, reader_.CurrentD, reader_.X, reader_.Y}))
    return false;
  lists_.flashList(kind)[size_t(row)].Uses += parameters_.Step.StepX * parameters_.Step.StepY;
  needStart_ = true;
  prevX_ = reader_.X;
  prevY_ = reader_.Y;
  return true;
}

// Draws, moves and flashes widen the extents with every repeat of the step and repeat, by their
// points alone; the very first one of the file does not count.
void TextPass::widenExtents() {
  const int32_t op = reader_.Operation;
  if (op != operation::Draw && op != operation::Move && op != operation::Flash)
    return;
  if (!firstOperationSeen_) {
    firstOperationSeen_ = true;
    return;
  }
  const StepRepeat& s = parameters_.Step;
  const double countX = wholeNumber(s.StepX);
  const double countY = wholeNumber(s.StepY);
  if (!(countX >= 1 && countY >= 1))
    return;
  // The repeats lie on a grid, so its corners are the extremes.
  const double xs[2] = {reader_.X, reader_.X + (countX - 1) * s.StepI};
  const double ys[2] = {reader_.Y, reader_.Y + (countY - 1) * s.StepJ};
  ArtHeader& h = header_;
  for (double x : xs) {
    if (x < h.MinX)
      h.MinX = x;
    if (x > h.MaxX)
      h.MaxX = x;
  }
  for (double y : ys) {
    if (y < h.MinY)
      h.MinY = y;
    if (y > h.MaxY)
      h.MaxY = y;
  }
}

bool TextPass::finish(int32_t& status) {
  ArtHeader& h = header_;
  if (!(h.MaxX - h.MinX <= MostExtent && h.MaxY - h.MinY <= MostExtent)) {
    context_.reporter.ReportStatus(StatusExtents, sourceName_);
    status = 1;
    return false;
  }
  put({artrecord::EndOfStream, 0, 0, 0});
  const int32_t streamRecords = out_.recordCount() - artrecord::HeaderRecords;
  for (int which = 0; which < 4; ++which)
    WriteSections(status, which, out_, lists_, h.SectionRecords[size_t(which)]);
  h.TwoFileFlag = 0;
  h.UnitX = h.UnitY = storeUnitsPerFileUnit(context_.format.Unit, unitsPerMm_);
  const auto header = headerRecords(h);
  for (int32_t n = 1; n <= artrecord::HeaderRecords; ++n)
    out_.writeAt(n, header[size_t(n - 1)]);
  if (!out_.close()) {
    writeFailed(status);
    return false;
  }
  context_.scan.Header = h;
  context_.scan.FileAttributes = parameters_.FileAttributes;
  context_.scan.Notes = parameters_.Notes;
  context_.scan.MoreNotes = parameters_.MoreNotes;
  context_.scan.StreamRecords = streamRecords;
  status = 0;
  return true;
}

void TextPass::fail(int32_t& status, int32_t code, const std::string& name) {
  context_.reporter.ReportStatus(code, name);
  status = 1;
}

void TextPass::writeFailed(int32_t& status) {
  context_.files.ReportWriteError(intermediate_, out_.error());
  status = 1;
}

void TextPass::cancel(const std::function<void()>& closeSource) {
  if (closeSource)
    closeSource();
  out_.close();
  std::error_code ec;
  std::filesystem::remove(intermediate_, ec);
  if (context_.mainMsgLine)
    context_.mainMsgLine(context_.services.LocalMessage("Cancelled", "62182"));
}

}  // namespace

double storeUnitsPerFileUnit(int32_t unit, int32_t unitsPerMm) {
  return wholeNumber(unitsPerMm / unitTableValue(unit));
}

bool arcCentre(double quadrantMode, double interpolationMode, double px, double py, double ex,
               double ey, double i, double j, double& cx, double& cy) {
  if (quadrantMode == 75) {
    cx = px + i;
    cy = py + j;
    return true;
  }
  i = std::fabs(i);
  j = std::fabs(j);
  // Signs by the direction of travel; the first line that fits wins a tie.
  struct Case {
    bool xNotAbove;  // E.x not above P.x (else: not below)
    bool yNotBelow;  // E.y not below P.y (else: not above)
    double si, sj;   // signs of I and J in the centre
  };
  static constexpr Case CounterClockwise[] = {
      {true, true, -1, -1}, {true, false, +1, -1}, {false, false, +1, +1}, {false, true, -1, +1}};
  static constexpr Case Clockwise[] = {
      {false, false, -1, -1}, {false, true, +1, -1}, {true, true, +1, +1}, {true, false, -1, +1}};
  const Case* cases = interpolationMode == 3   ? CounterClockwise
                      : interpolationMode == 2 ? Clockwise
                                               : nullptr;
  if (!cases)
    return false;
  for (int n = 0; n < 4; ++n) {
    const Case& c = cases[n];
    const bool xFits = c.xNotAbove ? ex <= px : ex >= px;
    const bool yFits = c.yNotBelow ? ey >= py : ey <= py;
    if (xFits && yFits) {
      cx = px + c.si * i;
      cy = py + c.sj * j;
      return true;
    }
  }
  return false;
}

void RunGerberTextPass(int32_t& status, const std::string& source, const std::string& intermediate,
                       GerberPassContext& context) {
  TextPass pass(context, source, intermediate);
  status = 0;
  // The notes are those of this file alone, also when the pass fails.
  context.scan.Notes.clear();
  context.scan.MoreNotes = 0;
  if (!pass.createIntermediate(status)) {
    pass.cancelUnread();
    return;
  }
  int16_t handle = 0;
  context.files.OpenForBinary(status, handle, source);
  if (status != 0) {
    pass.cancelUnread();
    return;
  }
  std::error_code ec;
  const auto size = std::filesystem::file_size(source, ec);
  int64_t left = ec ? 0 : static_cast<int64_t>(size);
  std::string chunk;
  auto refill = [&context, handle, &left, &chunk](int32_t& readStatus, std::string_view& piece) {
    if (left <= 0)
      return false;
    const auto count = static_cast<int32_t>(std::min<int64_t>(left, ChunkBytes));
    context.files.ReadCharacters(readStatus, handle, chunk, count);
    if (readStatus != 0)
      return false;
    left -= count;
    piece = chunk;
    return true;
  };
  pass.run(status, refill, static_cast<int64_t>(ec ? 0 : size),
           [&context, handle, &source] { context.files.CloseFile(false, handle, source); });
  if (status == 0)
    numberNoteLines(source, context.scan.Notes);
}

std::vector<std::string> noteTexts(const GerberScan& scan) {
  std::vector<std::string> texts;
  for (const InputNote& note : scan.Notes)
    texts.push_back("line " + std::to_string(note.Line) + ": " + note.What);
  if (scan.MoreNotes > 0)
    texts.push_back("and " + std::to_string(scan.MoreNotes) + " more of the same kinds");
  return texts;
}

void numberNoteLines(const std::string& source, std::vector<InputNote>& notes) {
  if (notes.empty())
    return;
  std::ifstream in(source, std::ios::binary);
  std::vector<char> buffer(ChunkBytes);
  int64_t offset = 0;
  int64_t line = 1;
  size_t next = 0;  // notes stand in the order of the file
  while (next < notes.size()) {
    in.read(buffer.data(), std::streamsize(buffer.size()));
    const std::streamsize got = in.gcount();
    for (std::streamsize i = 0; i <= got && next < notes.size();) {
      if (notes[next].Offset <= offset + i) {
        notes[next++].Line = line;
        continue;
      }
      if (i == got)
        break;
      if (buffer[size_t(i)] == '\n')
        ++line;
      ++i;
    }
    offset += got;
    if (got == 0)
      break;
  }
  for (; next < notes.size(); ++next)
    notes[next].Line = line;
}

}  // namespace tvx
