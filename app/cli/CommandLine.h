// The command line of gbrview: a verb, then the verb's options and files. Options take their value
// as the next argument or after "=" (--dpi 300, --dpi=300); a value may start with "-"
// (--window -5,-5,10,10).
#pragma once

#include "app/cli/PrintFiles.h"
#include "app/cli/ReconstructFiles.h"
#include "app/cli/RenderFiles.h"

#include <QStringList>

#include <cstdint>
#include <string>
#include <vector>

namespace tvx {

// The usage text, for --help and after every bad argument.
extern const char* const GbrviewUsage;

// Exit codes of gbrview.
inline constexpr int ExitFileFailed = 1;
inline constexpr int ExitBadArguments = 2;

enum class CliCommand { Help, Version, Render, Info, Reconstruct, Print, Bad };

struct CliArguments {
  CliCommand command = CliCommand::Bad;
  std::string error;               // why the arguments are bad
  RenderOptions render;            // for Render
  ReconstructOptions reconstruct;  // for Reconstruct
  PrintOptions print;              // for Print
  std::string infoFile;            // for Info
  std::string infoApertureTable;   // for Info: --apt FILE
  bool json = false;
};

// Parses the arguments as main() receives them: the program's name first. File names come back in
// the bytes the system gave (QFile::encodeName of the argument).
CliArguments parseCliArguments(const QStringList& arguments);

// The layer that "--layer N" (or "--layer=N") binds to the file argument right after it, for each
// file argument in order; 0 for a file without one. valueOptions are the other options that take
// a value as the next argument. An error text for a bad number or a --layer without a file after
// it, else empty.
std::string layersOfFiles(const QStringList& arguments, const QStringList& valueOptions,
                          std::vector<int32_t>& layers);

}  // namespace tvx
