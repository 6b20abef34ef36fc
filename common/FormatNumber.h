// The one number formatter of the display pictures ("#0.0000#", "###.###", "00.00", ...).
#pragma once

#include <string>
#include <string_view>

namespace tvx {

// Formats value by a picture of digit placeholders:
//  - "0" shows a digit or a zero, "#" a digit or nothing. Left of the point the zeros give the
//    least number of digits ("00.00" of 5 is "05.00"); digits beyond the placeholders are shown
//    all the same. A picture with only "#" before the point shows no integer zero ("#.00" of 0.5
//    is ".50").
//  - Right of the point the value is rounded to as many digits as there are placeholders, half
//    away from zero, on the value's 15 significant decimal digits (so 2.675 gives 2.68 and
//    9.99995 gives 10.0000 at four places); a trailing zero in a "#" place is dropped
//    ("#0.0##" of 1.5 is "1.5"). The point is always ".", whatever the locale, and it is written
//    whenever the picture has one, also with no digit behind it ("####0." of 5 is "5.").
//  - "," between placeholders groups the integer digits by three with ","; a "," right before
//    the point (or the end of the digits) divides the value by 1000 per comma. "%" multiplies
//    by 100 and is written where it stands.
//  - Any other character is written where it stands; "\c" writes c, and text in double quotes is
//    written without the quotes.
//  - Sections separated by ";": the first for positive values (and all values when it is the
//    only one), the second for negative values, written without a sign, the third for zero. An
//    empty section takes the first one.
//  - A negative value takes a leading "-" with the first section, also when it rounds to zero.
//  - An empty picture gives the shortest text of up to 15 significant digits.
// Not finite values give "NaN", "Infinity" or "-Infinity".
std::string FormatNumber(double value, std::string_view picture);

}  // namespace tvx
