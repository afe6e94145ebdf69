// The server's four entry points.
//
//   DllGetClassObject    the class factory of any catalogued class that has a
//                        factory (CLASS_E_CLASSNOTAVAILABLE otherwise)
//   DllCanUnloadNow      S_OK when no adapter, no factory and no lock is left
//   DllRegisterServer    writes the values of Registration.hpp below
//                        HKEY_CLASSES_ROOT (after removing any older ones)
//   DllUnregisterServer  removes every tree Registration.hpp names
#ifdef _WIN32

#include <new>

#include "automation/AutomationError.hpp"
#include "automation/Catalogue.hpp"
#include "com/ClassFactory.hpp"
#include "com/ComServer.hpp"
#include "com/Registration.hpp"
#include "frame/ClassCatalogue.hpp"

namespace TessarkAO::Com {

namespace {

LONG SetValue(const RegistryValue& v) {
  HKEY key = nullptr;
  const std::wstring path = Win32::Widen(v.key);
  LONG status = RegCreateKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                KEY_SET_VALUE, nullptr, &key, nullptr);
  if (status != ERROR_SUCCESS) return status;
  if (!v.name.empty() || !v.data.empty()) {
    const std::wstring name = Win32::Widen(v.name), data = Win32::Widen(v.data);
    status = RegSetValueExW(key, name.empty() ? nullptr : name.c_str(), 0, REG_SZ,
                            reinterpret_cast<const BYTE*>(data.c_str()),
                            static_cast<DWORD>((data.size() + 1) * sizeof(wchar_t)));
  }
  RegCloseKey(key);
  return status;
}

// Whether the server of the other bitness still has its entry in this
// view's TypeLib key (a key the system may share between the views).
bool OtherPlatformKeepsTypeLibrary() {
  const std::string_view other = kTypeLibraryPlatform == "win64" ? "win32" : "win64";
  const std::wstring path = Win32::Widen(TypeLibraryPlatformKey(ServerTypeLibrary(), other));
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, KEY_QUERY_VALUE, &key) != ERROR_SUCCESS) return false;
  RegCloseKey(key);
  return true;
}

LONG RemoveTrees() {
  LONG worst = ERROR_SUCCESS;
  const std::string libraryTree = "TypeLib\\" + std::string(ServerTypeLibrary().libid);
  const bool keepLibrary = OtherPlatformKeepsTypeLibrary();
  for (std::string tree : RegistrationTrees(LibraryClasses(), ServerTypeLibrary())) {
    if (keepLibrary && tree == libraryTree) tree = TypeLibraryPlatformKey(ServerTypeLibrary(), kTypeLibraryPlatform);
    const std::wstring path = Win32::Widen(tree);
    const LONG status = RegDeleteTreeW(HKEY_CLASSES_ROOT, path.c_str());
    if (status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND) {
      // RegDeleteTree empties the key; the key itself goes with RegDeleteKey.
      RegDeleteKeyW(HKEY_CLASSES_ROOT, path.c_str());
    } else {
      worst = status;
    }
  }
  return worst;
}

}  // namespace

}  // namespace TessarkAO::Com

using namespace TessarkAO;

using namespace TessarkAO;

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_ATTACH) DisableThreadLibraryCalls(instance);
  return TRUE;
}

extern "C" HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID clsid, REFIID riid, LPVOID* out) {
  if (!out) return E_POINTER;
  *out = nullptr;
  try {
    Com::InitializeServer();
    const ClassRecord* record = Com::RecordOfClsid(clsid);
    if (!record || !HasFactory(record->name)) return CLASS_E_CLASSNOTAVAILABLE;
    IClassFactory* factory = Com::NewClassFactory(*record);
    const HRESULT hr = factory->QueryInterface(riid, out);
    factory->Release();
    return hr;
  } catch (...) {
    return static_cast<HRESULT>(CurrentError().HResult());
  }
}

extern "C" HRESULT STDAPICALLTYPE DllCanUnloadNow() { return Com::CanUnload() ? S_OK : S_FALSE; }

extern "C" HRESULT STDAPICALLTYPE DllRegisterServer() {
  try {
    Com::RemoveTrees();
    const std::string path = Win32::Narrow(Com::ServerPath());
    const auto classes = Com::ServedClasses();
    for (const Com::RegistryValue& v : Com::RegistrationValues(classes, path, Com::ServerTypeLibrary())) {
      if (Com::SetValue(v) != ERROR_SUCCESS) {
        Com::RemoveTrees();
        return SELFREG_E_CLASS;
      }
    }
    return S_OK;
  } catch (...) {
    return SELFREG_E_CLASS;
  }
}

extern "C" HRESULT STDAPICALLTYPE DllUnregisterServer() {
  try {
    return Com::RemoveTrees() == ERROR_SUCCESS ? S_OK : SELFREG_E_CLASS;
  } catch (...) {
    return SELFREG_E_CLASS;
  }
}

#endif  // _WIN32
