// The type library and the string resource, written from the member tables.
//
// The server's type library `TessarkAO` 1.0 describes every class that it
// serves: one dispatch interface per class (the class name with a leading
// underscore, the catalogue's default IID) whose members are the class's
// member table in slot order, and one creatable class (coclass) with the
// catalogue's CLSID.  Nothing is written by hand per class: a class that lands
// in the catalogue with a factory appears in the next build's library.
//
// The text written here is IDL for widl.  Base types come from
// TypeLibraryBase.idl beside this file, IDispatch from the system's
// stdole2.tlb.  Types map as the automation runtime declares them:
//
//   Double double, Single float, Long long, Integer short, Byte unsigned char,
//   Boolean VARIANT_BOOL, String BSTR, Currency CURRENCY, Date DATE,
//   Decimal DECIMAL, Object IDispatch*, Variant VARIANT;
//   an output argument is [in, out] and a pointer to its type; a trailing
//   variable-length list (ParamArray) makes the method vararg, its last
//   parameter a SAFEARRAY(VARIANT).
//
// An optional argument with a default that the type library can state (a
// whole number, a Boolean, a string) carries it as defaultvalue; any other
// optional argument is declared as an optional VARIANT, which callers may
// leave out (the member table supplies the default).
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "automation/Catalogue.hpp"
#include "automation/Members.hpp"

namespace TessarkAO::Com {

// A class the server hands out: its catalogue record and its member table.
struct ServedClass {
  const ClassRecord* record = nullptr;
  const ClassInfo* info = nullptr;
};

// Every catalogued class that has a factory, in catalogue order.  One
// instance of each is created and released to read its member table; a class
// whose creation fails is left out and named in `failures` (with its error).
std::vector<ServedClass> ServedClasses(std::vector<std::string>* failures = nullptr);

struct TypeLibraryInfo {
  std::string_view name;    // "TessarkAO"
  std::string_view libid;   // "{...}"
  std::uint16_t major = 1;
  std::uint16_t minor = 0;
  std::string_view helpString;
};

// The server's library: `TessarkAO` 1.0 with the frame's library id.
const TypeLibraryInfo& ServerTypeLibrary() noexcept;

// The IDL text of the whole library.
std::string WriteIdl(const TypeLibraryInfo& library, std::span<const ServedClass> classes);

// A resource script with one STRINGTABLE (language 1033) of the entries.
std::string WriteStringTableScript(std::span<const std::pair<std::int32_t, std::string_view>> entries);

// The IDL type of a runtime type ("double", "BSTR", "IDispatch*", "VARIANT").
std::string_view IdlTypeName(VarType type) noexcept;

// `name` made usable as an IDL identifier: characters outside [A-Za-z0-9_]
// become '_', a leading digit gets a '_' in front, and a name that widl
// reserves (compared without case) gets a '_' appended.
std::string IdlIdentifier(std::string_view name);

}  // namespace TessarkAO::Com
