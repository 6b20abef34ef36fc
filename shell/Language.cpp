#include "shell/Language.h"

#include "common/ParseList.h"
#include "common/ToNumber.h"
#include "kernel/KernelStrings.h"
#include "platform/SystemServices.h"
#include "shell/HostCommands.h"

#include <algorithm>
#include <cmath>

namespace tvx {

namespace {

constexpr const char* Section = "COUNTRY";
constexpr const char* BuiltInRow = "English,English,65535";
// A table larger than this is a damaged settings file; the rows beyond it are not read.
constexpr int32_t MaxLanguages = 256;

int32_t wholeNumber(const std::string& text, int32_t fallback) {
  double v = ToNumber(text);
  if (!std::isfinite(v) || std::abs(v) > 2147483647.0)
    return fallback;
  return static_cast<int32_t>(std::nearbyint(v));
}

}  // namespace

CountryRow parseCountryRow(const std::string& text, CountryRow base) {
  ParsedList fields = SplitAt(text, ",");
  if (!fields.token(1).empty())
    base.Name = fields.token(1);
  if (!fields.token(2).empty())
    base.Folder = fields.token(2);
  if (!fields.token(3).empty())
    base.Charset = wholeNumber(fields.token(3), base.Charset);
  return base;
}

CountryTable ReadCountryTable(const SystemServices& services) {
  CountryTable table;
  table.Number =
      std::clamp(wholeNumber(services.GetIniString(Section, "Number", "1"), 1), 0, MaxLanguages);
  table.Default = wholeNumber(services.GetIniString(Section, "Default", "1"), 1);
  for (int32_t i = 1; i <= table.Number; ++i)
    table.Rows.push_back(
        parseCountryRow(services.GetIniString(Section, std::to_string(i), BuiltInRow)));
  table.DefaultRow =
      parseCountryRow(services.GetIniString(Section, std::to_string(table.Default), BuiltInRow));
  return table;
}

std::string LanguagePath(const std::string& appPath, const CountryRow& row) {
  std::string path = appPath;
  SystemServices::EnsureBackslash(path);
  return path + "COUNTRY/" + row.Folder;
}

std::string ApplyLanguage(const std::string& appPath, SystemServices& services,
                          KernelStrings& strings) {
  const std::string path = LanguagePath(appPath, ReadCountryTable(services).DefaultRow);
  strings.E_SetString(LanguagePathString, path);
  services.loadCatalogue(path);
  return path;
}

std::string ReloadLanguage(const std::string& fallback, SystemServices& services,
                           const KernelStrings& strings) {
  const char* stored = strings.E_GetString(LanguagePathString);
  const std::string path = stored && *stored ? std::string(stored) : fallback;
  services.loadCatalogue(path);
  return path;
}

}  // namespace tvx
