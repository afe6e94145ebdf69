// The Registry module: the two registry procedures behind TKSystemUtils'
// read and write members, and the mapping of the library's root numbers to
// the registry's root handles.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "automation/Variant.hpp"
#include "frame/PublishedEnums.hpp"

namespace TessarkAO {

namespace Registry {

// 1, 2, 3 to the root handles of HKEY_CLASSES_ROOT, HKEY_LOCAL_MACHINE and
// HKEY_CURRENT_USER (as a Long: 0x80000000 is negative); anything else to
// 0, which every registry call then rejects as an invalid handle (6).
std::int32_t MapRegistryRoot(std::int32_t key) noexcept;

// Reads `valueName` of `subKey` below the root handle `hRoot`.  Strings come
// back with leading and trailing blanks trimmed, 32-bit numbers as their
// decimal text.  `status` receives 0, the registry's status code, or -1 for
// a value of another type.  See the .cpp for the reading of string data.
std::string ReadRegistryEntry(std::int32_t hRoot, std::string_view subKey, std::string_view valueName,
                              std::int32_t& status);

// Writes `value` as `valueName` of `subKey` (created when missing): type 1
// as the text's characters without a terminating NUL, type 4 as the text
// converted to a 32-bit number.  Other types write nothing.  No status comes
// back: the callers report success whatever happened, deliberately.
void WriteRegistryEntry(std::int32_t hRoot, std::string_view subKey, std::int32_t valueType,
                        std::string_view valueName, const Variant& value);

}  // namespace Registry

}  // namespace TessarkAO
