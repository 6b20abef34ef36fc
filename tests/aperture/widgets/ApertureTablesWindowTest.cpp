// The window "Aperture Tables" over its model, offscreen: a code typed into the grid reaches the
// table, a key typed marks an edit that leaving the cell takes even when the text is unchanged,
// and Ctrl+F1 opens the help.
#include "aperture/widgets/GBRVIEWER_APT.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"
#include "support/WidgetTestApplication.h"

#include <QKeyEvent>
#include <QTableWidget>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace tvx {
namespace {

TEST(ApertureTablesWindow, TypedCodesKeysAndHelp) {
  test::widgetTestApplication();
  QTemporaryDir folder;
  ASSERT_TRUE(folder.isValid());
  ApertureTable table;
  table.rows = {{25400, 10, 0, 0}};
  ASSERT_TRUE(table.save(folder.path().toStdString(), "JOB"));
  ScriptedPrompts prompts;
  SystemServices services(&prompts);
  ApertureTablesModel model(table, services, prompts, folder.path().toStdString(),
                            [](const std::string&) {});
  GBRVIEWER_APT window(model);
  ASSERT_EQ(window.egrdSizes->rowCount(), 1);
  int helped = 0;
  window.setHelpHandler([&helped] { ++helped; });

  QKeyEvent help(QEvent::KeyRelease, Qt::Key_F1, Qt::ControlModifier);
  QApplication::sendEvent(&window, &help);
  EXPECT_EQ(helped, 1);

  // A code typed into the grid's cell: the table takes it, or beeps and keeps its own.
  QTableWidgetItem* cell = window.egrdSizes->item(0, 3);
  ASSERT_NE(cell, nullptr);
  cell->setText("D11*");
  EXPECT_EQ(table.rows[0].RoundD, 11);
  EXPECT_EQ(model.ChangedFlag, 1);
  cell->setText("D9");
  EXPECT_EQ(table.rows[0].RoundD, 11) << "a code below 10 is refused";
  EXPECT_EQ(prompts.beeps, 1);

  // A letter typed marks an edit; Enter and Tab do not.
  model.CellEditPending = false;
  QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, "\r");
  QApplication::sendEvent(window.egrdSizes, &enter);
  EXPECT_FALSE(model.CellEditPending);
  QKeyEvent letter(QEvent::KeyPress, Qt::Key_D, Qt::NoModifier, "D");
  QApplication::sendEvent(window.egrdSizes, &letter);
  EXPECT_TRUE(model.CellEditPending);
}

}  // namespace
}  // namespace tvx
