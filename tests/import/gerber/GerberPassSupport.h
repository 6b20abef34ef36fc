// What the Gerber pass tests share: a pass with scripted prompts over text or a file into a
// temporary TMP.ART, and the records it wrote.
#pragma once

#include "ImportTestSupport.h"

#include "common/FileLayer.h"
#include "import/gerber/ArtSections.h"
#include "import/gerber/ArtStream.h"
#include "import/gerber/GerberFormat.h"
#include "import/gerber/GerberScan.h"
#include "import/gerber/GerberTextPass.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace tvx {
inline void PrintTo(const ArtRecord& r, std::ostream* out) {
  *out << "{" << int(r.Type) << ", " << r.N << ", " << r.X << ", " << r.Y << "}";
}
}  // namespace tvx

namespace tvx::test {

// Store units of a length in inches or millimetres, the way the pass computes them.
inline double inches(double value) { return value / unitTableValue(0) * 100000; }
inline double millimetres(double value) { return value * 100000; }

struct GerberPass {
  Reporting reporting;
  FileLayer files{reporting.services, &reporting.prompts};
  GerberFormat format;
  GerberScan scan;
  std::vector<ApertureTableRow> table;
  std::vector<std::string> progressLines;
  std::vector<std::string> mainLines;
  int yields = 0;
  TempDir dir;
  std::string art = dir.file("TMP.ART");
  std::string source = dir.file("board.gbr");

  GerberPass() {
    // Leading zeros omitted reads digits as they stand: "X100" in 2.3 inch is 0.1 inch.
    format.OmittedZeros = 1;
  }

  GerberPassContext context() {
    return {reporting.services,
            reporting.reporter,
            files,
            format,
            scan,
            &table,
            [this](const std::string& line) { progressLines.push_back(line); },
            [this](const std::string& line) { mainLines.push_back(line); },
            [this] { ++yields; }};
  }

  // Runs the pass over text written to the source file.
  int32_t run(std::string_view text) {
    std::ofstream(source, std::ios::binary) << text;
    return runFile(source);
  }

  int32_t runFile(const std::string& path) {
    int32_t status = -1;
    GerberPassContext c = context();
    RunGerberTextPass(status, path, art, c);
    return status;
  }

  // Every record of TMP.ART.
  std::vector<ArtRecord> records() const {
    std::vector<ArtRecord> all;
    ArtFile file;
    if (!file.open(art))
      return all;
    ArtRecord record;
    for (int32_t n = 1; file.read(n, record); ++n)
      all.push_back(record);
    return all;
  }

  // The drawing stream: the records from 6 up to, not including, the end record.
  std::vector<ArtRecord> stream() const {
    std::vector<ArtRecord> all = records();
    std::vector<ArtRecord> out;
    for (size_t i = artrecord::HeaderRecords;
         i < all.size() && all[i].Type != artrecord::EndOfStream; ++i)
      out.push_back(all[i]);
    return out;
  }

  bool artExists() const { return std::filesystem::exists(art); }
  const std::vector<ScriptedPrompts::Shown>& shown() const { return reporting.prompts.shown; }
};

inline const ApertureUse* findRow(const std::vector<ApertureUse>& list, int32_t dCode) {
  for (const ApertureUse& row : list)
    if (row.DCode == dCode)
      return &row;
  return nullptr;
}

}  // namespace tvx::test
