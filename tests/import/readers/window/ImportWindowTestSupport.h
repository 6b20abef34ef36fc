// What the import window tests share: the window model wired to an import world, and small files
// of each kind.
#pragma once

#include "import/readers/window/ImportWindowModel.h"

#include "import/readers/excellon/ExcellonTestSupport.h"

#include <memory>
#include <string>
#include <vector>

namespace tvx::test {

// Two pads of D11 (a 0.06 inch square) and a one inch track of D10 (a 0.01 inch circle).
inline constexpr const char* TwoPadsAndATrack =
    "G04 two pads and a track*\n%FSLAX24Y24*%\n%MOIN*%\n%ADD10C,0.0100*%\n"
    "%ADD11R,0.0600X0.0600*%\nD11*\nX0Y0D03*\nX10000Y0D03*\nD10*\nX0Y0D02*\n"
    "X10000Y0D01*\nM02*\n";

// A track without format blocks: read with the format of the settings.
inline constexpr const char* PlainTrack = "D10*\nX0Y0D02*\nX10000Y0D01*\nM02*\n";

// Three holes of two tools, inch, with the sizes in the header.
inline constexpr const char* ThreeHoles =
    "M48\nINCH,TZ\nT1C0.0300\nT2C0.0400\n%\nT1\nX010000Y010000\nX020000Y010000\nT2\n"
    "X030000Y010000\nM30\n";

struct ImportWindowWorld : ImportWorld {
  ImportWindowWorld() { makeModel(); }

  // The model over the session; made again after a test changed the session's scans.
  void makeModel() {
    ImportWindowOwners owners = makeOwners();
    owners.window.unload = [this] {
      events.push_back("unload");
      model->Form_Unload();
    };
    model = std::make_unique<ImportWindowModel>(std::move(owners));
    model->FormFill();
  }

  // The owners of a window over this world, its actions recorded in events.
  ImportWindowOwners makeOwners() {
    ImportWindowOwners owners{*session, tables->Layers, highlights, {}, {}, ClearColour, 0};
    owners.mainWindow.redraw = [this](bool fit) {
      ++redraws;
      fits += fit;
    };
    owners.mainWindow.setDisplayFile = [this](bool reported) {
      events.push_back(reported ? "display file" : "display file after 93");
    };
    owners.mainWindow.editMsgLine = [this](const std::string& line) {
      events.push_back("main line " + line);
    };
    owners.window.SetInpFileN = [this](int mode, const std::string& start) {
      events.push_back("picker " + std::to_string(mode) + " in " + start);
      return nextFile;
    };
    owners.window.RedrawScreen = [this] { ++redraws; };
    owners.window.unload = [this] { events.push_back("unload"); };
    owners.window.currentLayer = [] { return 4; };
    owners.window.activateLayer = [this](int32_t layer) {
      events.push_back("activate " + std::to_string(layer));
    };
    owners.window.saveNoCenter = [this](bool on) {
      events.push_back(on ? "NoCenter 1" : "NoCenter 0");
    };
    return owners;
  }

  // Writes a file and takes it as the kind given, as the user's choice of kind does.
  void openAs(const std::string& name, const std::string& content, ImportKind kind) {
    nextFile = write(name, content);
    session->state.Job.SourcePath = nextFile;
    session->state.Job.Kind = kind;
    model->ApplyFile();
  }

  // Writes a file and opens it for import as the file menu does.
  void open(const std::string& name, const std::string& content) {
    nextFile = write(name, content);
    model->M_FileSelect();
  }

  std::vector<std::string> keys() const {
    std::vector<std::string> all;
    for (const GridRow& row : model->rows)
      all.push_back(row.Key.empty() ? (row.Cell == CellKind::Group ? "(group)" : "(info)")
                                    : row.Key);
    return all;
  }
  const GridRow& row(const std::string& key) const {
    const int32_t index = model->rowOf(key);
    EXPECT_GE(index, 0) << key;
    static const GridRow none;
    return index < 0 ? none : model->rows[size_t(index)];
  }
  void choose(const std::string& layerName) {
    model->CommitCell(model->rowOf("IMP_LAYER"), layerName);
  }
  int32_t entries(int32_t number) const {
    return kernel->store.OA_GetCount(kernel->store.S_SymbolEntryArray(layer(number).SymbolHandle));
  }

  static constexpr int32_t ClearColour = 8;
  HighlightValues highlights;
  std::unique_ptr<ImportWindowModel> model;
  std::string nextFile;
  std::vector<std::string> events;
  int redraws = 0;
  int fits = 0;  // redraws fitted to the data
};

}  // namespace tvx::test
