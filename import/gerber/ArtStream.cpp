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

}  // namespace tvx
