// The command line of gbrview: options with their value after "=" or as the next argument, values
// that start with "-", options before and after the files, and the lines refused.
#include "app/cli/CommandLine.h"

#include <gtest/gtest.h>

#include <sstream>

namespace tvx {
namespace {

CliArguments parse(const QStringList& arguments) {
  return parseCliArguments(QStringList{"gbrview"} + arguments);
}

// The options in one line: "dpi 300 window x0,y0,x1,y1 layer 3 mono out a.png files f.drl".
std::string describe(const RenderOptions& r) {
  std::ostringstream out;
  out << "dpi " << r.dpi;
  if (r.window)
    out << " window " << r.window->x0 << "," << r.window->y0 << "," << r.window->x1 << ","
        << r.window->y1;
  if (r.layer)
    out << " layer " << *r.layer;
  out << (r.mono ? " mono" : "") << " out " << r.output << " files";
  for (const std::string& file : r.files)
    out << " " << file;
  return out.str();
}

TEST(CommandLineTest, RenderOptionsTakeTheirValueInEitherForm) {
  const std::pair<QStringList, const char*> cases[] = {
      {{"render", "--window=0,0,10,10", "-o", "a.png", "f.drl"},
       "dpi 300 window 0,0,10,10 out a.png files f.drl"},
      {{"render", "--window", "-5,-5,10,10", "-o", "a.png", "f.drl"},
       "dpi 300 window -5,-5,10,10 out a.png files f.drl"},
      {{"render", "--window=-5,-5,10,10", "-o", "a.png", "f.drl"},
       "dpi 300 window -5,-5,10,10 out a.png files f.drl"},
      {{"render", "--window=-12.5,-0.5,-1e1,0", "-o", "a.png", "f.drl"},
       "dpi 300 window -12.5,-0.5,-10,0 out a.png files f.drl"},
      {{"render", "--dpi=600", "--layer=3", "--mono", "--output=b.svg", "f.gbr", "g.drl"},
       "dpi 600 layer 3 mono out b.svg files f.gbr g.drl"},
      {{"render", "f.gbr", "-o", "c.PDF", "--dpi", "72.5", "--layer", "31"},
       "dpi 72.5 layer 31 out c.PDF files f.gbr"},
      {{"render", "-o", "d.png", "--", "-odd.gbr"}, "dpi 300 out d.png files -odd.gbr"},
  };
  for (const auto& [arguments, expected] : cases) {
    SCOPED_TRACE(arguments.join(' ').toStdString());
    const CliArguments parsed = parse(arguments);
    ASSERT_EQ(parsed.command, CliCommand::Render) << parsed.error;
    EXPECT_EQ(describe(parsed.render), expected);
  }
}

// Each file of reconstruct takes the layer of the --layer right before it.
TEST(CommandLineTest, ReconstructBindsEachFileToTheLayerBeforeIt) {
  const std::pair<QStringList, const char*> cases[] = {
      {{"reconstruct", "--layer", "3", "a.gbr", "b.drl", "--layer=30", "o.gbr"},
       "a.gbr:3 b.drl:0 o.gbr:30"},
      {{"reconstruct", "--via", "D10", "--json", "a.gbr"}, "a.gbr:0 via 10 json"},
      {{"reconstruct", "--apt", "t.apt", "--via=12", "--layer", "4", "--", "-b.gbr"},
       "-b.gbr:4 via 12"},
  };
  for (const auto& [arguments, expected] : cases) {
    SCOPED_TRACE(arguments.join(' ').toStdString());
    const CliArguments parsed = parse(arguments);
    ASSERT_EQ(parsed.command, CliCommand::Reconstruct) << parsed.error;
    const ReconstructOptions& r = parsed.reconstruct;
    ASSERT_EQ(r.files.size(), r.layers.size());
    std::string text;
    for (size_t i = 0; i < r.files.size(); ++i)
      text += (i ? " " : "") + r.files[i] + ":" + std::to_string(r.layers[i]);
    if (r.via)
      text += " via " + std::to_string(*r.via);
    EXPECT_EQ(text + (r.json ? " json" : ""), expected);
  }
}

TEST(CommandLineTest, VerbsAndTheirLinesAreTold) {
  struct Case {
    QStringList arguments;
    CliCommand command;
    std::string infoFile;
    bool json;
  } cases[] = {
      {{"info", "--json", "f.gbr"}, CliCommand::Info, "f.gbr", true},
      {{"info", "f.gbr", "--json"}, CliCommand::Info, "f.gbr", true},
      {{"info", "f.gbr"}, CliCommand::Info, "f.gbr", false},
      {{"--help"}, CliCommand::Help, "", false},
      {{"-h"}, CliCommand::Help, "", false},
      {{"help"}, CliCommand::Help, "", false},
      {{"render", "--help"}, CliCommand::Help, "", false},
      {{"info", "-h"}, CliCommand::Help, "", false},
      {{"--version"}, CliCommand::Version, "", false},
      {{"-v"}, CliCommand::Version, "", false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.arguments.join(' ').toStdString());
    const CliArguments parsed = parse(c.arguments);
    EXPECT_EQ(parsed.command, c.command) << parsed.error;
    EXPECT_EQ(parsed.infoFile, c.infoFile);
    EXPECT_EQ(parsed.json, c.json);
  }
}

TEST(CommandLineTest, BadLinesAreRefusedWithTheReason) {
  struct Case {
    QStringList arguments;
    const char* reason;  // a part of the error text
  } cases[] = {
      {{}, "no command"},
      {{"draw", "a.gbr"}, "unknown command draw"},
      {{"--window=0,0,1,1", "render"}, "window"},
      {{"render", "--colour", "-o", "a.png", "f"}, "colour"},
      {{"render", "--window=0,0,10", "-o", "a.png", "f"}, "--window must be"},
      {{"render", "--window", "10,0,0,10", "-o", "a.png", "f"}, "--window must be"},
      {{"render", "--dpi", "1", "--dpi=2", "-o", "a.png", "f"}, "more than once"},
      {{"render", "-o", "a.png", "-o", "b.png", "f"}, "more than once"},
      {{"render", "--dpi=many", "-o", "a.png", "f"}, "--dpi"},
      {{"render", "--layer=0", "-o", "a.png", "f"}, "--layer"},
      {{"render", "--layer", "32", "-o", "a.png", "f"}, "--layer must be a layer number"},
      {{"render", "-o", "a.png", "f", "--dpi"}, "dpi"},
      {{"render", "--mono=yes", "-o", "a.png", "f"}, "mono"},
      {{"render", "-o", "a.jpg", "f"}, ".png, .pdf or .svg"},
      {{"render", "f"}, "output file"},
      {{"render", "-o", "a.png"}, "input file"},
      {{"info"}, "needs a file"},
      {{"info", "a.gbr", "b.gbr"}, "one file"},
      {{"info", "--xml", "a.gbr"}, "xml"},
      {{"reconstruct"}, "input file"},
      {{"reconstruct", "a.gbr", "--layer", "3"}, "must stand before the file"},
      {{"reconstruct", "--layer", "0", "a.gbr"}, "--layer must be a layer number"},
      {{"reconstruct", "--via", "pad", "a.gbr"}, "--via must be a D-code"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.arguments.join(' ').toStdString());
    const CliArguments parsed = parse(c.arguments);
    EXPECT_EQ(parsed.command, CliCommand::Bad);
    EXPECT_NE(parsed.error.find(c.reason), std::string::npos) << parsed.error;
  }
}

}  // namespace
}  // namespace tvx
