#include "app/cli/CliImport.h"

#include "app/cli/CliApertureTable.h"
#include "common/TextHelpers.h"
#include "store/LayerCatalogue.h"
#include "store/Layers.h"

#include <algorithm>

namespace tvx {

CliImport::CliImport() : services(&prompts), run(services, prompts) {
  run.session->titles.programTitle = "gbrview";
  if (workFolder.isValid())
    run.session->state.Job.WorkDirectory = workFolder.path().toStdString() + "/";
}

std::string CliImport::useApertureTable(const std::string& path) {
  std::string error = loadCliApertureTable(apertureTable, path);
  run.session->gerberPass.apertureTable = &apertureTable.rows;
  return error;
}

std::vector<int32_t> CliImport::importFiles(const std::vector<std::string>& files,
                                            const std::vector<int32_t>& layers,
                                            int32_t firstGerberLayer,
                                            std::vector<std::string>& messages) {
  std::vector<int32_t> placed;
  size_t before = prompts.shown.size();
  ImportSession::BatchOptions batch;
  batch.firstGerberLayer = firstGerberLayer;
  batch.layers = layers;
  batch.noCenter = true;
  batch.afterEach = [&](const std::string& path, const ImportResult& result) {
    const bool ok = result.status == 0 && result.layer != 0;
    // A box titled otherwise than the program's boxes (the file layer's, by the reason) says why;
    // a message that starts with the file's name does not name it twice.
    for (size_t i = before; i < prompts.shown.size(); ++i) {
      const ScriptedPrompts::Shown& box = prompts.shown[i];
      const std::string text = OneLine(box.prompt);
      const bool reason = !box.title.empty() && box.title != run.session->titles.boxTitle();
      messages.push_back("gbrview: " + (text.starts_with(path) ? text : path + ": " + text) +
                         (reason ? " (" + box.title + ")" : std::string()));
    }
    // What was dropped or cut is said, the exit code stays.
    for (const std::string& note : result.notes)
      messages.push_back("gbrview: " + path + ": " + note);
    if (!ok && prompts.shown.size() == before) {
      const std::string reason = result.kind == ImportKind::Unknown
                                     ? "not a file that gbrview reads"
                                 : result.noFreeLayer ? "no empty layer left for it"
                                                      : "import failed";
      messages.push_back("gbrview: " + path + ": " + reason);
    }
    placed.push_back(ok ? result.layer : 0);
    before = prompts.shown.size();
  };
  run.session->importFiles(run.layers(), files, batch);
  return placed;
}

std::vector<LayerOrderRow> CliImport::drawOrder(const std::vector<int32_t>& placed,
                                                bool mono) const {
  constexpr int32_t PaletteWhite = 15;
  const LayerTables& tables = *run.tables;
  std::vector<LayerOrderRow> order(tables.LayerOrder.begin(), tables.LayerOrder.end());
  std::stable_partition(order.begin(), order.end(),
                        [](const LayerOrderRow& r) { return r.LayerNumber == DrillLayer; });
  for (LayerOrderRow& row : order) {
    row.Visible = std::find(placed.begin(), placed.end(), row.LayerNumber) != placed.end();
    row.Mono = mono;
    row.MonoColour = PaletteWhite;
  }
  return order;
}

}  // namespace tvx
