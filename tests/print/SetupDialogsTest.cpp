// The page dialog, the printer dialog and the preview's print dialog over scripted dialogs: the
// values in and out, the least margins, Cancel, the change of printer that leads to the page
// dialog, and the page range by the dialog's flags.
#include "print/SetupDialogs.h"
#include "print/PreviewModel.h"
#include "print/ScriptedPrinter.h"
#include "viewer/DisplayUnits.h"

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <map>

namespace tvx {
namespace {

using namespace setupvalue;

// A dialog whose user is a function: it changes the values and answers OK (true) or Cancel.
struct ScriptedDialog : SetupDialog {
  void SetValue(int index, int32_t value) override { values[index] = value; }
  void SetText(int index, const std::string& text) override { texts[index] = text; }
  int32_t GetValue(int index) const override { return values.count(index) ? values.at(index) : 0; }
  std::string GetText(int index) const override {
    return texts.count(index) ? texts.at(index) : std::string();
  }
  bool GetDeviceMode(const std::string&) override { return true; }
  bool SetDeviceMode(const std::string&) override { return true; }
  void SetDevNames(const std::string& driver, const std::string& device,
                   const std::string& port) override {
    texts[DriverOut] = driver;
    texts[DeviceOut] = device;
    texts[PortOut] = port;
  }
  bool Activate() override { return user ? user(*this) : false; }

  std::map<int, int32_t> values;
  std::map<int, std::string> texts;
  std::function<bool(ScriptedDialog&)> user;
};

struct ScriptedDialogs : SetupDialogs {
  std::unique_ptr<SetupDialog> CreatePageSetupDlg() override { return next("page"); }
  std::unique_ptr<SetupDialog> CreatePrinterSetupDlg() override { return next("printer"); }
  std::unique_ptr<SetupDialog> next(const char* kind) {
    shown.push_back(kind);
    auto dialog = std::make_unique<ScriptedDialog>();
    if (!users.empty()) {
      dialog->user = users.front();
      users.pop_front();
    }
    return dialog;
  }
  std::deque<std::function<bool(ScriptedDialog&)>> users;
  std::vector<std::string> shown;
};

class SetupDialogsTest : public ::testing::Test {
protected:
  void SetUp() override {
    DefaultPrinterSettings(record, printer);
    record.UnitIndex = 1;
    record.ScaleMode = printer.ScaleMode = scalemode::Millimetres;
    record.MarginLt = 12.5f;
    record.MarginTp = 1.0f;  // below the least
  }

  ScriptedPrinter printer{{{"First", "LPT1:", 600, 120}, {"Second", "LPT2:", 600, 120}}};
  PrinterSettings record;
  ScriptedDialogs dialogs;
};

TEST_F(SetupDialogsTest, PageDialogTakesTheMarginsInItsUnitAndGivesBackTheChoice) {
  std::map<int, int32_t> given;
  dialogs.users.push_back([&](ScriptedDialog& d) {
    given = d.values;
    d.values[PaperSize] = 8;
    d.values[Orientation] = 2;
    d.values[MarginBt + 1] = 2000;  // left, hundredths of a millimetre
    return true;
  });
  ASSERT_TRUE(PageSetup(record, printer, dialogs, 0, false));
  EXPECT_EQ(given[Flags], 2 | 8);
  EXPECT_EQ(given[MarginBt + 1], 1250);
  EXPECT_EQ(given[LeastBt + 3], 508);  // 120 pixels at 600 dpi
  EXPECT_EQ(given[MarginBt + 3], 508);
  EXPECT_EQ(given[FieldMask], AllFields);
  EXPECT_EQ(record.PaperSize, 8);
  EXPECT_EQ(record.PaperSizeString, "A3 sheet, 297- by 420-millimeters");
  EXPECT_EQ(record.Orientation, 2);
  EXPECT_FLOAT_EQ(record.MarginLt, 20.0f);
}

TEST_F(SetupDialogsTest, CancelAndAnOpenDocumentChangeNothing) {
  const PrinterSettings before = record;
  dialogs.users.push_back([](ScriptedDialog& d) {
    d.values[PaperSize] = 8;
    return false;
  });
  EXPECT_FALSE(PageSetup(record, printer, dialogs, 0, false));
  EXPECT_FALSE(PageSetup(record, printer, dialogs, 0, true));
  EXPECT_EQ(dialogs.shown.size(), 1u);
  EXPECT_EQ(record.PaperSize, before.PaperSize);
  EXPECT_EQ(record.Orientation, before.Orientation);
  EXPECT_EQ(record.DeviceName, before.DeviceName);
}

TEST_F(SetupDialogsTest, AnotherPrinterLeadsToThePageDialogWhoseCancelKeepsIt) {
  dialogs.users.push_back([](ScriptedDialog& d) {
    d.texts[DeviceOut] = "Second";
    return true;
  });
  dialogs.users.push_back([](ScriptedDialog&) { return false; });
  bool changed = false;
  EXPECT_FALSE(PrinterSetup(record, printer, dialogs, false, changed));
  EXPECT_TRUE(changed);
  EXPECT_EQ(dialogs.shown, (std::vector<std::string>{"printer", "page"}));
  EXPECT_EQ(record.DeviceName, "Second");
  EXPECT_EQ(printer.deviceName(), "Second");
}

TEST_F(SetupDialogsTest, PrintDialogRangeFollowsItsFlags) {
  PreviewModel model(record, printer, displayunit::Millimetre);
  model.Begin({0, 0, 900 * StoreUnitsPerMm, 10 * StoreUnitsPerMm}, 4);
  model.Build();
  ASSERT_EQ(model.PageCount, 5);
  model.CurrentPage = 4;
  struct Case {
    int32_t flags, from, to, printFrom, printTo;
  };
  for (const Case& c :
       {Case{0, 2, 3, 1, 5}, Case{1, 2, 3, 4, 4}, Case{2, 5, 2, 2, 5}, Case{3, 5, 2, 5, 2}}) {
    SCOPED_TRACE(c.flags);
    std::map<int, int32_t> given;
    dialogs.users.push_back([&](ScriptedDialog& d) {
      given = d.values;
      d.values[Flags] = c.flags;
      d.values[FromPage] = c.from;
      d.values[ToPage] = c.to;
      return true;
    });
    bool changed = true;
    ASSERT_TRUE(PreviewPrintDialog(model, dialogs, "Tarvex Board", changed));
    EXPECT_FALSE(changed);
    EXPECT_EQ(given[Flags], 0x40006);
    EXPECT_EQ(given[MaxPage], 5);
    EXPECT_EQ(model.PrintFrom, c.printFrom);
    EXPECT_EQ(model.PrintTo, c.printTo);
  }
}

}  // namespace
}  // namespace tvx
