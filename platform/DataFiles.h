// Finding and reading the small data files that ship beside the component or that the user keeps.
#pragma once

#include <optional>
#include <string>

namespace tvx {

// The path of the file called name in folder, the name compared case-blind, since the data files
// come from a system whose file names did not depend on case. An exact match is preferred.
// Empty when the folder holds no such file.
std::string findFileCaseBlind(const std::string& folder, const std::string& name);

// The whole text of the file at path; nothing when it cannot be opened or read.
std::optional<std::string> readWholeFile(const std::string& path);

}  // namespace tvx
