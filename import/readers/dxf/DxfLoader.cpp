#include "import/readers/dxf/DxfLoader.h"

#include "common/ToNumber.h"
#include "import/core/ReadTextFile.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace tvx {

namespace {

std::string_view trimmed(std::string_view s) {
  const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
  while (!s.empty() && blank(s.front()))
    s.remove_prefix(1);
  while (!s.empty() && blank(s.back()))
    s.remove_suffix(1);
  return s;
}

// The code of a code line; -1 (dropped) when it is no whole number.
int32_t codeOf(std::string_view line) {
  int32_t code = -1;
  const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), code);
  return error == std::errc() && end == line.data() + line.size() ? code : -1;
}

}  // namespace

DxfField dxfFieldOf(int32_t code) {
  if (code >= 0 && code <= 9)
    return DxfField::Text;
  if ((code >= 10 && code <= 59) || (code >= 140 && code <= 147) || (code >= 210 && code <= 239) ||
      (code >= 1010 && code <= 1059))
    return DxfField::Real;
  // 90 to 99 hold the counts of a hatch's boundary paths.
  if ((code >= 60 && code <= 79) || (code >= 90 && code <= 99) || (code >= 170 && code <= 175) ||
      (code >= 1060 && code <= 1079))
    return DxfField::Int;
  if (code >= 1000 && code <= 1009)
    return DxfField::Text;
  return DxfField::Dropped;
}

bool DxfRecordBuilder::addLine(std::string_view line) {
  if (ended_)
    return false;
  line = trimmed(line);
  if (!expectValue_) {
    if (line.empty())
      return true;  // an empty code line has no value behind it
    code_ = codeOf(line);
    expectValue_ = true;
    return true;
  }
  expectValue_ = false;
  const DxfField field = dxfFieldOf(code_);
  if (field == DxfField::Dropped)
    return true;
  DxfRecord r;
  r.Code = code_;
  switch (field) {
  case DxfField::Text:
    r.TextValue.assign(line);
    // Names are read case-blind; the strings of texts (1 and 3) keep their case to be drawn.
    if (code_ != 1 && code_ != 3)
      for (char& c : r.TextValue)
        if (c >= 'a' && c <= 'z')
          c = char(c - 'a' + 'A');
    ended_ = code_ == 0 && r.TextValue == "EOF";
    break;
  case DxfField::Real:
    r.RealValue = ToNumber(line);
    break;
  case DxfField::Int: {
    // Rounded to nearest; a value beyond 32 bits leaves the field at 0.
    const double v = std::nearbyint(ToNumber(line));
    if (v >= double(std::numeric_limits<int32_t>::min()) &&
        v <= double(std::numeric_limits<int32_t>::max()))
      r.IntValue = int32_t(v);
    break;
  }
  case DxfField::Dropped:
    break;
  }
  records_.push_back(std::move(r));
  return !ended_;
}

std::vector<DxfRecord> ParseDxfText(std::string_view text) {
  std::vector<DxfRecord> records;
  DxfRecordBuilder builder(records);
  size_t at = 0;
  while (at < text.size()) {
    size_t end = text.find('\n', at);
    if (end == std::string_view::npos)
      end = text.size();
    if (!builder.addLine(text.substr(at, end - at)))
      break;
    at = end + 1;
  }
  records.shrink_to_fit();
  return records;
}

DxfLoad ReadDxfFile(FileLayer& files, const SystemServices& services, const std::string& fileName,
                    std::vector<DxfRecord>& records,
                    const std::function<void(const std::string&)>& editMsgLine) {
  records.clear();
  DxfRecordBuilder builder(records);
  bool first = true, binary = false, more = true;
  const bool read =
      readTextFileLines(files, services, fileName, editMsgLine, [&](const std::string& line) {
        if (first && line.rfind(BinaryDxfSentinel, 0) == 0)
          binary = true;
        first = false;
        if (more && !binary)
          more = builder.addLine(line);
      });
  if (!read || binary) {
    records.clear();
    records.shrink_to_fit();
    return read ? DxfLoad::Binary : DxfLoad::Unreadable;
  }
  records.shrink_to_fit();
  return DxfLoad::Read;
}

}  // namespace tvx
