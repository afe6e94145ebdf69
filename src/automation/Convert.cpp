// Conversions: a division map.
//   1. number locale
//   2. text <-> number (the one parser, Val, formatting)
//   3. rounding and range checks
//   5. To<Type> for every target type, ChangeType, IsNumeric
// Decimal arithmetic is in Decimal.cpp, the text rules (UTF-16, case) in
// Text.cpp.
#include "automation/Convert.hpp"

#include <algorithm>
#include <atomic>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>

#include "automation/AutomationError.hpp"
#include "automation/Checked.hpp"
#include "automation/ConvertDetail.hpp"

namespace TessarkAO {

using namespace ConvertDetail;

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

// The power of ten of the first non-zero digit of a normalized number text
// ([-]digits[.digits][e[+-]digits]), saturated far beyond the Double range.
std::int64_t DecimalPower(std::string_view s) noexcept {
  constexpr std::int64_t kFar = std::int64_t{1} << 40;
  std::size_t i = s.empty() || s[0] != '-' ? 0 : 1;
  std::int64_t power = 0;
  bool seen = false;
  for (; i < s.size() && s[i] >= '0' && s[i] <= '9'; ++i) {
    if (seen)
      ++power;
    else if (s[i] != '0')
      seen = true;
  }
  if (i < s.size() && s[i] == '.') {
    for (++i; i < s.size() && s[i] >= '0' && s[i] <= '9'; ++i) {
      if (seen) continue;
      --power;
      if (s[i] != '0') seen = true;
    }
  }
  if (i < s.size() && s[i] == 'e') {
    ++i;
    const bool minus = i < s.size() && s[i] == '-';
    if (i < s.size() && (s[i] == '-' || s[i] == '+')) ++i;
    std::int64_t exp = 0;
    for (; i < s.size() && s[i] >= '0' && s[i] <= '9'; ++i) exp = std::min(kFar, exp * 10 + (s[i] - '0'));
    power += minus ? -exp : exp;
  }
  return power;
}
}  // namespace

namespace ConvertDetail {

bool FromChars(const std::string& s, double& out) noexcept {
  const char* b = s.data();
  const char* e = b + s.size();
  auto [p, ec] = std::from_chars(b, e, out);
  if (p != e) return false;
  if (ec == std::errc::result_out_of_range) {
    // One rule whatever the spelling: a value below the smallest Double reads
    // as 0, one beyond the largest is reported by the caller as 6.  Which of
    // the two it is follows from the power of ten of the first significant
    // digit, so 0.000…01 and 1E-400 agree, and so do 1000…0E-10 and 1E400.
    const bool negative = *b == '-';
    out = DecimalPower(s) < 0 ? (negative ? -0.0 : 0.0) : std::numeric_limits<double>::infinity();
    return true;
  }
  return ec == std::errc();
}

}  // namespace ConvertDetail


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

// Serial 0 is 1899-12-30, 25569 days before 1970-01-01; the day counts
// below run from 0000-03-01 in 400-year eras of 146097 days.
CivilDay CivilDayOfSerial(std::int64_t days) noexcept {
  const std::int64_t z = days - 25569 + 719468;
  const std::int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const std::int64_t doe = z - era * 146097;
  const std::int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const std::int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const std::int64_t mp = (5 * doy + 2) / 153;
  const int d = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
  const int m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  return CivilDay{yoe + era * 400 + (m <= 2), m, d};
}

std::int64_t SerialOfCivilDay(std::int64_t year, int month, int day) noexcept {
  const std::int64_t y = year - (month <= 2);
  const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
  const std::int64_t yoe = y - era * 400;
  const std::int64_t doy = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
  const std::int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + doe - 719468 + 25569;
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
  const CivilDay c = CivilDayOfSerial(static_cast<std::int64_t>(days));
  y = static_cast<int>(c.year);
  m = c.month;
  d = c.day;
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
    return Date{static_cast<double>(SerialOfCivilDay(y, m, dd))};
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

}  // namespace TessarkAO
