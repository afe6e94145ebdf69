// The server's shared state and the seams between its parts: the count of
// objects and locks behind DllCanUnloadNow, the passage of objects between
// the runtime and the system, and the type library the server carries.
#pragma once

#ifdef _WIN32

#include <string>

#include "automation/Catalogue.hpp"
#include "automation/Object.hpp"
#include "com/TypeLibraryWriter.hpp"
#include "platform/win32/Windows.hpp"

namespace TessarkAO::Com {

// The full path of the server DLL.
std::wstring ServerPath();

// Objects handed out (adapters and class factories) and server locks.
void ObjectCreated() noexcept;
void ObjectDestroyed() noexcept;
void LockServer(bool lock) noexcept;
bool CanUnload() noexcept;

// Puts the platform services of a running server in place (creating foreign
// ProgIDs through the system, the windowed user interface).  Idempotent; runs
// on the first request for a class factory, never under the loader lock.
void InitializeServer();

// The IDispatch of an object (AddRef'ed; nullptr for Nothing): a native
// object's adapter, created on first need and the same one while it lives,
// or the caller's own IDispatch for an object that came from outside.
IDispatch* ToDispatch(const Ref<Object>& object);
// The object behind an IDispatch: the native object of one of our adapters,
// else a ComObject that calls it late-bound.  nullptr gives Nothing.
Ref<Object> FromDispatch(IDispatch* dispatch);

// Type information of an interface or class of the embedded type library
// (AddRef'ed), or nullptr when the library does not describe it.
ITypeInfo* TypeInfoOf(const GUID& guid);

// The catalogue record of a CLSID; nullptr when the catalogue lacks it.
const ClassRecord* RecordOfClsid(const GUID& clsid);

// The parsed default and earlier IIDs of a record.
struct RecordIids {
  GUID iid;
  std::vector<GUID> earlier;
};
const RecordIids& IidsOf(const ClassRecord& record);

}  // namespace TessarkAO::Com

#endif  // _WIN32
