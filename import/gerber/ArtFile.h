// TMP.ART, the intermediate file of the Gerber path: fixed records of 21 bytes, numbered from 1,
// little-endian, no padding and no header of its own.
#pragma once

#include <array>
#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

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

// Record types. Records 1 to 5 are the header; the drawing stream follows up to its end record,
// then the four aperture sections, each closed by its end record.
namespace artrecord {
enum Type : uint8_t {
  Header = 1,
  Flash = 5,                  // N the D-code, at the point
  PathStart = 6,              // N the interpolation mode, from the point
  PathPoint = 7,              // N the D-code, a draw to the point
  ArcCentreOrPolygonEnd = 8,  // N the radius at the centre; N -1 closes the polygon
  EndOfStream = 9,
  DrawSection = 10,
  DrawSectionEnd = 19,
  RoundPadSection = 20,
  RoundPadSectionEnd = 29,
  SquarePadSection = 30,
  SquarePadSectionEnd = 39,
  SpecialSection = 40,
  MacroNameCharacter = 41,  // in section 40: X the position, Y the character
  SpecialSectionEnd = 49,
  StepRepeat = 50,       // N 1: the counts in X and Y; N 2: the steps
  ImagePolarity = 51,    // N 0 positive, 1 negative
  LayerPolarity = 52,    // N 0 dark, 1 clear
  PolygonArcStart = 60,  // PathStart of an arc side of a polygon
  PolygonArcPoint = 70,  // PathPoint of an arc side of a polygon
};
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

  // Reads a block of whole records from offset into the read-ahead; false when not one is there.
  bool fillReadAhead(int64_t offset);

  std::fstream file_;
  std::string path_;
  // Records read ahead from readAheadStart_ (-1: none): the drawing pass reads the file in order,
  // and a record a call through the stream costs more than decoding it. Any write drops them.
  std::vector<char> readAhead_;
  int64_t readAheadStart_ = -1;
  int64_t size_ = 0;
  int64_t position_ = 0;
  LastOp lastOp_ = LastOp::None;
  bool writable_ = false;
};

}  // namespace tvx
