// Conversions: a division map.
//   1. number locale
//   2. text <-> number (the one parser, Val, formatting)
//   3. rounding and range checks
//   4. Decimal
//   5. To<Type> for every target type, ChangeType, IsNumeric
//   6. UTF-8 / UTF-16 helpers, case mapping, code-unit comparison
#include "automation/Convert.hpp"

#include <atomic>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>

#include "automation/AutomationError.hpp"
#include "automation/Checked.hpp"
#include "automation/Wide.hpp"

namespace TessarkAO {

// ----- 1. number locale --------------------------------------------------------

namespace {
std::atomic<char> g_decimal{'.'};
std::atomic<char> g_group{','};
}  // namespace

NumberLocale GetNumberLocale() noexcept { return NumberLocale{g_decimal.load(), g_group.load()}; }

void SetNumberLocale(NumberLocale locale) noexcept {
  g_decimal = locale.decimal;
  g_group = locale.group;
}

NumberLocale NumberLocaleForLcid(std::uint32_t lcid) noexcept {
  // Primary language ids whose default decimal separator is a comma.
  switch (lcid & 0x3FF) {
    case 0x03:  // Catalan
    case 0x05:  // Czech
    case 0x06:  // Danish
    case 0x07:  // German
    case 0x08:  // Greek
    case 0x0A:  // Spanish
    case 0x0B:  // Finnish
    case 0x0C:  // French
    case 0x0E:  // Hungarian
    case 0x10:  // Italian
    case 0x13:  // Dutch
    case 0x14:  // Norwegian
    case 0x15:  // Polish
    case 0x16:  // Portuguese
    case 0x18:  // Romanian
    case 0x19:  // Russian
    case 0x1A:  // Croatian
    case 0x1B:  // Slovak
    case 0x1D:  // Swedish
    case 0x1F:  // Turkish
    case 0x22:  // Ukrainian
    case 0x24:  // Slovenian
      if (lcid == 0x0807 || lcid == 0x100C) return NumberLocale{'.', '\''};  // Swiss
      return NumberLocale{',', '.'};
    default: return NumberLocale{'.', ','};
  }
}

// ----- 2. text <-> number -----------------------------------------------------

namespace {

bool IsBlank(char c) noexcept {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f' || c == '\v';
}

// Reads &H / &O digits as the classic runtime does: up to 16 bits is an
// Integer (so &HFFFF is -1), up to 32 bits a Long.  False on no digits or overflow.
bool ParseRadix(std::string_view digits, int base, double& out) noexcept {
  if (digits.empty()) return false;
  std::uint64_t v = 0;
  for (char c : digits) {
    int d;
    if (c >= '0' && c <= '9')
      d = c - '0';
    else if (base == 16 && c >= 'a' && c <= 'f')
      d = c - 'a' + 10;
    else if (base == 16 && c >= 'A' && c <= 'F')
      d = c - 'A' + 10;
    else
      return false;
    if (d >= base) return false;
    v = v * static_cast<std::uint64_t>(base) + static_cast<std::uint64_t>(d);
    if (v > 0xFFFFFFFFull) return false;
  }
  if (v <= 0xFFFF)
    out = static_cast<std::int16_t>(static_cast<std::uint16_t>(v));
  else
    out = static_cast<std::int32_t>(static_cast<std::uint32_t>(v));
  return true;
}

bool FromChars(const std::string& s, double& out) noexcept {
  const char* b = s.data();
  const char* e = b + s.size();
  auto [p, ec] = std::from_chars(b, e, out);
  if (p != e) return false;
  if (ec == std::errc::result_out_of_range) {
    // Underflow reads as 0; overflow is reported by the caller as 6.
    out = std::numeric_limits<double>::infinity();
    for (const char* q = b; q < e; ++q)
      if (*q == 'e' && q + 1 < e && q[1] == '-') out = 0.0;
    return true;
  }
  return ec == std::errc();
}

}  // namespace

int ParseNumber(std::string_view text, NumberLocale locale, double& out) noexcept {
  std::size_t b = 0, e = text.size();
  while (b < e && IsBlank(text[b])) ++b;
  while (e > b && IsBlank(text[e - 1])) --e;
  std::string_view t = text.substr(b, e - b);
  if (t.empty()) return Err::TypeMismatch;

  bool negative = false;
  if (t.size() > 2 && t.front() == '(' && t.back() == ')') {  // accounting negative
    negative = true;
    t = t.substr(1, t.size() - 2);
  }
  if (!t.empty() && (t[0] == '+' || t[0] == '-')) {
    if (t[0] == '-') negative = !negative;
    t.remove_prefix(1);
    while (!t.empty() && IsBlank(t[0])) t.remove_prefix(1);
  }
  if (t.size() >= 2 && t[0] == '&') {
    const char r = static_cast<char>(t[1] | 0x20);
    double v;
    if ((r == 'h' && ParseRadix(t.substr(2), 16, v)) || (r == 'o' && ParseRadix(t.substr(2), 8, v))) {
      out = negative ? -v : v;
      return 0;
    }
    return Err::TypeMismatch;
  }

  std::string norm;
  norm.reserve(t.size() + 2);
  if (negative) norm.push_back('-');
  std::size_t i = 0, digits = 0;
  while (i < t.size()) {
    const char c = t[i];
    if (c >= '0' && c <= '9') {
      norm.push_back(c);
      ++digits;
    } else if (c == locale.group && digits > 0 && locale.group != locale.decimal) {
      // group separators between the digits of the integer part
    } else {
      break;
    }
    ++i;
  }
  if (i < t.size() && t[i] == locale.decimal) {
    norm.push_back('.');
    ++i;
    while (i < t.size() && t[i] >= '0' && t[i] <= '9') {
      norm.push_back(t[i]);
      ++digits;
      ++i;
    }
  }
  if (digits == 0) return Err::TypeMismatch;
  if (i < t.size() && (t[i] == 'e' || t[i] == 'E' || t[i] == 'd' || t[i] == 'D')) {
    ++i;
    norm.push_back('e');
    if (i < t.size() && (t[i] == '+' || t[i] == '-')) norm.push_back(t[i++]);
    std::size_t expDigits = 0;
    while (i < t.size() && t[i] >= '0' && t[i] <= '9') {
      norm.push_back(t[i++]);
      ++expDigits;
    }
    if (expDigits == 0) return Err::TypeMismatch;
  }
  if (i != t.size()) return Err::TypeMismatch;
  double v;
  if (!FromChars(norm, v)) return Err::TypeMismatch;
  if (!std::isfinite(v)) return Err::Overflow;
  out = v;
  return 0;
}

double Val(std::string_view text) noexcept {
  // Blanks, tabs and line feeds are skipped wherever they stand.
  std::string s;
  s.reserve(text.size());
  for (char c : text)
    if (c != ' ' && c != '\t' && c != '\n' && c != '\r') s.push_back(c);
  std::size_t i = 0;
  if (s.size() >= 2 && s[0] == '&') {
    const char r = static_cast<char>(s[1] | 0x20);
    const int base = r == 'h' ? 16 : (r == 'o' ? 8 : 0);
    if (base == 0) return 0.0;
    std::size_t j = 2;
    while (j < s.size() && std::isxdigit(static_cast<unsigned char>(s[j])) &&
           (base == 16 || (s[j] >= '0' && s[j] <= '7')))
      ++j;
    double v = 0.0;
    return ParseRadix(std::string_view(s).substr(2, j - 2), base, v) ? v : 0.0;
  }
  std::string norm;
  if (i < s.size() && (s[i] == '+' || s[i] == '-')) norm.push_back(s[i++]);
  std::size_t digits = 0;
  bool point = false;
  while (i < s.size()) {
    if (s[i] >= '0' && s[i] <= '9') {
      norm.push_back(s[i]);
      ++digits;
    } else if (s[i] == '.' && !point) {
      point = true;
      norm.push_back('.');
    } else {
      break;
    }
    ++i;
  }
  if (digits == 0) return 0.0;
  if (i < s.size() && (s[i] == 'e' || s[i] == 'E' || s[i] == 'd' || s[i] == 'D')) {
    std::string exp = "e";
    std::size_t j = i + 1;
    if (j < s.size() && (s[j] == '+' || s[j] == '-')) exp.push_back(s[j++]);
    std::size_t expDigits = 0;
    while (j < s.size() && s[j] >= '0' && s[j] <= '9') {
      exp.push_back(s[j++]);
      ++expDigits;
    }
    if (expDigits > 0) norm += exp;
  }
  if (norm.back() == '.') norm.pop_back();
  double v = 0.0;
  if (!FromChars(norm, v) || !std::isfinite(v)) return 0.0;
  return v;
}

namespace {
std::string FormatG(double d, int precision, char decimal) {
  if (d == 0.0) return "0";  // also -0
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.*G", precision, d);
  std::string s(buf);
  if (decimal != '.')
    for (char& c : s)
      if (c == '.') c = decimal;
  return s;
}
}  // namespace

std::string FormatDouble(double d, NumberLocale locale) { return FormatG(d, 15, locale.decimal); }
std::string FormatDouble(double d) { return FormatDouble(d, GetNumberLocale()); }
std::string FormatSingle(float f) { return FormatG(static_cast<double>(f), 7, GetNumberLocale().decimal); }

// ----- 3. rounding and range checks ---------------------------------------------

namespace {
// Round half to even, then range-check against [lo, hi].
template <class I>
I RoundChecked(double d, double lo, double hi) {
  if (std::isnan(d)) Raise(Err::Overflow);
  const double r = std::nearbyint(d);  // the default rounding mode: half to even
  if (r < lo || r > hi) Raise(Err::Overflow);
  return static_cast<I>(r);
}
}  // namespace

std::int32_t RoundToLong(double d) { return RoundChecked<std::int32_t>(d, -2147483648.0, 2147483647.0); }
std::int16_t RoundToInteger(double d) { return RoundChecked<std::int16_t>(d, -32768.0, 32767.0); }
namespace {
std::uint8_t RoundToByte(double d) { return RoundChecked<std::uint8_t>(d, 0.0, 255.0); }

// Currency to an integer: the scaled value rounded half to even.
std::int64_t CurrencyRounded(Currency c) {
  std::int64_t q = c.scaled / 10000, r = c.scaled % 10000;
  if (r > 5000 || (r == 5000 && (q & 1))) ++q;
  if (r < -5000 || (r == -5000 && (q & 1))) --q;
  return q;
}
}  // namespace

// ----- 4. Decimal ---------------------------------------------------------------

namespace {
using u128 = UInt128;
constexpr u128 kDecimalMax = (static_cast<u128>(0xFFFFFFFFu) << 64) | 0xFFFFFFFFFFFFFFFFull;

u128 Magnitude(const Decimal& d) { return (static_cast<u128>(d.hi) << 64) | d.lo; }

Decimal MakeDecimal(u128 m, int scale, bool negative) {
  Decimal d;
  d.hi = static_cast<std::uint32_t>(m >> 64);
  d.lo = static_cast<std::uint64_t>(m);
  d.scale = static_cast<std::uint8_t>(scale);
  d.negative = negative && m != 0;
  return d;
}

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
bool DecimalFromDigits(std::string digits, int exp10, bool negative, Decimal& out) {
  std::size_t nz = 0;
  while (nz + 1 < digits.size() && digits[nz] == '0') ++nz;
  digits.erase(0, nz);
  // value = digits * 10^exp10; scale = -exp10 when negative.
  while (exp10 > 0) {
    digits.push_back('0');
    --exp10;
  }
  int scale = -exp10;
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

namespace {
// Parses text as a decimal exactly (the runtime's text to Decimal).
int ParseDecimal(std::string_view text, NumberLocale locale, Decimal& out) {
  double check;
  if (int st = ParseNumber(text, locale, check)) return st;
  // Re-read the digits exactly.
  std::string_view t = TrimBlanks(text);
  bool negative = false;
  std::string digits;
  int exp10 = 0;
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
      exp10 += std::atoi(std::string(t.substr(i + 1)).c_str());
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
}  // namespace

// ----- 5. To<Type> ----------------------------------------------------------------

namespace {

Variant DefaultValueOf(const Variant& v) {
  const Ref<Object>& o = v.AsObject();
  if (!o) Raise(Err::ObjectNotSet);
  Ref<Object> keep = o;
  Variant r = keep->InvokeId(DispIdValue, CallKind::Get, {});
  if (r.IsObject()) Raise(Err::TypeMismatch);
  return r;
}

}  // namespace

double ToDouble(const Variant& value) {
  const Variant& v = value.Deref();
  if (v.IsArray()) Raise(Err::TypeMismatch);
  switch (v.Type()) {
    case VarType::Empty: return 0.0;
    case VarType::Null: Raise(Err::InvalidUseOfNull);
    case VarType::Integer: return v.AsInteger();
    case VarType::Long: return v.AsLong();
    case VarType::Single: return v.AsSingle();
    case VarType::Double: return v.AsDouble();
    case VarType::Currency: return static_cast<double>(v.AsCurrency().scaled) / 10000.0;
    case VarType::Date: return v.AsDate().serial;
    case VarType::String: {
      double d;
      if (int st = ParseNumber(v.AsString(), GetNumberLocale(), d)) Raise(st);
      return d;
    }
    case VarType::Object: return ToDouble(DefaultValueOf(v));
    case VarType::Boolean: return v.AsBoolean() ? -1.0 : 0.0;
    case VarType::Decimal: return DecimalToDouble(v.AsDecimal());
    case VarType::Byte: return v.AsByte();
    default: Raise(Err::TypeMismatch);
  }
}

float ToSingle(const Variant& value) {
  const Variant& v = value.Deref();
  if (v.Type() == VarType::Single && !v.IsArray()) return v.AsSingle();
  const double d = ToDouble(v);
  if (std::fabs(d) > static_cast<double>(FLT_MAX)) {
    // Values that round to FLT_MAX are still representable.
    const float f = static_cast<float>(d);
    if (std::isinf(f)) Raise(Err::Overflow);
    return f;
  }
  return static_cast<float>(d);
}

std::int32_t ToLong(const Variant& value) {
  const Variant& v = value.Deref();
  if (v.IsArray()) Raise(Err::TypeMismatch);
  switch (v.Type()) {
    case VarType::Integer: return v.AsInteger();
    case VarType::Long: return v.AsLong();
    case VarType::Byte: return v.AsByte();
    case VarType::Boolean: return v.AsBoolean() ? -1 : 0;
    case VarType::Empty: return 0;
    case VarType::Currency: {
      const std::int64_t q = CurrencyRounded(v.AsCurrency());
      if (q < INT32_MIN || q > INT32_MAX) Raise(Err::Overflow);
      return static_cast<std::int32_t>(q);
    }
    default: return RoundToLong(ToDouble(v));
  }
}

std::int16_t ToInteger(const Variant& value) {
  const Variant& v = value.Deref();
  if (!v.IsArray() && v.Type() == VarType::Integer) return v.AsInteger();
  if (!v.IsArray() && v.Type() == VarType::Currency) {
    const std::int64_t q = CurrencyRounded(v.AsCurrency());
    if (q < INT16_MIN || q > INT16_MAX) Raise(Err::Overflow);
    return static_cast<std::int16_t>(q);
  }
  return RoundToInteger(ToDouble(v));
}

std::uint8_t ToByte(const Variant& value) {
  const Variant& v = value.Deref();
  if (!v.IsArray() && v.Type() == VarType::Byte) return v.AsByte();
  return RoundToByte(ToDouble(v));
}

bool ToBoolean(const Variant& value) {
  const Variant& v = value.Deref();
  if (v.IsArray()) Raise(Err::TypeMismatch);
  switch (v.Type()) {
    case VarType::Boolean: return v.AsBoolean();
    case VarType::Empty: return false;
    case VarType::String: {
      std::string_view s = TrimBlanks(v.AsString());
      if (EqualsNoCaseAscii(s, "true") || EqualsNoCaseAscii(s, "#true#")) return true;
      if (EqualsNoCaseAscii(s, "false") || EqualsNoCaseAscii(s, "#false#")) return false;
      double d;
      if (int st = ParseNumber(s, GetNumberLocale(), d)) Raise(st == Err::Overflow ? st : Err::TypeMismatch);
      return d != 0.0;
    }
    case VarType::Object: return ToBoolean(DefaultValueOf(v));
    case VarType::Decimal: return v.AsDecimal().lo != 0 || v.AsDecimal().hi != 0;
    case VarType::Currency: return v.AsCurrency().scaled != 0;
    default: return ToDouble(v) != 0.0;
  }
}

namespace {
// Date serial to civil date (proleptic Gregorian) and time.
void SplitDate(double serial, int& y, int& m, int& d, int& hh, int& mm, int& ss) {
  double days = std::floor(serial);
  double frac = std::fabs(serial - days);
  if (serial < 0) {  // negative dates count the fraction away from the epoch
    days = std::ceil(serial);
    frac = std::fabs(serial - days);
  }
  const long zz = static_cast<long>(days) - 25569 + 719468;  // days since 0000-03-01
  const long era = (zz >= 0 ? zz : zz - 146096) / 146097;
  const unsigned doe = static_cast<unsigned>(zz - era * 146097);
  const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const long yy = static_cast<long>(yoe) + era * 400;
  const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const unsigned mp = (5 * doy + 2) / 153;
  d = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
  m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  y = static_cast<int>(yy + (m <= 2));
  long secs = std::lround(frac * 86400.0);
  if (secs >= 86400) secs = 86399;
  hh = static_cast<int>(secs / 3600);
  mm = static_cast<int>((secs / 60) % 60);
  ss = static_cast<int>(secs % 60);
}

std::string FormatDate(Date dt) {
  int y, m, d, hh, mm, ss;
  SplitDate(dt.serial, y, m, d, hh, mm, ss);
  char buf[64];
  std::string out;
  const double whole = std::trunc(dt.serial);
  if (whole != 0.0) {
    std::snprintf(buf, sizeof buf, "%d/%d/%d", m, d, y);
    out = buf;
  }
  if (dt.serial != whole || whole == 0.0) {
    const int h12 = hh % 12 == 0 ? 12 : hh % 12;
    std::snprintf(buf, sizeof buf, "%d:%02d:%02d %s", h12, mm, ss, hh < 12 ? "AM" : "PM");
    if (!out.empty()) out.push_back(' ');
    out += buf;
  }
  return out;
}
}  // namespace

std::string ToString(const Variant& value) {
  const Variant& v = value.Deref();
  if (v.IsArray()) Raise(Err::TypeMismatch);
  switch (v.Type()) {
    case VarType::Empty: return std::string();
    case VarType::Null: Raise(Err::InvalidUseOfNull);
    case VarType::Integer: return std::to_string(v.AsInteger());
    case VarType::Long: return std::to_string(v.AsLong());
    case VarType::Byte: return std::to_string(v.AsByte());
    case VarType::Single: return FormatSingle(v.AsSingle());
    case VarType::Double: return FormatDouble(v.AsDouble());
    case VarType::Currency: {
      Decimal d = MakeDecimal(Magnitude64(v.AsCurrency().scaled), 4, v.AsCurrency().scaled < 0);
      return DecimalToString(d, GetNumberLocale());
    }
    case VarType::Date: return FormatDate(v.AsDate());
    case VarType::String: return v.AsString();
    case VarType::Object: return ToString(DefaultValueOf(v));
    case VarType::Boolean: return v.AsBoolean() ? "True" : "False";
    case VarType::Decimal: return DecimalToString(v.AsDecimal(), GetNumberLocale());
    default: Raise(Err::TypeMismatch);
  }
}

Currency ToCurrency(const Variant& value) {
  const Variant& v = value.Deref();
  if (!v.IsArray()) {
    switch (v.Type()) {
      case VarType::Currency: return v.AsCurrency();
      case VarType::Integer: return Currency{static_cast<std::int64_t>(v.AsInteger()) * 10000};
      case VarType::Long: return Currency{static_cast<std::int64_t>(v.AsLong()) * 10000};
      case VarType::Byte: return Currency{static_cast<std::int64_t>(v.AsByte()) * 10000};
      case VarType::Boolean: return Currency{v.AsBoolean() ? -10000 : 0};
      default: break;
    }
  }
  const double d = ToDouble(v) * 10000.0;
  if (std::isnan(d)) Raise(Err::Overflow);
  const double r = std::nearbyint(d);
  if (r < -9.2233720368547758e18 || r >= 9.2233720368547758e18) Raise(Err::Overflow);
  return Currency{static_cast<std::int64_t>(r)};
}

Date ToDate(const Variant& value) {
  const Variant& v = value.Deref();
  if (!v.IsArray() && v.Type() == VarType::Date) return v.AsDate();
  if (!v.IsArray() && v.Type() == VarType::String) {
    double d;
    if (ParseNumber(v.AsString(), GetNumberLocale(), d) == 0) return Date{d};
    int y = 0, m = 0, dd = 0;
    char sep1 = 0, sep2 = 0;
    const std::string& s = v.AsString();
    if (std::sscanf(s.c_str(), "%d%c%d%c%d", &y, &sep1, &m, &sep2, &dd) == 5 && sep1 == '-' && sep2 == '-') {
      // ISO year-month-day
    } else if (std::sscanf(s.c_str(), "%d/%d/%d", &m, &dd, &y) == 3) {
      // month/day/year
    } else {
      Raise(Err::TypeMismatch);
    }
    if (m < 1 || m > 12 || dd < 1 || dd > 31) Raise(Err::TypeMismatch);
    // days from civil
    const int yy = y - (m <= 2);
    const long era = (yy >= 0 ? yy : yy - 399) / 400;
    const unsigned yoe = static_cast<unsigned>(yy - era * 400);
    const unsigned doy = static_cast<unsigned>((153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + dd - 1);
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    const long days1970 = era * 146097 + static_cast<long>(doe) - 719468;
    return Date{static_cast<double>(days1970 + 25569)};
  }
  const double d = ToDouble(v);
  if (d < -657434.0 || d >= 2958466.0) Raise(Err::Overflow);
  return Date{d};
}

Decimal ToDecimal(const Variant& value) {
  const Variant& v = value.Deref();
  if (!v.IsArray()) {
    switch (v.Type()) {
      case VarType::Decimal: return v.AsDecimal();
      case VarType::Integer:
      case VarType::Long:
      case VarType::Byte:
      case VarType::Boolean: {
        const std::int64_t i = ToLong(v);
        return MakeDecimal(Magnitude64(i), 0, i < 0);
      }
      case VarType::Currency: {
        const std::int64_t s = v.AsCurrency().scaled;
        return MakeDecimal(Magnitude64(s), 4, s < 0);
      }
      case VarType::String: {
        Decimal d;
        if (int st = ParseDecimal(v.AsString(), GetNumberLocale(), d)) Raise(st);
        return d;
      }
      default: break;
    }
  }
  return DecimalFromDouble(ToDouble(v));
}

Ref<Object> ToObject(const Variant& value) {
  const Variant& v = value.Deref();
  if (!v.IsObject()) Raise(Err::ObjectRequired);
  return v.AsObject();
}

Variant ChangeType(const Variant& value, VarType type) {
  const Variant& v = value.Deref();
  if (type == VarType::Variant) return v;
  if (v.IsArray()) Raise(Err::TypeMismatch);
  switch (type) {
    case VarType::Empty: return Variant();
    case VarType::Null: return Variant::Null();
    case VarType::Integer: return Variant(ToInteger(v));
    case VarType::Long: return Variant(ToLong(v));
    case VarType::Single: return Variant(ToSingle(v));
    case VarType::Double: return Variant(ToDouble(v));
    case VarType::Currency: return Variant(ToCurrency(v));
    case VarType::Date: return Variant(ToDate(v));
    case VarType::String: return Variant(ToString(v));
    case VarType::Object: return Variant(ToObject(v));
    case VarType::Error:
      if (v.Type() == VarType::Error) return v;
      Raise(Err::TypeMismatch);
    case VarType::Boolean: return Variant(ToBoolean(v));
    case VarType::Decimal: return Variant(ToDecimal(v));
    case VarType::Byte: return Variant(ToByte(v));
    default: Raise(Err::TypeMismatch);
  }
}

bool IsNumeric(const Variant& value) {
  const Variant& v = value.Deref();
  if (v.IsArray()) return false;
  switch (v.Type()) {
    case VarType::Empty:
    case VarType::Boolean:
    case VarType::Integer:
    case VarType::Long:
    case VarType::Single:
    case VarType::Double:
    case VarType::Currency:
    case VarType::Decimal:
    case VarType::Byte: return true;
    case VarType::String: {
      double d;
      return ParseNumber(v.AsString(), GetNumberLocale(), d) == 0;
    }
    case VarType::Object:
      try {
        return IsNumeric(DefaultValueOf(v));
      } catch (const AutomationError&) {
        return false;
      }
    default: return false;
  }
}

// ----- 6. text helpers -------------------------------------------------------------

namespace {
// Decodes one code point; invalid bytes read as U+FFFD one byte at a time.
char32_t Decode(std::string_view s, std::size_t& i) noexcept {
  const unsigned char c = static_cast<unsigned char>(s[i]);
  auto cont = [&](std::size_t k) {
    return i + k < s.size() && (static_cast<unsigned char>(s[i + k]) & 0xC0) == 0x80;
  };
  if (c < 0x80) {
    ++i;
    return c;
  }
  if (c >= 0xC2 && c < 0xE0 && cont(1)) {
    char32_t cp = ((c & 0x1Fu) << 6) | (static_cast<unsigned char>(s[i + 1]) & 0x3Fu);
    i += 2;
    return cp;
  }
  if (c >= 0xE0 && c < 0xF0 && cont(1) && cont(2)) {
    char32_t cp = ((c & 0x0Fu) << 12) | ((static_cast<unsigned char>(s[i + 1]) & 0x3Fu) << 6) |
                  (static_cast<unsigned char>(s[i + 2]) & 0x3Fu);
    if (cp >= 0x800) {
      i += 3;
      return cp;
    }
  }
  if (c >= 0xF0 && c < 0xF5 && cont(1) && cont(2) && cont(3)) {
    char32_t cp = ((c & 0x07u) << 18) | ((static_cast<unsigned char>(s[i + 1]) & 0x3Fu) << 12) |
                  ((static_cast<unsigned char>(s[i + 2]) & 0x3Fu) << 6) |
                  (static_cast<unsigned char>(s[i + 3]) & 0x3Fu);
    if (cp >= 0x10000 && cp <= 0x10FFFF) {
      i += 4;
      return cp;
    }
  }
  ++i;
  return 0xFFFD;
}

void Encode(char32_t cp, std::string& out) {
  if (cp < 0x80) {
    out.push_back(static_cast<char>(cp));
  } else if (cp < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  } else if (cp < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  } else {
    out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  }
}

char32_t LowerCp(char32_t c) noexcept {
  if (c >= 'A' && c <= 'Z') return c + 32;
  if (c < 0xC0) return c;
  if ((c >= 0xC0 && c <= 0xDE && c != 0xD7)) return c + 32;
  if (c >= 0x100 && c <= 0x17F) {
    if ((c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E)) return (c & 1) ? c + 1 : c;
    if (c == 0x130 || c == 0x131 || c == 0x138 || c == 0x149 || c == 0x17F) return c;
    return (c & 1) ? c : c + 1;
  }
  if (c >= 0x391 && c <= 0x3AB && c != 0x3A2) return c + 32;
  if (c >= 0x410 && c <= 0x42F) return c + 32;
  if (c >= 0x400 && c <= 0x40F) return c + 80;
  if (c >= 0xFF21 && c <= 0xFF3A) return c + 32;
  return c;
}

char32_t UpperCp(char32_t c) noexcept {
  if (c >= 'a' && c <= 'z') return c - 32;
  if (c < 0xE0) return c;
  if (c >= 0xE0 && c <= 0xFE && c != 0xF7) return c - 32;
  if (c >= 0x100 && c <= 0x17F) {
    if ((c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E)) return (c & 1) ? c : c - 1;
    if (c == 0x130 || c == 0x131 || c == 0x138 || c == 0x149 || c == 0x17F) return c;
    return (c & 1) ? c - 1 : c;
  }
  if (c >= 0x3B1 && c <= 0x3CB && c != 0x3C2) return c - 32;
  if (c >= 0x430 && c <= 0x44F) return c - 32;
  if (c >= 0x450 && c <= 0x45F) return c - 80;
  if (c >= 0xFF41 && c <= 0xFF5A) return c - 32;
  return c;
}
}  // namespace

bool EqualsNoCaseAscii(std::string_view a, std::string_view b) noexcept {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    char x = a[i], y = b[i];
    if (x >= 'A' && x <= 'Z') x = static_cast<char>(x | 0x20);
    if (y >= 'A' && y <= 'Z') y = static_cast<char>(y | 0x20);
    if (x != y) return false;
  }
  return true;
}

std::u16string ToUtf16(std::string_view utf8) {
  std::u16string out;
  out.reserve(utf8.size());
  for (std::size_t i = 0; i < utf8.size();) {
    const char32_t cp = Decode(utf8, i);
    if (cp >= 0x10000) {
      out.push_back(static_cast<char16_t>(0xD800 + ((cp - 0x10000) >> 10)));
      out.push_back(static_cast<char16_t>(0xDC00 + ((cp - 0x10000) & 0x3FF)));
    } else {
      out.push_back(static_cast<char16_t>(cp));
    }
  }
  return out;
}

std::string ToUtf8(std::u16string_view utf16) {
  std::string out;
  out.reserve(utf16.size());
  for (std::size_t i = 0; i < utf16.size(); ++i) {
    char32_t c = utf16[i];
    if (c >= 0xD800 && c < 0xDC00 && i + 1 < utf16.size() && utf16[i + 1] >= 0xDC00 &&
        utf16[i + 1] < 0xE000) {
      c = 0x10000 + ((c - 0xD800) << 10) + (utf16[i + 1] - 0xDC00);
      ++i;
    } else if (c >= 0xD800 && c < 0xE000) {
      c = 0xFFFD;
    }
    Encode(c, out);
  }
  return out;
}

std::size_t Utf16Length(std::string_view utf8) {
  std::size_t n = 0;
  for (std::size_t i = 0; i < utf8.size();) n += Decode(utf8, i) >= 0x10000 ? 2 : 1;
  return n;
}

std::string LowerCase(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    const unsigned char c = static_cast<unsigned char>(text[i]);
    if (c < 0x80) {
      out.push_back(static_cast<char>(c >= 'A' && c <= 'Z' ? c | 0x20 : c));
      ++i;
    } else {
      Encode(LowerCp(Decode(text, i)), out);
    }
  }
  return out;
}

std::string UpperCase(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    const unsigned char c = static_cast<unsigned char>(text[i]);
    if (c < 0x80) {
      out.push_back(static_cast<char>(c >= 'a' && c <= 'z' ? c & ~0x20 : c));
      ++i;
    } else {
      Encode(UpperCp(Decode(text, i)), out);
    }
  }
  return out;
}

std::string_view TrimBlanks(std::string_view text) noexcept {
  std::size_t b = 0, e = text.size();
  while (b < e && text[b] == ' ') ++b;
  while (e > b && text[e - 1] == ' ') --e;
  return text.substr(b, e - b);
}

int CompareCodeUnits(std::string_view a, std::string_view b) noexcept {
  // UTF-8 byte order is code-point order; it differs from UTF-16 code-unit
  // order only where a supplementary character (4-byte form, a surrogate pair
  // in UTF-16) meets a character from U+E000 to U+FFFF.
  const std::size_t n = std::min(a.size(), b.size());
  std::size_t i = 0;
  while (i < n && a[i] == b[i]) ++i;
  if (i == n) return a.size() < b.size() ? -1 : (a.size() > b.size() ? 1 : 0);
  std::size_t start = i;
  while (start > 0 && (static_cast<unsigned char>(a[start]) & 0xC0) == 0x80) --start;
  const unsigned char la = static_cast<unsigned char>(a[start]);
  const unsigned char lb = static_cast<unsigned char>(b[start]);
  const bool aSupp = la >= 0xF0, bSupp = lb >= 0xF0;
  const bool aHigh = la == 0xEE || la == 0xEF, bHigh = lb == 0xEE || lb == 0xEF;
  if (aSupp && bHigh) return -1;
  if (bSupp && aHigh) return 1;
  return static_cast<unsigned char>(a[i]) < static_cast<unsigned char>(b[i]) ? -1 : 1;
}

}  // namespace TessarkAO
