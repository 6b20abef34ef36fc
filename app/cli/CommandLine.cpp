#include "app/cli/CommandLine.h"

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QFile>

#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>
#include <vector>

namespace tvx {

const char* const GbrviewUsage =
    "usage:\n"
    "  gbrview render [--dpi N] [--window x0,y0,x1,y1] [--mono] [--layer N] [--apt TABLE]\n"
    "                 -o OUT.(png|pdf|svg) FILE...\n"
    "  gbrview info FILE [--json] [--apt TABLE]\n"
    "  gbrview reconstruct [--json] [--via D] [--apt TABLE] [--layer N] FILE...\n"
    "  gbrview print [--scale M:D | --fit] [--paper CODE] [--landscape] [--margins MM]\n"
    "                [--pages A-B] [--apt TABLE] [--layer N] -o OUT.pdf FILE...\n"
    "  gbrview --help | --version\n"
    "\n"
    "An option's value follows as the next argument or after \"=\": --dpi 600 or --dpi=600.\n"
    "\n"
    "render  draws the files into one picture; --window is a world rectangle in millimetres\n"
    "        (default: all layers), --dpi the resolution of a PNG (default 300), --mono white on\n"
    "        black (clear elements black), --layer the layer of the first Gerber file\n"
    "        (1 to 31). Gerber files (RS-274-X and RS-274-D), Excellon drill files, HPGL\n"
    "        plotter files and DXF drawings render: drill files go to the drill layer, a\n"
    "        plotter file to the board outline layer (a second one finds it taken), a drawing\n"
    "        to the board outline layer or, when that is taken, to the first empty Gerber\n"
    "        layer, Gerber files to the first empty of layers 3, 4, 1, 6, 2, 5, 7, 8, ...\n"
    "info    prints what a scan of FILE finds, as text or as JSON: for a Gerber file its format,\n"
    "        extents, apertures with their draws and flashes, the counts of draws, arcs,\n"
    "        flashes and regions, polarities, step and repeat and file attributes; for a drill\n"
    "        file its format, tools, holes and extents; for a plotter file its elements by\n"
    "        kind and their extents; for a drawing also its version and unit, the entities\n"
    "        drawn and passed over, and the elements left out beyond its extents.\n"
    "reconstruct  imports the files with their own coordinates and sorts the layers into the\n"
    "        board categories (outline, silkscreen, traces, copper, pads told from vias by the\n"
    "        drill file), then prints the elements of each category and how many holes found a\n"
    "        pad; --layer N puts the file after it into layer N (3 top copper, 4 bottom, 1 and 6\n"
    "        silkscreen, 2 and 5 mask, 30 outline, 31 drill), --via D names the D-code of the\n"
    "        via pads, --json prints one JSON object. Exit 1 when there is nothing to sort.\n"
    "print   cuts the frame of all layers into sheets at the scale M:D (paper to artwork,\n"
    "        default 1:1, the ratio at most 10; --fit puts it on one sheet) and prints them as\n"
    "        the print preview does into a PDF file: --paper a paper code (9 A4, default; 8 A3;\n"
    "        1 Letter), --landscape, --margins the four margins in millimetres (default 10),\n"
    "        --pages the sheets to print (default all), numbered row by row from the top left;\n"
    "        --layer as for reconstruct. Prints the sheets across, down and the scale.\n"
    "--apt   an aperture table file (lines \"size,lines D,round D,square D\" in 1/100000 mm)\n"
    "        that gives a plain RS-274-D file its sizes, or another tool's aperture list\n"
    "        (lines \"D10 ROUND 4.00 ...\", sizes in mil unless the list names mm or inch);\n"
    "        without it the table the viewer's settings name is used.\n"
    "Exit codes: 0 success, 1 a file failed, 2 bad arguments.\n";

namespace {

std::string bytesOf(const QString& argument) { return QFile::encodeName(argument).toStdString(); }

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

std::optional<WindowMm> parseWindow(std::string_view text) {
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
  return WindowMm{values[0], values[1], values[2], values[3]};
}

bool hasPictureExtension(const QString& path) {
  const QString name = path.section('/', -1);
  const qsizetype dot = name.lastIndexOf('.');
  if (dot < 0)
    return false;
  const QString extension = name.mid(dot + 1).toLower();
  return extension == "png" || extension == "pdf" || extension == "svg";
}

// The value of an option given at most once; an error text when it was given more often.
std::string oneValue(const QCommandLineParser& parser, const QCommandLineOption& option,
                     std::string& value) {
  const QStringList values = parser.values(option);
  if (values.size() > 1)
    return "--" + option.names().constLast().toStdString() + " is given more than once";
  value = values.isEmpty() ? std::string() : values.front().toStdString();
  return {};
}

// Parses the arguments of a verb with its options and -h/--help. False with the error in out, or
// with out.command Help when the usage was asked for.
bool parseVerb(QCommandLineParser& parser, const QStringList& arguments, CliArguments& out) {
  const QCommandLineOption help(QStringList{"h", "help"});
  parser.addOption(help);
  if (!parser.parse(arguments)) {
    out.error = parser.errorText().toStdString();
    return false;
  }
  if (parser.isSet(help))
    out.command = CliCommand::Help;
  return !parser.isSet(help);
}

// An error text for the arguments after "render", empty when they are usable.
std::string parseRender(const QStringList& arguments, CliArguments& out) {
  QCommandLineParser parser;
  const QCommandLineOption dpi("dpi", {}, "N"), window("window", {}, "x0,y0,x1,y1"), mono("mono"),
      layer("layer", {}, "N"), output(QStringList{"o", "output"}, {}, "OUT"),
      apt("apt", {}, "FILE");
  parser.addOptions({dpi, window, mono, layer, output, apt});
  if (!parseVerb(parser, arguments, out))
    return out.error;
  RenderOptions& render = out.render;
  std::string value;
  if (std::string error = oneValue(parser, dpi, value); !error.empty())
    return error;
  if (parser.isSet(dpi)) {
    const auto number = parseNumber(value);
    if (!number)
      return "--dpi needs one number";
    render.dpi = *number;
  }
  if (std::string error = oneValue(parser, window, value); !error.empty())
    return error;
  if (parser.isSet(window)) {
    render.window = parseWindow(value);
    if (!render.window)
      return "--window must be x0,y0,x1,y1 in millimetres with x1 > x0 and y1 > y0";
  }
  render.mono = parser.isSet(mono);
  if (std::string error = oneValue(parser, layer, value); !error.empty())
    return error;
  if (parser.isSet(layer)) {
    render.layer = parseWhole(value);
    if (!render.layer || *render.layer < 1 || *render.layer > 31)
      return "--layer must be a layer number from 1 to 31";
  }
  if (std::string error = oneValue(parser, apt, value); !error.empty())
    return error;
  render.apertureTable = value;
  if (std::string error = oneValue(parser, output, value); !error.empty())
    return error;
  if (!parser.isSet(output))
    return "render needs an output file (-o OUT)";
  if (!hasPictureExtension(parser.value(output)))
    return "the output file must end in .png, .pdf or .svg";
  render.output = bytesOf(parser.value(output));
  for (const QString& file : parser.positionalArguments())
    render.files.push_back(bytesOf(file));
  if (render.files.empty())
    return "render needs at least one input file";
  return {};
}

std::string parseInfo(const QStringList& arguments, CliArguments& out) {
  QCommandLineParser parser;
  const QCommandLineOption json("json"), apt("apt", {}, "FILE");
  parser.addOptions({json, apt});
  if (!parseVerb(parser, arguments, out))
    return out.error;
  out.json = parser.isSet(json);
  std::string value;
  if (std::string error = oneValue(parser, apt, value); !error.empty())
    return error;
  out.infoApertureTable = value;
  const QStringList files = parser.positionalArguments();
  if (files.isEmpty())
    return "info needs a file";
  if (files.size() > 1)
    return "info takes one file";
  out.infoFile = bytesOf(files.front());
  return {};
}

std::string parseReconstruct(const QStringList& arguments, CliArguments& out) {
  QCommandLineParser parser;
  const QCommandLineOption json("json"), via("via", {}, "D"), layer("layer", {}, "N"),
      apt("apt", {}, "FILE");
  parser.addOptions({json, via, layer, apt});
  if (!parseVerb(parser, arguments, out))
    return out.error;
  ReconstructOptions& options = out.reconstruct;
  options.json = parser.isSet(json);
  std::string value;
  if (std::string error = oneValue(parser, via, value); !error.empty())
    return error;
  if (parser.isSet(via)) {
    if (!value.empty() && (value[0] == 'D' || value[0] == 'd'))
      value.erase(0, 1);
    options.via = parseWhole(value);
    if (!options.via || *options.via < 1)
      return "--via must be a D-code, as 10 or D10";
  }
  if (std::string error = oneValue(parser, apt, value); !error.empty())
    return error;
  options.apertureTable = value;
  for (const QString& file : parser.positionalArguments())
    options.files.push_back(bytesOf(file));
  if (options.files.empty())
    return "reconstruct needs at least one input file";
  return layersOfFiles(arguments, {"--via", "--apt"}, options.layers);
}

std::string parsePrint(const QStringList& arguments, CliArguments& out) {
  QCommandLineParser parser;
  const QCommandLineOption scale("scale", {}, "M:D"), fit("fit"), paper("paper", {}, "CODE"),
      landscape("landscape"), margins("margins", {}, "MM"), pages("pages", {}, "A-B"),
      layer("layer", {}, "N"), apt("apt", {}, "FILE"), output("o", {}, "OUT");
  parser.addOptions({scale, fit, paper, landscape, margins, pages, layer, apt, output});
  if (!parseVerb(parser, arguments, out))
    return out.error;
  PrintOptions& options = out.print;
  std::string value;
  if (std::string error = oneValue(parser, scale, value); !error.empty())
    return error;
  if (parser.isSet(scale)) {
    const auto colon = value.find(':');
    const bool terms = parseNumber(value.substr(0, colon)) &&
                       (colon == std::string::npos || parseNumber(value.substr(colon + 1)));
    if (!terms)
      return "--scale must be M:D, as 5:1 or 1:2.5";
    options.scale = value;
  }
  options.fit = parser.isSet(fit);
  if (options.fit && parser.isSet(scale))
    return "--scale and --fit exclude each other";
  if (std::string error = oneValue(parser, paper, value); !error.empty())
    return error;
  if (parser.isSet(paper)) {
    const std::optional<int> code = parseWhole(value);
    if (!code || *code < 1 || *code > 41)
      return "--paper must be a paper code from 1 to 41";
    options.paper = *code;
  }
  options.landscape = parser.isSet(landscape);
  if (std::string error = oneValue(parser, margins, value); !error.empty())
    return error;
  if (parser.isSet(margins)) {
    const std::optional<double> mm = parseNumber(value);
    if (!mm || *mm < 0 || *mm > 100)
      return "--margins must be from 0 to 100 millimetres";
    options.marginsMm = *mm;
  }
  if (std::string error = oneValue(parser, pages, value); !error.empty())
    return error;
  if (parser.isSet(pages)) {
    const auto dash = value.find('-');
    const std::optional<int> from = parseWhole(value.substr(0, dash));
    const std::optional<int> to =
        dash == std::string::npos ? from : parseWhole(value.substr(dash + 1));
    if (!from || !to || *from < 1 || *to < *from)
      return "--pages must be A-B with 1 <= A <= B";
    options.fromPage = *from;
    options.toPage = *to;
  }
  if (std::string error = oneValue(parser, apt, value); !error.empty())
    return error;
  options.apertureTable = value;
  if (!parser.isSet(output))
    return "print needs an output file (-o OUT.pdf)";
  options.output = bytesOf(parser.value(output));
  if (!QString::fromStdString(options.output).endsWith(".pdf", Qt::CaseInsensitive))
    return "the output file of print must end in .pdf";
  for (const QString& file : parser.positionalArguments())
    options.files.push_back(bytesOf(file));
  if (options.files.empty())
    return "print needs at least one input file";
  return layersOfFiles(arguments, {"--scale", "--paper", "--margins", "--pages", "--apt", "-o"},
                       options.layers);
}

}  // namespace

std::string layersOfFiles(const QStringList& arguments, const QStringList& valueOptions,
                          std::vector<int32_t>& layers) {
  layers.clear();
  int32_t pending = 0;
  bool filesOnly = false;
  for (qsizetype i = 1; i < arguments.size(); ++i) {
    const QString& argument = arguments[i];
    if (!filesOnly && argument == "--") {
      filesOnly = true;
      continue;
    }
    if (!filesOnly && (argument == "--layer" || argument.startsWith("--layer="))) {
      const QString text = argument == "--layer" ? arguments.value(++i) : argument.mid(8);
      const std::optional<int> number = parseWhole(text.toStdString());
      if (!number || *number < 1 || *number > 31)
        return "--layer must be a layer number from 1 to 31";
      pending = *number;
      continue;
    }
    if (!filesOnly && argument.startsWith('-') && argument.size() > 1) {
      if (valueOptions.contains(argument))
        ++i;  // the option's value
      continue;
    }
    layers.push_back(pending);
    pending = 0;
  }
  if (pending != 0)
    return "--layer N must stand before the file it puts into layer N";
  return {};
}

CliArguments parseCliArguments(const QStringList& arguments) {
  CliArguments out;
  // Step one: the options before the verb, and the verb. Everything after the verb is left to the
  // verb's own parser.
  QCommandLineParser top;
  top.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
  const QCommandLineOption help(QStringList{"h", "help"}), version(QStringList{"v", "version"});
  top.addOptions({help, version});
  if (!top.parse(arguments)) {
    out.error = top.errorText().toStdString();
    return out;
  }
  if (top.isSet(help) || top.isSet(version)) {
    out.command = top.isSet(help) ? CliCommand::Help : CliCommand::Version;
    return out;
  }
  QStringList rest = top.positionalArguments();
  if (rest.isEmpty()) {
    out.error = "no command given";
    return out;
  }
  const QString verb = rest.takeFirst();
  rest.prepend(arguments.value(0));
  if (verb == "help") {
    out.command = CliCommand::Help;
  } else if (verb == "reconstruct") {
    out.command = CliCommand::Reconstruct;
    out.error = parseReconstruct(rest, out);
    if (!out.error.empty())
      out.command = CliCommand::Bad;
  } else if (verb == "print") {
    out.command = CliCommand::Print;
    out.error = parsePrint(rest, out);
    if (!out.error.empty())
      out.command = CliCommand::Bad;
  } else if (verb == "render" || verb == "info") {
    const bool render = verb == "render";
    out.command = render ? CliCommand::Render : CliCommand::Info;
    out.error = render ? parseRender(rest, out) : parseInfo(rest, out);
    if (!out.error.empty())
      out.command = CliCommand::Bad;
  } else {
    out.error = "unknown command " + verb.toStdString();
  }
  return out;
}

}  // namespace tvx
