// Any text as an Excellon file, cut into blocks and comments as the file reader does, through the
// scan (with and without the header), the import into a drill layer over a fresh store, and the
// readings of what the file states of its format. No input may crash, hang, read out of bounds or
// grow without end.
#include "import/core/ReportStatus.h"
#include "import/readers/excellon/ExcellonReader.h"
#include "import/readers/excellon/ExcellonStatements.h"
#include "kernel/KernelTypes.h"
#include "kernel/Store.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"
#include "store/LayerRecord.h"
#include "store/LayerSymbol.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

void appendUpper(std::string& out, std::string_view part) {
  for (char c : part)
    out += (c >= 'a' && c <= 'z') ? char(c - 'a' + 'A') : c;
  out += '|';
}

// Each line trimmed and upper-cased, cut at its first ";" (the rest goes to comments), closed by
// "|"; empty lines leave no block.
void splitBlocks(std::string_view input, std::string& blocks, std::string& comments) {
  while (!input.empty()) {
    const size_t end = input.find('\n');
    std::string_view line = input.substr(0, end);
    input = end == std::string_view::npos ? std::string_view() : input.substr(end + 1);
    while (!line.empty() && isBlank(line.front()))
      line.remove_prefix(1);
    while (!line.empty() && isBlank(line.back()))
      line.remove_suffix(1);
    const size_t comment = line.find(';');
    if (comment != std::string_view::npos) {
      appendUpper(comments, line.substr(comment));
      line = line.substr(0, comment);
    }
    if (!line.empty())
      appendUpper(blocks, line);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace tvx;
  if (size == 0)
    return 0;
  // The first byte picks the format the settings would give; the rest is the file.
  const uint8_t choice = data[0];
  std::string blocks, comments;
  splitBlocks(std::string_view(reinterpret_cast<const char*>(data + 1), size - 1), blocks,
              comments);

  ScriptedPrompts prompts;
  SystemServices services(&prompts);
  StatusTitles titles{"Fuzz", ""};
  FormatDigits digits;
  StatusReporter reporter(services, prompts, titles, digits);
  Store store;
  ExcellonFormat format{choice & 1, 2 + ((choice >> 1) & 3), 3 + ((choice >> 3) & 1),
                        (choice >> 4) & 1};
  FileExtents extents;
  ExcellonReader reader(store, services, reporter, format, extents);

  // A drill layer (PadKind 6) with its symbol, as the layer binding makes it.
  const int32_t number = 31;
  LayerRecord layer;
  layer.Mask = static_cast<int32_t>(1u << (number - 1));
  layer.SymbolHandle = LayerSymbolBase - number;
  layer.SymbolName = "$$GIS_CAT" + std::to_string(layer.SymbolHandle);
  layer.Listed = true;
  layer.ColourNumber = 31;
  layer.PadKind = 6;
  layer.FilterMask = 50;
  EnsureLayerSymbol(store, layer, true);
  LayerFileRecord file;
  file.FileName = "holes.drl";
  file.ReaderCode = ReaderExcellon;
  file.OriginalCoordinates = (choice >> 5) & 1;

  std::vector<ToolEntry> tools;
  reader.ScanExcellonText(blocks, tools, false, false);
  reader.ScanExcellonText(blocks, tools, true, (choice >> 6) & 1, comments);
  file.Tools = tools;
  int32_t status = 0;
  reader.ImportExcellon(status, blocks, layer, file);

  ReadStatedFormat(blocks, comments);
  ZerosShownBy(GatherDigitEvidence(blocks));
  ToolSizesInComments(comments, choice >> 7);
  return 0;
}
