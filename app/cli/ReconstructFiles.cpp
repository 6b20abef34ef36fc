#include "app/cli/ReconstructFiles.h"

#include "app/cli/CliImport.h"
#include "reconstruct/Reconstruction.h"
#include "reconstruct/ReconstructionReport.h"

#include <algorithm>

namespace tvx {

ReconstructOutcome reconstructFiles(const ReconstructOptions& options) {
  ReconstructOutcome outcome;
  CliImport cli;
  if (std::string error = cli.useApertureTable(options.apertureTable); !error.empty()) {
    outcome.exitCode = 2;
    outcome.messages.push_back("gbrview: " + error);
    return outcome;
  }
  const std::vector<int32_t> placed =
      cli.importFiles(options.files, options.layers, 0, outcome.messages);
  const bool failed = std::count(placed.begin(), placed.end(), 0) > 0;

  ReconstructionState state;
  Reconstruction reconstruction(cli.run.kernel->store, cli.run.layers(),
                                cli.run.colours.ClearColour(), &cli.services, cli.prompts, state);
  // No one to ask: --via answers the question, else there are no vias.
  reconstruction.chooseViaCode =
      [&](const std::vector<ApertureRow>& apertures) -> std::optional<size_t> {
    if (!options.via)
      return std::nullopt;
    for (size_t row = 0; row < apertures.size(); ++row)
      if (apertures[row].Code == *options.via)
        return row;
    outcome.messages.push_back("gbrview: --via D" + std::to_string(*options.via) +
                               ": no pad of the top and bottom copper has this D-code");
    return std::nullopt;
  };
  if (!reconstruction.RunReconstruction()) {
    outcome.exitCode = 1;
    outcome.messages.push_back("gbrview: " +
                               cli.services.LocalMessage("Nothing to import", "151219"));
    return outcome;
  }
  outcome.report =
      options.json ? reportJson(state.Report, state.ViaCode) : reportText(state.Report);
  outcome.exitCode = failed ? 1 : 0;
  return outcome;
}

}  // namespace tvx
