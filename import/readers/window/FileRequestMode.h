// The two uses of the import commands' file request.
#pragma once

namespace tvx::filerequest {
inline constexpr int ForDisplay = 1;  // "Select File for Display"
inline constexpr int ForImport = 2;   // "Select File for Import"
}  // namespace tvx::filerequest
