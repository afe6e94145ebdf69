// What Convert.cpp and Decimal.cpp share behind the public conversions.
#pragma once

#include <string>
#include <string_view>

#include "automation/Convert.hpp"
#include "automation/Wide.hpp"

namespace TessarkAO::ConvertDetail {

using u128 = UInt128;

// A Decimal of magnitude m with `scale` decimals (m within 96 bits).
Decimal MakeDecimal(u128 m, int scale, bool negative);
// Text to Decimal with the locale's separator: 0, or the error number.
int ParseDecimal(std::string_view text, NumberLocale locale, Decimal& out);
// std::from_chars over the whole text; underflow reads as 0, overflow as infinity.
bool FromChars(const std::string& s, double& out) noexcept;

}  // namespace TessarkAO::ConvertDetail
