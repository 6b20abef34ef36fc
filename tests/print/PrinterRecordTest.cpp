// The printer record against a scripted platform printer: the choice of printer by its first 32
// characters, the least margins, paper sizes of the user's own, and the name tables.
#include "print/PrinterSettings.h"
#include "print/ScriptedPrinter.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace tvx {
namespace {

TEST(PrinterRecordTest, PrinterIsChosenByItsFirst32CharactersInCapitals) {
  const std::string stem(32, 'p');
  ScriptedPrinter printer({{"Office"}, {stem + "-first"}, {stem + "-second"}});
  PrinterSettings record;
  DefaultPrinterSettings(record, printer);
  ASSERT_EQ(record.DeviceName, "Office");
  struct Case {
    std::string wanted, chosen;
  };
  for (const Case& c : {Case{"PPPPPPPPPPPPPPPPPPPPPPPPPPPPPPPP-second", stem + "-first"},
                        Case{"office", "Office"}, Case{"gone", "Office"}}) {
    SCOPED_TRACE(c.wanted);
    record.DeviceName = c.wanted;
    InitPrinter(record, printer);
    EXPECT_EQ(printer.deviceName(), c.chosen);
  }
}

TEST(PrinterRecordTest, MarginsFollowTheScaleModeAndLeastMarginsComeFromThePaper) {
  ScriptedPrinter printer({{"Edge", "LPT1:", 600, 120}});  // 0.2 inch unprintable
  PrinterSettings record;
  DefaultPrinterSettings(record, printer);
  record.ScaleMode = printer.ScaleMode = scalemode::Inches;
  record.MarginLt = 1.0f;
  record.MarginTp = 0.5f;
  record.ScaleMode = scalemode::Millimetres;
  InitPrinter(record, printer);
  EXPECT_NEAR(record.MarginLt, 25.4, 1e-4);
  EXPECT_NEAR(record.MarginTp, 12.7, 1e-4);
  ReadLeastMargins(record, printer);
  for (float least : {record.LeastLt, record.LeastTp, record.LeastRt, record.LeastBt})
    EXPECT_NEAR(least, 5.08, 0.05);
  EXPECT_NEAR(record.ScaleWidth, 210 - 2 * 5.08, 0.1);
}

TEST(PrinterRecordTest, OnlyTheUserPaperPassesItsSizes) {
  ScriptedPrinter printer;
  PrinterSettings record;
  DefaultPrinterSettings(record, printer);
  record.PaperLength = 1000;
  record.PaperWidth = 500;
  InitPrinter(record, printer);
  EXPECT_EQ(std::count(printer.changes.begin(), printer.changes.end(), PrinterValue::Height), 0);
  record.PaperSize = UserPaperSize;
  InitPrinter(record, printer);
  EXPECT_EQ(printer.value(PrinterValue::Height), 1000);
  EXPECT_EQ(printer.value(PrinterValue::Width), 500);
  EXPECT_EQ(printer.deviceCaps(devcaps::PhysicalWidth), 1181);  // 50 mm at 600 dpi
}

TEST(PrinterRecordTest, NameTables) {
  EXPECT_EQ(PaperSizeName(9), "A4 sheet, 210- by 297-millimeters");
  EXPECT_EQ(PaperSizeName(41), "German Legal Fanfold, 8 \xC2\xBD- by 13-inches");
  EXPECT_EQ(PaperSizeName(42), "");
  EXPECT_EQ(PaperSizeName(UserPaperSize), "");
  EXPECT_EQ(BinNameOf(14), "Cassette");
  EXPECT_EQ(BinNameOf(12), "Custom");
  EXPECT_EQ(QualityNameOf(-1), "Draft");
  EXPECT_EQ(QualityNameOf(600), "Device dependent");
  EXPECT_EQ(ColorNameOf(2), "Color");
  EXPECT_EQ(ColorNameOf(3), "");
}

TEST(PrinterRecordTest, MeasuresConvertThroughTheDialogUnits) {
  ScriptedPrinter printer;
  PrinterSettings record;
  record.ScaleMode = scalemode::Millimetres;
  EXPECT_NEAR(ConvertMeasure(record, printer, 1000, measure::FromThousandthInch, false), 25.4,
              1e-9);
  EXPECT_NEAR(ConvertMeasure(record, printer, 2540, measure::FromHundredthMm, true), 25.4, 1e-9);
  EXPECT_NEAR(
      ConvertMeasure(record, printer, 600, measure::FromSourceMode, false, scalemode::Pixels), 25.4,
      1e-9);
  EXPECT_NEAR(ConvertMeasure(record, printer, 25.4, measure::ToThousandthInch, false), 1000, 1e-9);
  EXPECT_NEAR(ConvertMeasure(record, printer, 25.4, measure::ToHundredthMm, false), 2540, 1e-9);
}

}  // namespace
}  // namespace tvx
