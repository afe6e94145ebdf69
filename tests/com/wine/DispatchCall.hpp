// Helpers for calling an IDispatch the way a client does: names resolved
// with GetIDsOfNames, arguments given first-first and passed last-first,
// the value of a put passed as the named argument DISPID_PROPERTYPUT.
#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "platform/win32/Windows.hpp"

namespace WineTest {

// A VARIANT that clears itself.
struct Var {
  VARIANT v;
  Var() { VariantInit(&v); }
  Var(const Var&) = delete;
  Var& operator=(const Var&) = delete;
  ~Var() { VariantClear(&v); }
  VARIANT* operator&() { return &v; }
};

inline VARIANT Typed(VARTYPE vt) { VARIANT v; VariantInit(&v); V_VT(&v) = vt; return v; }
inline VARIANT R8(double d) { VARIANT v; VariantInit(&v); V_VT(&v) = VT_R8; V_R8(&v) = d; return v; }
inline VARIANT I4(long i) { VARIANT v; VariantInit(&v); V_VT(&v) = VT_I4; V_I4(&v) = i; return v; }
inline VARIANT I2(short i) { VARIANT v; VariantInit(&v); V_VT(&v) = VT_I2; V_I2(&v) = i; return v; }
inline VARIANT Str(const wchar_t* s) { VARIANT v; VariantInit(&v); V_VT(&v) = VT_BSTR; V_BSTR(&v) = SysAllocString(s); return v; }
inline VARIANT Missing() { VARIANT v; VariantInit(&v); V_VT(&v) = VT_ERROR; V_ERROR(&v) = DISP_E_PARAMNOTFOUND; return v; }
inline VARIANT Disp(IDispatch* d) { VARIANT v; VariantInit(&v); V_VT(&v) = VT_DISPATCH; V_DISPATCH(&v) = d; if (d) d->AddRef(); return v; }
inline VARIANT RefVar(VARIANT* target) { VARIANT v; VariantInit(&v); V_VT(&v) = VT_BYREF | VT_VARIANT; V_VARIANTREF(&v) = target; return v; }

inline DISPID IdOf(IDispatch* d, const wchar_t* name) {
  LPOLESTR names[] = {const_cast<LPOLESTR>(name)};
  DISPID id = DISPID_UNKNOWN;
  d->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
  return id;
}

struct CallResult {
  HRESULT hr = S_OK;
  Var result;
  EXCEPINFO error{};
  UINT argError = 0;
  ~CallResult() {
    SysFreeString(error.bstrSource);
    SysFreeString(error.bstrDescription);
    SysFreeString(error.bstrHelpFile);
  }
  std::wstring Description() const { return error.bstrDescription ? error.bstrDescription : L""; }
  std::wstring Source() const { return error.bstrSource ? error.bstrSource : L""; }
};

// Invokes `id` with `args` in natural order (first argument first).  The
// VARIANTs in `args` are the caller's: by-reference ones see what the callee
// writes.  For a put the last argument is the value.
inline void InvokeId(IDispatch* d, DISPID id, WORD flags, std::vector<VARIANT>& args, CallResult& r) {
  std::vector<VARIANT> reversed(args.rbegin(), args.rend());
  DISPID put = DISPID_PROPERTYPUT;
  const bool isPut = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
  DISPPARAMS dp{reversed.data(), isPut ? &put : nullptr, static_cast<UINT>(reversed.size()), isPut ? 1u : 0u};
  std::memset(&r.error, 0, sizeof r.error);
  r.hr = d->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &dp, isPut ? nullptr : &r.result, &r.error,
                   &r.argError);
}

inline void Invoke(IDispatch* d, const wchar_t* name, WORD flags, std::vector<VARIANT>& args, CallResult& r) {
  InvokeId(d, IdOf(d, name), flags, args, r);
}

inline void ClearAll(std::vector<VARIANT>& args) {
  for (VARIANT& v : args) VariantClear(&v);
}

// Invokes by name with arguments the call owns and clears afterwards; the
// variables behind by-reference ones are the caller's and keep what the
// callee wrote.
inline void Call(IDispatch* d, const wchar_t* name, WORD flags, std::vector<VARIANT> args, CallResult& r) {
  Invoke(d, name, flags, args, r);
  ClearAll(args);
}

}  // namespace WineTest
