// gbrview: the viewer's readers and drawing without a window.
//   gbrview render [--dpi N] [--window x0,y0,x1,y1] [--mono] [--layer N] -o OUT.(png|pdf|svg)
//   FILE... gbrview info FILE [--json]
// Exit codes: 0 success, 1 a file failed, 2 bad arguments.

#include "app/cli/FileInfo.h"
#include "app/cli/RenderFiles.h"

#include <QGuiApplication>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr int ExitBadArguments = 2;

constexpr const char* Usage =
    "usage:\n"
    "  gbrview render [--dpi N] [--window x0,y0,x1,y1] [--mono] [--layer N] -o OUT.(png|pdf|svg) "
    "FILE...\n"
    "  gbrview info FILE [--json]\n"
    "\n"
    "render  draws the files into one picture; --window is a world rectangle in millimetres\n"
    "        (default: all layers), --dpi the resolution of a PNG (default 300), --mono white on\n"
    "        black (clear elements black), --layer the layer of the first Gerber file\n"
    "        (1 to 31). Drill files go to the drill layer, HPGL and DXF to the board outline,\n"
    "        Gerber files to the first empty of layers 3, 4, 1, 6, 2, 5, 7, 8, ...\n"
    "        Kinds that render in this build: Excellon drill files. Gerber, HPGL and DXF files\n"
    "        render once their readers are part of the build; until then such a file fails\n"
    "        (exit 1) and the other files still render.\n"
    "info    prints what a scan of FILE finds, as text or as JSON.\n"
    "Exit codes: 0 success, 1 a file failed, 2 bad arguments.\n";

struct InfoArguments {
  std::string file;
  bool json = false;
};

int badArguments(const std::string& reason) {
  std::fprintf(stderr, "gbrview: %s\n\n%s", reason.c_str(), Usage);
  return ExitBadArguments;
}

std::optional<double> parseNumber(std::string_view text) {
  double value = 0.0;
  const char* end = text.data() + text.size();
  auto [ptr, error] = std::from_chars(text.data(), end, value);
  if (text.empty() || error != std::errc() || ptr != end || !std::isfinite(value))
    return std::nullopt;
  return value;
}

std::optional<int> parseWhole(std::string_view text) {
  int value = 0;
  const char* end = text.data() + text.size();
  auto [ptr, error] = std::from_chars(text.data(), end, value);
  if (text.empty() || error != std::errc() || ptr != end)
    return std::nullopt;
  return value;
}

std::optional<std::vector<double>> parseWindow(std::string_view text) {
  std::vector<double> values;
  while (true) {
    const auto comma = text.find(',');
    const auto value = parseNumber(text.substr(0, comma));
    if (!value)
      return std::nullopt;
    values.push_back(*value);
    if (comma == std::string_view::npos)
      break;
    text.remove_prefix(comma + 1);
  }
  if (values.size() != 4 || values[2] <= values[0] || values[3] <= values[1])
    return std::nullopt;
  return values;
}

bool hasPictureExtension(const std::string& path) {
  const auto dot = path.rfind('.');
  if (dot == std::string::npos || path.find('/', dot) != std::string::npos)
    return false;
  std::string extension = path.substr(dot + 1);
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return extension == "png" || extension == "pdf" || extension == "svg";
}

// Parses the arguments after "render"; an error text when they are not usable.
std::string parseRender(const std::vector<std::string>& args, tvx::RenderOptions& out) {
  bool seenDpi = false;
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
    const bool hasValue = i + 1 < args.size();
    if (arg == "--dpi") {
      if (!hasValue || seenDpi)
        return "--dpi needs one number";
      const auto dpi = parseNumber(args[++i]);
      if (!dpi)
        return "--dpi needs one number";
      out.dpi = *dpi;
      seenDpi = true;
    } else if (arg == "--window") {
      if (!hasValue || out.window)
        return "--window needs one rectangle";
      const auto window = parseWindow(args[++i]);
      if (!window)
        return "--window must be x0,y0,x1,y1 in millimetres with x1 > x0 and y1 > y0";
      out.window = tvx::WindowMm{(*window)[0], (*window)[1], (*window)[2], (*window)[3]};
    } else if (arg == "--mono") {
      out.mono = true;
    } else if (arg == "--layer") {
      if (!hasValue || out.layer)
        return "--layer needs one layer number";
      out.layer = parseWhole(args[++i]);
      if (!out.layer || *out.layer < 1 || *out.layer > 31)
        return "--layer must be a layer number from 1 to 31";
    } else if (arg == "-o") {
      if (!hasValue || !out.output.empty())
        return "-o needs one output file";
      out.output = args[++i];
      if (!hasPictureExtension(out.output))
        return "the output file must end in .png, .pdf or .svg";
    } else if (arg.size() > 1 && arg[0] == '-') {
      return "unknown option " + arg;
    } else {
      out.files.push_back(arg);
    }
  }
  if (out.output.empty())
    return "render needs an output file (-o OUT)";
  if (out.files.empty())
    return "render needs at least one input file";
  return std::string();
}

std::string parseInfo(const std::vector<std::string>& args, InfoArguments& out) {
  for (const std::string& arg : args) {
    if (arg == "--json") {
      out.json = true;
    } else if (arg.size() > 1 && arg[0] == '-') {
      return "unknown option " + arg;
    } else if (out.file.empty()) {
      out.file = arg;
    } else {
      return "info takes one file";
    }
  }
  if (out.file.empty())
    return "info needs a file";
  return std::string();
}

// Renders with a headless platform unless the environment names one.
int runRender(int argc, char* argv[], const tvx::RenderOptions& options) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
    qputenv("QT_QPA_PLATFORM", "offscreen");
  QGuiApplication application(argc, argv);
  const tvx::RenderOutcome outcome = tvx::renderFiles(options);
  for (const std::string& message : outcome.messages)
    std::fprintf(stderr, "%s\n", message.c_str());
  if (outcome.exitCode == ExitBadArguments)
    std::fputs(Usage, stderr);
  return outcome.exitCode;
}

}  // namespace

int main(int argc, char* argv[]) {
  if (argc < 2)
    return badArguments("no command given");
  const std::string verb = argv[1];
  const std::vector<std::string> args(argv + 2, argv + argc);

  if (verb == "-h" || verb == "--help" || verb == "help") {
    std::fputs(Usage, stdout);
    return 0;
  }
  if (verb == "render") {
    tvx::RenderOptions render;
    if (std::string error = parseRender(args, render); !error.empty())
      return badArguments(error);
    return runRender(argc, argv, render);
  }
  if (verb == "info") {
    InfoArguments info;
    if (std::string error = parseInfo(args, info); !error.empty())
      return badArguments(error);
    std::string out;
    std::string err;
    const int code = tvx::runInfoCommand(info.file, info.json, out, err);
    std::fwrite(out.data(), 1, out.size(), stdout);
    std::fwrite(err.data(), 1, err.size(), stderr);
    return code;
  }
  return badArguments("unknown command " + verb);
}
