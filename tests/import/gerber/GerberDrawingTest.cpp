// The drawing pass over TMP.ART: placement and mirror, repeats, polarity, the aperture look-up and
// what a missing aperture costs, zero-size apertures, the pen modes with full circles, polygons
// with their arcs, and the failures of a damaged stream. Streams come from the text pass over real
// Gerber text, or are written by hand. The Gerber reader on the import road: the scan writes
// TMP.ART into the work folder, the import restores the apertures from it and draws its stream, a
// damaged file is reported, and a layer without elements is imported empty with a message.
#include "import/gerber/GerberDrawing.h"
#include "GerberDrawSupport.h"
#include "GerberPassSupport.h"
#include "import/core/ImportDriver.h"
#include "import/gerber/ArtSections.h"
#include "import/gerber/GerberFileReader.h"
#include "kernel/Store.h"
#include "store/LayerSymbol.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>

namespace tvx {
namespace {

using test::ClearCode;
using test::LayerColour;
using test::typesOf;

// Millimetres with three decimals: "X1000" is 1 mm, 100000 store units.
constexpr const char* Head = "%FSLAX33Y33*%%MOMM*%%ADD10C,0.2*%%ADD11R,0.5X0.5*%";

class GerberDrawing : public test::DrawFixture {
protected:
  GerberDrawing() { file.OriginalCoordinates = true; }

  // The text pass over text, the header and sections loaded back, then the drawing pass.
  int32_t drawText(const std::string& body) {
    EXPECT_EQ(pass.run(std::string(Head) + body + "M02*"), 0);
    ArtFile art;
    EXPECT_TRUE(art.open(pass.art));
    int32_t status = 0;
    LoadArtHeader(status, art, false, scan, pass.reporting.reporter);
    EXPECT_EQ(status, 0);
    if (edit)
      edit(scan);
    return replay(art);
  }
  // A stream written by hand behind a header of the given extents; the lists are scan's as set.
  int32_t drawRecords(const std::vector<ArtRecord>& stream, double minX = 0, double minY = 0,
                      double maxX = 0, double maxY = 0) {
    scan.Header.MinX = minX;
    scan.Header.MinY = minY;
    scan.Header.MaxX = maxX;
    scan.Header.MaxY = maxY;
    ArtFile art;
    EXPECT_TRUE(art.create(pass.art));
    for (const ArtRecord& r : headerRecords(scan.Header))
      art.append(r);
    for (const ArtRecord& r : stream)
      art.append(r);
    return replay(art);
  }
  int32_t replay(ArtFile& art) {
    int32_t status = -1;
    GerberDrawContext context{k.store, pass.reporting.reporter, scan};
    elements = DrawGerberStream(status, art, layer, file, context);
    EXPECT_FALSE(file.ClearPolarity) << "the working flag does not outlive the pass";
    return status;
  }
  // Pads that the flashes placed in the layer.
  int32_t pads() { return k.store.OA_GetCount(k.store.S_SymbolEntryArray(layer.SymbolHandle)); }
  std::vector<std::string> boxes() const { return test::boxesOf(pass.reporting.prompts); }

  test::GerberPass pass;
  GerberScan scan;
  std::function<void(GerberScan&)> edit;
  int32_t elements = -1;  // what the last replay counted
};

TEST_F(GerberDrawing, LinesArcsAndAFullCircle) {
  ASSERT_EQ(drawText("D10*X0Y0D02*G01X2000Y0D01*"
                     "G75*G03X3000Y1000I0J1000D01*"        // a quarter about (2 mm, 1 mm)
                     "X3000Y0D02*G02X3000Y0I1000J0D01*"    // a whole clockwise circle
                     "D11*G01X0Y2000D02*X1000Y2000D01*"),  // a square pen, linked from DrawList
            0);
  const auto all = items();
  ASSERT_EQ(typesOf(all), (std::vector<int32_t>{ItemLine, ItemArc, ItemCircle, ItemRectangle}));
  EXPECT_EQ(
      (std::array{all[0].X, all[0].Y, all[0].Width, all[0].Height, all[0].LineWidth, all[0].Link}),
      (std::array{0, 0, 200000, 0, 20000, 10}));
  // From straight below the centre to straight right of it.
  EXPECT_EQ(
      (std::array{all[1].X, all[1].Y, all[1].Width, all[1].Height, all[1].Sweep, all[1].LineWidth}),
      (std::array{200000, 100000, 100000, 270000, 90000, 20000}));
  // A full circle: an open disc with the aperture's width as its line.
  EXPECT_EQ((std::array{all[2].X, all[2].Y, all[2].Width, all[2].LineWidth, int(all[2].Style),
                        all[2].Attributes}),
            (std::array{400000, 0, 100000, 20000, int(StyleOpen), attr::Shown}));
  // The square pen's box covers the stroke with square ends of half its side, 25000.
  EXPECT_EQ(
      (std::array{all[3].X, all[3].Y, all[3].Width, all[3].Height, all[3].Angle, all[3].Link}),
      (std::array{-25000, 175000, 150000, 50000, 0, 11}));
  EXPECT_TRUE(boxes().empty());
}

TEST_F(GerberDrawing, MirrorSwapsArcDirectionsButNotStepDistances) {
  const std::string body = "%SRX2Y1I5.0J0*%D11*X0Y0D03*%SRX1Y1I0J0*%"
                           "D10*X0Y1000D02*G75*G02X1000Y0I0J-1000D01*";
  ASSERT_EQ(drawText(body), 0);
  const auto plain = items();
  ASSERT_EQ(typesOf(plain), (std::vector<int32_t>{ItemRectangle, ItemRectangle, ItemArc}));
  EXPECT_EQ(plain[1].X - plain[0].X, 500000);
  // Clockwise from (0, 1 mm) to (1 mm, 0) about the origin: 0 to 90 counter-clockwise.
  EXPECT_EQ((std::array{plain[2].X, plain[2].Height, plain[2].Sweep}), (std::array{0, 0, 90000}));

  clearLayer();
  file.Mirror = true;
  ASSERT_EQ(drawText(body), 0);
  const auto mirrored = items();
  const ArtHeader& h = scan.Header;
  const double axis = (h.MaxX - h.MinX) / 2 + h.MinX;
  const auto x = [&](double fileX) { return toInt32(2 * axis - fileX); };
  ASSERT_EQ(typesOf(mirrored), typesOf(plain));
  EXPECT_EQ(mirrored[0].X, x(0) - 25000);
  EXPECT_EQ(mirrored[1].X - mirrored[0].X, 500000) << "repeats still step in +X";
  // Now counter-clockwise from (-0, 1 mm) to (-1 mm, 0): 90 to 180.
  EXPECT_EQ((std::array{mirrored[2].X, mirrored[2].Height, mirrored[2].Sweep}),
            (std::array{x(0), 90000, 90000}));
}

TEST_F(GerberDrawing, ClearPolarityIsDroppedOrPaintedClear) {
  const std::string body = "D10*X0Y0D03*%LPC*%X1000Y0D03*X1000Y0D02*X2000Y0D01*%LPD*%X3000Y0D03*";
  file.FilterMask = test::AllFilters & ~filter::AF_IMP;
  ASSERT_EQ(drawText(body), 0);
  auto all = items();
  ASSERT_EQ(all.size(), 2u) << "everything between LPC and LPD is missing";
  EXPECT_EQ(all[1].X, 300000);
  EXPECT_EQ(pads(), 2);

  clearLayer();
  file.FilterMask = test::AllFilters;
  ASSERT_EQ(drawText(body), 0);
  all = items();
  ASSERT_EQ(all.size(), 4u);
  EXPECT_EQ((std::array<int32_t, 4>{all[0].Colour, all[1].Colour, all[2].Colour, all[3].Colour}),
            (std::array<int32_t, 4>{LayerColour, ClearCode, ClearCode, LayerColour}));
  EXPECT_EQ(pads(), 2) << "the clear flash places no hole";
}

TEST_F(GerberDrawing, PolygonsAreNumberedFrom10001AndNeedTheirFilter) {
  const std::string square = "G36*X0Y0D02*G01X1000Y0D01*X1000Y1000D01*X0Y1000D01*G37*";
  ASSERT_EQ(drawText(square + "%SRX2Y1I2.0J0*%" + square), 0);
  const auto all = items();
  // The list is closed back to its first point: four sides each, three polygons.
  ASSERT_EQ(all.size(), 12u);
  EXPECT_EQ((std::array{all[0].Link, all[4].Link, all[8].Link}), (std::array{10001, 10002, 10003}));
  EXPECT_EQ(all[8].X - all[4].X, 200000);
  EXPECT_EQ(std::pair(all[3].X + all[3].Width, all[3].Y + all[3].Height), std::pair(0, 0));
  for (const ItemRecord& r : all) {
    EXPECT_EQ(r.Style, StyleFilled);
    EXPECT_EQ(r.Attributes & (attr::PolygonSide | attr::Flashed), attr::PolygonSide);
  }

  clearLayer();
  file.FilterMask = test::AllFilters & ~filter::AF_IPL;
  ASSERT_EQ(drawText(square), 0);
  EXPECT_TRUE(items().empty());
}

TEST_F(GerberDrawing, EachContourOfARegionIsAPolygonOfItsOwn) {
  // The second contour starts (D02) after an arc side and a G01 of the first.
  ASSERT_EQ(drawText("G36*X0Y0D02*G01X1000Y0D01*G75*G03X1000Y1000I0J500D01*G01X0Y1000D01*"
                     "X0Y0D01*X2000Y0D02*X3000Y0D01*X3000Y1000D01*G37*"),
            0);
  const auto all = items();
  EXPECT_EQ(typesOf(all), (std::vector<int32_t>{ItemLine, ItemArc, ItemLine, ItemLine, ItemLine,
                                                ItemLine, ItemLine}));
  EXPECT_EQ((std::array{all.front().Link, all.back().Link}), (std::array{10001, 10002}));
  EXPECT_EQ(all[4].X, 200000) << "the second outline is a side of the region, not a stroke";
}

TEST_F(GerberDrawing, PolygonArcsFlatterThanTwoDegreesBecomeTwoSides) {
  // A quarter arc stays an arc; an arc of about one degree on a 10 mm radius does not.
  ASSERT_EQ(drawText("G36*X0Y0D02*G01X10000Y0D01*G75*G03X0Y10000I-10000J0D01*G01X0Y0D01*G37*"), 0);
  EXPECT_EQ(typesOf(items()), (std::vector<int32_t>{ItemLine, ItemArc, ItemLine}));
  const ItemRecord arc = items()[1];
  EXPECT_NEAR(arc.X, 0, 2);
  EXPECT_NEAR(arc.Width, 1000000, 2);
  EXPECT_NEAR(arc.Sweep, 90000, 10);

  clearLayer();
  ASSERT_EQ(drawText("G36*X0Y0D02*G01X10000Y0D01*G75*G03X9998Y175I-10000J0D01*G01X0Y0D01*G37*"), 0);
  EXPECT_EQ(typesOf(items()), (std::vector<int32_t>(4, ItemLine)));
}

TEST_F(GerberDrawing, PlacementCentresOffsetsAndMirrorsAboutTheMiddle) {
  const std::string body = "X1000Y1000D02*D11*X1000Y1000D03*X5000Y3000D03*";
  const auto corners = [&] {
    std::vector<std::array<int32_t, 2>> centres;
    for (const ItemRecord& r : items())
      centres.push_back({r.X + r.Width / 2, r.Y + r.Height / 2});
    clearLayer();
    return centres;
  };
  ASSERT_EQ(drawText(body), 0);
  EXPECT_EQ(corners(), (std::vector<std::array<int32_t, 2>>{{100000, 100000}, {500000, 300000}}));
  file.OriginalCoordinates = false;
  ASSERT_EQ(drawText(body), 0);
  EXPECT_EQ(corners(), (std::vector<std::array<int32_t, 2>>{{-200000, -100000}, {200000, 100000}}));
  file.OffsetX = 7;
  file.OffsetY = -3;
  ASSERT_EQ(drawText(body), 0);
  EXPECT_EQ(corners(), (std::vector<std::array<int32_t, 2>>{{-199993, -100003}, {200007, 99997}}));
  file.Mirror = true;  // the offset moves the picture against the line, so it is mirrored too
  ASSERT_EQ(drawText(body), 0);
  EXPECT_EQ(corners(), (std::vector<std::array<int32_t, 2>>{{199993, -100003}, {-200007, 99997}}));
}

// The message of a missing aperture: its label and the elements it cost.
std::string missing(const std::string& label, const std::string& cost) {
  return label + " aperture not found in the list during import. (" + cost +
         ")\r\nSelect proper Aperture Table and import again.";
}

TEST_F(GerberDrawing, AMissingApertureCostsOnlyItsElementsAndIsReportedOnceAfterThePass) {
  const auto noSquares = [](GerberScan& s) { s.Lists.SquarePadList.clear(); };
  const auto noLinesOf10 = [](GerberScan& s) {
    std::erase_if(s.Lists.DrawList, [](const ApertureUse& row) { return row.DCode == 10; });
  };
  // D10 flashes a disc (centre and radius, 0.1 mm); D11 strokes with a 0.5 mm square.
  const std::tuple<const char*, std::function<void(GerberScan&)>, std::string,
                   std::vector<test::Box>, std::vector<std::string>, int32_t>
      cases[] = {
          {"flashes on both sides of missing ones",
           noSquares,
           "D10*X0Y0D03*D11*X1000Y0D03*X1500Y0D03*D10*X2000Y0D03*",
           {{0, 0, 10000, 0}, {200000, 0, 10000, 0}},
           {missing("D11*", "2 elements")},
           4},
          {"the pen goes on from a missing stroke",
           noLinesOf10,
           "D10*X0Y0D02*X1000Y0D01*D11*X2000Y0D01*",
           {{75000, -25000, 150000, 50000}},
           {missing("D10*", "1 element")},
           2},
          {"one message a code, in the order of the codes",
           [&](GerberScan& s) {
             noSquares(s);
             noLinesOf10(s);
           },
           "D11*X0Y0D03*D10*X0Y0D02*X1000Y0D01*X0Y0D01*",
           {},
           {missing("D10*", "2 elements"), missing("D11*", "1 element")},
           3},
      };
  for (const auto& [name, change, body, drawn, messages, count] : cases) {
    SCOPED_TRACE(name);
    clearLayer();
    pass.reporting.prompts.shown.clear();
    edit = change;
    EXPECT_EQ(drawText(body), 0);
    std::vector<test::Box> boxesDrawn;
    for (const ItemRecord& r : items())
      boxesDrawn.push_back(test::box(r));
    EXPECT_EQ(std::tuple(boxesDrawn, boxes(), elements), std::tuple(drawn, messages, count));
  }
}

TEST_F(GerberDrawing, ZeroSizeAperturesDrawWithoutWidth) {
  // Each body ends in a flash of D10 at 5 mm, which the pass must still reach.
  const std::pair<std::string, std::vector<int32_t>> cases[] = {
      {"%ADD12C,0.00000*%D12*X0Y0D02*G01X1000Y0D01*", {ItemLine}},
      {"%ADD12C,0.00000*%D12*G36*X0Y0D02*G01X1000Y0D01*X1000Y1000D01*X0Y0D01*G37*"
       "X0Y0D02*X0Y1000D01*",
       {ItemLine, ItemLine, ItemLine, ItemLine}},
      {"%ADD12C,0*%D12*X0Y0D03*", {ItemCircle}},
      {"%ADD12R,0X0*%D12*X0Y0D03*X0Y0D02*X1000Y0D01*", {ItemRectangle, ItemRectangle}},
  };
  for (const auto& [body, types] : cases) {
    SCOPED_TRACE(body);
    clearLayer();
    EXPECT_EQ(drawText(body + "D10*X5000Y0D03*"), 0);
    EXPECT_EQ(boxes(), std::vector<std::string>{});
    std::vector<ItemRecord> all = items();
    ASSERT_EQ(all.size(), types.size() + 1);
    EXPECT_EQ(test::box(all.back()), (test::Box{500000, 0, 10000, 0}));
    all.pop_back();
    EXPECT_EQ(typesOf(all), types);
    // Region sides have a pen of their own; everything else has the aperture's, none.
    for (const ItemRecord& r : all)
      EXPECT_EQ(r.LineWidth, (r.Attributes & attr::PolygonSide) ? 1 : 0);
  }
}

TEST_F(GerberDrawing, DamagedStreamsEndWithTheirStatus) {
  scan.Lists.RoundPadList = {{10, 1000, 1}};
  scan.Lists.DrawList = {{10, 50, 1}};
  struct Case {
    const char* name;
    std::vector<ArtRecord> stream;
    int32_t status;
    size_t items;
    std::string box;
  };
  constexpr uint8_t Flash = artrecord::Flash, Draw = artrecord::PathPoint,
                    End = artrecord::EndOfStream, Negative = artrecord::ImagePolarity;
  const Case cases[] = {
      // clang-format off
      {"an unknown record ends the drawing, status 0",
       {{Flash, 10, 0, 0}, {77, 0, 0, 0}, {Flash, 10, 5, 5}, {End, 0, 0, 0}}, 0, 1,
       "Artwork File - Incorrect format"},
      {"a point beyond the world", {{Flash, 10, 0, 0}, {Flash, 10, 3e8, 0}, {End, 0, 0, 0}}, 1, 1,
       "Coordinates outside limits"},
      {"no end record", {{Flash, 10, 0, 0}}, 1, 1, "Artwork File - Incorrect format"},
      {"a draw before any path start writes nothing", {{Draw, 10, 100, 0}, {End, 0, 0, 0}}, 0, 0, ""},
      {"a negative image is clear too", {{Negative, 1, 0, 0}, {Flash, 10, 0, 0}, {Negative, 0, 0, 0},
                                         {Flash, 10, 0, 0}, {End, 0, 0, 0}}, 0, 1, ""},
      // clang-format on
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    clearLayer();
    pass.reporting.prompts.shown.clear();
    file.FilterMask = test::AllFilters & ~filter::AF_IMP;
    EXPECT_EQ(drawRecords(c.stream), c.status);
    EXPECT_EQ(items().size(), c.items);
    ASSERT_EQ(boxes().size(), c.box.empty() ? 0u : 1u);
    EXPECT_TRUE(c.box.empty() || boxes()[0].starts_with(c.box)) << boxes()[0];
  }
}

// The Gerber reader over a store of its own, with a job for the pass's source file.
struct ReaderRun {
  test::GerberPass pass;
  Store store;
  FileExtents extents;
  GerberPassContext context = pass.context();
  GerberFileReader reader{store, pass.reporting.reporter, context, extents};
  ImportJob job;

  ReaderRun() {
    job.WorkDirectory = pass.dir.path().string();
    job.SourcePath = pass.source;
    job.Kind = ImportKind::ArtworkRS274X;
  }
  // The import into an emptied layer, with a fresh scan and no messages yet; its status.
  int32_t import(LayerRecord& layer, LayerFileRecord& file) {
    pass.reporting.prompts.shown.clear();
    pass.scan = GerberScan{};
    EnsureLayerSymbol(store, layer, true);
    int32_t status = 99;  // set anew by the reader
    reader.importFile(status, job, layer, file);
    return status;
  }
};

TEST(GerberFileReader, ScanThenImportDrawsTheFileAndReportsADamagedIntermediateFile) {
  ReaderRun r;
  auto& [pass, store, extents, context, reader, job] = r;
  std::ofstream(pass.source, std::ios::binary)
      << "%FSLAX24Y24*%%MOIN*%%ADD10C,0.0100*%%ADD11R,0.0600X0.0400*%\r\n"
         "D10*X0Y0D02*X10000Y0D01*D11*X5000Y5000D03*X6000Y5000D03*M02*\r\n";
  ASSERT_EQ(reader.scan(job), ScanResult::Scanned);
  ASSERT_EQ(job.IntermediatePath, pass.dir.file("TMP.ART"));
  const ArtHeader header = pass.scan.Header;
  EXPECT_EQ(extents.MaxX, header.MaxX);

  auto layers = test::makeLayers();
  LayerRecord& layer = layers[0];
  LayerFileRecord& file = StartLayerFile(job, layer, true);
  const auto run = [&] { return r.import(layer, file); };
  const auto elements = [&] {
    return store.OA_GetCount(store.S_SymbolItemArray(layer.SymbolHandle)) +
           store.OA_GetCount(store.S_SymbolEntryArray(layer.SymbolHandle));
  };
  const auto lastBox = [&] {
    const auto& shown = pass.reporting.prompts.shown;
    return shown.empty() ? std::string() : shown.back().prompt;
  };

  ASSERT_EQ(run(), 0);
  EXPECT_EQ(pass.scan.Header, header) << "the import restores what the scan found";
  ASSERT_EQ(pass.scan.Lists.DrawList.size(), 1u);
  EXPECT_EQ(pass.scan.Lists.DrawList[0], (ApertureUse{10, 25400, 1}));
  ASSERT_EQ(pass.scan.Lists.SpecialList.size(), 1u);
  EXPECT_EQ(pass.scan.Lists.SpecialList[0].Uses, 2);
  const int32_t drawn = elements();
  EXPECT_EQ(drawn, 5) << "the draw and the two flashes";
  EXPECT_TRUE(pass.shown().empty());

  // A cut-off last record: the whole records are drawn, then the damage is reported.
  const std::string& path = job.IntermediatePath;
  const auto records = std::filesystem::file_size(path) / 21;
  std::filesystem::resize_file(path, records * 21 - 10);
  EXPECT_EQ(run(), 1);
  EXPECT_EQ(lastBox(), "Artwork File - Incorrect format");

  std::filesystem::resize_file(path, 4 * 21);
  EXPECT_EQ(run(), 1);
  EXPECT_EQ(elements(), 0) << "no header, nothing to replay";
  EXPECT_EQ(lastBox(), "Artwork File - Incorrect format");

  std::filesystem::remove(path);
  EXPECT_EQ(run(), 1);
  EXPECT_EQ(lastBox(), "Can't load " + path);
}

TEST(GerberFileReader, ALayerWithoutElementsIsImportedEmptyWithAMessage) {
  const std::pair<std::string, int32_t> cases[] = {
      {"G04 #@! TF.FileFunction,Copper,L2,Inr*\n%FSLAX46Y46*%\n%MOMM*%\n%ADD10C,0.1*%\nM02*\n", 0},
      {"%FSLAX24Y24*%%MOIN*%%ADD10C,0.01*%D10*X1000Y1000D03*M02*\n", 1},
  };
  for (const auto& [text, items] : cases) {
    SCOPED_TRACE(text);
    ReaderRun r;
    auto& [pass, store, extents, context, reader, job] = r;
    std::ofstream(pass.source, std::ios::binary) << text;
    ASSERT_EQ(reader.scan(job), ScanResult::Scanned);
    auto layers = test::makeLayers();
    const int32_t status = r.import(layers[0], StartLayerFile(job, layers[0], true));
    const std::vector<std::string> said =
        items == 0 ? std::vector<std::string>{"Nothing to import: " + pass.source}
                   : std::vector<std::string>{};
    EXPECT_EQ(std::tuple(status, store.OA_GetCount(store.S_SymbolItemArray(layers[0].SymbolHandle)),
                         test::boxesOf(pass.reporting.prompts)),
              std::tuple(0, items, said));
  }
}

}  // namespace
}  // namespace tvx
