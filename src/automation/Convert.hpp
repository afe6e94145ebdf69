// Conversions with classic automation semantics.
//
// One module does every change of type, so that members agree on edge cases:
//  - floating values to Integer / Long / Byte round half to even; a result
//    outside the target's range raises 6 (Overflow);
//  - text to a number goes through one parser: blanks around it, a sign, the
//    locale's decimal and group separators, an exponent (E or D), &H / &O
//    prefixes; anything else raises 13 (Type mismatch);
//  - a Double becomes text with at most 15 significant digits, switching to
//    the exponent form below 1E-4 and from 1E+15 ("0.3", "1E-05",
//    "1.23456789012346E+17"), a Single with 7;
//  - True is -1 as a number and "True" as text; Empty is 0, "" and False;
//    Null raises 94 and a missing argument 13 when a value is needed;
//  - an object converts through its default member; Nothing raises 91.
// Every conversion writes its destination only after it succeeded.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "automation/Variant.hpp"

namespace TessarkAO {

// The number format of the user's locale, used by the text conversions that
// the classic runtime makes locale-aware.  Defaults to the platform's LCID
// at start-up (see platform), settable for tests and for callers.
struct NumberLocale {
  char decimal = '.';
  char group = ',';
};
NumberLocale GetNumberLocale() noexcept;
void SetNumberLocale(NumberLocale locale) noexcept;
// The number format a Windows locale identifier uses (1033: '.' and ',').
NumberLocale NumberLocaleForLcid(std::uint32_t lcid) noexcept;

double ToDouble(const Variant& v);
float ToSingle(const Variant& v);
std::int32_t ToLong(const Variant& v);
std::int16_t ToInteger(const Variant& v);
std::uint8_t ToByte(const Variant& v);
bool ToBoolean(const Variant& v);
std::string ToString(const Variant& v);
Currency ToCurrency(const Variant& v);
Date ToDate(const Variant& v);

// The proleptic Gregorian calendar day of a date serial's whole days
// (counted from 1899-12-30), and back: the one calendar routine of the
// library.
struct CivilDay {
  std::int64_t year;
  int month;  // 1 to 12
  int day;    // 1 to 31
};
CivilDay CivilDayOfSerial(std::int64_t days) noexcept;
std::int64_t SerialOfCivilDay(std::int64_t year, int month, int day) noexcept;
Decimal ToDecimal(const Variant& v);
// The object of an object-valued variant (which may be Nothing); 424 otherwise.
Ref<Object> ToObject(const Variant& v);

// Converts to `type` (scalars only; an array raises 13 unless the target is Variant).
Variant ChangeType(const Variant& v, VarType type);

// Classic IsNumeric: numbers, Boolean, Empty, and text that parses as a number.
bool IsNumeric(const Variant& v);

// Classic Val: the numeric prefix of `text` read with "." as the decimal
// point whatever the locale, blanks, tabs and line feeds skipped anywhere,
// stopping at the first character that cannot continue a number; 0 when
// there is none.
double Val(std::string_view text) noexcept;

// Floating value to integer, rounding half to even; 6 when out of range.
std::int32_t RoundToLong(double d);
std::int16_t RoundToInteger(double d);

// Text of a Double / Single as the classic runtime writes it, with the
// decimal separator of `locale`.
std::string FormatDouble(double d, NumberLocale locale);
std::string FormatDouble(double d);
std::string FormatSingle(float f);

// The single text-to-number parser.  Returns 0 on success, 13 when the text is
// not a number, 6 when it is out of Double's range.
int ParseNumber(std::string_view text, NumberLocale locale, double& out) noexcept;

// Decimal helpers.
double DecimalToDouble(const Decimal& d) noexcept;
Decimal DecimalFromDouble(double d);  // 15 significant digits, as the runtime does; 6 out of range
std::string DecimalToString(const Decimal& d, NumberLocale locale);

// UTF-16 view of UTF-8 text, for the members that count or order code units.
std::u16string ToUtf16(std::string_view utf8);
std::string ToUtf8(std::u16string_view utf16);
// Number of UTF-16 code units of a UTF-8 text (Len).
std::size_t Utf16Length(std::string_view utf8);
// Lower-cases like the classic LCase (ASCII and the Latin-1 supplement and
// the rest of the BMP through towlower-like simple mappings).
std::string LowerCase(std::string_view text);
std::string UpperCase(std::string_view text);
// ASCII case-insensitive equality.
bool EqualsNoCaseAscii(std::string_view a, std::string_view b) noexcept;
// Trims blanks (U+0020 only, as the classic Trim does).
std::string_view TrimBlanks(std::string_view text) noexcept;
// Compares by UTF-16 code units (binary text comparison): <0, 0, >0.
int CompareCodeUnits(std::string_view a, std::string_view b) noexcept;

}  // namespace TessarkAO
