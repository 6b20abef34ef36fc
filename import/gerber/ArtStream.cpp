#include "import/gerber/ArtStream.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <limits>

namespace tvx {

ArtWriter::~ArtWriter() { close(); }

bool ArtWriter::create(const std::string& path) {
  close();
  failed_ = false;
  error_ = 0;
  count_ = 0;
  used_ = 0;
  path_ = path;
  std::error_code ec;
  std::filesystem::remove(path, ec);  // a missing file is fine; a stuck one makes the open fail
  errno = 0;
  file_ = std::fopen(path.c_str(), "w+b");
  if (!file_) {
    error_ = errno ? errno : EIO;
    failed_ = true;
    return false;
  }
  buffer_.resize(BufferRecords * ArtRecordLength);
  return true;
}

bool ArtWriter::fail() {
  if (!failed_)
    error_ = errno ? errno : EIO;
  failed_ = true;
  return false;
}

bool ArtWriter::flush() {
  if (used_ == 0)
    return true;
  errno = 0;
  const size_t written = std::fwrite(buffer_.data(), 1, used_, file_);
  const bool ok = written == used_;
  used_ = 0;
  return ok ? true : fail();
}

bool ArtWriter::append(const ArtRecord& record) {
  if (!file_ || failed_)
    return false;
  if (count_ == std::numeric_limits<int32_t>::max()) {
    errno = EFBIG;
    return fail();
  }
  if (used_ + ArtRecordLength > buffer_.size() && !flush())
    return false;
  const ArtRecordBytes bytes = encodeArtRecord(record);
  std::memcpy(buffer_.data() + used_, bytes.data(), ArtRecordLength);
  used_ += ArtRecordLength;
  ++count_;
  return true;
}

bool ArtWriter::writeAt(int32_t n, const ArtRecord& record) {
  if (!file_ || failed_)
    return false;
  if (n < 1 || n > count_) {
    errno = EINVAL;
    return fail();
  }
  if (!flush())
    return false;
  const ArtRecordBytes bytes = encodeArtRecord(record);
  errno = 0;
  if (std::fseek(file_, static_cast<long>(n - 1) * ArtRecordLength, SEEK_SET) != 0 ||
      std::fwrite(bytes.data(), 1, ArtRecordLength, file_) != ArtRecordLength ||
      std::fseek(file_, 0, SEEK_END) != 0)
    return fail();
  return true;
}

bool ArtWriter::close() {
  if (!file_)
    return !failed_;
  flush();
  errno = 0;
  if (std::fclose(file_) != 0)
    fail();
  file_ = nullptr;
  buffer_.clear();
  buffer_.shrink_to_fit();
  return !failed_;
}

bool ArtReader::open(const std::string& path) {
  close();
  file_ = std::fopen(path.c_str(), "rb");
  if (!file_)
    return false;
  if (std::fseek(file_, 0, SEEK_END) != 0) {
    close();
    return false;
  }
  const long size = std::ftell(file_);
  if (size < 0 || std::fseek(file_, 0, SEEK_SET) != 0) {
    close();
    return false;
  }
  const long records = size / ArtRecordLength;
  count_ = records > std::numeric_limits<int32_t>::max() ? std::numeric_limits<int32_t>::max()
                                                         : static_cast<int32_t>(records);
  buffer_.resize(BufferRecords * ArtRecordLength);
  used_ = offset_ = 0;
  next_ = 1;
  return true;
}

void ArtReader::close() {
  if (file_)
    std::fclose(file_);
  file_ = nullptr;
  buffer_.clear();
  used_ = offset_ = 0;
  count_ = 0;
  next_ = 1;
}

bool ArtReader::seek(int32_t n) {
  if (!file_ || n < 1 || n > count_ + 1)
    return false;
  if (std::fseek(file_, static_cast<long>(n - 1) * ArtRecordLength, SEEK_SET) != 0)
    return false;
  used_ = offset_ = 0;
  next_ = n;
  return true;
}

bool ArtReader::fill() {
  // Only whole records of the file are read, so a cut-off tail is never seen.
  const size_t left = static_cast<size_t>(count_ - next_ + 1) * ArtRecordLength;
  const size_t want = std::min(left, buffer_.size());
  used_ = std::fread(buffer_.data(), 1, want, file_);
  offset_ = 0;
  used_ -= used_ % ArtRecordLength;
  return used_ > 0;
}

bool ArtReader::next(ArtRecord& record) {
  if (!file_ || next_ > count_)
    return false;
  if (offset_ + ArtRecordLength > used_ && !fill())
    return false;
  ArtRecordBytes bytes;
  std::memcpy(bytes.data(), buffer_.data() + offset_, ArtRecordLength);
  record = decodeArtRecord(bytes);
  offset_ += ArtRecordLength;
  ++next_;
  return true;
}

}  // namespace tvx
