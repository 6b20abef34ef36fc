// The rows of the import window for each kind of file: which rows, in which order, read-only or
// editable, before and after a layer is chosen, with the filter, aperture and tool rows.
#include "import/readers/window/ImportWindowTestSupport.h"

#include <algorithm>

namespace tvx {
namespace {

using Keys = std::vector<std::string>;

TEST(ImportWindowRows, AGerberFileWaitsForALayerThenShowsItsLayerAndFilterRows) {
  test::ImportWindowWorld world;
  world.open("top.gbr", test::TwoPadsAndATrack);
  ASSERT_EQ(world.session->state.Job.Kind, ImportKind::ArtworkRS274X);
  // Reading the whole file shows its progress in the main window's line, not in the window's.
  EXPECT_EQ(std::count(world.events.begin(), world.events.end(),
                       "main line " + world.nextFile + " Processing"),
            1);
  EXPECT_EQ(world.model->stages().messageLine.find("Processing"), std::string::npos);
  EXPECT_EQ(world.keys(), (Keys{"IMP_FLEN", "IMP_FLET", "(group)", "IMP_UNITG", "IMP_OZG",
                                "IMP_SCFXG", "IMP_SCFYG", "IMP_PFXG", "IMP_PFYG", "IMP_APT",
                                "IMP_APTUSE", "(group)", "IMP_LAYER"}));
  EXPECT_EQ(world.row("IMP_FLEN").Value, world.nextFile);
  EXPECT_EQ(world.row("IMP_FLET").Value, "Artwork GERBER RS-274-X");
  // The file's own format, read-only and grey.
  EXPECT_EQ(world.row("IMP_UNITG").Value, "Inches");
  EXPECT_TRUE(world.row("IMP_UNITG").ReadOnly);
  EXPECT_EQ(world.row("IMP_PFXG").Value, "2.4");
  EXPECT_EQ(world.row("IMP_APT").Value, "Embedded");
  EXPECT_FALSE(world.row("IMP_APT").Enabled) << "the aperture windows are not there";
  EXPECT_EQ(world.row("IMP_LAYER").Cell, CellKind::List);
  EXPECT_EQ(world.model->list(importlist::Layers).size(), world.session->state.LayerChoices.size());
  EXPECT_EQ(world.entries(1) + world.items(1).size(), 0u) << "nothing is imported yet";

  world.choose(world.layer(1).DisplayName);
  EXPECT_EQ(world.session->state.DialogLayer, 1);
  EXPECT_EQ(world.items(1).size(), 3u);
  EXPECT_EQ(world.row("IMP_LAYER").Value, world.layer(1).DisplayName);
  EXPECT_EQ(world.row("AF_ICL").Swatch, world.layer(1).ColourRgb);
  EXPECT_EQ(world.row("AFS_XO").Value, "0.0000\"");
  EXPECT_TRUE(world.row("AFS_NOCENTER").Checked);
  EXPECT_EQ(world.model->stages().messageLine, world.layer(1).DisplayName + " Import successful");
  EXPECT_TRUE(world.model->stages().filterButtonVisible);
  EXPECT_TRUE(world.model->stages().clearButtonVisible);
  EXPECT_EQ(world.model->rowOf("AF_ILN"), -1) << "filters are hidden until asked for";

  world.model->cmdFilters();
  const Keys all = world.keys();
  EXPECT_EQ(Keys(all.end() - 11, all.end()),
            (Keys{"(group)", "AF_ILN", "AF_IPD", "AF_IPA", "AF_IPL", "AF_IMC", "AF_IPP", "AF_IMP",
                  "(group)", "AF_APF,1", "AF_APF,2"}));
  EXPECT_EQ(world.row("AF_APF,1").Caption, "D10* Line    0.0100\"");
  EXPECT_EQ(world.row("AF_APF,2").Caption, "D11* Sqr.Pad 0.0600\"");
  EXPECT_TRUE(world.row("AF_APF,2").Checked);
  EXPECT_EQ(world.layer(1).Apertures, world.model->ApertureRows);

  // Millimetres: the lengths of the rows follow.
  world.model->F_InchMM(1);
  EXPECT_EQ(world.row("AF_APF,1").Caption, "D10* Line    0.254mm");
  EXPECT_EQ(world.row("AFS_XO").Value, "0.000mm");

  // A layer without some kinds of elements offers only its own filters.
  world.model->cmdFilters();
  world.layer(2).FilterMask = filter::AF_ILN | filter::AF_IPP;
  world.choose(world.layer(2).DisplayName);
  world.model->cmdFilters();
  EXPECT_GE(world.model->rowOf("AF_ILN"), 0);
  EXPECT_GE(world.model->rowOf("AF_IPP"), 0);
  EXPECT_EQ(world.model->rowOf("AF_IPD"), -1);
}

TEST(ImportWindowRows, ADrillFileIsImportedAtOnceWithItsToolsEditable) {
  test::ImportWindowWorld world;
  world.open("holes.drl", test::ThreeHoles);
  ASSERT_EQ(world.session->state.Job.Kind, ImportKind::ExcellonFormatTwo);
  EXPECT_EQ(world.session->state.DialogLayer, 31);
  EXPECT_GT(world.entries(31), 0) << "imported at once";
  EXPECT_EQ(world.keys(), (Keys{"IMP_FLEN", "IMP_FLET", "(group)", "(info)", "(info)", "(info)",
                                "(group)", "IMP_LAYER", "AF_ICL", "AFS_XO", "AFS_YO",
                                "AFS_NOCENTER", "(group)", "AF_APH,1", "AF_APH,2"}));
  EXPECT_EQ(world.model->list(importlist::FileType),
            (Keys{"Drilling EXCELLON Format Two", "Drilling EXCELLON Format One"}));
  EXPECT_TRUE(world.model->rows[3].ReadOnly);
  EXPECT_EQ(world.row("IMP_LAYER").Cell, CellKind::Text);
  EXPECT_EQ(world.row("AF_APH,1").Caption, "T1   (2)");
  EXPECT_EQ(world.row("AF_APH,2").Caption, "T2   (1)");
  EXPECT_EQ(world.row("AF_APH,1").Value, "0.030\"");
  EXPECT_EQ(world.row("AF_APH,1").Cell, CellKind::Number);

  // Read as Format One: the format rows become lists taken from the settings.
  world.model->CommitCell(world.model->rowOf("IMP_FLET"), "Drilling EXCELLON Format One");
  EXPECT_EQ(world.session->state.Job.Kind, ImportKind::ExcellonFormatOne);
  EXPECT_EQ(world.model->rows[2].ValueBack, 0xFFFF00);
  EXPECT_EQ(world.row("IMP_UNITD").Cell, CellKind::List);
  EXPECT_EQ(world.row("IMP_PRFXYD").Value, "2.4");
  EXPECT_EQ(world.row("IMP_OZD").Value, "Trailing");
  EXPECT_EQ(world.session->state.DialogLayer, 31);
}

TEST(ImportWindowRows, APlotterFileHasNoFormatRowsAndOnlyTheOutlineLayer) {
  test::ImportWindowWorld world;
  int imports = 0;
  test::ScriptedReader hpgl;
  hpgl.onImport = [&](int32_t&, const ImportJob&, LayerRecord& layer, LayerFileRecord& file) {
    ++imports;
    EXPECT_EQ(layer.Mask, BoardOutlineMask);
    EXPECT_EQ(file.ReaderCode, ReaderHpgl);
  };
  world.session->readers.add(ReaderHpgl, hpgl);
  world.makeModel();
  world.open("outline.plt", "IN;PU0,0;PD400,0;\n");
  ASSERT_EQ(world.session->state.Job.Kind, ImportKind::Hpgl);
  EXPECT_EQ(imports, 1) << "imported at once";
  const Keys keys{"IMP_FLEN", "IMP_FLET", "(group)", "IMP_LAYER",
                  "AF_ICL",   "AFS_XO",   "AFS_YO",  "AFS_NOCENTER"};
  EXPECT_EQ(world.keys(), keys);
  EXPECT_EQ(world.model->list(importlist::Layers), Keys{"Board Outline/Cut-outs"});
  world.model->cmdFilters();
  EXPECT_EQ(world.keys(), keys) << "filters have nothing to show for it";
}

}  // namespace
}  // namespace tvx
