// The server's shared state: object and lock counts, the passage of objects
// between the runtime and the system, the embedded type library, and the
// platform services a running server puts in place.
#ifdef _WIN32

#include <atomic>
#include <mutex>
#include <unordered_map>

#include "automation/AutomationError.hpp"
#include "com/ComObject.hpp"
#include "com/ComServer.hpp"
#include "com/DispatchAdapter.hpp"
#include "com/VariantBridge.hpp"
#include "frame/ClassCatalogue.hpp"
#include "platform/UserInterface.hpp"
#include "platform/win32/Win32UserInterface.hpp"

namespace TessarkAO::Com {

namespace {

std::atomic<long> g_objects{0};
std::atomic<long> g_locks{0};

}  // namespace

std::wstring ServerPath() { return Win32::ModulePath(Win32::ThisModule()); }

void ObjectCreated() noexcept { ++g_objects; }
void ObjectDestroyed() noexcept { --g_objects; }
void LockServer(bool lock) noexcept {
  if (lock)
    ++g_locks;
  else
    --g_locks;
}
bool CanUnload() noexcept { return g_objects.load() == 0 && g_locks.load() <= 0; }

namespace {

// Creates a ProgID or CLSID outside the library through the system: the
// spreadsheet application, a localizer satellite of another language.
Ref<Object> CreateSystemObject(std::string_view id) {
  CLSID clsid;
  const std::wstring wide = Win32::Widen(id);
  const HRESULT found = (!id.empty() && id.front() == '{') ? CLSIDFromString(wide.c_str(), &clsid)
                                                            : CLSIDFromProgID(wide.c_str(), &clsid);
  if (FAILED(found)) Raise(Err::CannotCreateObject);
  IDispatch* dispatch = nullptr;
  const HRESULT hr = CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER, IID_IDispatch,
                                      reinterpret_cast<void**>(&dispatch));
  if (FAILED(hr) || !dispatch) Raise(Err::CannotCreateObject);
  Ref<Object> object = FromDispatch(dispatch);
  dispatch->Release();
  return object;
}

}  // namespace

void InitializeServer() {
  static std::once_flag once;
  std::call_once(once, [] {
    SetSystemFactory(&CreateSystemObject);
    Win32::InstallUserInterface();
  });
}

IDispatch* ToDispatch(const Ref<Object>& object) {
  if (!object) return nullptr;
  if (auto* foreign = dynamic_cast<ComObject*>(object.get())) {
    foreign->Dispatch()->AddRef();
    return foreign->Dispatch();
  }
  return AdapterOf(object);
}

Ref<Object> FromDispatch(IDispatch* dispatch) {
  if (!dispatch) return Ref<Object>();
  if (Object* native = NativeObjectOf(dispatch)) return Ref<Object>(native);
  return ForeignObject(dispatch);
}

ITypeInfo* TypeInfoOf(const GUID& guid) {
  // The embedded library is loaded once and kept while the DLL is loaded.
  static ITypeLib* library = [] {
    ITypeLib* lib = nullptr;
    if (FAILED(LoadTypeLibEx(ServerPath().c_str(), REGKIND_NONE, &lib))) lib = nullptr;
    return lib;
  }();
  if (!library) return nullptr;
  ITypeInfo* info = nullptr;
  if (FAILED(library->GetTypeInfoOfGuid(guid, &info))) return nullptr;
  return info;
}

const ClassRecord* RecordOfClsid(const GUID& clsid) {
  for (const ClassRecord& r : LibraryClasses()) {
    const auto g = ParseGuid(r.clsid);
    if (g && IsEqualGUID(ToGUID(*g), clsid)) return &r;
  }
  return nullptr;
}

const RecordIids& IidsOf(const ClassRecord& record) {
  static std::mutex mutex;
  static auto* cache = new std::unordered_map<const ClassRecord*, RecordIids>();
  std::lock_guard lock(mutex);
  auto it = cache->find(&record);
  if (it != cache->end()) return it->second;
  RecordIids ids{};
  if (const auto g = ParseGuid(record.iid)) ids.iid = ToGUID(*g);
  for (std::string_view e : record.earlierIids)
    if (const auto g = ParseGuid(e)) ids.earlier.push_back(ToGUID(*g));
  return cache->emplace(&record, std::move(ids)).first->second;
}

}  // namespace TessarkAO::Com

#endif  // _WIN32
