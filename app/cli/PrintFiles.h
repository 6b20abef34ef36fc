// "gbrview print": files through the windowless import into one set of layers, then the print
// preview's sheets at a scale printed by its print pass on the PDF printer.
#pragma once

#include "print/PrinterSettings.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tvx {

struct CliImport;
class PreviewModel;
class QtPrinter;

struct PrintOptions {
  std::string scale = "1:1";  // --scale M:D, read as the preview's scale box reads it
  bool fit = false;           // --fit: the frame on one sheet with margins
  int32_t paper = 9;          // --paper CODE of the paper table (9 A4, 8 A3)
  bool landscape = false;
  double marginsMm = 10.0;           // --margins MM, all four
  int32_t fromPage = 1, toPage = 0;  // --pages A-B; toPage 0 is the last
  std::string output;                // ends in .pdf
  std::string apertureTable;
  std::vector<std::string> files;
  std::vector<int32_t> layers;  // --layer N bound to each file; 0 where none
};

struct PrintOutcome {
  int exitCode = 0;                   // 0 done, 1 a file failed or nothing printed, 2 bad options
  std::string report;                 // for stdout: sheets across, down, the scale, the pages
  std::vector<std::string> messages;  // one line each, for stderr
};

// The files imported and the preview's model set up for the options: what the print pass of
// printFiles prints. Needs a QGuiApplication.
struct PrintRun {
  explicit PrintRun(const PrintOptions& options);
  ~PrintRun();

  std::unique_ptr<CliImport> cli;
  std::unique_ptr<QtPrinter> printer;
  PrinterSettings record;
  std::unique_ptr<PreviewModel> model;  // none when an option was bad or nothing was imported
  std::vector<int32_t> placed;          // the layer of each file, 0 for one that failed
  std::vector<std::string> messages;
  int exitCode = 0;
};

// Runs the print. Needs a QGuiApplication.
PrintOutcome printFiles(const PrintOptions& options);

}  // namespace tvx
