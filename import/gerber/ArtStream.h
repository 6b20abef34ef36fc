// Sequential access to TMP.ART with large buffers: the text pass appends its drawing stream record
// by record and the drawing pass replays it, neither touching the disk per record.
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

// Reads the records of a file one after the other, from any record on.
class ArtReader {
public:
  static constexpr size_t BufferRecords = 3120;

  ArtReader() = default;
  ~ArtReader() { close(); }
  ArtReader(const ArtReader&) = delete;
  ArtReader& operator=(const ArtReader&) = delete;

  bool open(const std::string& path);
  void close();
  bool isOpen() const { return file_ != nullptr; }

  // Whole records of the file; bytes of a cut-off last record are not counted.
  int32_t recordCount() const { return count_; }
  // The next read gives record n (from 1).
  bool seek(int32_t n);
  // The next record; false at the end of the whole records or on a read failure.
  bool next(ArtRecord& record);
  // Number of the record that next() gives.
  int32_t position() const { return next_; }

private:
  bool fill();

  std::FILE* file_ = nullptr;
  std::vector<uint8_t> buffer_;
  size_t used_ = 0;    // bytes in buffer_
  size_t offset_ = 0;  // read position in buffer_
  int32_t count_ = 0;
  int32_t next_ = 1;  // record number of the next record
};

}  // namespace tvx
