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
  for (const std::string line :
       {"format: inch, leading zeros omitted, X 2.4, Y 2.4, scale X 1 Y 1\n",
        "  D10  round  0.25400 mm  draws 1  flashes 0  uses 1\n",
        "  D11  rectangle  1.52400 x 1.01600 mm  draws 0  flashes 2  uses 2\n",
        "  D12  round  0.50800 mm  draws 0  flashes 0  uses 0\n", "step and repeat: none\n"})
    EXPECT_NE(text.find(line), std::string::npos) << line << "in\n" << text;
  EXPECT_EQ(text.find("file attributes:"), std::string::npos) << "none in the file";
  const QJsonArray apertures =
      parse(fileInfoJson(info))["gerber"].toObject()["apertures"].toArray();
  ASSERT_EQ(apertures.size(), 3);
  EXPECT_EQ(apertures[2].toObject()["dCode"].toInt(), 12);
  EXPECT_EQ(apertures[2].toObject()["uses"].toInt(), 0) << "defined but never used";
}

// Operations counted by hand: two draws with D10, three flashes with D11 (one of them repeated six
// times by a step and repeat), one arc with D12, and a region drawn while D12 is selected, under
// clear polarity.
constexpr const char* CountedGerber = "%TF.FileFunction,Copper,L1,Top*%\n%TF.Part,Single*%\n"
                                      "%TA.AperFunction,Conductor*%\n"
                                      "%FSLAX24Y24*%\n%MOMM*%\n%ADD10C,0.2*%\n%ADD11R,1.0X0.5*%\n"
                                      "%ADD12C,0.1*%\nD10*\nX0Y0D02*\nX10000Y0D01*\n"
                                      "X10000Y10000D01*\nD11*\nX20000Y0D03*\nX30000Y0D03*\n"
                                      "%SRX2Y3I5.0J4.0*%\nX40000Y0D03*\n%SR*%\nD12*\nG75*\n"
                                      "X10000Y20000D02*\nG03X0Y30000I-10000J0D01*\nG01*\n"
                                      "%LPC*%\nG36*\nX0Y0D02*\nX5000Y0D01*\nX5000Y5000D01*\n"
                                      "X0Y0D01*\nG37*\nM02*\n";

TEST_F(FileInfoTest, AGerberFileReportsTheOperationsOfItsStreamAsTextAndJson) {
  const FileInfo info = gatherFileInfo(write("counted.gbr", CountedGerber));
  ASSERT_TRUE(info.gerber);
  ASSERT_FALSE(info.failed()) << fileInfoText(info);
  const std::string text = fileInfoText(info);
  const QJsonObject gerber = parse(fileInfoJson(info))["gerber"].toObject();

  struct Total {
    const char* key;
    int count;
  };
  for (const Total& t :
       {Total{"draws", 3}, Total{"arcs", 1}, Total{"flashes", 3}, Total{"regions", 1}}) {
    SCOPED_TRACE(t.key);
    EXPECT_NE(text.find(std::string("\n") + t.key + ": " + std::to_string(t.count) + "\n"),
              std::string::npos)
        << text;
    EXPECT_EQ(gerber[t.key].toInt(), t.count);
  }

  struct Aperture {
    int dCode;
    const char* line;
    int draws, flashes, uses;
  };
  const QJsonArray apertures = gerber["apertures"].toArray();
  ASSERT_EQ(apertures.size(), 3);
  const Aperture expected[] = {
      {10, "  D10  round  0.20000 mm  draws 2  flashes 0  uses 2\n", 2, 0, 2},
      {11, "  D11  rectangle  1.00000 x 0.50000 mm  draws 0  flashes 3  uses 8\n", 0, 3, 8},
      {12, "  D12  round  0.10000 mm  draws 1  flashes 0  uses 1\n", 1, 0, 1},
  };
  for (int i = 0; i < 3; ++i) {
    const Aperture& a = expected[i];
    SCOPED_TRACE(a.dCode);
    EXPECT_NE(text.find(a.line), std::string::npos) << text;
    const QJsonObject row = apertures[i].toObject();
    EXPECT_EQ(row["dCode"].toInt(), a.dCode);
    EXPECT_EQ(row["draws"].toInt(), a.draws);
    EXPECT_EQ(row["flashes"].toInt(), a.flashes);
    EXPECT_EQ(row["uses"].toInt(), a.uses);
  }

  for (const std::string line :
       {"format: mm, leading zeros omitted, X 2.4, Y 2.4, scale X 1 Y 1\n",
        "extents mm: x 0.00000 .. 9.00000, y 0.00000 .. 8.00000\n",
        "layer polarity records: 1 (dark 0, clear 1)\n", "step and repeat: 1\n",
        "  copies X 2 Y 3, steps mm X 5.00000 Y 4.00000\n", "file attributes: 2\n",
        "  FileFunction: Copper,L1,Top\n  Part: Single\n"})
    EXPECT_NE(text.find(line), std::string::npos) << line << "in\n" << text;
  EXPECT_EQ(gerber["format"].toObject()["unit"].toString(), "mm");
  EXPECT_EQ(gerber["format"].toObject()["decimalDigitsY"].toInt(), 4);
  EXPECT_DOUBLE_EQ(gerber["extentsMm"].toObject()["maxX"].toDouble(), 9.0);
  EXPECT_EQ(gerber["layerPolarity"].toObject()["clear"].toInt(), 1);
  EXPECT_DOUBLE_EQ(apertures[1].toObject()["heightMm"].toDouble(), 0.5);
  const QJsonArray blocks = gerber["stepRepeat"].toArray();
  ASSERT_EQ(blocks.size(), 1) << "the closing SR is no block";
  EXPECT_EQ(blocks[0].toObject()["copiesY"].toInt(), 3);
  EXPECT_DOUBLE_EQ(blocks[0].toObject()["stepXMm"].toDouble(), 5.0);
  const QJsonArray attributes = gerber["fileAttributes"].toArray();
  ASSERT_EQ(attributes.size(), 2) << "TA is no file attribute";
  EXPECT_EQ(attributes[0].toObject()["name"].toString(), "FileFunction");
  EXPECT_EQ(attributes[0].toObject()["value"].toString(), "Copper,L1,Top");
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
