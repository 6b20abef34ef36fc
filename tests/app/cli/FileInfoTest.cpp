// What "gbrview info" reports of a file: the same facts as text and as JSON, the same on every run,
// and a failure that names the file.
#include "app/cli/FileInfo.h"

#include "import/gerber/ImportTestSupport.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace tvx {
namespace {

class FileInfoTest : public ::testing::Test {
protected:
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
  const std::string path = folder.write("board \"quoted\".drl", Drill);
  const FileInfo info = gatherFileInfo(path);
  EXPECT_FALSE(info.failed());
  EXPECT_EQ(info.tools, (std::vector<ToolEntry>{{1, 80000, 1, 2}, {2, 100000, 1, 2}}));
  // Tool 2 drills a point of tool 1 again: 3 pads, 1 covered.
  const std::string text = fileInfoText(info);
  EXPECT_EQ(text, "file: " + path +
                      "\nbytes: 86\nkind: 3 Drilling EXCELLON Format Two\nformat: mm 3.3 TZ\n"
                      "tools: 2\n  T1  0.80000 mm  0.031496 in  2 holes\n"
                      "  T2  1.00000 mm  0.039370 in  2 holes\nholes: 4\n"
                      "extents mm: x 1.00000 .. 20.00000, y -2.00000 .. 8.00000\n"
                      "import: status 0, layer 31 Drill Template, pads 3 (placed 3, slots 0, "
                      "covered 1, without size 0, refused 0)\n");
  QJsonObject expected = parse(R"({"bytes": 86, "kind": 3, "recognisedKind": 3, "readable": true,
      "kindName": "Drilling EXCELLON Format Two", "messages": [], "excellon": {
      "extentsMm": {"maxX": 20, "maxY": 8, "minX": 1, "minY": -2}, "holes": 4,
      "format": {"decimalDigits": 3, "integerDigits": 3, "unit": "mm", "zeros": "TZ"},
      "import": {"covered": 1, "layer": 31, "layerName": "Drill Template", "pads": 3, "placed": 3,
                 "slots": 0, "refused": 0, "status": 0, "withoutSize": 0},
      "tools": [{"code": 1, "diameterInch": 0.031496, "diameterMm": 0.8, "holes": 2},
                {"code": 2, "diameterInch": 0.03937, "diameterMm": 1, "holes": 2}]}})");
  expected["file"] = QString::fromStdString(path);
  EXPECT_EQ(parse(fileInfoJson(info)), expected);

  // The same file gives the same report.
  EXPECT_EQ(fileInfoText(gatherFileInfo(path)), text);
  EXPECT_EQ(fileInfoJson(gatherFileInfo(path)), fileInfoJson(info));
}

TEST_F(FileInfoTest, AGerberFileReportsItsAperturesWithTheirUses) {
  const std::string path = folder.write("top.gbr", "%FSLAX24Y24*%\n%MOIN*%\n%ADD10C,0.0100*%\n"
                                                   "%ADD11R,0.0600X0.0400*%\n%ADD12C,0.02*%\nD11*\n"
                                                   "X0Y0D03*\nX10000Y0D03*\nD10*\nX0Y0D02*\n"
                                                   "X10000Y0D01*\nM02*\n");
  const FileInfo info = gatherFileInfo(path);
  ASSERT_TRUE(info.gerber);
  EXPECT_FALSE(info.failed());
  // Defined but never used: D12; no step and repeat, no file attributes. The JSON of apertures is
  // the next test's; both forms take the same store units.
  EXPECT_EQ(fileInfoText(info),
            "file: " + path +
                "\nbytes: 137\nkind: 1 Artwork GERBER RS-274-X\n"
                "format: inch, leading zeros omitted, X 2.4, Y 2.4, scale X 1 Y 1\n"
                "extents mm: x 0.00000 .. 25.40000, y 0.00000 .. 0.00000\napertures: 3\n"
                "  D10  round  0.25400 mm  draws 1  flashes 0  uses 1\n"
                "  D11  rectangle  1.52400 x 1.01600 mm  draws 0  flashes 2  uses 2\n"
                "  D12  round  0.50800 mm  draws 0  flashes 0  uses 0\ndraws: 1\narcs: 0\n"
                "flashes: 2\nregions: 0\nlayer polarity records: 0 (dark 0, clear 0)\n"
                "image polarity: positive\nstep and repeat: none\n");
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
  const FileInfo info = gatherFileInfo(folder.write("counted.gbr", CountedGerber));
  ASSERT_TRUE(info.gerber);
  ASSERT_FALSE(info.failed()) << fileInfoText(info);
  const std::string text = fileInfoText(info);
  EXPECT_EQ(text.substr(text.find("format:")),
            "format: mm, leading zeros omitted, X 2.4, Y 2.4, scale X 1 Y 1\n"
            "extents mm: x 0.00000 .. 9.00000, y 0.00000 .. 8.00000\napertures: 3\n"
            "  D10  round  0.20000 mm  draws 2  flashes 0  uses 2\n"
            "  D11  rectangle  1.00000 x 0.50000 mm  draws 0  flashes 3  uses 8\n"
            "  D12  round  0.10000 mm  draws 1  flashes 0  uses 1\n"
            "draws: 3\narcs: 1\nflashes: 3\nregions: 1\n"
            "layer polarity records: 1 (dark 0, clear 1)\nimage polarity: positive\n"
            "step and repeat: 1\n  copies X 2 Y 3, steps mm X 5.00000 Y 4.00000\n"
            "file attributes: 2\n  FileFunction: Copper,L1,Top\n  Part: Single\n");
  // The closing SR is no block; TA is no file attribute.
  EXPECT_EQ(parse(fileInfoJson(info))["gerber"].toObject(), parse(R"({"apertures": [
      {"dCode": 10, "defined": true, "draws": 2, "flashes": 0, "macro": "", "shape": "round",
       "sizeMm": 0.2, "uses": 2},
      {"dCode": 11, "defined": true, "draws": 0, "flashes": 3, "heightMm": 0.5, "macro": "",
       "shape": "rectangle", "sizeMm": 0, "uses": 8, "widthMm": 1},
      {"dCode": 12, "defined": true, "draws": 1, "flashes": 0, "macro": "", "shape": "round",
       "sizeMm": 0.1, "uses": 1}],
      "arcs": 1, "draws": 3, "flashes": 3, "regions": 1,
      "extentsMm": {"maxX": 9, "maxY": 8, "minX": 0, "minY": 0},
      "fileAttributes": [{"name": "FileFunction", "value": "Copper,L1,Top"},
                         {"name": "Part", "value": "Single"}],
      "format": {"decimalDigitsX": 4, "decimalDigitsY": 4, "integerDigitsX": 2,
                 "integerDigitsY": 2, "omittedZeros": "leading", "scaleX": 1, "scaleY": 1,
                 "unit": "mm"},
      "imagePolarity": "positive", "layerPolarity": {"clear": 1, "dark": 0, "records": 1},
      "stepRepeat": [{"copiesX": 2, "copiesY": 3, "stepXMm": 5, "stepYMm": 4}]})"));
}

TEST_F(FileInfoTest, ADrawingReportsItsHeaderEntitiesAndElements) {
  const std::string path =
      folder.write("outline.dxf",
                   "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1015\n9\n$INSUNITS\n70\n4\n0\nENDSEC\n"
                   "0\nSECTION\n2\nTABLES\n0\nENDSEC\n0\nSECTION\n2\nBLOCKS\n0\nBLOCK\n2\nMARK\n0\n"
                   "CIRCLE\n10\n0\n20\n0\n40\n1\n"
                   "0\nENDBLK\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n0\nLINE\n10\n0\n20\n0\n11\n10\n"
                   "21\n0\n0\nINSERT\n2\nMARK\n10\n5\n20\n5\n0\nTEXT\n10\n0\n20\n2\n40\n1\n1\n"
                   "J1\n0\nLINE\n67\n1\n10\n0\n20\n0\n11\n1\n21\n0\n0\nPOINT\n10\n1\n20\n1\n0\n"
                   "ENDSEC\n0\nEOF\n");
  const FileInfo info = gatherFileInfo(path);
  EXPECT_FALSE(info.failed());
  const std::string text = fileInfoText(info);
  EXPECT_NE(text.find("kind: 8 AutoCAD DXF file\ndrawing: version AC1015, units 4\n"
                      "entities drawn: CIRCLE 1, INSERT 1, LINE 1, TEXT 1\n"
                      "entities passed over: LINE 1, POINT 1\nleft out beyond the extents: 0\n"
                      "elements: 1 lines, 0 arcs, 0 circles, 2 outline pieces, 1 texts\n"
                      "extents mm: x -0.00001 .. 10.00001, y -0.00001 .. 6.00001\n"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find("import: status 0, layer 30 Board Outline/Cut-outs\n"), std::string::npos);
  const QJsonObject drawing = parse(fileInfoJson(info))["drawing"].toObject();
  EXPECT_EQ(drawing["entitiesPassedOver"].toObject()["POINT"].toInt(), 1);
  EXPECT_EQ(drawing["outlinePieces"].toInt(), 2);
}

TEST_F(FileInfoTest, OtherFilesReportTheirKindOnlyAndFailAsInRender) {
  const std::pair<const char*, const char*> cases[] = {
      {"just some words\n", "not a file that gbrview reads"}, {"", "the file is empty"}};
  for (const auto& [content, error] : cases) {
    SCOPED_TRACE(content);
    const FileInfo info = gatherFileInfo(folder.write("other.txt", content));
    EXPECT_FALSE(info.excellon);
    EXPECT_TRUE(info.failed());
    const std::string text = fileInfoText(info);
    EXPECT_NE(text.find("kind: 0 unknown file\n"), std::string::npos) << text;
    EXPECT_EQ(text.find("tools:"), std::string::npos);
    const QJsonObject json = parse(fileInfoJson(info));
    EXPECT_EQ(json["kind"].toInt(), 0);
    EXPECT_FALSE(json.contains("excellon"));
    // The report is printed, and the exit code and message are render's.
    std::string out, err;
    EXPECT_EQ(runInfoCommand(info.path, false, out, err), 1);
    EXPECT_EQ(out, text);
    EXPECT_EQ(err, "gbrview: " + info.path + ": " + error + "\n");
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
      folder.write("far.drl", "M48\nMETRIC\nT1C1\n%\nT1\nX1.0Y1.0\nX9999999999.0Y1.0\n");
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
