// The text by which the user sees a D-code, and the exclusion list of a file record built from it.
#pragma once

#include "import/gerber/ApertureLists.h"

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace tvx {

class SystemServices;

// "D" + number + "*" cut to 5 characters; nine blanks for the code 0.
std::string ApertureLabel(int32_t dCode);

// The type of a special aperture by the Kind of its first primitive row (its Size in SpecialList):
// "Circle", "Rectangle", "Obround", "Reg.polygon", "Macro " with the macro's name in double
// quotes, else "Undef.".
std::string specialApertureType(const SystemServices& services, const ApertureUse& use,
                                const std::vector<PrimitiveRow>& primitives);

// Whether the label of a D-code stands in an exclusion list such as "|D10*|D23*|".
bool labelExcluded(const std::string& tag, int32_t dCode);

// The same answer, remembered per D-code for one exclusion list, so that a drawing pass does not
// search the list for every element. The list is copied when the cache is made.
class ExclusionCache {
public:
  explicit ExclusionCache(std::string tag) : tag_(std::move(tag)) {}
  bool excluded(int32_t dCode);

private:
  std::string tag_;
  bool empty_ = tag_.size() < 3;  // shorter than any label: nothing is barred
  std::unordered_map<int32_t, bool> known_;
};

}  // namespace tvx
