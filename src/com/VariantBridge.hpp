// Conversions between the runtime's Variant and the system's VARIANT.
//
// Every classic type maps to its VARTYPE one to one (VarType's values are the
// VARTYPE codes); arrays become SAFEARRAYs of the same element type, bounds
// and layout (first index fastest in both).  Objects cross as IDispatch:
// a native object leaves as its dispatch adapter and comes back as the very
// same native object; a caller's object arrives as a ComObject that calls it
// late-bound.  Variant text is UTF-8, BSTRs are UTF-16.
//
// A few system types the runtime lacks are widened on the way in: VT_I1 to
// Integer, VT_UI2 to Long, VT_I8 / VT_UI8 / VT_INT / VT_UINT / VT_UI4 to Long
// when the value fits and to Double otherwise, VT_UNKNOWN to the object's
// IDispatch.  Anything else raises 13 (type mismatch).
#pragma once

#ifdef _WIN32

#include "automation/Variant.hpp"
#include "com/Guid.hpp"
#include "platform/win32/Windows.hpp"

namespace TessarkAO::Com {

// The value of `v`, looking through VT_BYREF.
Variant FromVariant(const VARIANT& v);
// Writes `value` into `out`, which must hold nothing that needs releasing
// (VariantInit'ed or cleared).  On failure `out` stays VT_EMPTY.
void ToVariant(const Variant& value, VARIANT& out);
// Stores `value` where a by-reference argument points, converted to the type
// the reference has (13 or 6 when it does not convert; the old value stays).
// Does nothing for an argument that is not by reference.
void StoreByRef(VARIANT& target, const Variant& value);

BSTR ToBstr(std::string_view text);
std::string FromBstr(BSTR text);

inline GUID ToGUID(const Guid& g) noexcept {
  GUID out;
  static_assert(sizeof(out) == sizeof(g));
  out.Data1 = g.data1;
  out.Data2 = g.data2;
  out.Data3 = g.data3;
  for (int i = 0; i < 8; ++i) out.Data4[i] = g.data4[static_cast<std::size_t>(i)];
  return out;
}

}  // namespace TessarkAO::Com

#endif  // _WIN32
