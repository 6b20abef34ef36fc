// A folder of this fuzzing process for its files; memory-backed when the system has one.
#pragma once

#include <filesystem>
#include <string>
#include <system_error>
#include <unistd.h>

namespace tvx::fuzz {

inline const std::filesystem::path& workFolder() {
  static const std::filesystem::path dir = [] {
    std::error_code ec;
    const std::filesystem::path base = std::filesystem::is_directory("/dev/shm", ec)
                                           ? "/dev/shm"
                                           : std::filesystem::temp_directory_path();
    const std::filesystem::path d = base / ("tvx-fuzz-" + std::to_string(getpid()));
    std::filesystem::create_directories(d, ec);
    return d;
  }();
  return dir;
}

}  // namespace tvx::fuzz
