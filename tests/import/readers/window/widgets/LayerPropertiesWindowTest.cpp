// The layer properties window on screen (offscreen): the grid shows the layer, a square of the
// colour page recolours it, Ctrl+F1 asks for help, and the window comes back where it was closed.
#include "import/readers/window/widgets/GBRVIEWER_GISIMP.h"

#include "common/widgets/PropertyGrid.h"
#include "import/readers/window/ImportWindowTestSupport.h"
#include "platform/UserStore.h"
#include "support/WidgetTestApplication.h"

#include <QKeyEvent>
#include <QPushButton>
#include <QTabWidget>

namespace tvx {
namespace {

TEST(LayerPropertiesWindow, ShowsTheLayerTakesAColourAndKeepsItsPlace) {
  test::widgetTestApplication();
  test::ImportWindowWorld world;
  world.openAs("top.gbr", test::TwoPadsAndATrack, ImportKind::ArtworkRS274X);
  world.choose(world.layer(3).DisplayName);
  MemoryUserStore places;
  const int32_t shown = 3;
  int unloaded = 0;
  int helped = 0;
  const auto open = [&] {
    auto window = std::make_unique<GBRVIEWER_GISIMP>(LayerPropertiesOwners{world.kernel->store,
                                                                           world.reporting.services,
                                                                           world.tables->Layers,
                                                                           shown,
                                                                           world.highlights,
                                                                           [] {},
                                                                           {},
                                                                           8,
                                                                           92,
                                                                           1},
                                                     &places);
    window->unloaded = [&unloaded] { ++unloaded; };
    window->showHelp = [&helped] { ++helped; };
    window->show();
    return window;
  };
  auto window = open();
  EXPECT_EQ(window->windowTitle().toStdString(),
            "Layer properties [" + world.layer(3).DisplayName + "]");
  PropertyGrid& grid = window->grid();
  EXPECT_EQ(grid.shownValue(grid.rowOfKey("AF_ICL")).toStdString(), "(Default)    ");
  EXPECT_GE(grid.rowOfKey("AF_APF,1"), 0);

  QKeyEvent help(QEvent::KeyPress, Qt::Key_F1, Qt::ControlModifier);
  QApplication::sendEvent(window.get(), &help);
  EXPECT_EQ(helped, 1);

  // The colour page's square 5.
  window->model().CommitCell(grid.rowOfKey("AF_ICL"), "Selected from palette");
  auto* tabs = window->findChild<QTabWidget*>("tabColor");
  ASSERT_NE(tabs, nullptr);
  EXPECT_EQ(tabs->currentIndex(), 1);
  auto* square = window->findChild<QPushButton*>("picColor5");
  ASSERT_NE(square, nullptr);
  square->click();
  EXPECT_EQ(tabs->currentIndex(), 0);
  EXPECT_EQ(world.layer(3).ColourNumber, 5);
  EXPECT_EQ(int32_t(world.items(3).front().Colour), 5);

  window->move(40, 50);
  window->findChild<QPushButton*>("cmdCmd")->click();
  EXPECT_EQ(unloaded, 1);
  window = open();
  EXPECT_EQ(window->pos(), QPoint(40, 50));
}

}  // namespace
}  // namespace tvx
