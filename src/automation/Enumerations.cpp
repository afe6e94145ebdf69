#include "automation/Enumerations.hpp"

#include <algorithm>

namespace TessarkAO {

namespace {
std::vector<EnumInfo>& Table() {
  static std::vector<EnumInfo> table;
  return table;
}
}  // namespace

void RegisterEnumeration(EnumInfo info) {
  // A qualified spelling ("TessarkAO::TKUnit") is named by its last part.
  if (const std::size_t colons = info.name.rfind("::"); colons != std::string_view::npos)
    info.name.remove_prefix(colons + 2);
  std::vector<EnumInfo>& t = Table();
  const auto at = std::lower_bound(t.begin(), t.end(), info.name,
                                   [](const EnumInfo& e, std::string_view n) { return e.name < n; });
  t.insert(at, std::move(info));
}

const std::vector<EnumInfo>& Enumerations() { return Table(); }

std::vector<const EnumInfo*> EnumerationsOf(std::string_view owner) {
  std::vector<const EnumInfo*> out;
  for (const EnumInfo& e : Table())
    if (e.owner == owner) out.push_back(&e);
  return out;
}

}  // namespace TessarkAO
