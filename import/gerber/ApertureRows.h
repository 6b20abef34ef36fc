// The rows in which a Gerber file's apertures are listed, as the import window shows them and
// a layer keeps them: "D10 Line    0.254mm", "D11 Rnd.Pad 1.6mm", "D12 Special Macro "THERM"".
#pragma once

#include "import/gerber/ApertureLists.h"
#include "store/LayerRecord.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tvx {

class SystemServices;

// One row's text: the D-code label, the kind's word (by id), and the size in the unit (0 inches,
// 1 millimetres) when withSize.
std::string apertureRowText(const SystemServices& services, int32_t unit, const ApertureUse& use,
                            const char* word, const char* id, bool withSize, int32_t size);
// The rows of the draw list, then the round, square and special pads; a row is selected unless
// tag bars its D-code.
std::vector<ApertureRow> gerberApertureRows(const SystemServices& services, int32_t unit,
                                            const ApertureLists& lists, const std::string& tag);

}  // namespace tvx
