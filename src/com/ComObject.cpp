#ifdef _WIN32

#include "com/ComObject.hpp"

#include <array>
#include <cstring>
#include <mutex>
#include <unordered_map>

#include "automation/AutomationError.hpp"
#include "automation/Members.hpp"
#include "automation/Variant.hpp"
#include "com/ComServer.hpp"
#include "com/VariantBridge.hpp"

namespace TessarkAO::Com {

namespace {

std::mutex g_mutex;
std::unordered_map<IUnknown*, ComObject*>& ForeignMap() {
  static auto* map = new std::unordered_map<IUnknown*, ComObject*>();
  return *map;
}

std::string SystemMessage(HRESULT hr) {
  wchar_t* text = nullptr;
  const DWORD n = FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM |
                                     FORMAT_MESSAGE_IGNORE_INSERTS,
                                 nullptr, static_cast<DWORD>(hr), 0, reinterpret_cast<LPWSTR>(&text), 0, nullptr);
  std::string out;
  if (n && text) {
    out = Win32::Narrow(text, n);
    while (!out.empty() && (out.back() == '\n' || out.back() == '\r' || out.back() == ' ')) out.pop_back();
  }
  if (text) LocalFree(text);
  if (out.empty()) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "Automation error 0x%08lX", static_cast<unsigned long>(hr));
    out = buffer;
  }
  return out;
}

}  // namespace

void RaiseDispatchFailure(HRESULT hr, const EXCEPINFO& info) {
  switch (hr) {
    case DISP_E_EXCEPTION: {
      EXCEPINFO ei = info;
      if (ei.pfnDeferredFillIn) ei.pfnDeferredFillIn(&ei);
      const HRESULT code = ei.scode ? ei.scode : (ei.wCode ? MAKE_HRESULT(1, FACILITY_CONTROL, ei.wCode) : E_FAIL);
      std::string description = FromBstr(ei.bstrDescription);
      std::string source = FromBstr(ei.bstrSource);
      SysFreeString(ei.bstrDescription);
      SysFreeString(ei.bstrSource);
      SysFreeString(ei.bstrHelpFile);
      const auto hresult = static_cast<std::uint32_t>(code);
      const std::int32_t number = AutomationError::NumberFromHResult(hresult);
      if (description.empty()) description = std::string(StandardDescription(number));
      throw AutomationError(number, hresult, std::move(description), std::move(source));
    }
    case DISP_E_MEMBERNOTFOUND:
    case DISP_E_UNKNOWNNAME: Raise(Err::NoSuchMember);
    case DISP_E_BADPARAMCOUNT: Raise(Err::WrongArgumentCount);
    case DISP_E_PARAMNOTOPTIONAL: Raise(Err::ArgumentNotOptional);
    case DISP_E_TYPEMISMATCH: Raise(Err::TypeMismatch);
    case DISP_E_OVERFLOW: Raise(Err::Overflow);
    case DISP_E_BADINDEX: Raise(Err::SubscriptOutOfRange);
    case E_OUTOFMEMORY: Raise(Err::OutOfMemory);
    default: {
      const auto hresult = static_cast<std::uint32_t>(hr);
      throw AutomationError(AutomationError::NumberFromHResult(hresult), hresult, SystemMessage(hr), "");
    }
  }
}

ComObject::ComObject(IDispatch* dispatch, IUnknown* identity) : dispatch_(dispatch), identity_(identity) {
  dispatch_->AddRef();
}

ComObject::~ComObject() {
  {
    std::lock_guard lock(g_mutex);
    auto& map = ForeignMap();
    auto it = map.find(identity_);
    if (it != map.end() && it->second == this) map.erase(it);
  }
  dispatch_->Release();
}

DispId ComObject::GetDispId(std::string_view name) const {
  for (const auto& [known, id] : names_)
    if (EqualsNoCase(known, name)) return id;
  std::wstring wide = Win32::Widen(name);
  LPOLESTR names[] = {wide.data()};
  DISPID id = DISPID_UNKNOWN;
  if (FAILED(dispatch_->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id))) return DispIdUnknown;
  names_.emplace_back(std::string(name), id);
  return id;
}

Variant ComObject::InvokeId(DispId id, CallKind kind, std::span<Variant> args) {
  constexpr std::size_t kMax = 32;
  if (args.size() > kMax) Raise(Err::WrongArgumentCount);
  const bool put = kind == CallKind::Let || kind == CallKind::Set;
  const std::size_t n = args.size();

  // Values in reverse order; all but a put's value are passed by reference.
  std::array<VARIANT, kMax> values;
  std::array<VARIANT, kMax> refs;
  for (std::size_t i = 0; i < n; ++i) VariantInit(&values[i]);
  struct Clear {
    std::array<VARIANT, kMax>& v;
    std::size_t n;
    ~Clear() {
      for (std::size_t i = 0; i < n; ++i) VariantClear(&v[i]);
    }
  } clear{values, n};
  for (std::size_t i = 0; i < n; ++i) {
    const std::size_t slot = n - 1 - i;
    ToVariant(args[i], values[slot]);
    if (put && i + 1 == n) {
      refs[slot] = values[slot];
    } else {
      VariantInit(&refs[slot]);
      V_VT(&refs[slot]) = VT_BYREF | VT_VARIANT;
      V_VARIANTREF(&refs[slot]) = &values[slot];
    }
  }
  DISPID putId = DISPID_PROPERTYPUT;
  DISPPARAMS dp{refs.data(), put ? &putId : nullptr, static_cast<UINT>(n), put ? 1u : 0u};
  WORD flags = DISPATCH_METHOD | DISPATCH_PROPERTYGET;
  if (kind == CallKind::Let) flags = DISPATCH_PROPERTYPUT;
  if (kind == CallKind::Set) flags = DISPATCH_PROPERTYPUTREF;

  VARIANT result;
  VariantInit(&result);
  EXCEPINFO ei;
  std::memset(&ei, 0, sizeof ei);
  UINT argError = 0;
  const HRESULT hr = dispatch_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &dp, put ? nullptr : &result, &ei,
                                       &argError);
  if (FAILED(hr)) RaiseDispatchFailure(hr, ei);

  Variant out;
  try {
    out = FromVariant(result);
  } catch (...) {
    VariantClear(&result);
    throw;
  }
  VariantClear(&result);
  // What the callee wrote into its by-reference arguments.
  for (std::size_t i = 0; i < n; ++i) {
    if (put && i + 1 == n) continue;
    args[i].Deref() = FromVariant(values[n - 1 - i]);
  }
  return out;
}

std::string ComObject::TypeName() const {
  ITypeInfo* info = nullptr;
  std::string name = "Object";
  if (SUCCEEDED(dispatch_->GetTypeInfo(0, LOCALE_USER_DEFAULT, &info)) && info) {
    BSTR b = nullptr;
    if (SUCCEEDED(info->GetDocumentation(MEMBERID_NIL, &b, nullptr, nullptr, nullptr)) && b) name = FromBstr(b);
    SysFreeString(b);
    info->Release();
  }
  return name;
}

Ref<Object> ForeignObject(IDispatch* dispatch) {
  if (!dispatch) return Ref<Object>();
  IUnknown* identity = nullptr;
  if (FAILED(dispatch->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&identity))) || !identity)
    identity = dispatch;
  else
    identity->Release();  // kept alive by the IDispatch the ComObject holds
  std::lock_guard lock(g_mutex);
  auto& map = ForeignMap();
  auto it = map.find(identity);
  if (it != map.end() && it->second->RefCount() > 0) return Ref<Object>(it->second);
  auto* o = new ComObject(dispatch, identity);
  map[identity] = o;
  return Ref<Object>(o);
}

}  // namespace TessarkAO::Com

#endif  // _WIN32
