// Appending to TMP.ART through a large buffer: the text pass writes its drawing stream record by
// record without touching the disk per record. The drawing pass reads the file with ArtFile.
#pragma once

#include "import/gerber/ArtFile.h"

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace tvx {

// Appends records to a new file; earlier records can be rewritten in place (the header, which is
// known only at the end). Nothing throws: a failure is kept, and every later call fails too.
class ArtWriter {
public:
  static constexpr size_t BufferRecords = 3120;  // 65520 bytes

  ArtWriter() = default;
  ~ArtWriter();
  ArtWriter(const ArtWriter&) = delete;
  ArtWriter& operator=(const ArtWriter&) = delete;

  // A new empty file; an existing file of that name is removed first.
  bool create(const std::string& path);
  bool append(const ArtRecord& record);
  // Rewrites record n (from 1) of those appended so far.
  bool writeAt(int32_t n, const ArtRecord& record);
  // Flushes and closes; false when a write failed at any time.
  bool close();

  bool isOpen() const { return file_ != nullptr; }
  bool failed() const { return failed_; }
  int error() const { return error_; }  // errno of the failure
  int32_t recordCount() const { return count_; }
  const std::string& path() const { return path_; }

private:
  bool flush();
  bool fail();

  std::FILE* file_ = nullptr;
  std::string path_;
  std::vector<uint8_t> buffer_;
  size_t used_ = 0;  // bytes in buffer_
  int32_t count_ = 0;
  bool failed_ = false;
  int error_ = 0;
};

}  // namespace tvx
