#include "import/gerber/GerberStreamCounts.h"

#include "import/gerber/ArtFile.h"
#include "import/gerber/GerberBlockReader.h"
#include "import/gerber/GerberFormat.h"

#include <cstdio>
#include <cstring>
#include <memory>

namespace tvx {

namespace {

// Records read at a time: about a megabyte, so a file of hundreds of megabytes takes a few
// hundred reads.
constexpr size_t BlockRecords = 49152;

// Follows the stream as the drawing pass replays it: a path start sets the mode of the points
// after it, an arc centre precedes its arc's path start, a region runs from its start to the
// record that closes it.
class StreamCounter {
public:
  explicit StreamCounter(GerberStreamCounts& counts) : counts_(counts) {}

  // False once the end record or a record of an unknown type has been taken.
  bool take(const ArtRecord& record);

private:
  ApertureOperations& forCode(int32_t dCode) {
    if (!last_ || dCode != lastCode_) {
      last_ = &counts_.ByDCode[dCode];
      lastCode_ = dCode;
    }
    return *last_;
  }
  void stepRepeat(const ArtRecord& record);

  GerberStreamCounts& counts_;
  int32_t mode_ = 0;
  bool inRegion_ = false;
  bool blockOpen_ = false;  // the last step and repeat record started a block of several copies
  ApertureOperations* last_ = nullptr;
  int32_t lastCode_ = 0;
};

bool StreamCounter::take(const ArtRecord& record) {
  ++counts_.Records;
  switch (record.Type) {
  case artrecord::Flash:
    ++counts_.Flashes;
    ++forCode(record.N).Flashes;
    break;
  case artrecord::PathStart:
    mode_ = record.N;
    inRegion_ = inRegion_ || record.N == RegionMode;
    break;
  case artrecord::PolygonArcStart:
    mode_ = record.N;
    inRegion_ = true;
    break;
  case artrecord::PathPoint:
    if (inRegion_)
      break;
    ++counts_.Draws;
    if (mode_ == ClockwiseMode || mode_ == CounterClockwiseMode)
      ++counts_.Arcs;
    ++forCode(record.N).Draws;
    mode_ = LineMode;
    break;
  case artrecord::PolygonArcPoint:
    mode_ = RegionMode;
    inRegion_ = true;
    break;
  case artrecord::ArcCentreOrPolygonEnd:
    if (record.N < 0) {
      ++counts_.Regions;
      inRegion_ = false;
    }
    mode_ = LineMode;
    break;
  case artrecord::StepRepeat:
    stepRepeat(record);
    break;
  case artrecord::ImagePolarity:
    counts_.NegativeImage = record.N == 1;
    break;
  case artrecord::LayerPolarity:
    if (record.N == 0)
      ++counts_.DarkLayers;
    else if (record.N == 1)
      ++counts_.ClearLayers;
    break;
  case artrecord::EndOfStream:
    counts_.Complete = true;
    return false;
  default:
    return false;
  }
  return true;
}

// A block is two records: the copies (N 1), then the steps (N 2).
void StreamCounter::stepRepeat(const ArtRecord& record) {
  if (record.N == 1) {
    blockOpen_ = wholeNumber(record.X) * wholeNumber(record.Y) > 1;
    if (blockOpen_)
      counts_.StepRepeats.push_back({record.X, record.Y, 0, 0});
  } else if (record.N == 2 && blockOpen_) {
    counts_.StepRepeats.back().StepX = record.X;
    counts_.StepRepeats.back().StepY = record.Y;
    blockOpen_ = false;
  }
}

}  // namespace

bool countGerberStream(const std::string& path, GerberStreamCounts& counts) {
  counts = GerberStreamCounts{};
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                             &std::fclose);
  if (!file || std::fseek(file.get(), long(artrecord::HeaderRecords) * ArtRecordLength, SEEK_SET))
    return false;
  StreamCounter counter(counts);
  std::vector<uint8_t> block(BlockRecords * ArtRecordLength);
  ArtRecordBytes bytes;
  size_t held = 0;  // bytes of a record cut by the end of the last read
  while (true) {
    const size_t read = std::fread(block.data() + held, 1, block.size() - held, file.get());
    if (read == 0)
      return false;  // the stream ended before its end record
    held += read;
    const size_t whole = held - held % ArtRecordLength;
    for (size_t at = 0; at < whole; at += ArtRecordLength) {
      std::memcpy(bytes.data(), block.data() + at, ArtRecordLength);
      if (!counter.take(decodeArtRecord(bytes)))
        return counts.Complete;
    }
    std::memmove(block.data(), block.data() + whole, held - whole);
    held -= whole;
  }
}

}  // namespace tvx
