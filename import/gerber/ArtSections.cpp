#include "import/gerber/ArtSections.h"

#include "import/core/ReportStatus.h"
#include "import/core/StatusCodes.h"
#include "import/gerber/GerberFormat.h"

namespace tvx {

namespace {

// The record types of each section's rows and of its end, by list.
struct SectionTypes {
  artrecord::Type row, end;
};
constexpr SectionTypes Sections[4] = {
    {artrecord::DrawSection, artrecord::DrawSectionEnd},
    {artrecord::RoundPadSection, artrecord::RoundPadSectionEnd},
    {artrecord::SquarePadSection, artrecord::SquarePadSectionEnd},
    {artrecord::SpecialSection, artrecord::SpecialSectionEnd},
};

template <typename Lists> auto& sectionList(Lists& lists, int which) {
  switch (which) {
  case 0:
    return lists.DrawList;
  case 1:
    return lists.RoundPadList;
  case 2:
    return lists.SquarePadList;
  default:
    return lists.SpecialList;
  }
}

}  // namespace

std::array<ArtRecord, artrecord::HeaderRecords> headerRecords(const ArtHeader& header) {
  const auto& s = header.SectionRecords;
  return {{
      {artrecord::Header, 0, header.MinX, header.MinY},
      {artrecord::Header, header.FeatureFlags, header.MaxX, header.MaxY},
      {artrecord::Header, header.TwoFileFlag, header.UnitX, header.UnitY},
      {artrecord::Header, 0, double(s[0]), double(s[1])},
      {artrecord::Header, 0, double(s[2]), double(s[3])},
  }};
}

ArtHeader headerFromRecords(const std::array<ArtRecord, artrecord::HeaderRecords>& records) {
  ArtHeader header;
  header.MinX = records[0].X;
  header.MinY = records[0].Y;
  header.FeatureFlags = records[1].N;
  header.MaxX = records[1].X;
  header.MaxY = records[1].Y;
  header.TwoFileFlag = records[2].N;
  header.UnitX = records[2].X;
  header.UnitY = records[2].Y;
  header.SectionRecords = {toInt32(records[3].X), toInt32(records[3].Y), toInt32(records[4].X),
                           toInt32(records[4].Y)};
  return header;
}

std::vector<ArtRecord> sectionRecords(const ApertureLists& lists, int which) {
  const SectionTypes types = Sections[which];
  const std::vector<ApertureUse>& list = sectionList(lists, which);
  std::vector<ArtRecord> records;
  for (const ApertureUse& row : list) {
    if (!(row.Uses > 0))
      continue;
    records.push_back({types.row, row.DCode, double(row.Size), row.Uses});
    if (which != 3 || row.Size < 1 || size_t(row.Size) > lists.PrimitiveList.size())
      continue;
    size_t k = size_t(row.Size) - 1;
    const PrimitiveRow& first = lists.PrimitiveList[k];
    if (first.Kind == primitive::Macro && !first.Text.empty())
      for (size_t i = 0; i < first.Text.size(); ++i)
        records.push_back({artrecord::MacroNameCharacter, row.DCode, double(i + 1),
                           double(static_cast<unsigned char>(first.Text[i]))});
    for (; k < lists.PrimitiveList.size() && lists.PrimitiveList[k].DCode == row.DCode; ++k) {
      const PrimitiveRow& p = lists.PrimitiveList[k];
      records.push_back({static_cast<uint8_t>(p.Kind), p.DCode, double(p.Number), p.Value});
    }
  }
  records.push_back({types.end, 0, 0, 0});
  return records;
}

void WriteSections(int32_t& status, int which, ArtWriter& out, const ApertureLists& lists,
                   int32_t& recordNumber) {
  recordNumber = out.recordCount() + 1;
  for (const ArtRecord& record : sectionRecords(lists, which))
    out.append(record);
  status = out.failed() ? 1 : 0;
}

void ReadSections(int32_t& status, ArtFile& art, int which, int32_t first, ApertureLists& lists) {
  const artrecord::Type base = Sections[which].row;
  std::vector<ApertureUse>& list = sectionList(lists, which);
  int32_t n = first;
  ArtRecord record;
  bool more = n >= 1 && art.read(n, record);
  if (which != 3) {
    while (more && record.Type == base) {
      list.push_back({record.N, toInt32(record.X), record.Y});
      more = art.read(++n, record);
    }
  } else {
    while (more && record.Type == base) {
      ApertureUse row{record.N, 0, record.Y};
      const size_t firstRow = lists.PrimitiveList.size();
      std::string name;
      while ((more = art.read(++n, record)) && record.Type != base &&
             record.Type != artrecord::SpecialSectionEnd) {
        if (record.Type == artrecord::MacroNameCharacter)
          name += static_cast<char>(static_cast<unsigned char>(toInt32(record.Y)));
        else
          lists.PrimitiveList.push_back(
              {record.Type, record.N, toInt32(record.X), record.Y, std::string()});
      }
      if (lists.PrimitiveList.size() > firstRow) {
        row.Size = static_cast<int32_t>(firstRow + 1);
        lists.PrimitiveList[firstRow].Text = std::move(name);
      }
      list.push_back(row);
    }
  }
  lists.changed();
  status = 0;
}

void LoadArtHeader(int32_t& status, ArtFile& art, bool writeBack, GerberScan& scan,
                   const StatusReporter& reporter) {
  status = 0;
  std::array<ArtRecord, artrecord::HeaderRecords> records;
  for (int32_t n = 1; n <= artrecord::HeaderRecords; ++n) {
    if (!art.read(n, records[size_t(n - 1)])) {
      reporter.ReportStatus(StatusIncorrectFormat, art.path());
      status = 1;
      return;
    }
  }
  scan.Header = headerFromRecords(records);
  const auto& sections = scan.Header.SectionRecords;
  if (!writeBack) {
    scan.Lists.clear();
    scan.FileAttributes.clear();
    for (int which = 0; which < 4; ++which) {
      if (which == 3 && sections[3] == 0)
        break;
      ReadSections(status, art, which, sections[size_t(which)], scan.Lists);
    }
    return;
  }
  for (int which = 0; which < 4; ++which) {
    int32_t n = sections[size_t(which)];
    if (n < 1)
      continue;
    for (const ArtRecord& record : sectionRecords(scan.Lists, which)) {
      if (!art.write(n++, record)) {
        reporter.ReportStatus(StatusSaveFailed, art.path());
        status = 1;
        return;
      }
    }
  }
}

}  // namespace tvx
