#include "automation/VarType.hpp"

#include <array>
#include <utility>

namespace TessarkAO {

namespace {
constexpr std::array<std::pair<VarType, std::string_view>, 15> kNames = {{
    {VarType::Empty, "Empty"},
    {VarType::Null, "Null"},
    {VarType::Integer, "Integer"},
    {VarType::Long, "Long"},
    {VarType::Single, "Single"},
    {VarType::Double, "Double"},
    {VarType::Currency, "Currency"},
    {VarType::Date, "Date"},
    {VarType::String, "String"},
    {VarType::Object, "Object"},
    {VarType::Error, "Error"},
    {VarType::Boolean, "Boolean"},
    {VarType::Variant, "Variant"},
    {VarType::Decimal, "Decimal"},
    {VarType::Byte, "Byte"},
}};

bool EqualNoCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    char x = a[i], y = b[i];
    if (x >= 'A' && x <= 'Z') x = static_cast<char>(x + 32);
    if (y >= 'A' && y <= 'Z') y = static_cast<char>(y + 32);
    if (x != y) return false;
  }
  return true;
}
}  // namespace

std::string_view TypeName(VarType t) noexcept {
  for (const auto& [type, name] : kNames)
    if (type == t) return name;
  return "Unknown";
}

bool ParseTypeName(std::string_view name, VarType& out) noexcept {
  for (const auto& [type, n] : kNames) {
    if (EqualNoCase(n, name)) {
      out = type;
      return true;
    }
  }
  return false;
}

}  // namespace TessarkAO
