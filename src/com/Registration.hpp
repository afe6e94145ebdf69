// What the server writes into the registry, and what it removes again.
//
// Registration is a list of string values below HKEY_CLASSES_ROOT, worked
// out here from the catalogue, so that it can be read and checked apart from
// the system that applies it.  For every class served:
//
//   CLSID\{clsid}                          (default) ProgID
//   CLSID\{clsid}\InprocServer32           (default) the DLL's path, ThreadingModel Apartment
//   CLSID\{clsid}\ProgID                   (default) ProgID
//   CLSID\{clsid}\VERSION                  (default) "1.0"
//   CLSID\{clsid}\TypeLib                  (default) the library id
//   CLSID\{clsid}\Programmable             (a marker key, empty default)
//   <ProgID>                               (default) ProgID
//   <ProgID>\Clsid                         (default) {clsid}
//   Interface\{iid}                        (default) _ClassName, for the
//                                          default IID and every earlier one
//   Interface\{iid}\ProxyStubClsid(32)     the system's dispatch marshaller
//   Interface\{iid}\TypeLib                (default) the library id, Version "1.0"
//
// and once for the type library (embedded in the DLL as resource 1):
//
//   TypeLib\{libid}\1.0                    (default) the library's help string
//   TypeLib\{libid}\1.0\0\win64            (default) the DLL's path (win32 for
//                                          the 32-bit server)
//   TypeLib\{libid}\1.0\FLAGS              (default) "0"
//   TypeLib\{libid}\1.0\HELPDIR            (default) the DLL's folder
//
// Unregistration removes the trees of every catalogued class, interface and
// the library, whether or not this build served them, so that nothing of the
// server stays behind after an older or newer build was registered.  The
// 32-bit and the 64-bit server each register in their own registry view;
// where the system keeps the TypeLib key shared between the views, the one
// unregistered first leaves the other's platform entry in place.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "automation/Catalogue.hpp"
#include "com/TypeLibraryWriter.hpp"

namespace TessarkAO::Com {

// The system's marshaller for dispatch interfaces (PSDispatch).
inline constexpr std::string_view kDispatchProxyStub = "{00020420-0000-0000-C000-000000000046}";

// The platform key of the type library's path: the bitness of this build.
inline constexpr std::string_view kTypeLibraryPlatform = sizeof(void*) == 8 ? "win64" : "win32";
// "TypeLib\{libid}\1.0\0\<platform>".
std::string TypeLibraryPlatformKey(const TypeLibraryInfo& library, std::string_view platform);

struct RegistryValue {
  std::string key;   // below HKEY_CLASSES_ROOT
  std::string name;  // "" for the key's default value
  std::string data;  // a string value (REG_SZ); a key with an empty default only marks
};

std::vector<RegistryValue> RegistrationValues(std::span<const ServedClass> classes,
                                              std::string_view modulePath, const TypeLibraryInfo& library);

// The keys that unregistration deletes with everything below them.
std::vector<std::string> RegistrationTrees(std::span<const ClassRecord> catalogue, const TypeLibraryInfo& library);

}  // namespace TessarkAO::Com
