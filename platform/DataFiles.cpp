#include "platform/DataFiles.h"

#include <QFile>

#include <filesystem>
#include <system_error>

namespace tvx {

namespace {
bool sameCaseBlind(const std::string& a, const std::string& b) {
  if (a.size() != b.size())
    return false;
  for (size_t i = 0; i < a.size(); ++i) {
    char x = a[i], y = b[i];
    if (x >= 'A' && x <= 'Z')
      x = char(x - 'A' + 'a');
    if (y >= 'A' && y <= 'Z')
      y = char(y - 'A' + 'a');
    if (x != y)
      return false;
  }
  return true;
}
}  // namespace

std::string findFileCaseBlind(const std::string& folder, const std::string& name) {
  namespace fs = std::filesystem;
  std::error_code ec;
  const fs::path dir = folder.empty() ? fs::path(".") : fs::path(folder);
  fs::path exact = dir / name;
  if (fs::is_regular_file(exact, ec))
    return exact.string();
  for (fs::directory_iterator it(dir, ec), end; !ec && it != end; it.increment(ec)) {
    if (sameCaseBlind(it->path().filename().string(), name) && it->is_regular_file(ec))
      return it->path().string();
  }
  return {};
}

std::optional<std::string> readWholeFile(const std::string& path) {
  QFile file(QString::fromStdString(path));
  if (path.empty() || !file.open(QIODevice::ReadOnly))
    return std::nullopt;
  const QByteArray text = file.readAll();
  if (file.error() != QFileDevice::NoError)
    return std::nullopt;
  return text.toStdString();
}

}  // namespace tvx
