// The import window on screen (offscreen): the grid shows a Gerber file's rows, a layer chosen in
// its list imports the file, and an offset typed into its cell moves the drawn layer.
#include "import/readers/window/widgets/GBRVIEWER_IMPORT.h"

#include "common/widgets/PropertyGrid.h"
#include "import/readers/window/ImportWindowTestSupport.h"
#include "platform/UserStore.h"
#include "platform/widgets/WindowPlace.h"
#include "support/WidgetTestApplication.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QWheelEvent>

namespace tvx {
namespace {

void settle() {
  for (int i = 0; i < 3; ++i) {
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);  // closed editors
  }
}

TEST(ImportWindowWidget, TheGridShowsAGerberFileAndATypedOffsetMovesTheLayer) {
  test::widgetTestApplication();
  test::ImportWindowWorld world;
  MemoryUserStore places;
  ImportWindowOwners owners = world.makeOwners();
  owners.window.showHelp = [&world] { world.events.push_back("help"); };
  GBRVIEWER_IMPORT window(std::move(owners), &places);
  window.show();
  world.nextFile = world.write("top.gbr", test::TwoPadsAndATrack);
  window.findChild<QAction*>("M_FileSelect")->trigger();
  settle();

  PropertyGrid& grid = window.grid();
  QKeyEvent help(QEvent::KeyPress, Qt::Key_F1, Qt::ControlModifier);
  QCoreApplication::sendEvent(&window, &help);
  EXPECT_EQ(world.events.back(), "help");
  ASSERT_EQ(grid.rowCount(), static_cast<int>(window.model().rows.size()));
  EXPECT_EQ(grid.item(0, 1)->text(), QString::fromStdString(world.nextFile));
  EXPECT_EQ(grid.item(0, 1)->foreground().color(), QColor(Qt::red));
  const int apt = grid.rowOfKey("IMP_APT");
  ASSERT_GE(apt, 0);
  EXPECT_EQ(grid.item(apt, 1)->background().color(), QColor(0xE6, 0xE6, 0xE6)) << "read-only";
  EXPECT_EQ(grid.CellBackColor(1 + grid.rowOfKey("IMP_FLET"), 0), 0xE6E6E6) << "styled caption";
  EXPECT_TRUE(grid.horizontalHeaderItem(0)->font().bold());
  auto* useButton = qobject_cast<QPushButton*>(grid.cellWidget(grid.rowOfKey("IMP_APTUSE"), 1));
  ASSERT_NE(useButton, nullptr);
  EXPECT_FALSE(useButton->isEnabled());
  EXPECT_FALSE(window.findChild<QPushButton*>("cmdCmd4")->isVisible());
  EXPECT_TRUE(window.findChild<QPushButton*>("cmdView")->isVisible());

  // The layer list: the user picks the first layer.
  auto* layers = qobject_cast<QComboBox*>(grid.cellWidget(grid.rowOfKey("IMP_LAYER"), 1));
  ASSERT_NE(layers, nullptr);
  EXPECT_EQ(layers->currentText(), "Click to select");
  const int first = layers->findText(QString::fromStdString(world.layer(1).DisplayName));
  ASSERT_GE(first, 0);
  layers->setCurrentIndex(first);
  emit layers->activated(first);
  settle();
  ASSERT_EQ(world.session->state.DialogLayer, 1);
  EXPECT_TRUE(window.findChild<QPushButton*>("cmdCmd4")->isVisible());
  EXPECT_TRUE(window.findChild<QLabel*>("MsgLine")->text().endsWith("Import successful"));

  // An offset typed into its cell and left with Enter reaches the layer (the model tests see it
  // imported again, moved).
  window.findChild<QAction*>("F_InchMM1")->trigger();
  settle();
  const auto type = [&grid](const char* key, const QString& text, Qt::Key end) {
    const int row = grid.rowOfKey(key);
    grid.setCurrentCell(row, 1);
    grid.editItem(grid.item(row, 1));
    auto* editor = qobject_cast<QLineEdit*>(grid.indexWidget(grid.model()->index(row, 1)));
    ASSERT_NE(editor, nullptr) << key;
    editor->setText(text);
    QKeyEvent press(QEvent::KeyPress, end, Qt::NoModifier);
    QCoreApplication::sendEvent(editor, &press);
    settle();
  };
  EXPECT_EQ(grid.item(grid.rowOfKey("AFS_XO"), 1)->text(), "0.000mm");
  type("AFS_XO", "12.5", Qt::Key_Return);
  EXPECT_EQ(world.layer(1).OffsetX, 1250000);
  EXPECT_EQ(grid.item(grid.rowOfKey("AFS_XO"), 1)->text(), "12.500mm");

  type("AFS_YO", "-3", Qt::Key_Tab);  // Tab commits as Enter does
  EXPECT_EQ(world.layer(1).OffsetY, -300000);

  // An aperture's check box leaves its elements out.
  window.findChild<QPushButton*>("cmdCmd3")->click();
  settle();
  auto* box = qobject_cast<QCheckBox*>(grid.cellWidget(grid.rowOfKey("AF_APF,1"), 1));
  ASSERT_NE(box, nullptr);
  EXPECT_TRUE(box->isChecked());
  box->click();
  settle();
  EXPECT_EQ(world.layer(1).Files.at(0).Tag, "|D10*|");
  EXPECT_FALSE(
      qobject_cast<QCheckBox*>(grid.cellWidget(grid.rowOfKey("AF_APF,1"), 1))->isChecked());

  // The wheel moves the grid by one row per step, both ways.
  grid.setFixedHeight(150);
  settle();
  const auto wheel = [&grid](int rotation) {
    QWheelEvent step(QPointF(5, 5), grid.mapToGlobal(QPointF(5, 5)), QPoint(), QPoint(0, rotation),
                     Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(grid.viewport(), &step);
  };
  const int top = grid.TopRow();  // the current row is in sight, at the end
  ASSERT_GE(top, 3);
  wheel(120);
  wheel(120);
  EXPECT_EQ(grid.TopRow(), top - 2);
  wheel(-120);
  EXPECT_EQ(grid.TopRow(), top - 1);

  // The colour page: a square takes the colour and the grid comes back.
  auto* colours = qobject_cast<QComboBox*>(grid.cellWidget(grid.rowOfKey("AF_ICL"), 1));
  ASSERT_NE(colours, nullptr);
  emit colours->activated(0);
  settle();
  auto* tabs = window.findChild<QTabWidget*>("tabColor");
  EXPECT_EQ(tabs->currentIndex(), 1);
  window.findChild<QPushButton*>("picColor13")->click();
  settle();
  EXPECT_EQ(tabs->currentIndex(), 0);
  EXPECT_EQ(world.layer(1).ColourNumber, 13);

  // Close: the window goes and the main window gets the layer.
  window.findChild<QPushButton*>("cmdCmd1")->click();
  settle();
  EXPECT_FALSE(window.isVisible());
  EXPECT_EQ(world.events.back(), "activate 1");
  EXPECT_EQ(places.GetSetting(UserStoreApplication, UserStoreSection, "GBRVIEWER_IMPORT_WIDTH", ""),
            std::to_string(window.width() * TwipsPerPixel))
      << "the window's place is kept for next time";
}

}  // namespace
}  // namespace tvx
