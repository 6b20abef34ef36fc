// The suite's service object: settings file, message catalogue, store units, questions.
#pragma once

#include "platform/IniFile.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace tvx {

class Graphics;
class UserPrompts;

class SystemServices {
public:
  explicit SystemServices(UserPrompts* prompts = nullptr);
  ~SystemServices();
  SystemServices(const SystemServices&) = delete;
  SystemServices& operator=(const SystemServices&) = delete;

  void setPrompts(UserPrompts* prompts) { prompts_ = prompts; }
  UserPrompts* prompts() const { return prompts_; }

  // Names the settings file for all later reads and writes.
  void SetIniFile(const std::string& path);
  const std::string& iniFile() const { return iniFile_; }

  int32_t DatabaseUnitsPerMm() const { return unitsPerMm_; }
  void SetDatabaseUnitsPerMm(int32_t units) { unitsPerMm_ = units; }

  std::string GetIniString(const std::string& section, const std::string& key,
                           const std::string& defaultValue) const;
  // Writes one setting; status 0 on success, 1 when the file could not be written. Inside a batch
  // the setting only changes in memory (reads see it) until the batch is committed. A file that
  // cannot be replaced is told to the failure report.
  void WriteIniString(const std::string& section, const std::string& key, const std::string& value,
                      int32_t& status);

  // The writes of one save (an unload, a dialog's commit) go out together: from the start of a
  // batch to its commit the settings change in memory, and the commit replaces the file once,
  // atomically. Batches nest; the outermost commit writes. The commit gives 0, or the error number
  // of the failed replacement, after which the file is as it was. Opening the settings file
  // removes the temporaries of writers that died.
  void beginSettingsBatch();
  int commitSettingsBatch();
  // Who tells the user that the settings file (named) could not be replaced, with the error
  // number. It is called for the first failure of a run only, not at every save; an empty one
  // leaves the failures unsaid.
  using SettingsFailureReport = std::function<void(const std::string& file, int error)>;
  void setSettingsFailureReport(SettingsFailureReport report) {
    failureReport_ = std::move(report);
  }

  // The catalogue's text for id, or defaultText when the catalogue has none.
  std::string LocalMessage(const std::string& defaultText, const std::string& id) const;
  // Loads the catalogue of one language folder; an unreadable folder leaves it empty.
  void loadCatalogue(const std::string& languagePath);

  // A modal yes/no question; true is yes.
  bool AskYesNo(const std::string& prompt, const std::string& title);

  // The marks the viewer draws with DrawMarkGlyph, by the glyph numbers of the suite's mark font.
  enum MarkGlyph : int32_t {
    GlyphPoint = 1,       // the pointer's point mark
    GlyphFocus = 5,       // a point brought into focus
    GlyphCursor = 6,      // the small cursor mark
    GlyphPanStart = 7,    // the press point of a pan
    GlyphPanEnd = 8,      // the pointer end of a rubber pan
    GlyphBlockStart = 10  // the start corner of a block
  };
  // Draws one glyph of the mark font at a world point on a device of the drawing engine given with
  // setGraphics; angle in thousandths of a degree, the two sizes in store units (width, height).
  void setGraphics(Graphics* graphics) { graphics_ = graphics; }
  void DrawMarkGlyph(int32_t device, int32_t drawMode, const std::string& glyph, int32_t x,
                     int32_t y, int32_t colour, int32_t angle, int32_t size1, int32_t size2);

  static std::string StringFromPointer(const char* text) {
    return text ? std::string(text) : std::string();
  }
  // Adds a trailing separator when the path has none; returns the text.
  static std::string EnsureBackslash(std::string& path);

private:
  class Catalogue;
  class Settings;
  // Forgets the kept file and tells the report of the run's first failure.
  void settingsFailed(int error);

  UserPrompts* prompts_ = nullptr;
  Graphics* graphics_ = nullptr;
  SettingsFailureReport failureReport_;
  bool settingsFailureSaid_ = false;
  int batchDepth_ = 0;
  std::optional<IniDocument> pending_;  // the settings of the open batch
  std::string iniFile_;
  int32_t unitsPerMm_ = 100000;
  Catalogue* catalogue_ = nullptr;
  std::unique_ptr<Settings> settings_;  // the settings file as last read or written
};

// A batch of settings writes for the length of a scope. commit() writes them and gives the error
// number; a batch left without it is committed when it goes.
class SettingsBatch {
public:
  explicit SettingsBatch(SystemServices& services) : services_(services) {
    services_.beginSettingsBatch();
  }
  ~SettingsBatch() {
    if (!committed_)
      services_.commitSettingsBatch();
  }
  SettingsBatch(const SettingsBatch&) = delete;
  SettingsBatch& operator=(const SettingsBatch&) = delete;

  int commit() {
    committed_ = true;
    return services_.commitSettingsBatch();
  }

private:
  SystemServices& services_;
  bool committed_ = false;
};

}  // namespace tvx
