// Decimal: the 96-bit scaled integer type, read from and written to text
// and doubles exactly, digit by digit.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>

#include "automation/AutomationError.hpp"
#include "automation/ConvertDetail.hpp"

namespace TessarkAO {

using namespace ConvertDetail;

namespace {
constexpr u128 kDecimalMax = (static_cast<u128>(0xFFFFFFFFu) << 64) | 0xFFFFFFFFFFFFFFFFull;

u128 Magnitude(const Decimal& d) { return (static_cast<u128>(d.hi) << 64) | d.lo; }

}  // namespace

namespace ConvertDetail {

Decimal MakeDecimal(u128 m, int scale, bool negative) {
  Decimal d;
  d.hi = static_cast<std::uint32_t>(m >> 64);
  d.lo = static_cast<std::uint64_t>(m);
  d.scale = static_cast<std::uint8_t>(scale);
  d.negative = negative && m != 0;
  return d;
}

}  // namespace ConvertDetail

namespace {

std::string DigitsOf(u128 m) {
  if (m == 0) return "0";
  std::string s;
  while (m) {
    s.push_back(static_cast<char>('0' + static_cast<int>(m % 10)));
    m /= 10;
  }
  return std::string(s.rbegin(), s.rend());
}

// Builds a decimal from a digit string and a power of ten, rounding half to
// even when more digits are given than the 96 bits and scale 28 can hold.
bool DecimalFromDigits(std::string digits, std::int64_t exp10, bool negative, Decimal& out) {
  std::size_t nz = 0;
  while (nz + 1 < digits.size() && digits[nz] == '0') ++nz;
  digits.erase(0, nz);
  // Powers far outside the Decimal range give zero or an overflow at once
  // instead of a string of a billion zeros.
  if (exp10 > 0 && digits == "0") exp10 = 0;
  if (exp10 > 29) return false;
  exp10 = std::max<std::int64_t>(exp10, -static_cast<std::int64_t>(digits.size()) - 30);
  // value = digits * 10^exp10; scale = -exp10 when negative.
  while (exp10 > 0) {
    digits.push_back('0');
    --exp10;
  }
  int scale = static_cast<int>(-exp10);
  // Drop digits beyond scale 28 or beyond 29 significant digits, rounding.
  auto tooBig = [&](const std::string& ds) {
    if (ds.size() > 29) return true;
    u128 m = 0;
    for (char c : ds) {
      m = m * 10 + static_cast<unsigned>(c - '0');
    }
    return m > kDecimalMax;
  };
  while (scale > 28 || (scale > 0 && tooBig(digits))) {
    const char last = digits.back();
    digits.pop_back();
    --scale;
    if (digits.empty()) digits.push_back('0');
    const bool prevOdd = ((digits.back() - '0') & 1) != 0;
    if (last > '5' || (last == '5' && prevOdd)) {
      // add one to the digit string
      int k = static_cast<int>(digits.size()) - 1;
      while (k >= 0 && digits[static_cast<std::size_t>(k)] == '9') digits[static_cast<std::size_t>(k--)] = '0';
      if (k < 0)
        digits.insert(digits.begin(), '1');
      else
        ++digits[static_cast<std::size_t>(k)];
    }
  }
  if (tooBig(digits)) return false;
  u128 m = 0;
  for (char c : digits) m = m * 10 + static_cast<unsigned>(c - '0');
  // Trailing zeros of the fraction are kept, as the runtime keeps the scale.
  out = MakeDecimal(m, scale, negative);
  return true;
}
}  // namespace

std::string DecimalToString(const Decimal& d, NumberLocale locale) {
  std::string digits = DigitsOf(Magnitude(d));
  const std::size_t scale = d.scale;
  if (digits.size() <= scale) digits.insert(0, scale - digits.size() + 1, '0');
  std::string ip = digits.substr(0, digits.size() - scale);
  std::string fp = digits.substr(digits.size() - scale);
  while (!fp.empty() && fp.back() == '0') fp.pop_back();
  std::string s = (d.negative && (ip != "0" || !fp.empty())) ? "-" : "";
  s += ip;
  if (!fp.empty()) {
    s.push_back(locale.decimal);
    s += fp;
  }
  return s;
}

double DecimalToDouble(const Decimal& d) noexcept {
  std::string s = DigitsOf(Magnitude(d)) + "e-" + std::to_string(d.scale);
  double v = 0.0;
  FromChars(s, v);
  return d.negative ? -v : v;
}

Decimal DecimalFromDouble(double d) {
  if (!std::isfinite(d) || std::fabs(d) >= 79228162514264337593543950335.0) Raise(Err::Overflow);
  if (d == 0.0) return Decimal{};
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.14E", std::fabs(d));  // 15 significant digits
  std::string s(buf);
  const std::size_t epos = s.find('E');
  std::string mant = s.substr(0, epos);
  const int exp = std::atoi(s.c_str() + epos + 1);
  mant.erase(1, 1);  // drop the point: 15 digits
  while (mant.size() > 1 && mant.back() == '0') mant.pop_back();
  Decimal out;
  if (!DecimalFromDigits(mant, exp - static_cast<int>(mant.size()) + 1, d < 0, out)) Raise(Err::Overflow);
  return out;
}

namespace ConvertDetail {

int ParseDecimal(std::string_view text, NumberLocale locale, Decimal& out) {
  double check;
  if (int st = ParseNumber(text, locale, check)) return st;
  // Re-read the digits exactly.
  std::string_view t = TrimBlanks(text);
  bool negative = false;
  std::string digits;
  std::int64_t exp10 = 0;
  bool afterPoint = false;
  std::size_t i = 0;
  if (!t.empty() && t[0] == '(') {
    negative = true;
    ++i;
  }
  for (; i < t.size(); ++i) {
    const char c = t[i];
    if (c == '-') {
      negative = !negative;
    } else if (c >= '0' && c <= '9') {
      digits.push_back(c);
      if (afterPoint) --exp10;
    } else if (c == locale.decimal) {
      afterPoint = true;
    } else if (c == 'e' || c == 'E' || c == 'd' || c == 'D') {
      // ParseNumber accepted the text, so an optional sign and digits follow.
      std::size_t j = i + 1;
      const bool minus = j < t.size() && t[j] == '-';
      if (j < t.size() && (t[j] == '-' || t[j] == '+')) ++j;
      std::int64_t e = 0;
      for (; j < t.size() && t[j] >= '0' && t[j] <= '9'; ++j)
        e = std::min<std::int64_t>(e * 10 + (t[j] - '0'), 1000000000);
      exp10 += minus ? -e : e;
      break;
    } else if (c == '&') {
      out = DecimalFromDouble(check);
      return 0;
    }
  }
  if (digits.empty()) return Err::TypeMismatch;
  if (!DecimalFromDigits(digits, exp10, negative, out)) return Err::Overflow;
  return 0;
}

}  // namespace ConvertDetail

}  // namespace TessarkAO
