// What "gbrview info" reports of a file: the same facts as text and as JSON, the same on every run,
// and a failure that names the file.
#include "app/cli/FileInfo.h"

#include "import/gerber/ImportTestSupport.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <fstream>

namespace tvx {
namespace {

class FileInfoTest : public ::testing::Test {
protected:
  std::string write(const std::string& name, const std::string& text) {
    const std::string path = folder.file(name);
    std::ofstream(path, std::ios::binary) << text;
    return path;
  }
  static QJsonObject parse(const std::string& json) {
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(QByteArray::fromStdString(json), &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << error.errorString().toStdString();
    return document.object();
  }

  test::TempDir folder;
};

constexpr const char* Drill = "M48\nMETRIC,TZ\nT1C0.8\nT2C1.0\n%\nT1\nX1000Y-2000\nX5000Y8000\n"
                              "T2\nX5000Y8000\nX20000Y3000\nM30\n";

TEST_F(FileInfoTest, ADrillFileReportsFormatToolsExtentsAndPads) {
  const std::string path = write("board \"quoted\".drl", Drill);
  const FileInfo info = gatherFileInfo(path);
  EXPECT_TRUE(info.readable);
  EXPECT_FALSE(info.failed());
  EXPECT_EQ(info.kind, ImportKind::ExcellonFormatTwo);
  EXPECT_EQ(info.format, (ExcellonFormat{1, 3, 3, 1}));
  EXPECT_EQ(info.tools, (std::vector<ToolEntry>{{1, 80000, 1, 2}, {2, 100000, 1, 2}}));
  EXPECT_EQ(info.holes, 4);
  EXPECT_EQ(info.pads, 3);  // tool 2 drills a point of tool 1 again
  EXPECT_EQ(info.holeTally, (HoleTally{3, 1, 0, 0}));

  const std::string text = fileInfoText(info);
  for (const std::string line :
       {"kind: 3 Drilling EXCELLON Format Two\n", "format: mm 3.3 TZ\n", "tools: 2\n",
        "  T1  0.80000 mm  0.031496 in  2 holes\n", "  T2  1.00000 mm  0.039370 in  2 holes\n",
        "holes: 4\n", "extents mm: x 1.00000 .. 20.00000, y -2.00000 .. 8.00000\n",
        "import: status 0, layer 31 Drill Template, pads 3 (placed 3, covered 1, without size 0, "
        "refused 0)\n"}) {
    EXPECT_NE(text.find(line), std::string::npos) << line << "in\n" << text;
  }

  const QJsonObject json = parse(fileInfoJson(info));
  EXPECT_EQ(json["file"].toString().toStdString(), path);
  EXPECT_EQ(json["kind"].toInt(), 3);
  EXPECT_EQ(json["bytes"].toInt(), int(std::string(Drill).size()));
  const QJsonObject excellon = json["excellon"].toObject();
  EXPECT_EQ(excellon["format"].toObject()["unit"].toString(), "mm");
  EXPECT_EQ(excellon["format"].toObject()["zeros"].toString(), "TZ");
  const QJsonArray tools = excellon["tools"].toArray();
  ASSERT_EQ(tools.size(), 2);
  EXPECT_EQ(tools[1].toObject()["code"].toInt(), 2);
  EXPECT_DOUBLE_EQ(tools[1].toObject()["diameterMm"].toDouble(), 1.0);
  EXPECT_DOUBLE_EQ(tools[1].toObject()["diameterInch"].toDouble(), 0.03937);
  EXPECT_EQ(tools[1].toObject()["holes"].toInt(), 2);
  EXPECT_DOUBLE_EQ(excellon["extentsMm"].toObject()["minY"].toDouble(), -2.0);
  EXPECT_EQ(excellon["import"].toObject()["pads"].toInt(), 3);
  EXPECT_EQ(excellon["import"].toObject()["covered"].toInt(), 1);

  // The same file gives the same report.
  EXPECT_EQ(fileInfoText(gatherFileInfo(path)), text);
  EXPECT_EQ(fileInfoJson(gatherFileInfo(path)), fileInfoJson(info));
}

TEST_F(FileInfoTest, AGerberFileReportsItsAperturesWithTheirUses) {
  const std::string path = write("top.gbr", "%FSLAX24Y24*%\n%MOIN*%\n%ADD10C,0.0100*%\n"
                                            "%ADD11R,0.0600X0.0400*%\n%ADD12C,0.02*%\nD11*\n"
                                            "X0Y0D03*\nX10000Y0D03*\nD10*\nX0Y0D02*\n"
                                            "X10000Y0D01*\nM02*\n");
  const FileInfo info = gatherFileInfo(path);
  ASSERT_TRUE(info.gerber);
  EXPECT_FALSE(info.failed());
  const std::string text = fileInfoText(info);
  EXPECT_NE(text.find("  D10  draw  round  0.25400 mm  1 uses\n"), std::string::npos) << text;
  EXPECT_NE(text.find("  D11  special  rectangle"), std::string::npos) << text;
  EXPECT_NE(text.find("extents mm: x "), std::string::npos) << text;
  const QJsonArray apertures =
      parse(fileInfoJson(info))["gerber"].toObject()["apertures"].toArray();
  ASSERT_EQ(apertures.size(), int(info.apertures.size()));
  bool sawUnused = false;
  for (const auto& entry : apertures) {
    const QJsonObject a = entry.toObject();
    if (a["dCode"].toInt() == 12) {
      sawUnused = true;
      EXPECT_EQ(a["uses"].toInt(), 0) << "defined but never used";
    }
  }
  EXPECT_TRUE(sawUnused);
}

TEST_F(FileInfoTest, OtherFilesReportTheirKindOnly) {
  struct Case {
    const char* text;
    int kind;
    const char* name;
  } cases[] = {
      {"just some words\n", 0, "unknown file"},
      {"", 0, "unknown file"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const FileInfo info = gatherFileInfo(write("other.txt", c.text));
    EXPECT_FALSE(info.excellon);
    EXPECT_FALSE(info.failed());
    const std::string text = fileInfoText(info);
    EXPECT_NE(text.find("kind: " + std::to_string(c.kind) + " " + c.name + "\n"), std::string::npos)
        << text;
    EXPECT_EQ(text.find("tools:"), std::string::npos);
    const QJsonObject json = parse(fileInfoJson(info));
    EXPECT_EQ(json["kind"].toInt(), c.kind);
    EXPECT_FALSE(json.contains("excellon"));
    std::string out, err;
    EXPECT_EQ(runInfoCommand(info.path, false, out, err), 0);
    EXPECT_EQ(err, "");
  }
}

TEST_F(FileInfoTest, FailuresExitWithOneAndNameTheFile) {
  const std::string missing = folder.file("missing.drl");
  std::string out, err;
  EXPECT_EQ(runInfoCommand(missing, true, out, err), 1);
  EXPECT_EQ(out, "");
  EXPECT_EQ(err, "gbrview: Can't read file: " + missing + " (No such file or directory)\n");

  // A drill file whose import fails still reports what the scan found.
  const std::string far =
      write("far.drl", "M48\nMETRIC\nT1C1\n%\nT1\nX1.0Y1.0\nX9999999999.0Y1.0\n");
  out.clear();
  err.clear();
  EXPECT_EQ(runInfoCommand(far, false, out, err), 1);
  EXPECT_NE(out.find("import: status 1"), std::string::npos) << out;
  EXPECT_NE(err.find("gbrview: " + far + ": import failed: Coordinates outside limits"),
            std::string::npos)
      << err;
}

}  // namespace
}  // namespace tvx
