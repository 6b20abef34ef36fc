#include "platform/ViewerWorkFolder.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <unistd.h>

namespace tvx {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view Prefix = "viewer-";

// True while a process of this id runs (also one of another user, which refuses the signal).
bool running(long pid) { return ::kill(pid_t(pid), 0) == 0 || errno == EPERM; }

void removeStale(const fs::path& directory) {
  std::error_code error;
  for (fs::directory_iterator it(directory, error), end; !error && it != end; it.increment(error)) {
    const long pid = ViewerWorkFolder::processOf(it->path().filename().string());
    if (pid > 0 && pid != long(::getpid()) && !running(pid)) {
      std::error_code ignored;
      fs::remove_all(it->path(), ignored);
    }
  }
}

// Makes a new folder of this process under directory; empty when it cannot.
std::string makeFolder(const fs::path& directory) {
  static std::atomic<int> viewers{0};
  std::error_code error;
  fs::create_directories(directory, error);
  for (int attempt = 0; attempt < 100; ++attempt) {
    const fs::path folder = directory / (std::string(Prefix) + std::to_string(::getpid()) + "-" +
                                         std::to_string(++viewers));
    if (fs::create_directory(folder, error))
      return folder.string() + "/";
    if (error)
      return {};
  }
  return {};
}

}  // namespace

long ViewerWorkFolder::processOf(const std::string& folderName) {
  if (folderName.compare(0, Prefix.size(), Prefix) != 0)
    return 0;
  const size_t dash = folderName.find('-', Prefix.size());
  if (dash == std::string::npos || dash == Prefix.size() || dash + 1 == folderName.size())
    return 0;
  long pid = 0;
  for (size_t i = Prefix.size(); i < dash; ++i) {
    const char c = folderName[i];
    if (c < '0' || c > '9' || pid > 100000000)
      return 0;
    pid = pid * 10 + (c - '0');
  }
  for (size_t i = dash + 1; i < folderName.size(); ++i)
    if (folderName[i] < '0' || folderName[i] > '9')
      return 0;
  return pid;
}

ViewerWorkFolder::ViewerWorkFolder(const std::string& workDirectory) {
  if (!workDirectory.empty()) {
    removeStale(workDirectory);
    path_ = makeFolder(workDirectory);
  }
  if (path_.empty()) {
    std::error_code error;
    const fs::path temporary = fs::temp_directory_path(error);
    if (!error)
      path_ = makeFolder(temporary / "tarvex-work");
  }
}

ViewerWorkFolder::~ViewerWorkFolder() {
  if (path_.empty())
    return;
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

}  // namespace tvx
