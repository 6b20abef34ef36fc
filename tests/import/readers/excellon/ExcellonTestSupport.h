// What the reader tests share: a reader over its own store, single layers of each PadKind, the
// pads and items of a layer read back from the store, and a whole import world over a folder.
#pragma once

#include "import/readers/ImportSession.h"
#include "import/readers/excellon/ExcellonReader.h"
#include "kernel/Kernel.h"
#include "store/ColourSlots.h"
#include "store/LayerSymbol.h"
#include "store/Layers.h"

#include "import/gerber/ImportTestSupport.h"

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace tvx::test {

// A layer slot of the given number and PadKind with its symbol made.
inline LayerRecord makeLayer(Store& store, int32_t number, int32_t padKind, int32_t colour = 31) {
  LayerRecord layer;
  layer.Mask = static_cast<int32_t>(1u << (number - 1));
  layer.SymbolHandle = LayerSymbolBase - number;
  layer.SymbolName = "$$GIS_CAT" + std::to_string(layer.SymbolHandle);
  layer.Listed = true;
  layer.ColourNumber = colour;
  layer.PadKind = padKind;
  layer.FilterMask = 50;
  EnsureLayerSymbol(store, layer, true);
  return layer;
}

// A file record for the drill reader with a tool table.
inline LayerFileRecord drillFile(std::vector<ToolEntry> tools = {}) {
  LayerFileRecord file;
  file.FileName = "holes.drl";
  file.ReaderCode = ReaderExcellon;
  file.OriginalCoordinates = true;
  file.Tools = std::move(tools);
  return file;
}

// A component's import state over real layer tables, its settings and files in a folder of its own.
struct ImportWorld {
  ImportWorld() {
    reporting.services.SetIniFile(folder.file("tarvex.ini"));
    ColourSlots colours;
    colours.build(kernel->strings);
    BuildLayerTables(kernel->store, reporting.services, colours, false, *tables);
    session = std::make_unique<ImportSession>(kernel->store, reporting.services, reporting.prompts);
    session->state.Job.WorkDirectory = folder.path().string();
  }
  std::string write(const std::string& name, const std::string& text) const {
    return folder.write(name, text);
  }
  ImportResult run(const std::string& path, const ImportOptions& options = {}) {
    return session->importFile(tables->Layers, path, options);
  }
  LayerRecord& layer(int32_t number) const { return tables->layer(number); }
  std::vector<ItemRecord> items(int32_t number) const {
    return itemsOf(kernel->store, layer(number));
  }
  std::vector<Pad> pads(int32_t number) const { return padsOf(kernel->store, layer(number)); }
  std::vector<std::string> boxes() const { return boxesOf(reporting.prompts); }

  TempDir folder;
  std::unique_ptr<Kernel> kernel = std::make_unique<Kernel>();
  Reporting reporting;
  std::unique_ptr<LayerTables> tables = std::make_unique<LayerTables>();
  std::unique_ptr<ImportSession> session;
};

// The files of the corpus manifest whose format begins with prefix: path and format.
inline std::vector<std::pair<std::string, std::string>> manifestFiles(const std::string& corpus,
                                                                      const std::string& prefix) {
  std::vector<std::pair<std::string, std::string>> files;
  for (const ManifestEntry& e : readManifest(corpus))
    if (e.format.rfind(prefix, 0) == 0)
      files.emplace_back(e.path, e.format);
  return files;
}

// The reader with its own format, extents and store, reporting into scripted prompts.
class ExcellonTest : public ::testing::Test {
protected:
  std::vector<std::string> boxes() const { return boxesOf(reporting.prompts); }

  Store store;
  Reporting reporting;
  ExcellonFormat format;
  FileExtents extents;
  ExcellonReader reader{store, reporting.services, reporting.reporter, format, extents};
};

// The reader over a drill layer, millimetres 3.3 with left-aligned numbers.
class ImportExcellonTest : public ExcellonTest {
protected:
  ImportExcellonTest() { format = {1, 3, 3, 0}; }

  // Scans as the layer binding does, then imports.
  int32_t import(const std::string& text, LayerFileRecord& file, int32_t status = 0) {
    reader.ScanExcellonText(text, file.Tools, false, false);
    reader.ImportExcellon(status, text, drill, file);
    return status;
  }

  LayerRecord drill = makeLayer(store, 31, 6);
};

}  // namespace tvx::test
