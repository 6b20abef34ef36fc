// The aperture table of a command-line run, which gives plain RS-274-D files their sizes.
#pragma once

#include "aperture/ApertureTable.h"

#include <string>

namespace tvx {

// Reads the table file at path (--apt), or another tool's aperture list there; without a path, the
// table that the settings name
// ("Aper" of section "POSTART", in the data folder SYS beside the program), as the viewer reads
// it. The error for a path that cannot be read; empty otherwise (a missing settings table leaves
// the one-row table, as in the viewer).
std::string loadCliApertureTable(ApertureTable& table, const std::string& path);

}  // namespace tvx
