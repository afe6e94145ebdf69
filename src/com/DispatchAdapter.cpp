#ifdef _WIN32

#include "com/DispatchAdapter.hpp"

#include <array>
#include <cstring>
#include <atomic>
#include <mutex>
#include <new>
#include <unordered_map>

#include "automation/AutomationError.hpp"
#include "automation/Call.hpp"
#include "automation/IdentityMap.hpp"
#include "automation/Members.hpp"
#include "com/ComServer.hpp"
#include "com/VariantBridge.hpp"
#include "frame/ClassCatalogue.hpp"

namespace TessarkAO::Com {

const GUID IID_INativeObject = {0x2F4C1B6E, 0x8D3A, 0x4E59, {0xA7, 0xC0, 0x5B, 0x9E, 0x3D, 0x1F, 0x6A, 0x24}};

namespace {

constexpr std::size_t kMaxArgs = 32;  // room for variable-length lists
std::atomic<long> g_adapters{0};

// The catalogue record of a class name, looked up once per member table.
const ClassRecord* RecordOfClass(const ClassInfo* info) {
  if (!info) return nullptr;
  static std::mutex mutex;
  static std::unordered_map<const ClassInfo*, const ClassRecord*> cache;
  std::lock_guard lock(mutex);
  auto it = cache.find(info);
  if (it != cache.end()) return it->second;
  const ClassRecord* r = FindClass(std::string(kProjectName) + "." + info->Name());
  cache.emplace(info, r);
  return r;
}

// Fills EXCEPINFO and the thread's error object from an automation error.
HRESULT Fail(const AutomationError& e, const GUID& iid, EXCEPINFO* ei) {
  const std::string& src = e.Source();
  if (ei) {
    std::memset(ei, 0, sizeof *ei);
    ei->scode = static_cast<SCODE>(e.HResult());
    ei->bstrSource = ToBstr(src);
    ei->bstrDescription = ToBstr(e.Description());
  }
  ICreateErrorInfo* create = nullptr;
  if (SUCCEEDED(CreateErrorInfo(&create))) {
    const std::wstring wsrc = Win32::Widen(src), wdesc = Win32::Widen(e.Description());
    create->SetGUID(iid);
    create->SetSource(const_cast<LPOLESTR>(wsrc.c_str()));
    create->SetDescription(const_cast<LPOLESTR>(wdesc.c_str()));
    IErrorInfo* info = nullptr;
    if (SUCCEEDED(create->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&info)))) {
      SetErrorInfo(0, info);
      info->Release();
    }
    create->Release();
  }
  return DISP_E_EXCEPTION;
}

class DispatchAdapter final : public IDispatch, public ISupportErrorInfo, public IProvideClassInfo {
 public:
  explicit DispatchAdapter(Ref<Object> object)
      : object_(std::move(object)), info_(object_->Class()), record_(RecordOfClass(info_)) {
    iid_ = record_ ? IidsOf(*record_).iid : IID_IDispatch;
    ++g_adapters;
    ObjectCreated();
  }

  // IUnknown
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** out) override {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (riid == IID_IUnknown || riid == IID_IDispatch || AnswersTo(riid)) {
      *out = static_cast<IDispatch*>(this);
    } else if (riid == IID_ISupportErrorInfo) {
      *out = static_cast<ISupportErrorInfo*>(this);
    } else if (riid == IID_IProvideClassInfo && record_) {
      *out = static_cast<IProvideClassInfo*>(this);
    } else if (riid == IID_INativeObject) {
      *out = static_cast<IDispatch*>(this);
    } else {
      return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++refs_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG n = --refs_;
    if (n == 0) Destroy();
    return n;
  }

  // AddRef unless the adapter is already on its way out (count at 0).
  bool TryAddRef() noexcept {
    ULONG n = refs_.load();
    while (n != 0)
      if (refs_.compare_exchange_weak(n, n + 1)) return true;
    return false;
  }

  Object* Native() const noexcept { return object_.get(); }

  // IDispatch
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    if (!count) return E_POINTER;
    ITypeInfo* ti = record_ ? TypeInfoOf(iid_) : nullptr;
    *count = ti ? 1 : 0;
    if (ti) ti->Release();
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID, ITypeInfo** out) override {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (index != 0) return DISP_E_BADINDEX;
    *out = record_ ? TypeInfoOf(iid_) : nullptr;
    return *out ? S_OK : TYPE_E_ELEMENTNOTFOUND;
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID,
                                          DISPID* ids) override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID riid, LCID, WORD flags, DISPPARAMS* params,
                                   VARIANT* result, EXCEPINFO* exception, UINT* argError) override;

  // ISupportErrorInfo
  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID riid) override {
    return (riid == IID_IDispatch || AnswersTo(riid)) ? S_OK : S_FALSE;
  }

  // IProvideClassInfo
  HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** out) override {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (!record_) return E_NOTIMPL;
    const auto clsid = ParseGuid(record_->clsid);
    if (!clsid) return E_UNEXPECTED;
    *out = TypeInfoOf(ToGUID(*clsid));
    return *out ? S_OK : TYPE_E_ELEMENTNOTFOUND;
  }

 private:
  ~DispatchAdapter() {
    --g_adapters;
    ObjectDestroyed();
  }
  void Destroy();

  bool AnswersTo(REFIID riid) const noexcept {
    if (!record_) return false;
    const RecordIids& ids = IidsOf(*record_);
    if (riid == ids.iid) return true;
    for (const GUID& g : ids.earlier)
      if (riid == g) return true;
    return false;
  }

  std::atomic<ULONG> refs_{1};
  Ref<Object> object_;
  const ClassInfo* info_;
  const ClassRecord* record_;
  GUID iid_;
};

// The identity map: native object to its live adapter.
IdentityMap<Object, DispatchAdapter>& AdapterMap() {
  static auto* map = new IdentityMap<Object, DispatchAdapter>();
  return *map;
}

void DispatchAdapter::Destroy() {
  AdapterMap().Erase(object_.get(), this);
  delete this;
}

// A UTF-16 name as UTF-8, without a heap allocation for ordinary names.
struct NarrowName {
  char buffer[128];
  std::string heap;
  std::string_view view;
  explicit NarrowName(const wchar_t* w) {
    std::size_t n = 0;
    bool ascii = true;
    for (; w[n]; ++n) {
      if (w[n] >= 0x80) ascii = false;
      if (n < sizeof buffer) buffer[n] = static_cast<char>(w[n]);
    }
    if (ascii && n <= sizeof buffer) {
      view = std::string_view(buffer, n);
    } else {
      heap = Win32::Narrow(w, n);
      view = heap;
    }
  }
};

HRESULT DispatchAdapter::GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
  if (riid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
  if (!names || !ids) return E_POINTER;
  if (count == 0) return S_OK;
  HRESULT hr = S_OK;
  const DispId member = names[0] ? object_->GetDispId(NarrowName(names[0]).view) : DispIdUnknown;
  ids[0] = member;
  if (member == DispIdUnknown) hr = DISP_E_UNKNOWNNAME;
  // Further names are parameters of that member, numbered from 0.
  const MemberInfo* m = (info_ && member != DispIdUnknown) ? info_->Member(member) : nullptr;
  for (UINT i = 1; i < count; ++i) {
    ids[i] = DISPID_UNKNOWN;
    if (m && names[i]) {
      const std::size_t p = ParameterIndex(*m, CallKind::Get, NarrowName(names[i]).view);
      if (p != kNoParameter) ids[i] = static_cast<DISPID>(p);
    }
    if (ids[i] == DISPID_UNKNOWN) hr = DISP_E_UNKNOWNNAME;
  }
  return hr;
}

HRESULT DispatchAdapter::Invoke(DISPID id, REFIID riid, LCID, WORD flags, DISPPARAMS* params,
                                VARIANT* result, EXCEPINFO* exception, UINT* argError) {
  if (riid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
  if (!params) return E_INVALIDARG;
  const MemberInfo* member = info_ ? info_->Member(id) : nullptr;
  if (info_ && !member) return DISP_E_MEMBERNOTFOUND;

  const UINT total = params->cArgs;
  const UINT named = params->cNamedArgs;
  if (named > total || (total && !params->rgvarg) || (named && !params->rgdispidNamedArgs))
    return E_INVALIDARG;

  // Natural order: positional arguments first (they arrive last-first), then
  // named ones at their parameter positions, the value of a put last.
  const UINT positional = total - named;
  std::size_t count = positional;
  int putValue = -1;
  for (UINT k = 0; k < named; ++k) {
    const DISPID p = params->rgdispidNamedArgs[k];
    if (p == DISPID_PROPERTYPUT) {
      putValue = static_cast<int>(k);
    } else {
      if (p < 0 || static_cast<std::size_t>(p) >= kMaxArgs) return DISP_E_PARAMNOTFOUND;
      count = std::max(count, static_cast<std::size_t>(p) + 1);
    }
  }
  if (putValue >= 0) ++count;
  if (count > kMaxArgs) return DISP_E_BADPARAMCOUNT;

  CallKind kind = CallKind::Get;
  if (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) {
    kind = (flags & DISPATCH_PROPERTYPUTREF) ? CallKind::Set : CallKind::Let;
    if ((flags & DISPATCH_PROPERTYPUT) && (flags & DISPATCH_PROPERTYPUTREF) && total > 0) {
      const VARIANT& v = params->rgvarg[putValue >= 0 ? putValue : 0];
      const VARTYPE vt = V_VT(&v) & ~VT_BYREF;
      kind = (vt == VT_DISPATCH || vt == VT_UNKNOWN) ? CallKind::Set : CallKind::Let;
    }
  } else {
    kind = ResolveKind(member, CallKind::Get);
  }

  // Only the arguments in use are constructed (this is the hot path).
  alignas(Variant) unsigned char storage[kMaxArgs * sizeof(Variant)];
  Variant* args = reinterpret_cast<Variant*>(storage);
  for (std::size_t i = 0; i < count; ++i) new (&args[i]) Variant(Variant::Missing());
  struct Destroy {
    Variant* args;
    std::size_t count;
    ~Destroy() {
      for (std::size_t i = 0; i < count; ++i) args[i].~Variant();
    }
  } destroy{args, count};
  std::array<VARIANT*, kMaxArgs> from;
  for (std::size_t i = 0; i < count; ++i) from[i] = nullptr;
  // An argument whose type the runtime cannot take is DISP_E_TYPEMISMATCH at
  // its position; any other failure to take it (an array whose bounds leave
  // the Long range, out of memory) is that automation error.
  HRESULT loadFailure = S_OK;
  auto load = [&](std::size_t position, UINT index) -> bool {
    VARIANT* v = &params->rgvarg[index];
    try {
      args[position] = FromVariant(*v);
    } catch (const AutomationError& e) {
      if (e.Number() != static_cast<int32_t>(Err::TypeMismatch)) {
        loadFailure = Fail(CurrentError(SourceOf(*object_)), iid_, exception);
        return false;
      }
      if (argError) *argError = index;
      loadFailure = DISP_E_TYPEMISMATCH;
      return false;
    }
    from[position] = v;
    return true;
  };
  for (UINT i = 0; i < positional; ++i)
    if (!load(i, total - 1 - i)) return loadFailure;
  for (UINT k = 0; k < named; ++k) {
    const std::size_t position = static_cast<int>(k) == putValue
                                     ? count - 1
                                     : static_cast<std::size_t>(params->rgdispidNamedArgs[k]);
    if (!load(position, k)) return loadFailure;
  }

  try {
    const std::span<Variant> placed(args, count);
    Variant r = Call(*object_, id, kind, placed);
    // Outputs go back to the caller's by-reference arguments.
    for (std::size_t i = 0; i < count; ++i)
      if (from[i] && (V_VT(from[i]) & VT_BYREF) && WritesBack(member, kind, placed, i))
        StoreByRef(*from[i], args[i]);
    if (result) {
      VariantInit(result);
      ToVariant(r, *result);
    }
    return S_OK;
  } catch (...) {
    return Fail(CurrentError(SourceOf(*object_)), iid_, exception);
  }
}

}  // namespace

IDispatch* AdapterOf(const Ref<Object>& object) {
  if (!object) return nullptr;
  return AdapterMap().FindOrAdd(
      object.get(), [](DispatchAdapter* a) { return a->TryAddRef(); },
      [&] { return new DispatchAdapter(object); });
}

Object* NativeObjectOf(IUnknown* unknown) noexcept {
  if (!unknown) return nullptr;
  void* p = nullptr;
  if (FAILED(unknown->QueryInterface(IID_INativeObject, &p)) || !p) return nullptr;
  auto* adapter = static_cast<DispatchAdapter*>(static_cast<IDispatch*>(p));
  Object* native = adapter->Native();
  adapter->Release();
  return native;
}

long LiveAdapters() noexcept { return g_adapters.load(); }

}  // namespace TessarkAO::Com

#endif  // _WIN32
