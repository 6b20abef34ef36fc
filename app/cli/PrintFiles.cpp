#include "app/cli/PrintFiles.h"
#include "app/cli/CliImport.h"

#include "kernel/Kernel.h"
#include "print/PreviewModel.h"
#include "print/PrintOutput.h"
#include "print/widgets/QtPrinter.h"
#include "store/ColourSlots.h"
#include "store/LayerDrawing.h"
#include "store/Layers.h"
#include "viewer/DisplayUnits.h"

#include <QFileInfo>

#include <algorithm>

namespace tvx {

PrintRun::PrintRun(const PrintOptions& options)
    : cli(std::make_unique<CliImport>()), printer(std::make_unique<QtPrinter>(false)) {
  if (std::string error = cli->useApertureTable(options.apertureTable); !error.empty()) {
    exitCode = 2;
    messages.push_back("gbrview: " + error);
    return;
  }
  placed = cli->importFiles(options.files, options.layers, 0, messages);
  exitCode = std::count(placed.begin(), placed.end(), 0) > 0 ? 1 : 0;
  FrameRect frame;
  FrameLayers(cli->run.kernel->store, cli->run.tables->Layers, frame);
  if (frame == FrameRect{}) {
    exitCode = 1;
    messages.push_back("gbrview: nothing to print; " + options.output + " was not written");
    return;
  }
  model = std::make_unique<PreviewModel>(record, *printer, displayunit::Millimetre, nullptr,
                                         &cli->prompts);
  model->Begin(frame, drawmode::Normal);
  record.ScaleMode = printer->ScaleMode = scalemode::Millimetres;
  record.PaperSize = options.paper;
  record.PaperSizeString = PaperSizeName(options.paper);
  record.Orientation = options.landscape ? 2 : 1;
  record.MarginBt = record.MarginLt = record.MarginRt = record.MarginTp = float(options.marginsMm);
  record.PrintToFile = true;
  InitPrinter(record, *printer);
  model->Build();
  if (options.fit)
    model->Fit(false);
  else
    model->ScaleEntered(options.scale);
}

PrintRun::~PrintRun() = default;

PrintOutcome printFiles(const PrintOptions& options) {
  PrintOutcome outcome;
  PrintRun run(options);
  outcome.messages = run.messages;
  outcome.exitCode = run.exitCode;
  if (!run.model)
    return outcome;
  PreviewModel& model = *run.model;
  CliImport& cli = *run.cli;
  Kernel& kernel = *cli.run.kernel;
  const LayerTables& tables = *cli.run.tables;
  const std::vector<LayerOrderRow> order = cli.drawOrder(run.placed, false);
  LayerDrawContext context(kernel.graphics, kernel.store);
  context.clearColour = cli.run.colours.ClearColour();
  model.DrawPage = [&](int32_t device, int32_t mode) {
    DrawLayers(context, device, mode, order, tables.Layers);
  };
  model.PrintFrom = std::clamp(options.fromPage, 1, model.PageCount);
  model.PrintTo = std::clamp(options.toPage == 0 ? model.PageCount : options.toPage,
                             model.PrintFrom, model.PageCount);

  PrintOutput output(model, kernel.graphics, &cli.prompts);
  output.Caption = "gbrview";
  output.AskFileName = [&](const PrintFileRequest&) {
    return std::optional<std::string>(options.output);
  };
  const size_t before = cli.prompts.shown.size();
  output.PrintPass();
  for (size_t i = before; i < cli.prompts.shown.size(); ++i)
    outcome.messages.push_back("gbrview: " + options.output + ": " + cli.prompts.shown[i].prompt);
  if (cli.prompts.shown.size() > before) {
    outcome.exitCode = 1;
    return outcome;
  }
  outcome.report = "sheets " + std::to_string(model.PagesAcross) + " across x " +
                   std::to_string(model.PagesDown) + " down, scale " + model.ScaleText() +
                   ", pages " + std::to_string(model.PrintFrom) + " to " +
                   std::to_string(model.PrintTo) + " of " + std::to_string(model.PageCount) + "\n";
  return outcome;
}

}  // namespace tvx
