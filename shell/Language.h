// The languages of the settings file's country table, and the folder of the language in use.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tvx {

class KernelStrings;
class SystemServices;

// One row of section "COUNTRY": name, folder, character set (kept; 65535 when unset).
struct CountryRow {
  std::string Name = "English";
  std::string Folder = "English";
  int32_t Charset = 65535;

  bool operator==(const CountryRow&) const = default;
};

// The row's three comma-separated values over base; an empty or missing value leaves the field
// as base has it.
CountryRow parseCountryRow(const std::string& text, CountryRow base = {});

struct CountryTable {
  int32_t Number = 1;            // key "Number": how many languages there are
  int32_t Default = 1;           // key "Default": the language in use
  std::vector<CountryRow> Rows;  // keys "1" to Number; Rows[0] is row "1"
  CountryRow DefaultRow;         // the row of Default (the built-in row when it is missing)
};

// Reads section "COUNTRY"; missing keys and rows take "1", "1" and "English,English,65535".
CountryTable ReadCountryTable(const SystemServices& services);

// appPath with a separator, "COUNTRY/" and the row's folder.
std::string LanguagePath(const std::string& appPath, const CountryRow& row);

// Start-up: derives the language path from the country table, stores it in the kernel string
// "LANGUAGEPATH" and loads that language's catalogue. Returns the path.
std::string ApplyLanguage(const std::string& appPath, SystemServices& services,
                          KernelStrings& strings);

// After the host changed the language: takes the path back from "LANGUAGEPATH" (keeping
// fallback when the string is not set) and loads that catalogue. Returns the path.
std::string ReloadLanguage(const std::string& fallback, SystemServices& services,
                           const KernelStrings& strings);

}  // namespace tvx
