// Enumerations of the classes' interfaces as data: each enumeration's name,
// the class whose interface it belongs to, and its constants with their
// values.  Registered at load time by the owning class's translation unit,
// next to its member table, and read by the Python module (IntEnum classes),
// the Windows type library (enum declarations) and the generated reference.
//
//     TK_REGISTER_ENUMERATION(TKColumnTypes, "TKColumn",
//                             {TK_ENUM_CONSTANT(TKColumnType_None), ...})
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <vector>

#include "automation/Catalogue.hpp"

namespace TessarkAO {

struct EnumConstant {
  // "TKColumnType_None", or the last part of a scoped name
  // ("TKSurfaceFinishes::Brass" is "Brass").
  constexpr EnumConstant(std::string_view spelled, std::int32_t v) noexcept
      : name(spelled.substr(spelled.rfind("::") == std::string_view::npos ? 0 : spelled.rfind("::") + 2)),
        value(v) {}
  std::string_view name;
  std::int32_t value;
};

struct EnumInfo {
  std::string_view name;   // "TKColumnTypes"
  std::string_view owner;  // the class whose interface uses it: "TKColumn"
  std::vector<EnumConstant> constants;  // in declaration order
};

void RegisterEnumeration(EnumInfo info);
// Every registered enumeration, ordered by name.
const std::vector<EnumInfo>& Enumerations();
// The enumerations of one class, ordered by name.
std::vector<const EnumInfo*> EnumerationsOf(std::string_view owner);

#define TK_ENUM_CONSTANT(C) ::TessarkAO::EnumConstant(#C, static_cast<std::int32_t>(C))
#define TK_REGISTER_ENUMERATION(E, OWNER, ...)                                                \
  namespace {                                                                                 \
  [[maybe_unused]] const bool TK_CAT(tk_enumeration_, __COUNTER__) =                          \
      (::TessarkAO::RegisterEnumeration(::TessarkAO::EnumInfo{#E, OWNER, __VA_ARGS__}), true); \
  }

}  // namespace TessarkAO
