#include "platform/UserStore.h"

#include "platform/SystemServices.h"

#include <QSettings>
#include <QString>

#include <memory>

namespace tvx {

namespace {
std::unique_ptr<QSettings> openStore(const std::string& file, const std::string& application) {
  if (!file.empty())
    return std::make_unique<QSettings>(QString::fromStdString(file), QSettings::IniFormat);
  const QString name = QString::fromStdString(application);
  return std::make_unique<QSettings>(name, name);
}
}  // namespace

std::string QtUserStore::GetSetting(const std::string& application, const std::string& section,
                                    const std::string& key, const std::string& defaultValue) const {
  auto settings = openStore(file_, application);
  settings->beginGroup(QString::fromStdString(section));
  const QVariant value = settings->value(QString::fromStdString(key));
  return value.isValid() ? value.toString().toStdString() : defaultValue;
}

void QtUserStore::SaveSetting(const std::string& application, const std::string& section,
                              const std::string& key, const std::string& value) {
  auto settings = openStore(file_, application);
  settings->beginGroup(QString::fromStdString(section));
  settings->setValue(QString::fromStdString(key), QString::fromStdString(value));
  settings->endGroup();
  settings->sync();
}

std::string IniUserStore::GetSetting(const std::string& application, const std::string& section,
                                     const std::string& key,
                                     const std::string& defaultValue) const {
  return services_.GetIniString(application + "." + section, key, defaultValue);
}

void IniUserStore::SaveSetting(const std::string& application, const std::string& section,
                               const std::string& key, const std::string& value) {
  int32_t status = 0;
  services_.WriteIniString(application + "." + section, key, value, status);
}

void IniUserStore::beginSave() { services_.beginSettingsBatch(); }

void IniUserStore::endSave() { services_.commitSettingsBatch(); }

std::string MemoryUserStore::GetSetting(const std::string& application, const std::string& section,
                                        const std::string& key,
                                        const std::string& defaultValue) const {
  auto it = values.find({application, section, key});
  return it == values.end() ? defaultValue : it->second;
}

void MemoryUserStore::SaveSetting(const std::string& application, const std::string& section,
                                  const std::string& key, const std::string& value) {
  values[{application, section, key}] = value;
}

}  // namespace tvx
