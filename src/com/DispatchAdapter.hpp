// DispatchAdapter: a native object of the library as the system sees it.
//
// One adapter serves every class through the class's member table; nothing
// is written per class.  It answers QueryInterface for IUnknown, IDispatch,
// the class's default IID and every earlier IID of the catalogue (all served
// by the same dispatch interface), ISupportErrorInfo and IProvideClassInfo.
//
// IDispatch mechanics:
//   GetIDsOfNames  the member table's case-insensitive lookup; further names
//                  are the member's parameters (for named arguments).
//   Invoke         DISPATCH_PROPERTYGET / METHOD call the member's get or
//                  method, PROPERTYPUT its let, PROPERTYPUTREF its set; the
//                  arguments arrive last-first and are put back in order;
//                  a by-reference argument whose parameter is an output gets
//                  the member's value written back after a successful call;
//                  an omitted optional argument is the VT_ERROR
//                  DISP_E_PARAMNOTFOUND value, as callers pass it.
//   errors         an unknown dispatch id is DISP_E_MEMBERNOTFOUND, an
//                  argument that has no runtime type DISP_E_TYPEMISMATCH
//                  with its position; every error the member raises is
//                  DISP_E_EXCEPTION with EXCEPINFO holding the classic
//                  number's HRESULT (0x800A0000 | number), its description
//                  and the source "TessarkAO.<Class>" (an error that came from
//                  a caller's object keeps its own HRESULT and source).  The
//                  same error is also set as the thread's error object.
//
// An object has at most one adapter at a time, so the system's identity
// rules hold: the same object handed out twice is the same IUnknown.
#pragma once

#ifdef _WIN32

#include "automation/Object.hpp"
#include "platform/win32/Windows.hpp"

namespace TessarkAO::Com {

// The private interface through which an adapter gives back its native
// object ({2F4C1B6E-8D3A-4E59-A7C0-5B9E3D1F6A24}); never marshalled.
extern const GUID IID_INativeObject;

// The adapter of `object` (AddRef'ed), made when it has none.
IDispatch* AdapterOf(const Ref<Object>& object);
// The native object behind one of our adapters; nullptr for any other object.
Object* NativeObjectOf(IUnknown* unknown) noexcept;
// Live adapters (for DllCanUnloadNow and the tests).
long LiveAdapters() noexcept;

}  // namespace TessarkAO::Com

#endif  // _WIN32
