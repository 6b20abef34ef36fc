#include "platform/SystemServices.h"
#include <cerrno>
#include <csignal>

#include "platform/IniFile.h"
#include "platform/MarkGlyphs.h"
#include "platform/MessageCatalogue.h"
#include "platform/UserPrompts.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace tvx {

class SystemServices::Catalogue : public MessageCatalogue {};

// The settings file is read once and kept; it is read again when its size or time stamp
// changes under us (another module of the suite may write the same file).
class SystemServices::Settings {
public:
  const IniDocument& document(const std::string& path) {
    Stamp now = stampOf(path);
    if (path != path_ || now != stamp_) {
      std::string text;
      document_.parse(readWholeFile(path, text) ? text : std::string());
      path_ = path;
      stamp_ = now;
    }
    return document_;
  }
  void written(const std::string& path, IniDocument document) {
    document_ = std::move(document);
    path_ = path;
    stamp_ = stampOf(path);
  }
  void forget() { path_.clear(); }

private:
  struct Stamp {
    bool exists = false;
    uintmax_t size = 0;
    std::filesystem::file_time_type time{};
    bool operator==(const Stamp&) const = default;
  };
  static Stamp stampOf(const std::string& path) {
    Stamp s;
    std::error_code ec;
    auto status = std::filesystem::status(path, ec);
    if (ec || !std::filesystem::is_regular_file(status))
      return s;
    s.exists = true;
    s.size = std::filesystem::file_size(path, ec);
    s.time = std::filesystem::last_write_time(path, ec);
    return s;
  }

  std::string path_;
  Stamp stamp_;
  IniDocument document_;
};

SystemServices::SystemServices(UserPrompts* prompts)
    : prompts_(prompts), catalogue_(new Catalogue), settings_(std::make_unique<Settings>()) {}

SystemServices::~SystemServices() { delete catalogue_; }

void SystemServices::SetIniFile(const std::string& path) {
  iniFile_ = path;
  settings_->forget();
  pending_.reset();
  if (!path.empty())
    removeStaleTemporaries(path,
                           [](long pid) { return ::kill(pid_t(pid), 0) == 0 || errno == EPERM; });
}

void SystemServices::beginSettingsBatch() { ++batchDepth_; }

int SystemServices::commitSettingsBatch() {
  if (batchDepth_ == 0 || --batchDepth_ > 0)
    return 0;
  if (!pending_)
    return 0;
  const int error = replaceFileAtomically(iniFile_, pending_->text());
  if (error == 0)
    settings_->written(iniFile_, std::move(*pending_));
  else
    settingsFailed(error);
  pending_.reset();
  return error;
}

void SystemServices::settingsFailed(int error) {
  settings_->forget();
  if (failureReport_ && !std::exchange(settingsFailureSaid_, true))
    failureReport_(iniFile_, error);
}

std::string SystemServices::GetIniString(const std::string& section, const std::string& key,
                                         const std::string& defaultValue) const {
  if (iniFile_.empty())
    return defaultValue;
  const IniDocument& document = pending_ ? *pending_ : settings_->document(iniFile_);
  std::optional<std::string> v = document.value(section, key);
  return v ? *v : defaultValue;
}

void SystemServices::WriteIniString(const std::string& section, const std::string& key,
                                    const std::string& value, int32_t& status) {
  status = 0;
  if (iniFile_.empty()) {
    status = 1;
    return;
  }
  if (batchDepth_ > 0) {
    // A batch starts from the file as it is at its first write and goes out whole at its commit.
    if (!pending_) {
      settings_->forget();
      pending_ = settings_->document(iniFile_);
    }
    if (!pending_->setValue(section, key, value))
      status = 1;
    return;
  }
  // Start from the file as it is now, so that keys written by others in between are kept.
  settings_->forget();
  IniDocument document = settings_->document(iniFile_);
  if (!document.setValue(section, key, value)) {
    status = 1;
    return;
  }
  if (const int error = replaceFileAtomically(iniFile_, document.text()); error != 0) {
    settingsFailed(error);
    status = 1;
    return;
  }
  settings_->written(iniFile_, std::move(document));
}

std::string SystemServices::LocalMessage(const std::string& defaultText,
                                         const std::string& id) const {
  const std::string* text = catalogue_->find(id);
  return text ? *text : defaultText;
}

void SystemServices::loadCatalogue(const std::string& languagePath) {
  catalogue_->load(languagePath);
}

bool SystemServices::AskYesNo(const std::string& prompt, const std::string& title) {
  if (!prompts_)
    return false;
  return prompts_->messageBox(prompt, msgbox::YesNo | msgbox::Question, title) == answer::Yes;
}

void SystemServices::DrawMarkGlyph(int32_t device, int32_t drawMode, const std::string& glyph,
                                   int32_t x, int32_t y, int32_t colour, int32_t angle,
                                   int32_t size1, int32_t size2) {
  if (graphics_)
    drawMarkGlyph(*graphics_, device, drawMode, int32_t(std::atoi(glyph.c_str())), x, y, colour,
                  angle, size1, size2);
}

std::string SystemServices::EnsureBackslash(std::string& path) {
  if (!path.empty() && path.back() != '/' && path.back() != '\\')
    path += '/';
  return path;
}

}  // namespace tvx
