// Stage one of a DXF drawing: its tagged lines (a group code, then its value) into a table of
// typed records. Only the groups the drawing's reading needs are kept.
#pragma once

#include "import/core/DxfRecord.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tvx {

class FileLayer;
class SystemServices;

// Which field of a record a group code fills; Dropped for the groups that are not kept.
enum class DxfField { Dropped, Text, Real, Int };
DxfField dxfFieldOf(int32_t code);

// Takes a drawing's lines one at a time. A code line comes first, then (when the code line is
// not empty) its value line; code and value are trimmed, the value upper-cased (but the strings
// of texts, groups 1 and 3) and read into the code's field. A code that is no whole number drops
// its pair.
class DxfRecordBuilder {
public:
  explicit DxfRecordBuilder(std::vector<DxfRecord>& records) : records_(records) {}

  // False once the pair 0/EOF has been taken: nothing behind it is read.
  bool addLine(std::string_view line);

private:
  std::vector<DxfRecord>& records_;
  bool expectValue_ = false;
  int32_t code_ = -1;
  bool ended_ = false;
};

// The records of a drawing held in text (LF or CR LF line ends).
std::vector<DxfRecord> ParseDxfText(std::string_view text);

// A binary drawing starts with this line (then CR LF, 0x1A and 0x00).
inline constexpr std::string_view BinaryDxfSentinel = "AutoCAD Binary DXF";

enum class DxfLoad { Read, Unreadable, Binary };

// Reads a drawing file into records: "Processing" and the file's name to editMsgLine first. An
// unreadable file is reported by the file layer; a binary drawing is left for the caller to
// report.
DxfLoad ReadDxfFile(FileLayer& files, const SystemServices& services, const std::string& fileName,
                    std::vector<DxfRecord>& records,
                    const std::function<void(const std::string&)>& editMsgLine);

}  // namespace tvx
