// The window "Aperture Tables" without widgets: codes typed into cells, sizes inserted and
// deleted, and the table saved, accepted and cancelled with scripted answers.
#include "aperture/ApertureTablesModel.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <fstream>

namespace tvx {
namespace {

using Rows = std::vector<ApertureTableRow>;

TEST(ApertureTables, CodeCellsTakeTheirDigits) {
  const std::pair<const char*, int32_t> cases[] = {
      {"D23*", 23},   {"23", 23}, {"2 3", 23}, {"", 0},      {"  ", 0},
      {"D999*", 999}, {"D9", -1}, {"0", -1},   {"1000", -1}, {"D12345678901234", -1},
  };
  for (const auto& [text, code] : cases)
    EXPECT_EQ(codeOfCell(text), code) << '"' << text << '"';
}

class ApertureTablesTest : public ::testing::Test {
protected:
  void SetUp() override {
    ASSERT_TRUE(folder.isValid());
    std::ofstream(sysDir + "/JOB1.APT", std::ios::binary)
        << "25400,10,0,0\r\n100000,11,20,0\r\n\"#\",\"#\",\"#\",\"#\"\r\n";
    table.current = "JOB1";
    model.FillAptform();
  }
  // Answers the next size question with text (empty: cancelled).
  void answerSize(const std::string& text) { prompts.queryAnswers.push_back({text, 0}); }

  QTemporaryDir folder;
  std::string sysDir = folder.path().toStdString();
  ScriptedPrompts prompts;
  SystemServices services{&prompts};
  ApertureTable table;
  std::vector<std::string> settingWrites;
  ApertureTablesModel model{table, services, prompts, sysDir,
                            [this](const std::string& name) { settingWrites.push_back(name); }};
};

TEST_F(ApertureTablesTest, CodesAreTypedAndBadOnesBeep) {
  EXPECT_EQ(model.staCurApt, "JOB1");
  EXPECT_EQ((std::vector<std::string>{model.cell(2, 0), model.cell(2, 1), model.cell(2, 3)}),
            (std::vector<std::string>{"0.03937", "1.000", "D20*"}));
  EXPECT_TRUE(model.EditAptValues(1, 4, "D23*"));
  EXPECT_EQ(table.rows[0].SquareD, 23);
  EXPECT_EQ(model.ChangedFlag, 1);
  EXPECT_FALSE(model.EditAptValues(1, 2, "D9"));
  EXPECT_EQ(table.rows[0].LinesD, 10) << "a refused code leaves the cell";
  EXPECT_EQ(prompts.beeps, 1);
}

TEST_F(ApertureTablesTest, SizesAreInsertedInOrderWithinTheirRange) {
  struct Case {
    int unit;  // 0 inch, 1 mm
    const char* answer;
    bool added;
  };
  const Case cases[] = {
      {1, "1", false},                                                // 100000 is there already
      {1, "0.0000001", false},                                        // below one store unit
      {1, "2200", true},                                              // the largest size
      {1, "2200.001", false},  {1, "0.5", true}, {0, "0.01", false},  // 25400: there already
      {1, "", false},                                                 // a cancelled question
  };
  int beeps = 0;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.answer);
    const int32_t before = model.rowCount();
    answerSize(c.answer);
    model.insertSize(c.unit);
    EXPECT_EQ(model.rowCount(), before + (c.added ? 1 : 0));
    beeps += !c.added && *c.answer;
    EXPECT_EQ(prompts.beeps, beeps);
  }
  EXPECT_EQ(table.rows,
            (Rows{{25400, 10, 0, 0}, {50000, 0, 0, 0}, {100000, 11, 20, 0}, {220000000, 0, 0, 0}}));
  EXPECT_EQ(model.CurrentRow, 2) << "the last row inserted is the current one";
  EXPECT_EQ(prompts.queries.back().prompt, "Size to insert (mm):");
}

TEST_F(ApertureTablesTest, DeletingAsksAndKeepsTheLastRow) {
  model.CurrentRow = 1;
  prompts.answers = {answer::No, answer::Yes, answer::Yes};
  model.deleteSize();
  EXPECT_EQ(model.rowCount(), 2) << "no: nothing goes";
  model.deleteSize();
  EXPECT_EQ(table.rows, (Rows{{100000, 11, 20, 0}}));
  model.deleteSize();
  EXPECT_EQ(model.rowCount(), 1) << "the last row stays";
  EXPECT_EQ(prompts.beeps, 1);
  EXPECT_EQ(prompts.shown[0].prompt,
            "Are you sure you want to delete the entry 0.0100 inch / 0.254 mm ");
}

TEST_F(ApertureTablesTest, SavingAcceptingAndCancelling) {
  model.EditAptValues(1, 3, "30");
  model.txtNewFname = "job2 copy";
  model.save();
  EXPECT_EQ(table.current, "JOB2");
  EXPECT_EQ(settingWrites, (std::vector<std::string>{"JOB2"}));
  EXPECT_NE(std::find(model.tableFiles().begin(), model.tableFiles().end(), "JOB2.APT"),
            model.tableFiles().end());

  // The flag stays after a save: Accept asks again, and yes saves again.
  prompts.answers = {answer::Yes};
  model.accept();
  ASSERT_EQ(prompts.shown.size(), 1u);
  EXPECT_EQ(prompts.shown[0].prompt,
            "Current Aperture Table has been changed\rDo You wish to save changes ?");
  EXPECT_EQ(settingWrites.size(), 2u);

  // Cancel reads the table again: an edit not saved is gone.
  model.EditAptValues(1, 2, "55");
  model.cancel();
  EXPECT_EQ(table.rows[0], (ApertureTableRow{25400, 10, 30, 0}));

  // A list click on another table: the question, then that table.
  model.EditAptValues(1, 2, "56");
  prompts.answers = {answer::No};
  model.listClick(" job1.apt ");
  EXPECT_EQ(table.current, "JOB1");
  EXPECT_EQ(table.rows[0], (ApertureTableRow{25400, 10, 0, 0}));
  EXPECT_EQ(model.ChangedFlag, 0);
}

}  // namespace
}  // namespace tvx
