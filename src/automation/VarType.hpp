// Variant type tags of the automation runtime.
//
// The numeric values are the classic automation VARTYPE codes, so that the
// Windows server can hand them to the system unchanged and the Python module
// and the type library can name them.  Range predicates group them by category
// (integral, floating, numeric) the way the conversion rules need them.
#pragma once

#include <cstdint>
#include <string_view>

namespace TessarkAO {

enum class VarType : std::uint16_t {
  Empty = 0,
  Null = 1,
  Integer = 2,   // 16-bit signed
  Long = 3,      // 32-bit signed
  Single = 4,    // IEEE single
  Double = 5,    // IEEE double
  Currency = 6,  // 64-bit fixed point, 4 decimals
  Date = 7,      // days since 1899-12-30 as a double
  String = 8,
  Object = 9,
  Error = 10,    // an error code; DISP_E_PARAMNOTFOUND marks a missing argument
  Boolean = 11,  // True is -1
  Variant = 12,  // only as an array element type: an array of variants
  Decimal = 14,  // 96-bit integer with a power-of-ten scale
  Byte = 17,     // 8-bit unsigned
};

constexpr bool IsIntegral(VarType t) noexcept {
  return t == VarType::Integer || t == VarType::Long || t == VarType::Byte;
}
constexpr bool IsFloating(VarType t) noexcept {
  return t == VarType::Single || t == VarType::Double;
}
// The types that take part in arithmetic directly (Boolean and Date convert).
constexpr bool IsNumeric(VarType t) noexcept {
  return IsIntegral(t) || IsFloating(t) || t == VarType::Currency || t == VarType::Decimal;
}

// The classic type name ("Double", "Long", "Empty", ...), as a scripting
// runtime's TypeName reports it for a scalar of that type.
std::string_view TypeName(VarType t) noexcept;

// Parses a type name back ("Double", case-insensitive); false if unknown.
bool ParseTypeName(std::string_view name, VarType& out) noexcept;

}  // namespace TessarkAO
