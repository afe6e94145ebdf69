// The registered tktools.dll as its callers see it: every served class
// created by ProgID and by CLSID, every earlier IID, the type information
// against the member tables, error numbers and descriptions, the string
// resource, DllCanUnloadNow and the registry keys.  With --unregistered it
// checks instead that no key of the server is left.  Runs under Wine.
//
// The program links the library's catalogue and classes only to know what
// to expect (which identifiers, which member tables); every call it checks
// goes through the system to the DLL.
#include <string>
#include <vector>

#include "DispatchCall.hpp"
#include "WineTest.hpp"
#include "automation/Catalogue.hpp"
#include "automation/Members.hpp"
#include "com/Guid.hpp"
#include "com/Registration.hpp"
#include "com/TypeLibraryWriter.hpp"
#include "com/VariantBridge.hpp"
#include "frame/ClassCatalogue.hpp"
#include "frame/StringTable.hpp"

// After the Windows headers, which DispatchCall.hpp includes the project's way.
#include <wrl/client.h>

using namespace TessarkAO;
using namespace WineTest;
using Microsoft::WRL::ComPtr;

namespace {

GUID G(std::string_view text) { return Com::ToGUID(*Com::ParseGuid(text)); }
std::wstring W(std::string_view s) { return Win32::Widen(s); }

bool KeyExists(HKEY root, const std::string& path) {
  HKEY key = nullptr;
  if (RegOpenKeyExW(root, W(path).c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return false;
  RegCloseKey(key);
  return true;
}

std::wstring ReadValue(const std::string& path, const wchar_t* name) {
  wchar_t buffer[1024] = L"";
  DWORD size = sizeof buffer;
  if (RegGetValueW(HKEY_CLASSES_ROOT, W(path).c_str(), name, RRF_RT_REG_SZ, nullptr, buffer, &size) != ERROR_SUCCESS)
    return L"<missing>";
  return buffer;
}

ComPtr<IDispatch> Create(const ClassRecord& r) {
  ComPtr<IDispatch> d;
  CoCreateInstance(G(r.clsid), nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&d));
  return d;
}

std::wstring ServerPath() {
  const auto& classes = LibraryClasses();
  for (const ClassRecord& r : classes)
    if (HasFactory(r.name)) return ReadValue("CLSID\\" + std::string(r.clsid) + "\\InprocServer32", nullptr);
  return L"";
}

}  // namespace

// Creation by ProgID is classes.vbs's.
TEST_CASE("every served class is created by CLSID, answers every earlier IID, reports errors") {
  int served = 0;
  for (const ClassRecord& r : LibraryClasses()) {
    const GUID clsid = G(r.clsid);
    ComPtr<IDispatch> d, second;
    const HRESULT hr = CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&d));
    if (!HasFactory(r.name)) {
      // Not in this build: it must not be registered either.
      CHECK_HR(hr, REGDB_E_CLASSNOTREG);
      continue;
    }
    ++served;
    CHECK_HR(hr, S_OK);
    CHECK_HR(CoCreateInstance(clsid, nullptr, CLSCTX_ALL, IID_PPV_ARGS(&second)), S_OK);
    if (!d || !second) {
      std::printf("  %s cannot be created\n", std::string(r.progId).c_str());
      continue;
    }
    CHECK(d.Get() != second.Get());  // two instances
    ComPtr<IUnknown> identity;
    d.As(&identity);
    std::vector<std::string_view> iids{r.iid};
    iids.insert(iids.end(), r.earlierIids.begin(), r.earlierIids.end());
    for (std::string_view iid : iids) {
      ComPtr<IUnknown> p, again;
      CHECK_HR(d->QueryInterface(G(iid), &p), S_OK);
      if (p) p.As(&again);
      CHECK(again.Get() == identity.Get());
    }
    ComPtr<ISupportErrorInfo> sei;
    CHECK_HR(d.As(&sei), S_OK);
    if (sei) CHECK_HR(sei->InterfaceSupportsErrorInfo(G(r.iid)), S_OK);
  }
  std::printf("  %d of %zu classes served\n", served, LibraryClasses().size());
  CHECK(served > 0);
}

TEST_CASE("the type information of every class matches its member table") {
  ComPtr<ITypeLib> lib;
  CHECK_HR(LoadRegTypeLib(G(kTypeLibraryId), 1, 0, LOCALE_NEUTRAL, &lib), S_OK);
  BSTR path = nullptr;
  CHECK_HR(QueryPathOfRegTypeLib(G(kTypeLibraryId), 1, 0, LOCALE_NEUTRAL, &path), S_OK);
  CHECK(path && std::wstring(path).find(L"tktools.dll") != std::wstring::npos);
  SysFreeString(path);

  for (const Com::ServedClass& c : Com::ServedClasses()) {
    ComPtr<IDispatch> d = Create(*c.record);
    if (!d) {
      CHECK(d);
      continue;
    }
    UINT count = 0;
    d->GetTypeInfoCount(&count);
    CHECK_EQ(count, 1u);
    ComPtr<ITypeInfo> info;
    CHECK_HR(d->GetTypeInfo(0, 0, &info), S_OK);
    if (info) {
      TYPEATTR* attr = nullptr;
      info->GetTypeAttr(&attr);
      CHECK(IsEqualGUID(attr->guid, G(c.record->iid)));
      CHECK(attr->typekind == TKIND_DISPATCH);
      std::size_t accessors = 0;
      for (const MemberInfo& m : c.info->Members())
        accessors += (m.get ? 1 : 0) + (m.let ? 1 : 0) + (m.set ? 1 : 0);
      CHECK_EQ(static_cast<std::size_t>(attr->cFuncs), accessors);
      BSTR name = nullptr;
      info->GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr);
      CHECK(name && std::wstring(name) == L"_" + W(c.record->name));
      SysFreeString(name);
      // Every member by name, with its dispatch id (0 for the default member).
      for (const MemberInfo& m : c.info->Members()) {
        const std::wstring wname = W(m.name);
        LPOLESTR names[] = {const_cast<LPOLESTR>(wname.c_str())};
        MEMBERID id = 0;
        CHECK_HR(info->GetIDsOfNames(names, 1, &id), S_OK);
        CHECK_EQ(id, m.id == c.info->DefaultMember() ? DISPID_VALUE : m.id);
        CHECK_EQ(IdOf(d.Get(), wname.c_str()), m.id);
      }
      info->ReleaseTypeAttr(attr);
    }
    ComPtr<IProvideClassInfo> pci;
    ComPtr<ITypeInfo> coclass;
    CHECK_HR(d.As(&pci), S_OK);
    if (pci) CHECK_HR(pci->GetClassInfo(&coclass), S_OK);
    if (coclass) {
      TYPEATTR* attr = nullptr;
      coclass->GetTypeAttr(&attr);
      CHECK(IsEqualGUID(attr->guid, G(c.record->clsid)) && attr->typekind == TKIND_COCLASS);
      coclass->ReleaseTypeAttr(attr);
    }
  }
}

TEST_CASE("errors reach the caller with the classic number, description and source") {
  const ClassRecord* r = FindClass("TessarkAO.Localizer");
  ComPtr<IDispatch> d = r ? Create(*r) : nullptr;
  CHECK(d);
  if (!d) return;
  CallResult a, unknown;
  Call(d.Get(), L"LoadString", DISPATCH_METHOD | DISPATCH_PROPERTYGET, {I4(100)}, a);
  CHECK_HR(a.hr, DISP_E_EXCEPTION);
  CHECK_HR(a.error.scode, 0x800A0146);
  CHECK(a.Description() == L"Resource with identifier '100' not found");
  CHECK(a.Source() == L"TessarkAO.Localizer");
  ComPtr<IErrorInfo> info;
  BSTR source = nullptr;
  CHECK_HR(GetErrorInfo(0, &info), S_OK);
  if (info) info->GetSource(&source);
  CHECK(source && std::wstring(source) == L"TessarkAO.Localizer");
  SysFreeString(source);
  std::vector<VARIANT> none;
  InvokeId(d.Get(), 4242, DISPATCH_METHOD, none, unknown);
  CHECK_HR(unknown.hr, DISP_E_MEMBERNOTFOUND);
}

// Localizer.LoadString reading it through the server is session.vbs's.
TEST_CASE("the string table is a real string resource") {
  const std::wstring path = ServerPath();
  HMODULE data = LoadLibraryExW(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
  CHECK(data);
  for (const auto& [id, text] : StringTableEntries()) {
    const wchar_t* p = nullptr;
    const int n = data ? LoadStringW(data, static_cast<UINT>(id), reinterpret_cast<LPWSTR>(&p), 0) : 0;
    CHECK(n > 0 && Win32::Narrow(p, static_cast<std::size_t>(n)) == text);
  }
  for (int absent : {100, 125}) {
    const wchar_t* p = nullptr;
    CHECK_EQ(data ? LoadStringW(data, static_cast<UINT>(absent), reinterpret_cast<LPWSTR>(&p), 0) : 0, 0);
  }
  if (data) FreeLibrary(data);
}

TEST_CASE("DllCanUnloadNow tracks objects, factories and locks") {
  const std::wstring path = ServerPath();
  HMODULE dll = LoadLibraryW(path.c_str());
  CHECK(dll);
  if (!dll) return;
  using CanUnload = HRESULT(STDAPICALLTYPE*)();
  using GetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
  auto canUnload = reinterpret_cast<CanUnload>(reinterpret_cast<void*>(GetProcAddress(dll, "DllCanUnloadNow")));
  auto getClass = reinterpret_cast<GetClassObject>(reinterpret_cast<void*>(GetProcAddress(dll, "DllGetClassObject")));
  CHECK(canUnload && getClass);
  if (!canUnload || !getClass) return;
  CoFreeUnusedLibraries();
  CHECK_HR(canUnload(), S_OK);
  const ClassRecord* r = FindClass("TessarkAO.Localizer");
  IClassFactory* factory = nullptr;
  CHECK_HR(getClass(G(r->clsid), IID_IClassFactory, reinterpret_cast<void**>(&factory)), S_OK);
  CHECK_HR(canUnload(), S_FALSE);
  IDispatch* object = nullptr;
  CHECK_HR(factory->CreateInstance(nullptr, IID_IDispatch, reinterpret_cast<void**>(&object)), S_OK);
  IUnknown* outer = reinterpret_cast<IUnknown*>(object);
  void* aggregated = nullptr;
  CHECK_HR(factory->CreateInstance(outer, IID_IUnknown, &aggregated), CLASS_E_NOAGGREGATION);
  factory->LockServer(TRUE);
  factory->Release();
  object->Release();
  CHECK_HR(canUnload(), S_FALSE);
  // The lock alone keeps the server; a factory is needed to release it.
  CHECK_HR(getClass(G(r->clsid), IID_IClassFactory, reinterpret_cast<void**>(&factory)), S_OK);
  factory->LockServer(FALSE);
  factory->Release();
  CHECK_HR(canUnload(), S_OK);
  IUnknown* none = nullptr;
  CHECK_HR(getClass(G("{00000000-0000-0000-0000-000000000001}"), IID_IClassFactory,
                    reinterpret_cast<void**>(&none)),
           CLASS_E_CLASSNOTAVAILABLE);
  FreeLibrary(dll);
}

TEST_CASE("registration: in-process server, apartment threading, interfaces with earlier IIDs") {
  const auto classes = Com::ServedClasses();
  const std::wstring path = ServerPath();
  for (const auto& v : Com::RegistrationValues(classes, Win32::Narrow(path), Com::ServerTypeLibrary())) {
    if (v.name.empty() && v.data.empty()) {  // a marker key
      CHECK(KeyExists(HKEY_CLASSES_ROOT, v.key));
      continue;
    }
    const std::wstring expected = W(v.data);
    const std::wstring actual = ReadValue(v.key, v.name.empty() ? nullptr : W(v.name).c_str());
    if (actual != expected) std::printf("  %s [%s] differs\n", v.key.c_str(), v.name.c_str());
    CHECK(actual == expected);
  }
}

namespace {

int CheckUnregistered() {
  int left = 0;
  const auto trees = Com::RegistrationTrees(LibraryClasses(), Com::ServerTypeLibrary());
  const std::pair<HKEY, std::string> places[] = {{HKEY_CLASSES_ROOT, ""},
                                                 {HKEY_LOCAL_MACHINE, "Software\\Classes\\"},
                                                 {HKEY_CURRENT_USER, "Software\\Classes\\"}};
  for (const auto& [root, prefix] : places)
    for (const std::string& tree : trees)
      if (KeyExists(root, prefix + tree)) {
        std::printf("  left behind: %s%s\n", prefix.c_str(), tree.c_str());
        ++left;
      }
  std::printf("%s no key of the server is left\n", left == 0 ? "PASS" : "FAIL");
  std::printf("%d passed, %d failed\n", left == 0 ? 1 : 0, left == 0 ? 0 : 1);
  return left == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1 && std::string(argv[1]) == "--unregistered") return CheckUnregistered();
  CoInitialize(nullptr);
  const int rc = WineTest::RunAll(argc, argv);
  CoUninitialize();
  return rc;
}
