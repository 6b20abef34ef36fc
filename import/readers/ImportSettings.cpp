#include "import/readers/ImportSettings.h"

#include "common/ToNumber.h"
#include "platform/SystemServices.h"

#include <charconv>

namespace tvx {

namespace {

constexpr const char* ExcellonSection = "EXCELLON";
constexpr const char* GerberSection = "GERBER";
constexpr const char* DxfSection = "DXF";

double readNumber(const SystemServices& services, const char* section, const char* key,
                  const char* defaultText) {
  return ToNumber(services.GetIniString(section, key, defaultText));
}

int32_t readWhole(const SystemServices& services, const char* section, const char* key,
                  const char* defaultText) {
  return toInt32(readNumber(services, section, key, defaultText));
}

void write(SystemServices& services, const char* section, const char* key, double value) {
  int32_t ignored = 0;
  services.WriteIniString(section, key, settingText(value), ignored);
}

}  // namespace

std::string settingText(double value) {
  char digits[64];
  const auto [end, error] = std::to_chars(digits, digits + sizeof digits, value);
  std::string text = error == std::errc() ? std::string(digits, end) : std::string("0");
  if (text.front() != '-')
    text.insert(text.begin(), ' ');
  return text;
}

void LoadExcellonSettings(const SystemServices& services, ExcellonFormat& format) {
  format.XYunit = readWhole(services, ExcellonSection, "XYunit", "0");
  format.XYFormB = readWhole(services, ExcellonSection, "XYFormB", "2");
  format.XYFormA = readWhole(services, ExcellonSection, "XYFormA", "4");
  format.OMZeros = readWhole(services, ExcellonSection, "OMZeros", "0");
}

void LoadGerberSettings(const SystemServices& services, GerberFormat& format) {
  format.Unit = readWhole(services, GerberSection, "XYunit", "0");
  format.IntegerDigits[AxisX] = readWhole(services, GerberSection, "XYFormBX", "2");
  format.DecimalDigits[AxisX] = readWhole(services, GerberSection, "XYFormAX", "3");
  format.IntegerDigits[AxisY] = readWhole(services, GerberSection, "XYFormBY", "2");
  format.DecimalDigits[AxisY] = readWhole(services, GerberSection, "XYFormAY", "3");
  format.OmittedZeros = readWhole(services, GerberSection, "OMZeros", "0");
  format.Scale[AxisX] = readNumber(services, GerberSection, "XScale", "1.0");
  format.Scale[AxisY] = readNumber(services, GerberSection, "YScale", "1.0");
}

void LoadDxfSettings(const SystemServices& services, DxfFormat& format) {
  format.DxfUnit = readWhole(services, DxfSection, "XYunit", "1");
  format.DxfScale = readNumber(services, DxfSection, "Scale", "1.0");
}

void SaveExcellonSettings(SystemServices& services, const ExcellonFormat& format) {
  write(services, ExcellonSection, "XYunit", format.XYunit);
  write(services, ExcellonSection, "XYFormB", format.XYFormB);
  write(services, ExcellonSection, "XYFormA", format.XYFormA);
  write(services, ExcellonSection, "OMZeros", format.OMZeros);
}

void SaveGerberSettings(SystemServices& services, const GerberFormat& format) {
  write(services, GerberSection, "XYunit", format.Unit);
  write(services, GerberSection, "XYFormBX", format.IntegerDigits[AxisX]);
  write(services, GerberSection, "XYFormAX", format.DecimalDigits[AxisX]);
  write(services, GerberSection, "XYFormBY", format.IntegerDigits[AxisY]);
  write(services, GerberSection, "XYFormAY", format.DecimalDigits[AxisY]);
  write(services, GerberSection, "OMZeros", format.OmittedZeros);
  write(services, GerberSection, "XScale", format.Scale[AxisX]);
  write(services, GerberSection, "YScale", format.Scale[AxisY]);
}

void SaveDxfSettings(SystemServices& services, const DxfFormat& format) {
  write(services, DxfSection, "XYunit", format.DxfUnit);
  write(services, DxfSection, "Scale", format.DxfScale);
}

}  // namespace tvx
