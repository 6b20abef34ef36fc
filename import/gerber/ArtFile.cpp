#include "import/gerber/ArtFile.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <filesystem>
#include <limits>

namespace tvx {

namespace {

void putLittleEndian(uint8_t* out, uint64_t value, int bytes) {
  for (int i = 0; i < bytes; ++i)
    out[i] = static_cast<uint8_t>(value >> (8 * i));
}

uint64_t getLittleEndian(const uint8_t* in, int bytes) {
  uint64_t value = 0;
  for (int i = 0; i < bytes; ++i)
    value |= static_cast<uint64_t>(in[i]) << (8 * i);
  return value;
}

}  // namespace

ArtRecordBytes encodeArtRecord(const ArtRecord& record) {
  ArtRecordBytes bytes{};
  bytes[0] = record.Type;
  putLittleEndian(&bytes[1], static_cast<uint32_t>(record.N), 4);
  putLittleEndian(&bytes[5], std::bit_cast<uint64_t>(record.X), 8);
  putLittleEndian(&bytes[13], std::bit_cast<uint64_t>(record.Y), 8);
  return bytes;
}

ArtRecord decodeArtRecord(const ArtRecordBytes& bytes) {
  ArtRecord record;
  record.Type = bytes[0];
  record.N = static_cast<int32_t>(static_cast<uint32_t>(getLittleEndian(&bytes[1], 4)));
  record.X = std::bit_cast<double>(getLittleEndian(&bytes[5], 8));
  record.Y = std::bit_cast<double>(getLittleEndian(&bytes[13], 8));
  return record;
}

bool ArtFile::create(const std::string& path) {
  close();
  std::error_code ec;
  std::filesystem::remove(path, ec);  // a missing file is fine; a stuck one makes the open fail
  file_.open(path, std::ios::in | std::ios::out | std::ios::binary | std::ios::trunc);
  if (!file_.is_open())
    return false;
  path_ = path;
  writable_ = true;
  size_ = 0;
  return true;
}

bool ArtFile::open(const std::string& path) {
  close();
  writable_ = true;
  file_.open(path, std::ios::in | std::ios::out | std::ios::binary);
  if (!file_.is_open()) {
    writable_ = false;
    file_.clear();
    file_.open(path, std::ios::in | std::ios::binary);
    if (!file_.is_open())
      return false;
  }
  file_.seekg(0, std::ios::end);
  std::streamoff end = file_.tellg();
  if (!file_ || end < 0) {
    close();
    return false;
  }
  path_ = path;
  size_ = end;
  return true;
}

void ArtFile::close() {
  if (file_.is_open())
    file_.close();
  file_.clear();
  path_.clear();
  size_ = 0;
  position_ = 0;
  lastOp_ = LastOp::None;
  writable_ = false;
  readAheadStart_ = -1;
}

int32_t ArtFile::recordCount() const {
  int64_t count = size_ / ArtRecordLength;
  return static_cast<int32_t>(std::min<int64_t>(count, std::numeric_limits<int32_t>::max()));
}

// Moves the file position unless a run of the same operation already stands there: the stream
// must be repositioned when it turns from reading to writing, and a needless seek flushes.
bool ArtFile::seekTo(int64_t offset, LastOp op) {
  if (lastOp_ == op && position_ == offset)
    return true;
  if (op == LastOp::Write)
    file_.seekp(offset);
  else
    file_.seekg(offset);
  if (!file_) {
    file_.clear();
    lastOp_ = LastOp::None;
    return false;
  }
  position_ = offset;
  lastOp_ = op;
  return true;
}

bool ArtFile::write(int32_t n, const ArtRecord& record) {
  if (!file_.is_open() || !writable_ || n < 1)
    return false;
  readAheadStart_ = -1;
  const int64_t offset = static_cast<int64_t>(n - 1) * ArtRecordLength;
  if (offset > size_) {
    // Fill the gap so the file never has a hole of undefined bytes.
    if (!seekTo(size_, LastOp::Write))
      return false;
    static const char zeros[ArtRecordLength] = {};
    int64_t gap = offset - size_;
    while (gap > 0) {
      auto chunk = static_cast<std::streamsize>(std::min<int64_t>(gap, ArtRecordLength));
      file_.write(zeros, chunk);
      gap -= chunk;
    }
    if (!file_) {
      file_.clear();
      lastOp_ = LastOp::None;
      return false;
    }
    position_ = offset;
    size_ = offset;
  }
  if (!seekTo(offset, LastOp::Write))
    return false;
  const ArtRecordBytes bytes = encodeArtRecord(record);
  file_.write(reinterpret_cast<const char*>(bytes.data()), ArtRecordLength);
  if (!file_) {
    file_.clear();
    lastOp_ = LastOp::None;
    return false;
  }
  position_ = offset + ArtRecordLength;
  size_ = std::max(size_, position_);
  return true;
}

bool ArtFile::read(int32_t n, ArtRecord& record) {
  if (!file_.is_open() || n < 1 || n > recordCount())
    return false;
  const int64_t offset = static_cast<int64_t>(n - 1) * ArtRecordLength;
  if ((readAheadStart_ < 0 || offset < readAheadStart_ ||
       offset + ArtRecordLength > readAheadStart_ + int64_t(readAhead_.size())) &&
      !fillReadAhead(offset))
    return false;
  ArtRecordBytes bytes{};
  std::memcpy(bytes.data(), readAhead_.data() + (offset - readAheadStart_), ArtRecordLength);
  record = decodeArtRecord(bytes);
  return true;
}

bool ArtFile::fillReadAhead(int64_t offset) {
  constexpr int64_t RecordsAhead = 16384;
  readAheadStart_ = -1;
  if (!seekTo(offset, LastOp::Read))
    return false;
  const int64_t wanted = std::min(RecordsAhead, (size_ - offset) / ArtRecordLength);
  readAhead_.resize(size_t(std::max<int64_t>(wanted, 1) * ArtRecordLength));
  file_.read(readAhead_.data(), std::streamsize(readAhead_.size()));
  const int64_t got = file_.gcount() / ArtRecordLength * ArtRecordLength;
  if (got < ArtRecordLength) {
    // The file shrank under us: treat it as ending here.
    file_.clear();
    lastOp_ = LastOp::None;
    return false;
  }
  if (!file_)
    file_.clear();
  readAhead_.resize(size_t(got));
  readAheadStart_ = offset;
  position_ = offset + file_.gcount();
  return true;
}

}  // namespace tvx
