// Drawings read into a layer: the loader's records, the entities' elements, blocks and inserts,
// the range check, the geometry of bulges, ellipses and circles, and the corpus's drawings.
#include "import/readers/dxf/DxfGeometry.h"
#include "import/readers/dxf/DxfInterpreter.h"
#include "import/readers/dxf/DxfLoader.h"

#include "common/FileLayer.h"
#include "import/gerber/ImportTestSupport.h"
#include "import/readers/excellon/ExcellonTestSupport.h"
#include "kernel/Kernel.h"
#include "platform/SystemServices.h"
#include "support/CorpusPath.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace tvx {
namespace {

struct Drawing {
  mutable Kernel kernel;  // framing asks the store to work
  LayerRecord layer;
  DxfReport report;
  int32_t status = -1;

  explicit Drawing(const std::vector<DxfRecord>& records, DxfFormat format = {},
                   bool trueLineSize = false) {
    layer.SymbolHandle = -76530;
    kernel.store.S_CreateSymbol(layer.SymbolHandle, "OUTLINE");
    LayerFileRecord file;
    file.Colour = 5;
    file.TrueLineSize = trueLineSize;
    ImportDxf(status, records, kernel.store, layer, file, format, &report);
  }
  explicit Drawing(std::string_view text, DxfFormat format = {}, bool trueLineSize = false)
      : Drawing(ParseDxfText(text), format, trueLineSize) {}
  std::vector<ItemRecord> items() const { return test::itemsOf(kernel.store, layer); }
};

// A drawing from its groups written "code|value|code|value...".
std::string dxf(std::string_view pairs) {
  std::string text(pairs);
  std::replace(text.begin(), text.end(), '|', '\n');
  return text + "\n";
}

constexpr int32_t Mm = 100000;  // store units

// Blocks get the lowest free positive ids: none of them may be left.
bool blockSymbolsLeft(const Store& store) {
  for (SymbolId id = 1; id <= 64; ++id)
    if (store.S_Symbol(id) != ObjectHandle::None)
      return true;
  return false;
}

int32_t count(const std::vector<ItemRecord>& items, int32_t type) {
  return int32_t(std::count_if(items.begin(), items.end(),
                               [type](const ItemRecord& r) { return r.Type == type; }));
}

TEST(DxfLoader, RecordsOfTheLines) {
  const std::string lf =
      dxf("  0|SECTION|2|entities|8|Layer 1|1|Mixed Case|90|7|70|2.6|0|EOF|0|LINE");
  std::string crlf;
  for (char c : lf)
    crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
  const std::vector<DxfRecord> records = ParseDxfText(lf);
  EXPECT_EQ(records, ParseDxfText(crlf)) << "CR LF and LF give the same records";
  ASSERT_EQ(records.size(), 7u) << "nothing behind 0/EOF";
  EXPECT_EQ(std::tuple(records[1].Code, records[1].TextValue),
            std::tuple(2, std::string("ENTITIES")));
  EXPECT_EQ(records[2].TextValue, "LAYER 1") << "names are upper-cased, blanks inside kept";
  EXPECT_EQ(records[3].TextValue, "Mixed Case") << "a text string keeps its case";
  EXPECT_EQ(std::tuple(records[4].Code, records[4].IntValue), std::tuple(90, 7));
  EXPECT_EQ(records[5].IntValue, 3) << "integer groups are rounded";
  EXPECT_EQ(ParseDxfText(dxf("999|a comment|5|1F|330|2A|0|EOF")).size(), 2u)
      << "comments and handles of owners are not kept";
  EXPECT_EQ(ParseDxfText(dxf("x1|LINE|0|EOF")).size(), 1u)
      << "a code that is no number drops its pair";
}

TEST(DxfGeometry, EllipsesAndSplines) {
  DxfEllipse flat{0, 0, 10 * Mm, 0, 0, 5 * Mm, 0, 360};
  OutlinePoints points;
  int32_t attributes = 0;
  EllipseToPoints(flat, points, attributes);
  EXPECT_EQ(attributes, dxfattr::ClosedOutline);
  EXPECT_FALSE(PointsToCircle(points, 2000));
  flat.Start = 350;
  flat.End = 10;
  EllipseToPoints(flat, points, attributes);
  EXPECT_EQ(std::tuple(points.size(), attributes), std::tuple(size_t(22), dxfattr::OpenChain))
      << "an end below the start runs on through 360";

  DxfSpline spline;
  spline.Degree = 2;
  spline.Knots = {0, 0, 0, 1, 1, 1};
  spline.Control = {{0, 0}, {Mm, 2 * Mm}, {2 * Mm, 0}};
  const auto curve = SplineToPoints(spline);
  ASSERT_GT(curve.size(), 3u);
  EXPECT_NEAR(curve[curve.size() / 2][1], Mm, 1) << "the curve, not its control polygon";
  spline.Knots.pop_back();
  EXPECT_EQ(SplineToPoints(spline).size(), 3u) << "knots that do not fit: the control points";
}

TEST(DxfImport, EntitiesAndTheirElements) {
  struct Case {
    const char* name;
    std::string text;
    std::function<void(const Drawing&)> check;
    int32_t unit = 1;
    bool trueSizes = false;
  };
  const std::string extents = "9|$EXTMIN|10|0|20|0|9|$EXTMAX|10|10|20|10|";
  const Case cases[] = {
      {"a line, in millimetres", dxf("0|LINE|8|0|10|1|20|2|11|4|21|6|0|EOF"),
       [](const Drawing& d) {
         const ItemRecord l = d.items().at(0);
         EXPECT_EQ(
             std::tuple(l.Type, l.Attributes, l.Colour, l.LineWidth, l.X, l.Y, l.Width, l.Height),
             std::tuple(int32_t(ItemLine), 1, uint8_t(5), 1, Mm, 2 * Mm, 3 * Mm, 4 * Mm));
       }},
      {"only group 0 names an entity", dxf("0|CIRCLE|8|LINE|2|ARC|10|0|20|0|40|1|0|EOF"),
       [](const Drawing& d) {
         EXPECT_EQ(count(d.items(), ItemLine), 0);
         EXPECT_EQ(d.items().at(0).Attributes & ~0x30, dxfattr::CircleOutline);
         EXPECT_EQ(count(d.items(), ItemArc), 2) << "a circle is two arcs";
       }},
      {"true line sizes", dxf("0|LINE|39|0.15|10|0|20|0|11|1|21|0|0|EOF"),
       [](const Drawing& d) { EXPECT_EQ(d.items().at(0).LineWidth, 15001); }, 1, true},
      {"an arc of half a degree is two lines", dxf("0|ARC|10|0|20|0|40|10|50|0|51|0.5|0|EOF"),
       [](const Drawing& d) { EXPECT_EQ(count(d.items(), ItemLine), 2); }},
      {"an arc of one and a half degrees", dxf("0|ARC|10|0|20|0|40|10|50|0|51|1.5|0|EOF"),
       [](const Drawing& d) { EXPECT_EQ(d.items().at(0).Sweep, 1500); }},
      {"350 to 10 degrees sweeps through 0", dxf("0|ARC|10|0|20|0|40|1|50|350|51|10|0|EOF"),
       [](const Drawing& d) {
         EXPECT_EQ(std::tuple(d.items().at(0).Height, d.items().at(0).Sweep),
                   std::tuple(350000, 20000));
       }},
      {"entity angles stay counter-clockwise under $ANGDIR 1 and $ANGBASE",
       dxf("9|$ANGDIR|70|1|9|$ANGBASE|50|90|0|ARC|10|0|20|0|40|1|50|10|51|350|0|EOF"),
       [](const Drawing& d) {
         EXPECT_EQ(std::tuple(d.items().at(0).Height, d.items().at(0).Sweep),
                   std::tuple(10000, 340000));
       }},
      {"seen from below an arc is mirrored",
       dxf("0|ARC|10|5|20|1|40|1|210|0|220|0|230|-1|50|0|51|90|0|EOF"),
       [](const Drawing& d) {
         const ItemRecord a = d.items().at(0);
         EXPECT_EQ(std::tuple(a.X, a.Y, a.Width, a.Height, a.Sweep),
                   std::tuple(-5 * Mm, Mm, Mm, 180000, -90000));
       }},
      {"a slanted circle is an ellipse of chords",
       dxf("0|CIRCLE|10|0|20|0|40|10|210|0.6|220|0|230|0.8|0|EOF"),
       [](const Drawing& d) {
         EXPECT_EQ(count(d.items(), ItemArc), 0);
         FrameRect f;
         d.kernel.store.S_FrameSymbolItems(d.layer.SymbolHandle, -1, f);
         EXPECT_NEAR(f.MaxX - f.MinX, 16 * Mm, 2000) << "foreshortened to 0.8";
         EXPECT_NEAR(f.MaxY - f.MinY, 20 * Mm, 2000);
       }},
      {"a full ellipse of ratio 1 is a circle",
       dxf("0|ELLIPSE|10|0|20|0|11|5|21|0|40|1|41|0|42|6.2831853|0|EOF"),
       [](const Drawing& d) {
         EXPECT_EQ(d.items().at(0).Attributes & ~0x30, dxfattr::CircleOutline);
       }},
      {"a bulge of 1 from (0,0) to (2,0): a half circle through (1,-1)",
       dxf("0|LWPOLYLINE|90|2|70|0|10|0|20|0|42|1|10|2|20|0|0|EOF"),
       [](const Drawing& d) {
         const ItemRecord a = d.items().at(0);
         EXPECT_EQ(std::tuple(a.Type, a.X, a.Y, a.Width, a.Attributes & ~0x30),
                   std::tuple(int32_t(ItemArc), Mm, 0, Mm, dxfattr::OpenChain));
         EXPECT_EQ(std::tuple(a.Height, a.Sweep), std::tuple(180000, 180000));
       }},
      {"a bulge of -1: the half circle through (1,1)",
       dxf("0|LWPOLYLINE|70|0|10|0|20|0|42|-1|10|2|20|0|0|EOF"),
       [](const Drawing& d) {
         const ItemRecord a = d.items().at(0);
         EXPECT_EQ(std::tuple(a.Height, a.Sweep), std::tuple(0, 180000)) << "the upper half";
       }},
      {"a bulge between points that meet is no arc",
       dxf("0|LWPOLYLINE|70|0|10|0|20|0|42|1|10|0|20|0|0|EOF"),
       [](const Drawing& d) { EXPECT_EQ(count(d.items(), ItemArc), 0); }},
      {"an open polyline's last bulge has nothing to end on",
       dxf("0|LWPOLYLINE|70|0|10|0|20|0|10|2|20|0|42|1|0|EOF"),
       [](const Drawing& d) { EXPECT_EQ(count(d.items(), ItemLine), 1); }},
      {"a closed POLYLINE of three points keeps its closing side",
       dxf("0|POLYLINE|70|1|0|VERTEX|10|0|20|0|0|VERTEX|10|1|20|0|0|VERTEX|10|0|20|1|0|SEQEND|0|"
           "EOF"),
       [](const Drawing& d) {
         EXPECT_EQ(count(d.items(), ItemLine), 3);
         EXPECT_EQ(d.items().at(0).Attributes & ~0x30, dxfattr::ClosedOutline);
       }},
      {"a solid's corners run 1, 2, 4, 3; open without true sizes",
       dxf("0|SOLID|10|0|20|0|11|1|21|0|12|0|22|1|13|1|23|1|0|EOF"),
       [](const Drawing& d) {
         const std::vector<ItemRecord> items = d.items();
         ASSERT_EQ(items.size(), 4u);
         EXPECT_EQ(std::tuple(items[1].X, items[1].Y, items[1].Height), std::tuple(Mm, 0, Mm))
             << "from corner 2 up to corner 4";
         EXPECT_EQ(items[0].Style, StyleOpen);
       }},
      {"a solid is filled with true sizes",
       dxf("0|SOLID|10|0|20|0|11|1|21|0|12|0|22|1|13|1|23|1|0|EOF"),
       [](const Drawing& d) { EXPECT_EQ(d.items().at(0).Style, StyleFilled); }, 1, true},
      {"a block inserted twice, its base point on the insertion point, its symbol gone",
       dxf("0|BLOCK|2|MARK|10|1|20|1|0|LINE|10|1|20|1|11|2|21|1|0|ENDBLK|0|SECTION|2|ENTITIES|0|"
           "INSERT|2|MARK|10|5|20|5|0|INSERT|2|MARK|10|0|20|0|50|90|0|EOF"),
       [](const Drawing& d) {
         const std::vector<ItemRecord> items = d.items();
         ASSERT_EQ(items.size(), 2u);
         EXPECT_EQ(std::tuple(items[0].X, items[0].Y, items[0].Width, items[0].Height),
                   std::tuple(5 * Mm, 5 * Mm, Mm, 0));
         EXPECT_EQ(std::tuple(items[1].X, items[1].Y, items[1].Width, items[1].Height),
                   std::tuple(0, 0, 0, Mm))
             << "turned a quarter";
         EXPECT_FALSE(blockSymbolsLeft(d.kernel.store));
       }},
      {"a block used before its definition, an unknown name, a scale of 0",
       dxf("0|SECTION|2|ENTITIES|0|INSERT|2|LATE|10|0|20|0|0|INSERT|2|NONE|0|INSERT|2|LATE|41|0|"
           "0|ENDSEC|0|SECTION|2|BLOCKS|0|BLOCK|2|LATE|0|LINE|10|0|20|0|11|1|21|0|0|ENDBLK|0|"
           "EOF"),
       [](const Drawing& d) { EXPECT_EQ(d.items().size(), 1u); }},
      {"an insert mirrored by -1 mirrors its arcs",
       dxf("0|BLOCK|2|B|0|ARC|10|1|20|0|40|1|50|0|51|90|0|ENDBLK|0|SECTION|2|ENTITIES|0|INSERT|2|"
           "B|41|-1|0|EOF"),
       [](const Drawing& d) {
         const ItemRecord a = d.items().at(0);
         EXPECT_EQ(std::tuple(a.X, a.Width, a.Height, a.Sweep),
                   std::tuple(-Mm, Mm, 180000, -90000));
       }},
      {"a block inserted into itself copies what it holds so far, once",
       dxf("0|BLOCK|2|SELF|0|LINE|10|0|20|0|11|1|21|0|0|INSERT|2|SELF|10|0|20|2|0|ENDBLK|0|"
           "SECTION|2|ENTITIES|0|INSERT|2|SELF|0|EOF"),
       [](const Drawing& d) { EXPECT_EQ(d.items().size(), 2u); }},
      {"paper space is passed over", dxf("0|LINE|67|1|10|0|20|0|11|1|21|0|0|EOF"),
       [](const Drawing& d) {
         EXPECT_TRUE(d.items().empty());
         EXPECT_EQ(d.report.passedOver.at("LINE"), 1);
       }},
      {"text keeps its case, height and turn", dxf("0|TEXT|10|1|20|2|40|2.5|50|90|1|Ab|0|EOF"),
       [](const Drawing& d) {
         const ItemRecord t = d.items().at(0);
         EXPECT_EQ(
             std::tuple(t.Type, t.Text, t.X, t.Y, t.Width, t.Angle),
             std::tuple(int32_t(ItemVectorText), std::string("Ab"), Mm, 2 * Mm, 250000, 90000));
       }},
      {"MTEXT lines and formatting",
       dxf("0|MTEXT|10|0|20|10|40|1|71|7|1|{\\fArial;One}\\PTwo|0|EOF"),
       [](const Drawing& d) {
         const std::vector<ItemRecord> items = d.items();
         ASSERT_EQ(items.size(), 2u);
         EXPECT_EQ(std::tuple(items[0].Text, items[1].Text), std::tuple("One", "Two"));
         EXPECT_GT(items[0].Y, items[1].Y) << "the second line below the first";
         EXPECT_EQ(items[1].Y, 10 * Mm) << "attached at the bottom left";
       }},
      {"a dimension is drawn by its block",
       dxf("0|BLOCK|2|*D1|0|LINE|10|0|20|0|11|3|21|0|0|ENDBLK|0|SECTION|2|ENTITIES|0|DIMENSION|"
           "2|*D1|10|7|20|7|0|EOF"),
       [](const Drawing& d) { EXPECT_EQ(d.items().at(0).Width, 3 * Mm); }},
      {"a solid hatch's polyline path is a filled outline",
       dxf("0|HATCH|10|0|20|0|30|0|2|SOLID|70|1|71|0|91|1|92|2|72|0|73|1|93|4|10|0|20|0|10|1|20|"
           "0|10|1|20|1|10|0|20|1|97|0|75|0|76|1|98|0|0|EOF"),
       [](const Drawing& d) {
         EXPECT_EQ(count(d.items(), ItemLine), 4);
         EXPECT_EQ(d.items().at(0).Style, StyleFilled);
       }},
      {"a hatch of edges: a line and a half circle",
       dxf("0|HATCH|70|0|91|1|92|1|93|2|72|1|10|0|20|0|11|2|21|0|72|2|10|1|20|0|40|1|50|0|51|"
           "180|73|1|97|0|0|EOF"),
       [](const Drawing& d) {
         EXPECT_EQ(count(d.items(), ItemArc), 1);
         EXPECT_EQ(d.items().at(0).Style, StyleOpen);
       }},
      {"a value beyond 32 bits skips its statement", dxf("0|LINE|10|1e30|20|1|11|2|21|1|0|EOF"),
       [](const Drawing& d) {
         EXPECT_EQ(std::tuple(d.items().at(0).X, d.items().at(0).Width), std::tuple(0, 2 * Mm));
       }},
      {"a far end beyond the store's reach skips its statement",
       dxf("0|LINE|10|20000|20|0|11|40000|21|0|0|EOF"),
       [](const Drawing& d) { EXPECT_EQ(d.items().at(0).Width, 0); }},
      {"an ellipse from 2e14 radians is one turn at most", dxf("0|ELLIPSE|11|1|21|0|41|2e14|0|EOF"),
       [](const Drawing& d) {
         EXPECT_GT(d.items().size(), 0u);
         EXPECT_LE(d.items().size(), 361u);
       }},
      {"without EOF what was read is drawn", dxf("0|LINE|10|0|20|0|11|1|21|0"),
       [](const Drawing& d) { EXPECT_EQ(d.items().size(), 1u); }},
      {"$EXTMAX whose group 20 comes late keeps maximum Y at 0",
       dxf("9|$EXTMIN|10|0|20|0|9|$EXTMAX|10|10|30|0|20|10|0|LINE|10|0|20|1005|11|1|21|1005|0|EOF"),
       [](const Drawing& d) { EXPECT_EQ(d.report.removed, 1); }},
      {"an element 1000 mm outside the extents goes, one just inside stays",
       dxf(extents + "0|LINE|10|-1000|20|0|11|-999|21|0|0|LINE|10|-999|20|0|11|0|21|0|0|EOF"),
       [](const Drawing& d) {
         EXPECT_EQ(std::tuple(d.report.removed, d.items().size()), std::tuple(1, size_t(1)));
       }},
      {"without extents in the header nothing goes",
       dxf("0|LINE|10|-5000|20|0|11|-4999|21|0|0|LINE|10|0|20|0|11|1|21|0|0|EOF"),
       [](const Drawing& d) {
         EXPECT_EQ(std::tuple(d.report.removed, d.items().size()), std::tuple(0, size_t(2)));
       }},
      {"extents over 4400 mm are out of range",
       dxf("9|$EXTMIN|10|0|20|0|9|$EXTMAX|10|5000|20|10|0|LINE|10|0|20|0|11|1|21|0|0|LINE|10|"
           "6000|20|0|11|6001|21|0|0|EOF"),
       [](const Drawing& d) {
         EXPECT_TRUE(d.report.outOfRange);
         EXPECT_EQ(d.report.removed, 1);
       }},
      {"a spline is drawn as its curve",
       dxf("0|SPLINE|70|8|71|2|72|6|73|3|40|0|40|0|40|0|40|1|40|1|40|1|10|0|20|0|10|1|20|2|10|2|"
           "20|0|0|EOF"),
       [](const Drawing& d) { EXPECT_GT(d.items().size(), 3u); }},
      {"a 3D face and a leader",
       dxf("0|3DFACE|10|0|20|0|11|1|21|0|12|1|22|1|13|1|23|1|0|LEADER|"
           "10|0|20|0|10|1|20|1|10|2|20|1|0|EOF"),
       [](const Drawing& d) {
         EXPECT_EQ(d.items().size(), 5u) << "a triangle's three sides, the leader's two";
       }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Drawing d(c.text, DxfFormat{c.unit, 1.0}, c.trueSizes);
    EXPECT_EQ(d.status, 0);
    c.check(d);
  }
}

TEST(DxfImport, BlocksThatNestIntoMillionsAreLeftOutAndSaid) {
  // 25 blocks, each inserting the next twice: 2^24 lines. The insert is refused before any
  // copying; a small nest beside it is drawn.
  std::string text = "0|SECTION|2|BLOCKS|";
  for (int i = 0; i < 24; ++i)
    text += "0|BLOCK|2|B" + std::to_string(i) + "|0|INSERT|2|B" + std::to_string(i + 1) +
            "|0|INSERT|2|B" + std::to_string(i + 1) + "|10|1|0|ENDBLK|";
  text += "0|BLOCK|2|B24|0|LINE|10|0|20|0|11|1|21|1|0|ENDBLK|0|ENDSEC|0|SECTION|2|ENTITIES|0|"
          "INSERT|2|B0|0|INSERT|2|B21|0|ENDSEC|0|EOF";
  Drawing d(dxf(text));
  EXPECT_EQ(d.report.passedOver.at("INSERT (too many elements)"), 1);
  EXPECT_EQ(d.items().size(), 8u) << "B21 nests three levels: 8 lines";
}

TEST(DxfImport, CorpusDrawings) {
  const std::string corpus = test::corpusDir();
  if (corpus.empty())
    GTEST_SKIP();
  struct Case {
    const char* path;
    int32_t unit;
    std::function<void(const Drawing&)> check;
  };
  const auto outlines = [](const Drawing& d, bool closedOnly) {
    int32_t n = 0;
    for (const ItemRecord& r : d.items())
      n += (r.Attributes & attr::PolygonFirst) != 0 &&
           (!closedOnly || (r.Attributes & attr::PolygonSide) != 0);
    return n;
  };
  const Case cases[] = {
      {"ezdxf/integration_tests/AC1003_LINE_Example.dxf", 0,
       [](const Drawing& d) {
         EXPECT_EQ(std::tuple(count(d.items(), ItemLine), count(d.items(), ItemArc)),
                   std::tuple(13, 9));
         FrameRect f;
         d.kernel.store.S_FrameSymbolItems(d.layer.SymbolHandle, -1, f);
         EXPECT_NEAR(f.MaxX - f.MinX, 3.625 * 2540000, 2);
         EXPECT_NEAR(f.MaxY - f.MinY, 1.625 * 2540000, 2);
       }},
      {"ezdxf/integration_tests/R12_with_trash_beyond_EOF.dxf", 1,
       [](const Drawing& d) {
         EXPECT_EQ(d.report.read.at("CIRCLE"), 1);
         EXPECT_EQ(d.items().at(0).Attributes & ~0x30, dxfattr::CircleOutline);
       }},
      {"ezdxf/examples_dxf/Minimal_DXF_AC1009.dxf", 1,
       [](const Drawing& d) { EXPECT_TRUE(d.items().empty()); }},
      {"ezdxf/integration_tests/POLI-ALL210_12.DXF", 1,
       [&](const Drawing& d) {
         // 30 polylines and a 3D face; 14 polylines are closed, those of two and three
         // vertices too.
         EXPECT_EQ(outlines(d, false), 31);
         EXPECT_EQ(outlines(d, true), 15);
       }},
      {"librepcb/dev-graphics/polygon_arcs.dxf", 1,
       [](const Drawing& d) {
         // 96 lines of its own and 96 of its 32 dimensions' blocks.
         const std::vector<ItemRecord> items = d.items();
         EXPECT_EQ(std::count_if(items.begin(), items.end(),
                                 [](const ItemRecord& r) {
                                   return r.Type == ItemLine && r.Attributes == dxfattr::Single;
                                 }),
                   192);
         EXPECT_EQ(count(items, ItemArc), 26);
         EXPECT_EQ(d.report.read.at("DIMENSION"), 32);
       }},
      {"librepcb/dev-graphics/thermal_pads.dxf", 1,
       [&](const Drawing& d) { EXPECT_EQ(outlines(d, true), 24); }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.path);
    Drawing d(test::readBytes(corpus + "/" + c.path), DxfFormat{c.unit, 1.0});
    EXPECT_EQ(d.status, 0);
    c.check(d);
    EXPECT_FALSE(blockSymbolsLeft(d.kernel.store));
  }
}

TEST(DxfImport, TheImportRoad) {
  // A second drawing of one run takes the first free artwork layer; a binary one is refused
  // with a message naming it; a drawing's own unit is where the unit starts.
  test::ImportWorld world;
  const std::string line = "0|SECTION|2|HEADER|9|$INSUNITS|70|1|0|ENDSEC|0|SECTION|2|TABLES|0|"
                           "ENDSEC|0|SECTION|2|ENTITIES|0|LINE|10|0|20|0|11|1|21|0|0|ENDSEC|0|EOF";
  const std::string first = world.write("first.dxf", dxf(line));
  const std::string second = world.write("second.dxf", dxf(line));
  const std::string binary =
      world.write("binary.dxf", std::string("AutoCAD Binary DXF\r\n\x1a\0ENTITIES", 30));
  ImportSession::BatchOptions options;
  options.noCenter = true;
  const std::vector<ImportResult> results =
      world.session->importFiles(world.tables->Layers, {first, second, binary}, options);
  ASSERT_EQ(results.size(), 3u);
  EXPECT_EQ(std::tuple(results[0].status, results[0].layer), std::tuple(0, BoardOutlineLayer));
  EXPECT_EQ(std::tuple(results[1].status, results[1].layer), std::tuple(0, 3));
  EXPECT_EQ(world.items(3).at(0).Width, 2540000) << "$INSUNITS 1: inches";
  EXPECT_EQ(results[2].layer, 0);
  ASSERT_FALSE(world.boxes().empty());
  EXPECT_NE(world.boxes().back().find(binary + " - binary DXF files can't be read."),
            std::string::npos)
      << world.boxes().back();
}

}  // namespace
}  // namespace tvx
