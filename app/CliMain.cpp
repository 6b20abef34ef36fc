// gbrview: the viewer's readers and drawing without a window.
//   gbrview render [--dpi N] [--window x0,y0,x1,y1] [--mono] [--layer N] -o OUT.(png|pdf|svg)
//   FILE... gbrview info FILE [--json]
// Exit codes: 0 success, 1 a file failed, 2 bad arguments.

#include "import/readers/FileInfo.h"

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
    "        black, --layer the layer to draw (1 to 31).\n"
    "info    prints what a scan of FILE finds, as text or as JSON.\n"
    "Exit codes: 0 success, 1 a file failed, 2 bad arguments.\n";

struct RenderArguments {
  double dpi = 300.0;
  std::optional<std::vector<double>> window;
  bool mono = false;
  std::optional<int> layer;
  std::string output;
  std::vector<std::string> files;
};

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
std::string parseRender(const std::vector<std::string>& args, RenderArguments& out) {
  bool seenDpi = false;
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
    const bool hasValue = i + 1 < args.size();
    if (arg == "--dpi") {
      if (!hasValue || seenDpi)
        return "--dpi needs one number";
      const auto dpi = parseNumber(args[++i]);
      if (!dpi || *dpi <= 0.0 || *dpi > 100000.0)
        return "--dpi must be a positive number";
      out.dpi = *dpi;
      seenDpi = true;
    } else if (arg == "--window") {
      if (!hasValue || out.window)
        return "--window needs one rectangle";
      out.window = parseWindow(args[++i]);
      if (!out.window)
        return "--window must be x0,y0,x1,y1 in millimetres with x1 > x0 and y1 > y0";
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

int notAvailable(const char* verb) {
  std::fprintf(stderr, "gbrview: '%s' is not available in this build yet; nothing was read.\n",
               verb);
  return ExitBadArguments;
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
    RenderArguments render;
    if (std::string error = parseRender(args, render); !error.empty())
      return badArguments(error);
    return notAvailable("render");
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
