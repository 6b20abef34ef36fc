// The layer order dialog on the offscreen platform: its controls drive the model and show it.
#include "store/widgets/GBRVIEWER_GIESVC.h"

#include "WidgetTestApplication.h"
#include "platform/UserStore.h"
#include "store/LayerTestSupport.h"

#include <QAction>
#include <QCoreApplication>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QTabWidget>

namespace tvx {
namespace {

class LayerOrderDialogTest : public test::LayerTablesFixture {
protected:
  void SetUp() override {
    test::widgetTestApplication();
    LayerTablesFixture::SetUp();
    build();
  }
  std::vector<bool> listSelection(const GBRVIEWER_GIESVC& d) const {
    std::vector<bool> s;
    for (int i = 0; i < d.lstSearchSeq->count(); ++i)
      s.push_back(d.lstSearchSeq->item(i)->isSelected());
    return s;
  }
  std::unique_ptr<GBRVIEWER_GIESVC> open() {
    auto d = std::make_unique<GBRVIEWER_GIESVC>(
        tables, k.store, services, [this] { ++redraws_; }, nullptr, &userStore_);
    d->show();
    QCoreApplication::processEvents();
    return d;
  }
  int redraws_ = 0;
  MemoryUserStore userStore_;
};

// The controls show the model and drive it; what the model does with a click is its own test's.
TEST_F(LayerOrderDialogTest, ButtonsListAndMenuDriveTheModel) {
  tables.layer(1).Active = true;
  const auto before = tables.LayerOrder;
  const auto dialog = open();
  GBRVIEWER_GIESVC& d = *dialog;
  EXPECT_EQ(d.windowTitle().toStdString(), d.model().title());
  ASSERT_EQ(d.lstSearchSeq->count(), 8);
  EXPECT_EQ(std::tuple(d.lstSearchSeq->item(6)->text().toStdString(), listSelection(d),
                       d.cmdUp->isEnabled(), d.mnuOptions->actions().size(), redraws_),
            std::tuple(tables.layer(30).DisplayName, std::vector<bool>(8, true), false, 3, 0))
      << "opening draws nothing";

  // A click in the list: the line's selection becomes its row's visibility, and Up follows.
  d.lstSearchSeq->setCurrentRow(2, QItemSelectionModel::Toggle);
  QCoreApplication::processEvents();
  EXPECT_EQ(std::tuple(d.model().listIndex(), tables.orderRow(3).Visible, d.cmdUp->isEnabled()),
            std::tuple(2, false, true));
  d.cmdUp->click();
  EXPECT_EQ(std::tuple(d.lstSearchSeq->item(1)->text().toStdString(), listSelection(d),
                       d.lstSearchSeq->currentRow()),
            std::tuple(tables.layer(3).DisplayName, std::vector<bool>{1, 0, 1, 1, 1, 1, 1, 1}, 1));
  d.cmdDown->click();
  EXPECT_EQ(std::tuple(tables.orderRow(3).LayerNumber, d.lstSearchSeq->currentRow()),
            std::tuple(3, 2));

  // The active layer's line cannot be unselected from the list.
  d.lstSearchSeq->item(0)->setSelected(false);
  QCoreApplication::processEvents();
  EXPECT_TRUE(d.lstSearchSeq->item(0)->isSelected());
  const int redraws = redraws_;
  d.ATB_UnSelectAll->trigger();
  EXPECT_EQ(std::tuple(listSelection(d), redraws_),
            std::tuple(std::vector<bool>{1, 0, 0, 0, 0, 0, 0, 0}, redraws + 1));

  // Cancel puts the rows back and closes.
  d.cmdCancel->click();
  EXPECT_EQ(std::tuple(tables.LayerOrder, d.result(), userStore_.values.empty()),
            std::tuple(before, QDialog::Rejected, true))
      << "only the frame saves the place";
}

TEST_F(LayerOrderDialogTest, OkKeepsTheRowsAndTheFrameSavesThePlace) {
  auto d = open();
  d->lstSearchSeq->setCurrentRow(7, QItemSelectionModel::NoUpdate);
  QCoreApplication::processEvents();
  d->cmdUp->click();
  const auto working = d->model().workingOrder();
  d->cmdOK->click();
  EXPECT_EQ(std::tuple(tables.LayerOrder, tables.orderRow(30).LayerNumber, d->result()),
            std::tuple(working, 31, QDialog::Accepted));

  const auto rows = tables.LayerOrder;
  d = open();
  d->close();
  EXPECT_EQ(tables.LayerOrder, rows) << "closing by the frame leaves the rows";
  EXPECT_NE(userStore_.GetSetting(UserStoreApplication, UserStoreSection, "GBRVIEWER_GIESVC_WIDTH",
                                  "none"),
            "none");
}

}  // namespace
}  // namespace tvx
