// The print pass on a scripted printer: texts, NewPage, the range, the ticks, the file question,
// the failure messages; the generated names and the settings in the per-user store.
#include "print/PrintOutput.h"
#include "print/ScriptedPrinter.h"

#include "kernel/Kernel.h"
#include "platform/UserPrompts.h"
#include "platform/UserStore.h"
#include "support/WidgetTestApplication.h"
#include "viewer/DisplayUnits.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace tvx {
namespace {

constexpr int32_t Mm = StoreUnitsPerMm;

class PrintOutputTest : public ::testing::Test {
protected:
  void SetUp() override {
    test::widgetTestApplication();
    model.Begin({0, 0, 10 * Mm, 10 * Mm}, 4);
    model.Build();
    model.PreviewFrame = {0, 0, int32_t(2 * model.PageWidth), int32_t(model.PageHeight / 2)};
    model.ScaleEntered("1:1");
    model.DrawPage = [this](int32_t, int32_t) { ++drawn; };
    output.Caption = "Board";
    output.StopTimer = [this] { ++timerStops; };
    output.AskFileName = [this](const PrintFileRequest& request) {
      asked.push_back(request);
      return answer;
    };
  }

  ScriptedPrinter printer;
  PrinterSettings record;
  ScriptedPrompts prompts;
  PreviewModel model{record, printer, displayunit::Millimetre, nullptr, &prompts};
  Kernel kernel;
  PrintOutput output{model, kernel.graphics, &prompts};
  int drawn = 0, timerStops = 0;
  std::vector<PrintFileRequest> asked;
  std::optional<std::string> answer = std::string("/tmp/out.pdf");
};

TEST_F(PrintOutputTest, OneSheetUsesTheSingleTextAndNoNewPage) {
  ASSERT_EQ(model.PageCount, 2);
  struct Case {
    const char* tool;
    std::string document;
    int newPages, sheets;
  };
  const Case cases[] = {{"ATB_Print", "Board Page : 1 -> LPT1:", 0, 1},
                        {"ATB_PrintAll", "Board Pages from  1 to 2 -> LPT1:", 1, 2}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.tool);
    printer.documents.clear();
    drawn = 0;
    ASSERT_EQ(model.Command(c.tool), PreviewAction::StartPrinting);
    output.PrintPass();
    ASSERT_EQ(printer.documents.size(), 1u);
    EXPECT_EQ(printer.documents[0], c.document);
    EXPECT_EQ(output.NewPages, c.newPages);
    EXPECT_EQ(drawn, c.sheets);
    EXPECT_FALSE(model.DocOpen);
  }
}

TEST_F(PrintOutputTest, RangeIsCutToTheSheets) {
  model.PrintFrom = 2;
  model.PrintTo = 9;
  model.Command("ATB_PrintAll");
  EXPECT_EQ(model.PrintTo, 2);
}

TEST_F(PrintOutputTest, TwoPrintsBeforeTheFourthTickRunOnePass) {
  model.Command("ATB_Print");
  output.Tick();
  model.Command("ATB_Print");
  for (int i = 0; i < 3; ++i)
    output.Tick();
  EXPECT_EQ(printer.documents.size(), 1u);
  EXPECT_EQ(timerStops, 1);
}

TEST_F(PrintOutputTest, FilePortAsksForAFileWithAGeneratedName) {
  ScriptedPrinter filePrinter(std::vector<ScriptedPrinterEntry>{{"Writer", "FILE:"}});
  PreviewModel fileModel(record, filePrinter, displayunit::Millimetre);
  fileModel.Begin({0, 0, Mm, Mm}, 4);
  fileModel.Build();
  PrintOutput fileOutput(fileModel, kernel.graphics, &prompts);
  QTemporaryDir folder;
  QFile(folder.filePath("PrintOut_1.pdf")).open(QIODevice::WriteOnly);
  fileOutput.ImportFolder = folder.path().toStdString();
  fileOutput.AskFileName = output.AskFileName;
  ASSERT_FALSE(record.PrintToFile);
  fileModel.Command("ATB_Print");
  fileOutput.PrintPass();
  ASSERT_EQ(asked.size(), 1u);
  EXPECT_EQ(asked[0].fileName, folder.path().toStdString() + "/PrintOut_2");
  EXPECT_EQ(asked[0].defaultExtension, "pdf");
  EXPECT_EQ(filePrinter.documents.at(0), " Page : 1 -> /tmp/out.pdf");

  answer.reset();  // Cancel: no document, no message
  fileOutput.PrintPass();
  EXPECT_EQ(filePrinter.documents.size(), 1u);
  EXPECT_TRUE(prompts.shown.empty());
}

TEST_F(PrintOutputTest, FailuresAreToldAndThePassEnds) {
  bool closeEnabled = false;
  output.EnableClose = [&](bool on) { closeEnabled = on; };
  printer.startDocResult = 0;
  model.Command("ATB_PrintAll");
  output.PrintPass();
  printer.startDocResult = 1;
  printer.startPageResult = 0;
  output.PrintPass();
  ASSERT_EQ(prompts.shown.size(), 2u);
  EXPECT_EQ(prompts.shown[0].prompt, "Start Spooling Document Failed");
  EXPECT_EQ(prompts.shown[1].prompt, "Start Printing Page Failed");
  EXPECT_EQ(prompts.shown[0].flags, 16);
  EXPECT_EQ(drawn, 0);
  EXPECT_TRUE(closeEnabled);
  EXPECT_EQ(timerStops, 2);
  EXPECT_FALSE(model.DocOpen);
}

TEST_F(PrintOutputTest, ClosingDuringThePassEndsTheDocumentBeforeTheNextSheet) {
  output.DoEvents = [this] { output.RequestStop(); };  // the window closes on the first sheet
  model.Command("ATB_PrintAll");
  output.PrintPass();
  EXPECT_EQ(drawn, 0);
  EXPECT_EQ(printer.docsEnded, 1);
  EXPECT_FALSE(model.DocOpen);
  EXPECT_EQ(timerStops, 1);
}

TEST(PrintNameTest, NamesRunFrom1To49) {
  QTemporaryDir folder;
  const std::string base = folder.path().toStdString() + "/PrintOut_";
  EXPECT_EQ(GeneratedPrintName(folder.path().toStdString(), "pdf"), base + "1");
  for (int n = 1; n <= 50; ++n)
    QFile(folder.filePath(QString("PrintOut_%1.pdf").arg(n))).open(QIODevice::WriteOnly);
  EXPECT_EQ(GeneratedPrintName(folder.path().toStdString(), ".pdf"), base + "49");
  EXPECT_EQ(GeneratedPrintName(folder.path().toStdString(), "prn"), base + "1");
  EXPECT_EQ(GeneratedPrintName(folder.path().toStdString() + "/missing", "pdf")
                .rfind(QDir::homePath().toStdString(), 0),
            0u);
}

TEST_F(PrintOutputTest, SettingsRoundTripAndBadValuesAreCorrected) {
  MemoryUserStore store;
  record.ScaleMode = scalemode::Millimetres;
  InitPrinter(record, printer);
  record.Orientation = 2;
  record.PaperSize = 8;
  record.MarginLt = 12.5f;
  record.PrintToFile = true;
  output.SaveSettings(store);

  PrinterSettings readBack;
  ScriptedPrinter other;
  PreviewModel second(readBack, other, displayunit::Millimetre);
  second.Begin({0, 0, Mm, Mm}, 4);
  PrintOutput secondOutput(second, kernel.graphics);
  secondOutput.LoadSettings(store);
  EXPECT_EQ(readBack.Orientation, 2);
  EXPECT_EQ(readBack.PaperSize, 8);
  EXPECT_FLOAT_EQ(readBack.MarginLt, 12.5f);
  EXPECT_TRUE(readBack.PrintToFile);
  EXPECT_EQ(other.value(PrinterValue::PaperSize), 8);

  store.SaveSetting(UserStoreApplication, UserStoreSection, "PaperSize", "77");
  store.SaveSetting(UserStoreApplication, UserStoreSection, "MarginTp", "-3");
  ScriptedPrinter edged({{"Edge", "LPT1:", 600, 236}});  // 10 mm unprintable
  PreviewModel third(readBack, edged, displayunit::Millimetre);
  third.Begin({0, 0, Mm, Mm}, 4);
  PrintOutput(third, kernel.graphics).LoadSettings(store);
  third.Build();
  readBack.ScaleMode = scalemode::Millimetres;
  InitPrinter(readBack, edged);
  EXPECT_EQ(readBack.PaperSize, 9);
  EXPECT_NEAR(readBack.MarginTp, 10.0, 0.01);
}

}  // namespace
}  // namespace tvx
