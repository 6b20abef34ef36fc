// What the import tests share: the 31 layer slots, a reporting set with scripted prompts, a
// temporary folder, the corpus manifest, and elements made directly in the store.
#pragma once

#include "import/core/FileReader.h"

#include "import/core/ReportStatus.h"
#include "kernel/Store.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"
#include "store/LayerRecord.h"

#include "support/ItemBuilder.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

namespace tvx::test {

// One pad of a layer as the store holds it.
struct Pad {
  int32_t x = 0;
  int32_t y = 0;
  int32_t padStack = 0;  // the tool code of its pad stack
  bool operator==(const Pad&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Pad& p) {
  return out << "(" << p.x << ", " << p.y << " T" << p.padStack << ")";
}

inline std::vector<Pad> padsOf(const Store& store, const LayerRecord& layer) {
  std::vector<Pad> pads;
  const int32_t count = store.OA_GetCount(store.S_SymbolEntryArray(layer.SymbolHandle));
  for (int32_t i = 1; i <= count; ++i) {
    EntryRecord entry;
    if (store.S_ReadEntry(layer.SymbolHandle, i, entry))
      pads.push_back({entry.X, entry.Y, entry.PadStack});
  }
  return pads;
}

// The layer slots as the layer catalogue lays them out: masks, symbols, the listed layers
// (1 to 6, 30, 31) and the filter masks of their roles.
inline std::array<LayerRecord, LayerCount> makeLayers() {
  std::array<LayerRecord, LayerCount> layers;
  for (int32_t n = 1; n <= LayerCount; ++n) {
    LayerRecord& layer = layers[n - 1];
    layer.Mask = static_cast<int32_t>(1u << (n - 1));
    layer.SymbolHandle = LayerSymbolBase - n;
    layer.SymbolName = "$$GIS_CAT" + std::to_string(layer.SymbolHandle);
    layer.Listed = (layer.Mask & 0x6000003F) != 0;
    layer.DisplayName = n == 30   ? "Board Outline/Cut-outs"
                        : n == 31 ? "Drill Template"
                                  : "Layer " + std::to_string(n);
    layer.FilterMask = n == 31 ? 50 : n == 30 ? 13 : 16511;
    layer.ColourNumber = layer.DefaultColourNumber = n % 32;
  }
  return layers;
}

// A reader whose steps a test scripts; an unscripted step scans and imports nothing.
struct ScriptedReader : FileReader {
  std::function<ScanResult(ImportJob&)> onScan;
  std::function<void(ImportJob&, LayerFileRecord&)> onPrepare;
  std::function<void(int32_t&, const ImportJob&, LayerRecord&, LayerFileRecord&)> onImport;

  ScanResult scan(ImportJob& job) override { return onScan ? onScan(job) : ScanResult::Scanned; }
  void prepareBoundFile(ImportJob& job, LayerFileRecord& file) override {
    if (onPrepare)
      onPrepare(job, file);
  }
  void importFile(int32_t& status, const ImportJob& job, LayerRecord& layer,
                  LayerFileRecord& file) override {
    if (onImport)
      onImport(status, job, layer, file);
  }
};

struct Reporting {
  ScriptedPrompts prompts;
  SystemServices services{&prompts};
  StatusTitles titles{"Tarvex Viewer", ""};
  FormatDigits digits;
  StatusReporter reporter{services, prompts, titles, digits};
};

class TempDir {
public:
  TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "tvx-import-XXXXXX").string();
    path_ = mkdtemp(pattern.data());
  }
  ~TempDir() {
    std::error_code ec;
    std::filesystem::remove_all(path_, ec);
  }
  std::string file(const std::string& name) const { return (path_ / name).string(); }
  // Writes the bytes into the file of that name; its path.
  std::string write(const std::string& name, const std::string& bytes) const {
    std::ofstream(file(name), std::ios::binary) << bytes;
    return file(name);
  }
  const std::filesystem::path& path() const { return path_; }

private:
  std::filesystem::path path_;
};

inline std::string readBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// The rows of the corpus manifest in dir: each file's path and format, the header line left out.
struct ManifestEntry {
  std::string path;
  std::string format;
};

inline std::vector<ManifestEntry> readManifest(const std::string& dir) {
  std::vector<ManifestEntry> entries;
  std::ifstream in(dir + "/MANIFEST.tsv");
  std::string line;
  std::getline(in, line);
  while (std::getline(in, line)) {
    std::istringstream fields(line);
    ManifestEntry e;
    if (std::getline(fields, e.path, '\t') && std::getline(fields, e.format, '\t'))
      entries.push_back(e);
  }
  return entries;
}

// The Type of each record or item, for readable expectations.
template <typename Record> std::vector<int32_t> typesOf(const std::vector<Record>& records) {
  std::vector<int32_t> types;
  for (const Record& r : records)
    types.push_back(r.Type);
  return types;
}

// An element of a symbol, made the way the store's callers do.
inline ObjectHandle addItem(Store& store, SymbolId symbol, const ItemRecord& record) {
  ObjectHandle item = store.I_MakeItem(record);
  if (item != ObjectHandle::None && store.OA_Add(store.S_SymbolItemArray(symbol), item) == 0)
    return ObjectHandle::None;
  return item;
}

inline ItemRecord line(int32_t x, int32_t y, int32_t dx, int32_t dy) {
  return Item(ItemLine).at(x, y).size(dx, dy);
}

// The items of a layer, and the texts of the message boxes shown, in their order.
inline std::vector<ItemRecord> itemsOf(const Store& store, const LayerRecord& layer) {
  std::vector<ItemRecord> all;
  const ArrayHandle array = store.S_SymbolItemArray(layer.SymbolHandle);
  for (int32_t i = 1; i <= store.OA_GetCount(array); ++i) {
    ItemRecord r;
    store.I_ReadItem(store.OA_Object(array, i), r);
    all.push_back(r);
  }
  return all;
}

inline std::vector<std::string> boxesOf(const ScriptedPrompts& prompts) {
  std::vector<std::string> texts;
  for (const auto& shown : prompts.shown)
    texts.push_back(shown.prompt);
  return texts;
}

}  // namespace tvx::test
