// The lenient number reader used for every number the system takes from a text.
#pragma once

#include <string_view>

namespace tvx {

// The number at the start of text. The first comma is taken as a decimal point ("3,5" is 3.5,
// "1,2,3" is 1.2). Leading blanks are skipped; then an optional sign, digits with an optional
// decimal point, and an optional exponent (E or D, with a sign); the number ends at the first
// character that cannot continue it ("12mm" is 12). A text without a number, and a number too
// large for a double, give 0. Independent of the process locale.
double ToNumber(std::string_view text);

// Whether text, blanks at its ends aside, is a plain decimal: an optional sign and digits with at
// most one decimal point ("-.5", "12."), no exponent and nothing else.
bool isPlainDecimal(std::string_view text);

}  // namespace tvx
