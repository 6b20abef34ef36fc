// The per-user key store: window places, tool bar bands and the preview's values, found by
// application, section and key. Values are text.
#pragma once

#include <map>
#include <string>
#include <tuple>

namespace tvx {

// The application and section under which the viewer keeps all its per-user values.
inline constexpr const char* UserStoreApplication = "Tarvex";
inline constexpr const char* UserStoreSection = "TVNGBRVIEWER";

class UserStore {
public:
  virtual ~UserStore() = default;
  // The stored text, or defaultValue when the key has none.
  virtual std::string GetSetting(const std::string& application, const std::string& section,
                                 const std::string& key, const std::string& defaultValue) const = 0;
  virtual void SaveSetting(const std::string& application, const std::string& section,
                           const std::string& key, const std::string& value) = 0;
};

// The desktop's store through QSettings: organisation and application both the application
// name, the section a group. Given a file, that INI file stands for the store of every
// application instead (for tests and for a host that keeps its own).
class QtUserStore : public UserStore {
public:
  QtUserStore() = default;
  explicit QtUserStore(std::string file) : file_(std::move(file)) {}

  std::string GetSetting(const std::string& application, const std::string& section,
                         const std::string& key, const std::string& defaultValue) const override;
  void SaveSetting(const std::string& application, const std::string& section,
                   const std::string& key, const std::string& value) override;

private:
  std::string file_;
};

// A store in memory, for tests.
class MemoryUserStore : public UserStore {
public:
  std::string GetSetting(const std::string& application, const std::string& section,
                         const std::string& key, const std::string& defaultValue) const override;
  void SaveSetting(const std::string& application, const std::string& section,
                   const std::string& key, const std::string& value) override;

  std::map<std::tuple<std::string, std::string, std::string>, std::string> values;
};

}  // namespace tvx
