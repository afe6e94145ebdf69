// The class catalogue and CreateObject.
//
// The catalogue's data (ProgIDs, CLSIDs, interface ids) is the frame's; this
// runtime keeps the mechanism: the table of records, the factory of each
// class (registered by the class's own translation unit), and the foreign
// ProgIDs the platform can create (the spreadsheet application, say).
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "automation/Object.hpp"

namespace TessarkAO {

using Factory = Ref<Object> (*)();

struct ClassRecord {
  std::string_view name;        // "TKVector4d"
  std::string_view progId;      // "TessarkAO.TKVector4d"
  std::string_view clsid;       // "{47ACD072-AF38-11D2-99DB-00A0244EC406}"
  std::string_view iid;         // the default dispatch interface
  std::span<const std::string_view> earlierIids;
  bool counted;                 // takes part in the instance count
};

// Installs the catalogue's records (the frame does this once).
void RegisterCatalogue(std::span<const ClassRecord> records);
std::span<const ClassRecord> Catalogue();

// Registers the factory of a catalogued class by class name.
void RegisterFactory(std::string_view className, Factory factory);
bool HasFactory(std::string_view className);

// Registers (or with nullptr removes) a factory for a ProgID outside the
// catalogue, such as the spreadsheet application.
void RegisterForeignProgId(std::string_view progId, Factory factory);

// Creates objects for identifiers that are neither catalogued nor registered
// with RegisterForeignProgId, through the operating system (the Windows
// server creates any ProgID or CLSID the system knows).  It returns Nothing
// or raises when it cannot.  nullptr removes it.
using SystemFactory = Ref<Object> (*)(std::string_view progIdOrClsid);
void SetSystemFactory(SystemFactory factory);

// The record of a ProgID or CLSID ("{...}" or without braces), case-insensitive.
const ClassRecord* FindClass(std::string_view progIdOrClsid) noexcept;

// Creates a class by ProgID or CLSID (a catalogued class, a registered foreign
// ProgID, else through the system factory); raises 429 when the identifier is
// unknown or the class cannot be created.
Ref<Object> CreateObject(std::string_view progIdOrClsid);

// Creates a class of the library by class name through its registered
// factory (429 when it has none), as CreateObject does for its ProgID.
Ref<Object> CreateClass(std::string_view className);

// Typed creation of a class another class needs: the include of T's header
// names the dependency (so the build checks the layers), the object still
// comes from the catalogue's factory (so instance counting is unchanged).
template <class T>
Ref<T> New() {
  return RefCast<T>(CreateClass(T::kClassName));
}

// Registers T's factory at load time: TK_REGISTER_CLASS(TessarkAO::TKVector4d)
// at namespace scope in T's .cpp.
#define TK_CAT_IMPL(a, b) a##b
#define TK_CAT(a, b) TK_CAT_IMPL(a, b)
#define TK_REGISTER_CLASS_AS(T, ID)                                                       \
  namespace {                                                                             \
  [[maybe_unused]] const bool ID = [] {                                                   \
    ::TessarkAO::RegisterFactory(T::kClassName,                                           \
                                 []() -> ::TessarkAO::Ref<::TessarkAO::Object> {          \
                                   return ::TessarkAO::Ref<::TessarkAO::Object>(new T()); \
                                 });                                                      \
    return true;                                                                          \
  }();                                                                                    \
  }
#define TK_REGISTER_CLASS(T) TK_REGISTER_CLASS_AS(T, TK_CAT(tk_registered_, __COUNTER__))

}  // namespace TessarkAO
