// The command line of gbrview: options with their value after "=" or as the next argument, values
// that start with "-", options before and after the files, and the lines refused.
#include "app/cli/CommandLine.h"

#include <gtest/gtest.h>

#include <optional>

namespace tvx {
namespace {

CliArguments parse(const QStringList& arguments) {
  return parseCliArguments(QStringList{"gbrview"} + arguments);
}

TEST(CommandLineTest, RenderOptionsTakeTheirValueInEitherForm) {
  struct Case {
    QStringList arguments;
    std::optional<WindowMm> window;
    double dpi;
    std::optional<int32_t> layer;
    bool mono;
    std::string output;
    std::vector<std::string> files;
  } cases[] = {
      {{"render", "--window=0,0,10,10", "-o", "a.png", "f.drl"},
       WindowMm{0, 0, 10, 10},
       300,
       {},
       false,
       "a.png",
       {"f.drl"}},
      {{"render", "--window", "-5,-5,10,10", "-o", "a.png", "f.drl"},
       WindowMm{-5, -5, 10, 10},
       300,
       {},
       false,
       "a.png",
       {"f.drl"}},
      {{"render", "--window=-5,-5,10,10", "-o", "a.png", "f.drl"},
       WindowMm{-5, -5, 10, 10},
       300,
       {},
       false,
       "a.png",
       {"f.drl"}},
      {{"render", "--window=-12.5,-0.5,-1e1,0", "-o", "a.png", "f.drl"},
       WindowMm{-12.5, -0.5, -10, 0},
       300,
       {},
       false,
       "a.png",
       {"f.drl"}},
      {{"render", "--dpi=600", "--layer=3", "--mono", "--output=b.svg", "f.gbr", "g.drl"},
       std::nullopt,
       600,
       3,
       true,
       "b.svg",
       {"f.gbr", "g.drl"}},
      {{"render", "f.gbr", "-o", "c.PDF", "--dpi", "72.5", "--layer", "31"},
       std::nullopt,
       72.5,
       31,
       false,
       "c.PDF",
       {"f.gbr"}},
      {{"render", "-o", "d.png", "--", "-odd.gbr"},
       std::nullopt,
       300,
       {},
       false,
       "d.png",
       {"-odd.gbr"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.arguments.join(' ').toStdString());
    const CliArguments parsed = parse(c.arguments);
    ASSERT_EQ(parsed.command, CliCommand::Render) << parsed.error;
    const RenderOptions& r = parsed.render;
    ASSERT_EQ(r.window.has_value(), c.window.has_value());
    if (c.window) {
      EXPECT_EQ(r.window->x0, c.window->x0);
      EXPECT_EQ(r.window->y0, c.window->y0);
      EXPECT_EQ(r.window->x1, c.window->x1);
      EXPECT_EQ(r.window->y1, c.window->y1);
    }
    EXPECT_EQ(r.dpi, c.dpi);
    EXPECT_EQ(r.layer, c.layer);
    EXPECT_EQ(r.mono, c.mono);
    EXPECT_EQ(r.output, c.output);
    EXPECT_EQ(r.files, c.files);
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
      {{"render", "--window=-5,-5,10", "-o", "a.png", "f"}, "--window must be"},
      {{"render", "--dpi", "1", "--dpi=2", "-o", "a.png", "f"}, "more than once"},
      {{"render", "-o", "a.png", "-o", "b.png", "f"}, "more than once"},
      {{"render", "--dpi=many", "-o", "a.png", "f"}, "--dpi"},
      {{"render", "--layer=0", "-o", "a.png", "f"}, "--layer"},
      {{"render", "-o", "a.png", "f", "--dpi"}, "dpi"},
      {{"render", "--mono=yes", "-o", "a.png", "f"}, "mono"},
      {{"render", "-o", "a.jpg", "f"}, ".png, .pdf or .svg"},
      {{"render", "f"}, "output file"},
      {{"render", "-o", "a.png"}, "input file"},
      {{"info"}, "needs a file"},
      {{"info", "a.gbr", "b.gbr"}, "one file"},
      {{"info", "--xml", "a.gbr"}, "xml"},
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
