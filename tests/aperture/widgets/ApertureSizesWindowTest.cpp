// The window "Apertures & Sizes" over its model and a real Gerber pass, offscreen: what the grids
// and tabs show, a typed size refilled from the list, a modifier chosen from the exposure's words,
// and the buttons' ways out.
#include "aperture/widgets/GBRVIEWER_GBRINFO.h"

#include "import/gerber/GerberPassSupport.h"
#include "support/WidgetTestApplication.h"

#include <QComboBox>
#include <QGroupBox>
#include <QKeyEvent>
#include <QPushButton>
#include <QTabWidget>
#include <QTableWidget>

namespace tvx {
namespace {

TEST(ApertureSizesWindow, ShowsTheListsTakesEditsAndLeavesByItsButtons) {
  test::widgetTestApplication();
  test::GerberPass pass;
  ASSERT_EQ(pass.run("%FSLAX24Y24*%%MOIN*%%AMONE*1,1,0.05,0,0*%%ADD10C,0.0100*%%ADD12ONE*%\n"
                     "D10*X0Y0D02*X10000Y0D01*D12*X0Y0D03*M02*\n"),
            0);
  ImportJob job;
  job.IntermediatePath = pass.art;
  job.Kind = ImportKind::ArtworkRS274X;
  ApertureTable table;
  ApertureSizesModel model(
      {pass.scan, job, table, pass.dir.path().string(), {}, pass.reporting.reporter, 1});
  GBRVIEWER_GBRINFO window(model);
  int helped = 0;
  window.setHelpHandler([&helped] { ++helped; });
  EXPECT_EQ(window.windowTitle().toStdString(), "Apertures & Sizes(" + pass.art + ")");
  EXPECT_TRUE(window.egrdApts[0]->isEnabled());
  EXPECT_FALSE(window.egrdApts[2]->isEnabled()) << "no square pads";
  EXPECT_TRUE(window.AptTypes->isTabEnabled(1));
  EXPECT_TRUE(window.cmdUpdate[1]->isHidden());
  EXPECT_EQ(window.egrdSizes->item(0, 2)->text(), "25.400") << "the board is one inch wide";
  EXPECT_EQ(window.egrdSizes->item(1, 0)->background().color(), QColor(0xE6, 0xE6, 0xE6));

  QKeyEvent help(QEvent::KeyRelease, Qt::Key_F1, Qt::ControlModifier);
  QApplication::sendEvent(&window, &help);
  EXPECT_EQ(helped, 1);

  // A size typed into the mm column: the list takes it and the row shows it from the list.
  window.egrdApts[0]->item(0, 2)->setText("0.3");
  QApplication::processEvents();
  EXPECT_EQ(pass.scan.Lists.DrawList[0].Size, 30000);
  EXPECT_EQ(window.egrdApts[0]->item(0, 1)->text(), "0.01181");
  window.egrdApts[0]->item(0, 2)->setText("60");
  QApplication::processEvents();
  EXPECT_EQ(window.egrdApts[0]->item(0, 2)->text(), "0.300") << "refused, and shown as it was";

  // The macro's modifiers; its exposure is chosen from a list of its words.
  window.AptTypes->setCurrentIndex(1);
  emit window.F_XUapts->cellClicked(0, 0);
  EXPECT_EQ(window.F_ModFrame->title().toStdString(), "Modifiers for: D12* Macro \"ONE\"");
  ASSERT_EQ(window.F_XMod->rowCount(), 4);
  window.F_XMod->editItem(window.F_XMod->item(0, 2));
  auto* words = window.F_XMod->findChild<QComboBox*>();
  ASSERT_NE(words, nullptr);
  EXPECT_EQ(words->count(), 3);
  words->setCurrentText("OFF(0)");
  emit window.F_XMod->itemDelegate()->commitData(words);
  emit window.F_XMod->itemDelegate()->closeEditor(words);
  QApplication::processEvents();
  EXPECT_EQ(pass.scan.Lists.PrimitiveList[0].Value, 0);
  EXPECT_EQ(window.F_XMod->item(0, 2)->text(), "OFF(0)");

  window.cmdUpdate[0]->click();
  EXPECT_EQ(window.result(), QDialog::Accepted);
  EXPECT_TRUE(model.ArtworkUpdated);
}

}  // namespace
}  // namespace tvx
