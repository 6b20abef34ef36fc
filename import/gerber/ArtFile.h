// TMP.ART, the intermediate file of the Gerber path: fixed records of 21 bytes, numbered from 1,
// little-endian, no padding and no header of its own.
#pragma once

#include <array>
#include <cstdint>
#include <fstream>
#include <string>

namespace tvx {

struct ArtRecord {
  uint8_t Type = 0;  // byte 0
  int32_t N = 0;     // bytes 1 to 4
  double X = 0;      // bytes 5 to 12, IEEE double
  double Y = 0;      // bytes 13 to 20

  bool operator==(const ArtRecord&) const = default;
};

inline constexpr int ArtRecordLength = 21;
using ArtRecordBytes = std::array<uint8_t, ArtRecordLength>;

// Field by field, so the bytes are the same on every host whatever its byte order and padding.
ArtRecordBytes encodeArtRecord(const ArtRecord& record);
ArtRecord decodeArtRecord(const ArtRecordBytes& bytes);

// Record types of the file's fixed parts.
namespace artrecord {
inline constexpr uint8_t Header = 1;  // records 1 to 5
inline constexpr uint8_t EndOfStream = 9;
inline constexpr uint8_t DrawSection = 10, DrawSectionEnd = 19;
inline constexpr uint8_t RoundPadSection = 20, RoundPadSectionEnd = 29;
inline constexpr uint8_t SquarePadSection = 30, SquarePadSectionEnd = 39;
inline constexpr uint8_t SpecialSection = 40, SpecialSectionEnd = 49;
inline constexpr int32_t HeaderRecords = 5;
}  // namespace artrecord

// Random access to the records of one file by record number. A file whose size is not a multiple
// of 21 is read as far as whole records go; hasPartialRecord() tells that bytes are left over.
// Nothing here throws: every operation returns false on failure.
class ArtFile {
public:
  ArtFile() = default;
  ~ArtFile() { close(); }
  ArtFile(const ArtFile&) = delete;
  ArtFile& operator=(const ArtFile&) = delete;

  // A new empty file; an existing file of that name is removed first.
  bool create(const std::string& path);
  // An existing file, for reading and writing; read only when it cannot be written.
  bool open(const std::string& path);
  void close();
  bool isOpen() const { return file_.is_open(); }
  const std::string& path() const { return path_; }

  // Writes record n (from 1). Writing beyond the end fills the records between with zeros.
  bool write(int32_t n, const ArtRecord& record);
  bool append(const ArtRecord& record) { return write(recordCount() + 1, record); }
  // Reads record n; false when n is not a whole record of the file.
  bool read(int32_t n, ArtRecord& record);

  int32_t recordCount() const;
  bool hasPartialRecord() const { return size_ % ArtRecordLength != 0; }
  int64_t sizeInBytes() const { return size_; }

private:
  enum class LastOp { None, Read, Write };
  bool seekTo(int64_t offset, LastOp op);

  std::fstream file_;
  std::string path_;
  int64_t size_ = 0;
  int64_t position_ = 0;
  LastOp lastOp_ = LastOp::None;
  bool writable_ = false;
};

}  // namespace tvx
