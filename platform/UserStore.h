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
  // The settings saved between the two go out together, where the store keeps a file: one
  // replacement of it. Saves nest; the outermost end writes.
  virtual void beginSave() {}
  virtual void endSave() {}
};

// One save of a window's values for the length of a scope.
class UserStoreSave {
public:
  explicit UserStoreSave(UserStore& store) : store_(store) { store_.beginSave(); }
  ~UserStoreSave() { store_.endSave(); }
  UserStoreSave(const UserStoreSave&) = delete;
  UserStoreSave& operator=(const UserStoreSave&) = delete;

private:
  UserStore& store_;
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

class SystemServices;

// A store in the service object's settings file, section "<application>.<section>": the values
// follow the file the host names, and join the service object's settings batch, so that a window
// place goes out with the settings of the same unload.
class IniUserStore : public UserStore {
public:
  explicit IniUserStore(SystemServices& services) : services_(services) {}

  std::string GetSetting(const std::string& application, const std::string& section,
                         const std::string& key, const std::string& defaultValue) const override;
  void SaveSetting(const std::string& application, const std::string& section,
                   const std::string& key, const std::string& value) override;
  void beginSave() override;
  void endSave() override;

private:
  SystemServices& services_;
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
