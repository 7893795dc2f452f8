#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace base {

// The longest leading decimal number of `text` (leading blanks are skipped, a sign, a decimal point and an
// exponent are understood); 0 when there is none.
double Val(std::string_view text);

// Whether the whole of `text`, blanks around it aside, is one decimal number.
bool IsNumeric(std::string_view text);

// Round half to even, then range check; out of range or not a number raises 6 (Overflow).
std::uint8_t ToByte(double value);
std::int16_t ToInt16(double value);
std::int32_t ToInt32(double value);

// `value` rounded to the nearest whole number, halves to the even neighbour.
double RoundHalfEven(double value);

// A number as the classic run-time prints it: no exponent and no trailing zeros for everyday values.
std::string NumberText(double value);

// bytes / 1024 as a whole number, rounded half to even.
std::int64_t Kilobytes(std::uint64_t bytes);

}  // namespace base
