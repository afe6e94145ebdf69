// Enumerations of the classes' interfaces as data: each enumeration's name,
// the class whose interface it belongs to, and its constants with their
// values.  Registered at load time by the owning class's translation unit,
// next to its member table, and read by the Python module (IntEnum classes),
// the Windows type library (enum declarations) and the generated reference.
//
//     TK_REGISTER_ENUMERATION(TKColumnTypes, "TKColumn", TKColumnType_None,
//                             TKColumnType_Double, TKColumnType_Object, TKColumnType_String)
//
// names the constants in their declaration order; their values come from the
// enumeration itself (a scoped one's constants are named without its prefix).
#pragma once

#include <algorithm>
#include <cstdint>
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
  std::string_view name;                // "TKColumnTypes"
  std::string_view owner;               // the class whose interface uses it: "TKColumn"
  std::vector<EnumConstant> constants;  // in declaration order
};

void RegisterEnumeration(EnumInfo info);
// Every registered enumeration, ordered by name.
const std::vector<EnumInfo>& Enumerations();
// The enumerations of one class, ordered by name.
std::vector<const EnumInfo*> EnumerationsOf(std::string_view owner);

// The constants of `spelled`, the preprocessor's spelling of a list of names
// ("A, B, C"), with their `values` in the same order.
template <class E>
EnumInfo MakeEnumInfo(std::string_view name, std::string_view owner, std::string_view spelled,
                      const std::vector<E>& values) {
  EnumInfo info{name, owner, {}};
  for (const E v : values) {
    const std::size_t comma = std::min(spelled.find(','), spelled.size());
    std::string_view one = spelled.substr(0, comma);
    spelled.remove_prefix(std::min(comma + 1, spelled.size()));
    while (!one.empty() && one.front() == ' ') one.remove_prefix(1);
    while (!one.empty() && one.back() == ' ') one.remove_suffix(1);
    info.constants.emplace_back(one, static_cast<std::int32_t>(v));
  }
  return info;
}

#define TK_REGISTER_ENUMERATION(E, OWNER, ...)                                                             \
  namespace {                                                                                              \
  [[maybe_unused]] const bool TK_CAT(tk_enumeration_, __COUNTER__) =                                       \
      (::TessarkAO::RegisterEnumeration(::TessarkAO::MakeEnumInfo<E>(#E, OWNER, #__VA_ARGS__,              \
                                                                     [] {                                  \
                                                                       using enum E;                       \
                                                                       return std::vector<E>{__VA_ARGS__}; \
                                                                     }())),                                \
       true);                                                                                              \
  }

}  // namespace TessarkAO
