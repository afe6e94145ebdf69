// The catalogue of the library's 31 public classes: ProgID, CLSID, default
// dispatch interface, the earlier interface ids each class still answers to,
// and whether it takes part in the instance count (see Globals).
#pragma once

#include <span>

#include "automation/Catalogue.hpp"

namespace TessarkAO {

// The records, in the catalogue's order.  They are installed into the
// runtime when the library loads, so CreateObject knows every identifier.
std::span<const ClassRecord> LibraryClasses();

inline constexpr std::string_view kMainDllName = "tktools.dll";
inline constexpr std::string_view kProjectName = "TessarkAO";
inline constexpr std::string_view kTypeLibraryName = "TessarkAO";
inline constexpr std::string_view kTypeLibraryId = "{0B6D4D1A-5C7E-4F0B-9E51-3A1C2E7D9B40}";

}  // namespace TessarkAO
