#ifdef _WIN32

#include "com/VariantBridge.hpp"

#include <cstring>
#include <limits>
#include <memory>

#include "automation/AutomationError.hpp"
#include "automation/Convert.hpp"
#include "com/ComServer.hpp"

namespace TessarkAO::Com {

namespace {

// Whether the runtime has an element type of this VARTYPE.
bool IsRuntimeType(VARTYPE vt) noexcept {
  switch (vt) {
    case VT_I2: case VT_I4: case VT_R4: case VT_R8: case VT_CY: case VT_DATE: case VT_BSTR:
    case VT_DISPATCH: case VT_ERROR: case VT_BOOL: case VT_VARIANT: case VT_DECIMAL: case VT_UI1:
      return true;
    default:
      return false;
  }
}

Decimal FromDECIMAL(const DECIMAL& d) noexcept {
  Decimal out;
  out.hi = d.Hi32;
  out.lo = d.Lo64;
  out.scale = d.scale;
  out.negative = (d.sign & DECIMAL_NEG) != 0;
  return out;
}

DECIMAL ToDECIMAL(const Decimal& d) noexcept {
  DECIMAL out;
  std::memset(&out, 0, sizeof out);
  out.Hi32 = d.hi;
  out.Lo64 = d.lo;
  out.scale = d.scale;
  out.sign = d.negative ? DECIMAL_NEG : 0;
  return out;
}

Variant FromWide(std::int64_t v) {
  if (v >= std::numeric_limits<std::int32_t>::min() && v <= std::numeric_limits<std::int32_t>::max())
    return Variant(static_cast<std::int32_t>(v));
  return Variant(static_cast<double>(v));
}

Ref<Object> FromUnknown(IUnknown* unknown) {
  if (!unknown) return Ref<Object>();
  IDispatch* disp = nullptr;
  if (FAILED(unknown->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&disp))) || !disp)
    Raise(Err::TypeMismatch);
  Ref<Object> o = FromDispatch(disp);
  disp->Release();
  return o;
}

// One element (or scalar) of type `vt` stored at `p`.
Variant FromData(VARTYPE vt, const void* p) {
  switch (vt) {
    case VT_EMPTY: return Variant();
    case VT_NULL: return Variant::Null();
    case VT_I2: return Variant(*static_cast<const SHORT*>(p));
    case VT_I4: return Variant(static_cast<std::int32_t>(*static_cast<const LONG*>(p)));
    case VT_R4: return Variant(*static_cast<const FLOAT*>(p));
    case VT_R8: return Variant(*static_cast<const DOUBLE*>(p));
    case VT_CY: return Variant(Currency{static_cast<const CY*>(p)->int64});
    case VT_DATE: return Variant(Date{*static_cast<const DATE*>(p)});
    case VT_BSTR: return Variant(FromBstr(*static_cast<const BSTR*>(p)));
    case VT_DISPATCH: return Variant(FromDispatch(*static_cast<IDispatch* const*>(p)));
    case VT_UNKNOWN: return Variant(FromUnknown(*static_cast<IUnknown* const*>(p)));
    case VT_ERROR: return Variant(ErrorCode{static_cast<std::int32_t>(*static_cast<const SCODE*>(p))});
    case VT_BOOL: return Variant(*static_cast<const VARIANT_BOOL*>(p) != VARIANT_FALSE);
    case VT_VARIANT: return FromVariant(*static_cast<const VARIANT*>(p));
    case VT_DECIMAL: return Variant(FromDECIMAL(*static_cast<const DECIMAL*>(p)));
    case VT_UI1: return Variant(static_cast<std::uint8_t>(*static_cast<const BYTE*>(p)));
    case VT_I1: return Variant(static_cast<std::int16_t>(*static_cast<const CHAR*>(p)));
    case VT_UI2: return Variant(static_cast<std::int32_t>(*static_cast<const USHORT*>(p)));
    case VT_UI4: return FromWide(*static_cast<const ULONG*>(p));
    case VT_INT: return FromWide(*static_cast<const INT*>(p));
    case VT_UINT: return FromWide(*static_cast<const UINT*>(p));
    case VT_I8: return FromWide(*static_cast<const LONGLONG*>(p));
    case VT_UI8: {
      const ULONGLONG u = *static_cast<const ULONGLONG*>(p);
      if (u <= static_cast<ULONGLONG>(std::numeric_limits<std::int32_t>::max()))
        return Variant(static_cast<std::int32_t>(u));
      return Variant(static_cast<double>(u));
    }
    default:
      Raise(Err::TypeMismatch);
  }
}

Variant FromSafeArray(const SAFEARRAY* psa, VARTYPE vt) {
  if (!psa) return Variant(SafeArray::Vector(IsRuntimeType(vt) ? static_cast<VarType>(vt) : VarType::Variant, 0, -1));
  if (!IsRuntimeType(vt)) Raise(Err::TypeMismatch);
  SAFEARRAY* a = const_cast<SAFEARRAY*>(psa);
  const UINT dims = SafeArrayGetDim(a);
  std::vector<ArrayBound> bounds;
  // The bounds as stored (last dimension first): lower bound and count, so
  // that an upper bound beyond the Long range is refused (6) rather than
  // wrapped round by the arithmetic of SafeArrayGetUBound.
  for (UINT d = 1; d <= dims; ++d) {
    const SAFEARRAYBOUND& b = a->rgsabound[dims - d];
    if (b.cElements > static_cast<ULONG>(std::numeric_limits<std::int32_t>::max())) Raise(Err::OutOfMemory);
    bounds.push_back({static_cast<std::int32_t>(b.lLbound), static_cast<std::int32_t>(b.cElements)});
  }
  SafeArray out(static_cast<VarType>(vt), bounds);
  if (out.Size() == 0) return Variant(std::move(out));
  void* data = nullptr;
  if (FAILED(SafeArrayAccessData(a, &data))) Raise(Err::TypeMismatch);
  struct Unaccess {
    SAFEARRAY* a;
    ~Unaccess() { SafeArrayUnaccessData(a); }
  } guard{a};
  const std::size_t size = a->cbElements;
  auto& elements = out.Data();
  for (std::size_t i = 0; i < elements.size(); ++i)
    elements[i] = FromData(vt, static_cast<const char*>(data) + i * size);
  return Variant(std::move(out));
}

// Writes a scalar `value` of runtime type `vt` (already converted) to `p`.
void ToData(VARTYPE vt, const Variant& value, void* p) {
  switch (vt) {
    case VT_I2: *static_cast<SHORT*>(p) = ToInteger(value); return;
    case VT_I4: *static_cast<LONG*>(p) = ToLong(value); return;
    case VT_R4: *static_cast<FLOAT*>(p) = ToSingle(value); return;
    case VT_R8: *static_cast<DOUBLE*>(p) = ToDouble(value); return;
    case VT_CY: static_cast<CY*>(p)->int64 = ToCurrency(value).scaled; return;
    case VT_DATE: *static_cast<DATE*>(p) = ToDate(value).serial; return;
    case VT_BOOL: *static_cast<VARIANT_BOOL*>(p) = ToBoolean(value) ? VARIANT_TRUE : VARIANT_FALSE; return;
    case VT_DECIMAL: *static_cast<DECIMAL*>(p) = ToDECIMAL(ToDecimal(value)); return;
    case VT_UI1: *static_cast<BYTE*>(p) = ToByte(value); return;
    case VT_ERROR:
      if (value.Type() != VarType::Error) Raise(Err::TypeMismatch);
      *static_cast<SCODE*>(p) = value.AsError().scode;
      return;
    case VT_BSTR: {
      BSTR b = ToBstr(ToString(value));
      SysFreeString(*static_cast<BSTR*>(p));
      *static_cast<BSTR*>(p) = b;
      return;
    }
    case VT_DISPATCH: {
      IDispatch* d = ToDispatch(ToObject(value));
      if (*static_cast<IDispatch**>(p)) (*static_cast<IDispatch**>(p))->Release();
      *static_cast<IDispatch**>(p) = d;
      return;
    }
    case VT_VARIANT: {
      VARIANT tmp;
      VariantInit(&tmp);
      ToVariant(value, tmp);
      VariantClear(static_cast<VARIANT*>(p));
      *static_cast<VARIANT*>(p) = tmp;
      return;
    }
    default:
      Raise(Err::TypeMismatch);
  }
}

// A new SAFEARRAY of element type `vt` holding `a` (elements converted).
SAFEARRAY* ToSafeArray(const SafeArray& a, VARTYPE vt) {
  std::vector<SAFEARRAYBOUND> bounds;
  for (const ArrayBound& b : a.Bounds())
    bounds.push_back({static_cast<ULONG>(b.count), static_cast<LONG>(b.lower)});
  SAFEARRAY* psa = SafeArrayCreate(vt, static_cast<UINT>(bounds.size()), bounds.data());
  if (!psa) Raise(Err::OutOfMemory);
  if (a.Size() == 0) return psa;
  void* data = nullptr;
  if (FAILED(SafeArrayAccessData(psa, &data))) {
    SafeArrayDestroy(psa);
    Raise(Err::OutOfMemory);
  }
  try {
    const std::size_t size = psa->cbElements;
    const auto& elements = a.Data();
    for (std::size_t i = 0; i < elements.size(); ++i) ToData(vt, elements[i], static_cast<char*>(data) + i * size);
  } catch (...) {
    SafeArrayUnaccessData(psa);
    SafeArrayDestroy(psa);
    throw;
  }
  SafeArrayUnaccessData(psa);
  return psa;
}

}  // namespace

// Strings cross as any sequence of UTF-16 code units: lone surrogates keep
// their generalized UTF-8 form inside the library (Convert.hpp).
BSTR ToBstr(std::string_view text) {
  const std::u16string units = ToUtf16(text);
  if (units.size() > 0x7FFFFFF0u) Raise(Err::OutOfMemory);
  BSTR b = SysAllocStringLen(reinterpret_cast<const OLECHAR*>(units.data()), static_cast<UINT>(units.size()));
  if (!b) Raise(Err::OutOfMemory);
  return b;
}

std::string FromBstr(BSTR text) {
  if (!text) return {};
  return ToUtf8(std::u16string_view(reinterpret_cast<const char16_t*>(text), SysStringLen(text)));
}

Variant FromVariant(const VARIANT& v) {
  const VARTYPE vt = V_VT(&v);
  if (vt == (VT_BYREF | VT_VARIANT)) {
    if (!V_VARIANTREF(&v)) Raise(Err::TypeMismatch);
    return FromVariant(*V_VARIANTREF(&v));
  }
  if (vt & VT_ARRAY) {
    const VARTYPE element = vt & VT_TYPEMASK;
    const SAFEARRAY* psa = (vt & VT_BYREF) ? (V_ARRAYREF(&v) ? *V_ARRAYREF(&v) : nullptr) : V_ARRAY(&v);
    return FromSafeArray(psa, element);
  }
  if (vt & VT_BYREF) {
    if (!V_BYREF(&v)) Raise(Err::TypeMismatch);
    return FromData(vt & VT_TYPEMASK, V_BYREF(&v));
  }
  if (vt == VT_VARIANT) Raise(Err::TypeMismatch);  // a plain VT_VARIANT is not a value
  // A DECIMAL overlays the whole VARIANT; every other value sits in its union.
  if (vt == VT_DECIMAL) return Variant(FromDECIMAL(V_DECIMAL(&v)));
  return FromData(vt, &v.lVal);
}

void ToVariant(const Variant& value, VARIANT& out) {
  const Variant& v = value.Deref();
  if (v.IsArray()) {
    const VARTYPE element = static_cast<VARTYPE>(v.AsArray().ElementType());
    SAFEARRAY* psa = ToSafeArray(v.AsArray(), element);
    V_VT(&out) = VT_ARRAY | element;
    V_ARRAY(&out) = psa;
    return;
  }
  switch (v.Type()) {
    case VarType::Empty: V_VT(&out) = VT_EMPTY; return;
    case VarType::Null: V_VT(&out) = VT_NULL; return;
    case VarType::Integer: V_VT(&out) = VT_I2; V_I2(&out) = v.AsInteger(); return;
    case VarType::Long: V_VT(&out) = VT_I4; V_I4(&out) = v.AsLong(); return;
    case VarType::Single: V_VT(&out) = VT_R4; V_R4(&out) = v.AsSingle(); return;
    case VarType::Double: V_VT(&out) = VT_R8; V_R8(&out) = v.AsDouble(); return;
    case VarType::Currency: V_VT(&out) = VT_CY; V_CY(&out).int64 = v.AsCurrency().scaled; return;
    case VarType::Date: V_VT(&out) = VT_DATE; V_DATE(&out) = v.AsDate().serial; return;
    case VarType::String: {
      BSTR b = ToBstr(v.AsString());
      V_VT(&out) = VT_BSTR;
      V_BSTR(&out) = b;
      return;
    }
    case VarType::Object: {
      IDispatch* d = ToDispatch(v.AsObject());
      V_VT(&out) = VT_DISPATCH;
      V_DISPATCH(&out) = d;
      return;
    }
    case VarType::Error: V_VT(&out) = VT_ERROR; V_ERROR(&out) = v.AsError().scode; return;
    case VarType::Boolean: V_VT(&out) = VT_BOOL; V_BOOL(&out) = v.AsBoolean() ? VARIANT_TRUE : VARIANT_FALSE; return;
    case VarType::Decimal: {
      DECIMAL d = ToDECIMAL(v.AsDecimal());
      V_DECIMAL(&out) = d;  // overlays the whole VARIANT, so the type goes in after it
      V_VT(&out) = VT_DECIMAL;
      return;
    }
    case VarType::Byte: V_VT(&out) = VT_UI1; V_UI1(&out) = v.AsByte(); return;
    default: Raise(Err::TypeMismatch);
  }
}

void StoreByRef(VARIANT& target, const Variant& value) {
  const VARTYPE vt = V_VT(&target);
  if (!(vt & VT_BYREF) || !V_BYREF(&target)) return;
  const VARTYPE base = vt & ~VT_BYREF;
  if (base == VT_VARIANT) {
    ToData(VT_VARIANT, value, V_VARIANTREF(&target));
    return;
  }
  if (base & VT_ARRAY) {
    const VARTYPE element = base & VT_TYPEMASK;
    const Variant& v = value.Deref();
    if (!v.IsArray() || !IsRuntimeType(element)) Raise(Err::TypeMismatch);
    SAFEARRAY* psa = ToSafeArray(v.AsArray(), element);
    if (*V_ARRAYREF(&target)) SafeArrayDestroy(*V_ARRAYREF(&target));
    *V_ARRAYREF(&target) = psa;
    return;
  }
  if (base == VT_UNKNOWN) {
    IDispatch* d = ToDispatch(ToObject(value));
    if (*V_UNKNOWNREF(&target)) (*V_UNKNOWNREF(&target))->Release();
    *V_UNKNOWNREF(&target) = d;
    return;
  }
  ToData(base, value, V_BYREF(&target));
}

}  // namespace TessarkAO::Com

#endif  // _WIN32
