// The apertures display without widgets over a real Gerber pass: sizes and modifiers typed and
// refused, the modifier walk of standard shapes and macros, the write-back into TMP.ART and the
// table made from the lists.
#include "aperture/ApertureSizesModel.h"
#include "aperture/ForeignApertureList.h"
#include "common/LengthFormats.h"

#include "import/gerber/GerberPassSupport.h"
#include "support/CorpusPath.h"

#include <gtest/gtest.h>

#include <tuple>

namespace tvx {
namespace {

// A drawn D10, a round pad with a hole (D11), a polygon (D13), an outline (D14) and a macro of a
// circle, a centred rectangle and a thermal (D12), which also draws; millimetres.
constexpr const char* Specials =
    "%FSLAX34Y34*%%MOMM*%\n%AMTHREE*1,1,0.5,0,0*21,1,1.0,0.5,0,0,0*7,0,0,1.0,0.8,0.1,45*%\n"
    "%AMOUT*4,1,3,0,0,1,0,1,1,0,0,0*%\n"
    "%ADD10C,0.254*%\n%ADD11C,1.0X0.3*%\n%ADD12THREE*%\n%ADD13P,1.0X6X30*%\n%ADD14OUT*%\n"
    "D10*X0Y0D02*X10000Y0D01*\nD11*X0Y0D03*\nD12*X20000Y0D03*\nD13*X30000Y0D03*\n"
    "D14*X40000Y0D03*\nD12*X50000Y0D02*X60000Y0D01*\nM02*\n";

class ApertureSizes : public ::testing::Test {
protected:
  void open(std::string_view text, ImportKind kind = ImportKind::ArtworkRS274X) {
    ASSERT_EQ(pass.run(text), 0);
    openScanned(kind);
  }
  void openScanned(ImportKind kind) {
    job.IntermediatePath = pass.art;
    job.SourcePath = pass.source;
    job.Kind = kind;
    model = std::make_unique<ApertureSizesModel>(ApertureSizesOwners{
        pass.scan, job, table, sysDir, [this](const std::string& name) { named.push_back(name); },
        pass.reporting.reporter, 1});
    model->open();
  }
  int beeps() const { return pass.reporting.prompts.beeps; }
  // The row (from 1) of F_XUapts of a D-code.
  int32_t specialRow(int32_t dCode) const {
    const auto& list = pass.scan.Lists.SpecialList;
    for (size_t n = 0; n < list.size(); ++n)
      if (list[n].DCode == dCode)
        return int32_t(n + 1);
    return 0;
  }
  // The modifier row (from 1) labelled label.
  int32_t modifierRow(const std::string& label) const {
    for (size_t n = 0; n < model->modifierGrid.size(); ++n)
      if (model->modifierGrid[n].Cells[1] == label)
        return int32_t(n + 1);
    return 0;
  }
  // The modifier rows (from 1) that name a shape, with the name.
  std::vector<std::pair<int32_t, std::string>> names() const {
    std::vector<std::pair<int32_t, std::string>> shapes;
    for (size_t n = 0; n < model->modifierGrid.size(); ++n)
      if (!model->modifierGrid[n].Cells[0].empty())
        shapes.emplace_back(int32_t(n + 1), model->modifierGrid[n].Cells[0]);
    return shapes;
  }
  double valueOf(int32_t row) const {
    return pass.scan.Lists.PrimitiveList[size_t(model->FirstPrimitive + row - 2)].Value;
  }

  test::GerberPass pass;
  ImportJob job;
  ApertureTable table;
  std::string sysDir = pass.dir.path().string();
  std::vector<std::string> named;
  std::unique_ptr<ApertureSizesModel> model;
};

TEST_F(ApertureSizes, SizesAreTakenInTheirColumnWithinOneStoreUnitTo50Point8Mm) {
  open(Specials);
  ASSERT_FALSE(model->apertureGrids[0].empty());
  struct Case {
    int column;
    const char* typed;
    int32_t size;  // 0: refused
  } cases[] = {{2, "50.8", 5080000}, {2, "50.9", 0},    {2, "-50.8", 0},   {2, "0.00001", 1},
               {2, "0.000004", 0},   {1, "2", 5080000}, {1, "0.01", 25400}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.typed);
    const int32_t before = pass.scan.Lists.DrawList[0].Size;
    const int beepsBefore = beeps();
    EXPECT_EQ(model->editSize(0, 1, c.column, c.typed), c.size != 0);
    const int32_t now = pass.scan.Lists.DrawList[0].Size;
    EXPECT_EQ(now, c.size != 0 ? c.size : before);
    EXPECT_EQ(beeps(), beepsBefore + (c.size == 0));
    EXPECT_EQ(model->apertureGrids[0][0].Cells[2], LengthValueText(now, 1, 100000));
  }
  // The macro's draw takes its size from the macro: a link, shown and never typed over.
  const ShownRow& link = model->apertureGrids[0].back();
  EXPECT_EQ(link.Cells, (std::vector<std::string>{"D12*", "See macro", "", " 1"}));
  EXPECT_EQ(link.Editable, std::vector<bool>(4, false));
  EXPECT_TRUE(model->editSize(0, int32_t(model->apertureGrids[0].size()), 2, "1"));
  EXPECT_EQ(pass.scan.Lists.DrawList.back().Size, LinkToSpecial);
}

TEST_F(ApertureSizes, ModifiersAreShownAndTakenByTheirClass) {
  open(Specials);
  EXPECT_FALSE(model->createShown);  // an RS-274-X file brings its own apertures
  model->showModifiers(specialRow(12));
  // The macro's three primitives, each named on its first row.
  EXPECT_EQ(names(), (std::vector<std::pair<int32_t, std::string>>{
                         {1, "Circle"}, {5, "Rectangle(C)"}, {11, "Thermal"}}));
  EXPECT_EQ(model->modifierCaption, "Modifiers for: D12* Macro \"THREE\"");
  struct Case {
    const char* label;
    int column;
    const char* typed;
    bool taken;
    double value;
    const char* shown;
  } cases[] = {
      {"Exposure", 2, "ON(1)", true, 1, "ON(1)"},
      {"Exposure", 2, "2", true, 2, "Reverse(2)"},
      {"Exposure", 2, "3", false, 0, nullptr},
      {"Diameter", 3, "50.8", true, 5080000, "50.800"},
      {"Diameter", 3, "-50.8", true, -5080000, "-50.800"},
      {"Diameter", 3, "50.9", false, 0, nullptr},
      {"Diameter", 2, "0.1", true, 254000, "0.1000"},
      {"Rotation", 2, "90", true, 90000, "90.0\xC2\xB0"},
      {"Rotation", 2, "361", false, 0, nullptr},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.label) + " " + c.typed);
    const int32_t row = modifierRow(c.label);
    ASSERT_GT(row, 0);
    const double before = valueOf(row);
    const int beepsBefore = beeps();
    EXPECT_EQ(model->editModifier(row, c.column, c.typed), c.taken);
    EXPECT_EQ(valueOf(row), c.taken ? c.value : before);
    EXPECT_EQ(beeps(), beepsBefore + !c.taken);
    if (c.shown) {
      EXPECT_EQ(model->modifierGrid[size_t(row - 1)].Cells[size_t(c.column)], c.shown);
    }
  }
  EXPECT_EQ(model->modifierGrid[size_t(modifierRow("Exposure") - 1)].Cells[3], "current");

  // A standard polygon: its sides 3 to 12; an outline's count of points never changes.
  model->showModifiers(specialRow(13));
  EXPECT_EQ(model->modifierGrid[0].Cells[0], "P");
  EXPECT_FALSE(model->editModifier(modifierRow("Sides"), 2, "13"));
  EXPECT_TRUE(model->editModifier(modifierRow("Sides"), 2, "12"));
  model->showModifiers(specialRow(14));
  EXPECT_EQ(modifierRow("X Vertex 3"), 9);
  const int beepsBefore = beeps();
  EXPECT_FALSE(model->editModifier(modifierRow("No of Points"), 2, "3"));
  EXPECT_FALSE(model->editModifier(modifierRow("No of Points"), 2, ""));
  EXPECT_EQ(beeps(), beepsBefore + 2);

  // A special row that points past the primitive rows has no modifiers.
  pass.scan.Lists.SpecialList[0].Size = 9999;
  model->showModifiers(1);
  EXPECT_TRUE(model->modifierGrid.empty());
}

TEST_F(ApertureSizes, UpdateWritesTheListsBackAndLeavesAnUneditedFileAsItWas) {
  open(Specials);
  const std::string before = test::readBytes(pass.art);
  EXPECT_TRUE(model->updateArtwork());
  EXPECT_TRUE(model->ArtworkUpdated);
  EXPECT_EQ(test::readBytes(pass.art), before);
  ASSERT_TRUE(model->editSize(0, 1, 2, "0.3"));
  EXPECT_TRUE(model->updateArtwork());
  {
    ArtFile art;
    ASSERT_TRUE(art.open(pass.art));
    GerberScan readBack;
    int32_t status = 0;
    LoadArtHeader(status, art, false, readBack, pass.reporting.reporter);
    ASSERT_EQ(status, 0);
    EXPECT_EQ(readBack.Lists.DrawList.at(0).Size, 30000);
    EXPECT_EQ(readBack.Lists.PrimitiveList, pass.scan.Lists.PrimitiveList);
  }
  // A damaged or missing file leaves every grid empty.
  for (const bool damaged : {true, false}) {
    SCOPED_TRACE(damaged);
    std::filesystem::remove(pass.art);
    if (damaged)
      std::ofstream(pass.art, std::ios::binary) << std::string(50, '\x09');
    openScanned(ImportKind::ArtworkRS274X);
    EXPECT_TRUE(model->apertureGrids[0].empty() && model->specialGrid.empty() &&
                model->sizeGrid.empty());
  }
  EXPECT_FALSE(model->updateArtwork());
}

TEST(ApertureTableNames, AreTheFileNameUpToItsFirstPointOrBlank) {
  const std::pair<const char*, const char*> cases[] = {{"C:\\JOBS\\TOP LAYER.GBR", "TOP"},
                                                       {"/jobs/TOP LAYER.gbr", "TOP"},
                                                       {"  \"/a.b/Top.gbr\"  ", "Top"},
                                                       {"D:top.art", "top"},
                                                       {"/jobs/", ""},
                                                       {"/jobs/.gbr", ""}};
  for (const auto& [path, name] : cases)
    EXPECT_EQ(apertureTableNameOf(path), name) << path;
}

TEST(ApertureTableOfLists, HoldsEachSizeOnceWithTheLaterCodeOfAList) {
  ApertureLists lists;
  lists.DrawList = {{10, 25400, 0}, {11, 0, 0}, {12, LinkToSquarePad, 0}, {14, 25400, 0}};
  lists.RoundPadList = {{20, 25400, 0}, {21, 100000, 0}};
  lists.SquarePadList = {{30, 50000, 0}};
  EXPECT_EQ(tableOfLists(lists), (std::vector<ApertureTableRow>{
                                     {25400, 14, 20, 0}, {50000, 0, 0, 30}, {100000, 0, 21, 0}}));
}

TEST_F(ApertureSizes, CreateWritesATableThatSizesThePlainFileAsTheListDid) {
  const std::string corpus = test::corpusDir();
  if (corpus.empty())
    GTEST_SKIP() << "no corpus";
  // The file scanned with the list that comes beside it, then with the table made from the
  // lists: every code it uses has the same size in the same list.
  const auto list = readForeignApertureListFile(corpus + "/gerbv/ekf/ekf.gap");
  ASSERT_TRUE(list.has_value());
  const std::string file = corpus + "/gerbv/ekf/l1.off";
  const auto usedSizes = [this] {
    std::vector<std::tuple<int, int32_t, int32_t>> used;
    const ApertureLists& l = pass.scan.Lists;
    int which = 0;
    for (const auto* uses : {&l.DrawList, &l.RoundPadList, &l.SquarePadList}) {
      for (const ApertureUse& use : *uses)
        if (use.Uses > 0)
          used.emplace_back(which, use.DCode, use.Size);
      ++which;
    }
    return used;
  };
  pass.table = list->rows;
  ASSERT_EQ(pass.runFile(file), 0);
  openScanned(ImportKind::ArtworkRS274D);
  job.SourcePath = file;
  const auto withList = usedSizes();
  ASSERT_GT(withList.size(), 10u);
  EXPECT_TRUE(model->createShown);
  ASSERT_TRUE(model->createApertureFile());
  EXPECT_TRUE(model->ApertureFileCreated);
  EXPECT_EQ(named, std::vector<std::string>{"l1"});
  EXPECT_EQ(table.current, "l1");
  ApertureTable written;
  ASSERT_TRUE(written.loadFile(pass.dir.file("l1.APT")));
  EXPECT_EQ(written.rows, table.rows);
  pass.table = written.rows;
  ASSERT_EQ(pass.runFile(file), 0);
  EXPECT_EQ(usedSizes(), withList);
}

TEST_F(ApertureSizes, CreateWritesNothingWithoutANameOrAWritableFolder) {
  sysDir = pass.dir.file("no/such/folder");
  open(Specials, ImportKind::ArtworkRS274D);
  EXPECT_FALSE(model->createApertureFile());
  job.SourcePath = "/jobs/";
  EXPECT_FALSE(model->createApertureFile());
  EXPECT_TRUE(named.empty());
  EXPECT_FALSE(model->ApertureFileCreated);
  EXPECT_EQ(table.current, "NONE");
}

TEST_F(ApertureSizes, AThermalOfTheCorpusShowsItsSixItems) {
  const std::string corpus = test::corpusDir();
  if (corpus.empty())
    GTEST_SKIP() << "no corpus";
  ASSERT_EQ(pass.runFile(corpus + "/gerbv/thermal/dsp.GP1"), 0);
  openScanned(ImportKind::ArtworkRS274X);
  for (int32_t row = 1; row <= int32_t(pass.scan.Lists.SpecialList.size()); ++row) {
    model->showModifiers(row);
    for (const auto& [at, name] : names()) {
      if (name != "Thermal")
        continue;
      std::vector<std::string> labels;
      for (int32_t n = at; n < at + 6; ++n)
        labels.push_back(model->modifierGrid.at(size_t(n - 1)).Cells[1]);
      EXPECT_EQ(labels, (std::vector<std::string>{"X centre", "Y centre", "Outside Diam.",
                                                  "Inside Diam.", "CH Width", "Rotation"}));
      return;
    }
  }
  ADD_FAILURE() << "no thermal in the file";
}

}  // namespace
}  // namespace tvx
