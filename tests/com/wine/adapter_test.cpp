// The dispatch adapter, the variant bridge and foreign objects, in-process:
// the call rows' test class is served through the same adapter as the
// library's classes, and a hand-written IDispatch plays a caller's object.
// Runs under Wine.
#include <cmath>
#include <string>
#include <vector>

#include "DispatchCall.hpp"
#include "WineTest.hpp"
#include "calls/CallProbe.hpp"
#include "com/ComObject.hpp"
#include "com/ComServer.hpp"
#include "com/DispatchAdapter.hpp"
#include "com/TypeLibraryWriter.hpp"
#include "com/VariantBridge.hpp"

using namespace TessarkAO;
using namespace TessarkAO::Testing;
using namespace WineTest;

namespace {

// A caller's object: Name (get) "host", Twice(x) doubles its by-reference
// argument, Boom raises the caller's own error.
class FakeHost final : public IDispatch {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** out) override {
    const bool known = riid == IID_IUnknown || riid == IID_IDispatch;
    *out = known ? this : nullptr;
    if (known) AddRef();
    return known ? S_OK : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++refs; }
  ULONG STDMETHODCALLTYPE Release() override { return --refs; }  // lives on the stack
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* n) override { *n = 0; return S_OK; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override {
    const std::wstring n = names[0];
    ids[0] = n == L"Name" ? 1 : n == L"Twice" ? 2 : n == L"Boom" ? 3 : DISPID_UNKNOWN;
    return ids[0] == DISPID_UNKNOWN ? DISP_E_UNKNOWNNAME : S_OK;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* dp, VARIANT* result,
                                   EXCEPINFO* ei, UINT*) override {
    ++calls;
    if (id == 1) {
      V_VT(result) = VT_BSTR;
      V_BSTR(result) = SysAllocString(L"host");
      return S_OK;
    }
    if (id == 2) {
      if (dp->cArgs != 1 || V_VT(&dp->rgvarg[0]) != (VT_BYREF | VT_VARIANT)) return DISP_E_TYPEMISMATCH;
      VARIANT* x = V_VARIANTREF(&dp->rgvarg[0]);
      if (V_VT(x) != VT_R8) return DISP_E_TYPEMISMATCH;
      V_R8(x) *= 2;
      return S_OK;
    }
    if (id == 3) {
      if (!ei) return DISP_E_EXCEPTION;
      std::memset(ei, 0, sizeof *ei);
      ei->scode = MAKE_HRESULT(1, FACILITY_CONTROL, 5);
      ei->bstrDescription = SysAllocString(L"host failure");
      ei->bstrSource = SysAllocString(L"Host.App");
      return DISP_E_EXCEPTION;
    }
    return DISP_E_MEMBERNOTFOUND;
  }
  ULONG refs = 1;
  int calls = 0;
};

// A CallProbe behind its adapter, released at the end of a test.
struct Served {
  Ref<Object> native = MakeRef<CallProbe>();
  IDispatch* d = Com::ToDispatch(native);
  ~Served() { d->Release(); }
  CallProbe& probe() { return static_cast<CallProbe&>(*native); }
};

constexpr HRESULT kClassic(int number) { return MAKE_HRESULT(1, FACILITY_CONTROL, number); }

}  // namespace

TEST_CASE("names resolve without case; parameters resolve for named arguments") {
  Served s;
  CHECK_EQ(IdOf(s.d, L"x"), IdOf(s.d, L"X"));
  CHECK_EQ(IdOf(s.d, L"gEtPaIr"), 6);
  LPOLESTR unknown[] = {const_cast<LPOLESTR>(L"NoSuchMember")};
  DISPID id = 0;
  CHECK_HR(s.d->GetIDsOfNames(IID_NULL, unknown, 1, 0, &id), DISP_E_UNKNOWNNAME);
  CHECK_EQ(id, DISPID_UNKNOWN);
  LPOLESTR withParams[] = {const_cast<LPOLESTR>(L"Sum"), const_cast<LPOLESTR>(L"B"), const_cast<LPOLESTR>(L"q")};
  DISPID ids[3] = {};
  CHECK_HR(s.d->GetIDsOfNames(IID_NULL, withParams, 3, 0, ids), DISP_E_UNKNOWNNAME);
  CHECK_EQ(ids[0], 3);
  CHECK_EQ(ids[1], 1);
  CHECK_EQ(ids[2], DISPID_UNKNOWN);
}

// Outputs into VT_BYREF | VT_VARIANT are the call rows' (GetPair &L0 &D0).
TEST_CASE("typed by-reference outputs are written back in the caller's types") {
  Served s;
  double a = 0;
  LONG b = 0;
  VARIANT aRef = Typed(VT_BYREF | VT_R8), bRef = Typed(VT_BYREF | VT_I4);
  V_R8REF(&aRef) = &a;
  V_I4REF(&bRef) = &b;
  CallResult r, r2;
  Call(s.d, L"GetPair", DISPATCH_METHOD, {aRef, bRef}, r);
  CHECK_HR(r.hr, S_OK);
  CHECK(a == 7 && b == 2);  // the Double 2.5 rounded half to even

  // Arguments passed by value are left alone.
  std::vector<VARIANT> byValue{R8(8), R8(9)};
  Invoke(s.d, L"GetPair", DISPATCH_METHOD, byValue, r2);
  CHECK_HR(r2.hr, S_OK);
  CHECK(V_R8(&byValue[0]) == 8);
}

TEST_CASE("named arguments go to their parameters' positions") {
  Served s;
  VARIANT args[2] = {I4(100), I4(1)};  // b (named), then a (positional)
  DISPID named[1] = {1};
  DISPPARAMS dp{args, named, 2, 1};
  Var result;
  CHECK_HR(s.d->Invoke(IdOf(s.d, L"Sum"), IID_NULL, 0, DISPATCH_METHOD, &dp, &result, nullptr, nullptr), S_OK);
  CHECK(V_I4(&result) == 101);
}

TEST_CASE("object properties keep identity; unknown interfaces are refused") {
  Served s, child;
  CallResult a, b;
  Call(s.d, L"Child", DISPATCH_PROPERTYPUTREF, {Disp(child.d)}, a);
  CHECK_HR(a.hr, S_OK);
  CHECK(s.probe().GetChild().get() == child.native.get());
  Call(s.d, L"Child", DISPATCH_PROPERTYGET, {}, b);
  CHECK(V_VT(&b.result) == VT_DISPATCH && V_DISPATCH(&b.result) == child.d);
  DISPPARAMS dp{nullptr, nullptr, 0, 0};
  CHECK_HR(s.d->Invoke(1, IID_IDispatch, 0, DISPATCH_PROPERTYGET, &dp, nullptr, nullptr, nullptr),
           DISP_E_UNKNOWNINTERFACE);
}

TEST_CASE("one adapter per object while it lives; counts return to zero") {
  const long before = Com::LiveAdapters();
  {
    Ref<Object> o = MakeRef<CallProbe>();
    IDispatch* a = Com::ToDispatch(o);
    IDispatch* b = Com::ToDispatch(o);
    CHECK(a == b);
    IUnknown* u = nullptr;
    a->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&u));
    CHECK(u == a);
    u->Release();
    CHECK(Com::FromDispatch(a).get() == o.get());
    CHECK_EQ(Com::LiveAdapters(), before + 1);
    a->Release();
    b->Release();
  }
  CHECK_EQ(Com::LiveAdapters(), before);
}

TEST_CASE("arrays cross with their element type, bounds and layout") {
  Served s;
  Var filled;
  CallResult r, e;
  Call(s.d, L"Fill", DISPATCH_METHOD, {RefVar(&filled)}, r);
  CHECK_HR(r.hr, S_OK);
  CHECK(V_VT(&filled) == (VT_ARRAY | VT_R8));
  if (V_VT(&filled) == (VT_ARRAY | VT_R8)) {
    LONG lo = 0, hi = 0, i = 3;
    double v = 0;
    SafeArrayGetLBound(V_ARRAY(&filled), 1, &lo);
    SafeArrayGetUBound(V_ARRAY(&filled), 1, &hi);
    SafeArrayGetElement(V_ARRAY(&filled), &i, &v);
    CHECK(lo == 1 && hi == 3 && v == 1.5);
  }

  // A 2 x 3 array with lower bounds (1, 0) comes back element for element.
  SAFEARRAYBOUND bounds[2] = {{2, 1}, {3, 0}};
  SAFEARRAY* psa = SafeArrayCreate(VT_I4, 2, bounds);
  for (LONG row = 1; row <= 2; ++row)
    for (LONG c = 0; c <= 2; ++c) {
      LONG idx[2] = {row, c}, value = row * 10 + c;
      SafeArrayPutElement(psa, idx, &value);
    }
  VARIANT in = Typed(VT_ARRAY | VT_I4);
  V_ARRAY(&in) = psa;
  Call(s.d, L"Echo", DISPATCH_METHOD, {in}, e);
  CHECK(V_VT(&e.result) == (VT_ARRAY | VT_I4));
  if (V_VT(&e.result) == (VT_ARRAY | VT_I4)) {
    SAFEARRAY* out = V_ARRAY(&e.result);
    LONG lo2 = -1;
    SafeArrayGetLBound(out, 2, &lo2);
    CHECK(SafeArrayGetDim(out) == 2u && lo2 == 0);
    bool same = true;
    for (LONG row = 1; row <= 2; ++row)
      for (LONG c = 0; c <= 2; ++c) {
        LONG idx[2] = {row, c}, value = 0;
        SafeArrayGetElement(out, idx, &value);
        same = same && value == row * 10 + c;
      }
    CHECK(same);
  }
}

TEST_CASE("every scalar type survives a round trip; narrower system types widen") {
  Served s;
  // Echoes `in` (which the call then owns) and checks what comes back.
  auto echo = [&](VARIANT in, VARTYPE vt, auto&& same) {
    CallResult r;
    Call(s.d, L"Echo", DISPATCH_METHOD, {in}, r);
    CHECK_HR(r.hr, S_OK);
    CHECK(V_VT(&r.result) == vt && same(r.result.v));
  };
  VARIANT in = Typed(VT_CY);
  V_CY(&in).int64 = 123456789;
  echo(in, VT_CY, [](VARIANT& o) { return V_CY(&o).int64 == 123456789; });
  echo(Str(L"Gr\u00f6\u00dfe \u6f22"), VT_BSTR,
       [](VARIANT& o) { return std::wstring(V_BSTR(&o)) == L"Gr\u00f6\u00dfe \u6f22"; });
  in = Typed(VT_DECIMAL);
  V_DECIMAL(&in).scale = 3;
  V_DECIMAL(&in).sign = DECIMAL_NEG;
  V_DECIMAL(&in).Lo64 = 1234567;
  V_DECIMAL(&in).Hi32 = 2;
  V_VT(&in) = VT_DECIMAL;  // the decimal's fields overlay the type word
  echo(in, VT_DECIMAL, [](VARIANT& o) {
    return V_DECIMAL(&o).scale == 3 && V_DECIMAL(&o).sign == DECIMAL_NEG && V_DECIMAL(&o).Lo64 == 1234567 &&
           V_DECIMAL(&o).Hi32 == 2;
  });
  in = Typed(VT_I1);
  V_I1(&in) = -5;
  echo(in, VT_I2, [](VARIANT& o) { return V_I2(&o) == -5; });
  V_VT(&in) = VT_UI4;
  V_UI4(&in) = 4000000000u;
  echo(in, VT_R8, [](VARIANT& o) { return V_R8(&o) == 4000000000.0; });
  for (VARTYPE vt : {VT_EMPTY, VT_NULL}) echo(Typed(vt), vt, [](VARIANT&) { return true; });
  V_VT(&in) = VT_BOOL;
  V_BOOL(&in) = VARIANT_TRUE;
  echo(in, VT_BOOL, [](VARIANT& o) { return V_BOOL(&o) == VARIANT_TRUE; });
  V_VT(&in) = VT_DATE;
  V_DATE(&in) = 36526.5;
  echo(in, VT_DATE, [](VARIANT& o) { return V_DATE(&o) == 36526.5; });
}

TEST_CASE("an argument of a type the runtime lacks is DISP_E_TYPEMISMATCH at its position") {
  Served s;
  VARIANT args[2] = {I4(0), I4(1)};
  V_VT(&args[0]) = VT_CLSID;  // second argument
  DISPPARAMS dp{args, nullptr, 2, 0};
  UINT argError = 99;
  Var result;
  CHECK_HR(s.d->Invoke(IdOf(s.d, L"Sum"), IID_NULL, 0, DISPATCH_METHOD, &dp, &result, nullptr, &argError),
           DISP_E_TYPEMISMATCH);
  CHECK_EQ(argError, 0u);
}

TEST_CASE("a caller's object is called late-bound; its errors and outputs pass through") {
  Served s;
  FakeHost host;
  CallResult a, b, c, d, e;
  Call(s.d, L"CallByName", DISPATCH_METHOD, {Disp(&host), Str(L"Name")}, a);
  CHECK(V_VT(&a.result) == VT_BSTR && std::wstring(V_BSTR(&a.result)) == L"host");

  Call(s.d, L"CallByName", DISPATCH_METHOD, {Disp(&host), Str(L"Boom")}, b);
  CHECK_HR(b.hr, DISP_E_EXCEPTION);
  CHECK_HR(b.error.scode, kClassic(5));
  CHECK(b.Description() == L"host failure");
  CHECK(b.Source() == L"Host.App");
  Call(s.d, L"CallByName", DISPATCH_METHOD, {Disp(&host), Str(L"Nope")}, c);
  CHECK_HR(c.error.scode, kClassic(438));

  Var x;
  V_VT(&x) = VT_R8;
  V_R8(&x) = 21;
  Call(s.d, L"CallTwice", DISPATCH_METHOD, {Disp(&host), RefVar(&x)}, d);
  CHECK_HR(d.hr, S_OK);
  CHECK(V_VT(&x) == VT_R8 && V_R8(&x) == 42);

  // The caller's object goes back out as itself, and is one object inside.
  Call(s.d, L"Echo", DISPATCH_METHOD, {Disp(&host)}, e);
  CHECK(V_VT(&e.result) == VT_DISPATCH && V_DISPATCH(&e.result) == &host);
  CHECK(Com::FromDispatch(&host).get() == Com::FromDispatch(&host).get());
  VariantClear(&e.result);
  CHECK_EQ(host.refs, 1ul);
}

TEST_CASE("text of any code units crosses unchanged; bounds beyond the Long range are error 6") {
  Served s;
  CallResult text, bound;
  const wchar_t lone[] = {L'a', static_cast<wchar_t>(0xD800), L'b', static_cast<wchar_t>(0xDFFF), 0};
  Call(s.d, L"Echo", DISPATCH_METHOD, {Str(lone)}, text);
  CHECK(V_VT(&text.result) == VT_BSTR && std::wstring(V_BSTR(&text.result)) == lone);

  // Two elements from 2147483647: the upper bound does not fit a Long.
  SAFEARRAYBOUND edge = {2, 2147483647};
  VARIANT in = Typed(VT_ARRAY | VT_I4);
  V_ARRAY(&in) = SafeArrayCreate(VT_I4, 1, &edge);
  Call(s.d, L"Echo", DISPATCH_METHOD, {in}, bound);
  CHECK_HR(bound.hr, DISP_E_EXCEPTION);
  CHECK_HR(bound.error.scode, kClassic(6));
}

int main(int argc, char** argv) {
  CoInitialize(nullptr);
  const int rc = WineTest::RunAll(argc, argv);
  CoUninitialize();
  return rc;
}
