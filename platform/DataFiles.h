// Finding the data files that ship beside the component.
#pragma once

#include <string>

namespace tvx {

// The path of the file called name in folder, the name compared case-blind, since the data files
// come from a system whose file names did not depend on case. An exact match is preferred.
// Empty when the folder holds no such file.
std::string findFileCaseBlind(const std::string& folder, const std::string& name);

}  // namespace tvx
