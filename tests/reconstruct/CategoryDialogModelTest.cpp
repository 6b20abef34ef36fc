// The rows of the window "Import to categories" follow the options.
#include "reconstruct/CategoryDialogModel.h"

#include <gtest/gtest.h>

namespace tvx {
namespace {

std::vector<std::string> keysOf(const CategoryDialogModel& model) {
  std::vector<std::string> keys;
  for (const GridRow& row : model.Rows())
    keys.push_back(row.Key.empty() ? "-" : row.Key);
  return keys;
}

TEST(CategoryDialogModelTest, ChildrenShowOnlyUnderACheckedParentAndKeepTheirState) {
  CategoryOptions options;
  CategoryDialogModel model(options);
  const std::vector<std::string> all = {"I_OUTL",  "I_OUTCT", "I_OUTTM", "I_OUTLR", "-", "I_SILK",
                                        "I_SILKR", "-",       "I_TRC",   "I_TRCR",  "-", "I_PAD",
                                        "I_PADR",  "-",       "I_COP",   "I_COPR"};
  EXPECT_EQ(keysOf(model), all);
  EXPECT_EQ(model.Rows()[2].Caption, "Duplicate in 'Template Outlines'");
  EXPECT_FALSE(model.Rows()[1].Checked);

  EXPECT_EQ(model.CellCommitted(1, true), 1);  // Duplicate in 'Board Cutouts'
  EXPECT_TRUE(options.OutlinesCutouts);
  EXPECT_EQ(model.CellCommitted(0, false), 0);
  EXPECT_FALSE(options.Outlines);
  EXPECT_EQ(keysOf(model).size(), all.size() - 3);
  EXPECT_EQ(model.CellCommitted(0, true), 0);
  EXPECT_EQ(keysOf(model), all);
  EXPECT_TRUE(model.Rows()[1].Checked) << "a child keeps its state while hidden";

  const int kept = model.CellCommitted(8, false);  // Traces off: its child goes
  EXPECT_EQ(kept, 8);
  EXPECT_EQ(model.Rows()[9].Key, "");
  EXPECT_EQ(model.CellCommitted(4, true), 4) << "an empty row changes nothing";

  model.OK();
  EXPECT_TRUE(options.Confirmed);
  model.Cancel();
  EXPECT_FALSE(options.Confirmed);
}

}  // namespace
}  // namespace tvx
