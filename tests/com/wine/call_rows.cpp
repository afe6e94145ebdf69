// The call-behaviour rows (tests/calls/rows.inc) through the Windows
// server's dispatch adapter, as a client calls it: names through
// GetIDsOfNames, arguments as VARIANTs, by-reference ones as VT_BYREF.
#include <cstdio>
#include <string>
#include <vector>

#include "DispatchCall.hpp"
#include "WineTest.hpp"
#include "calls/CallProbe.hpp"
#include "calls/CallRows.hpp"
#include "com/ComServer.hpp"
#include "platform/win32/Windows.hpp"

using namespace TessarkAO;
using namespace TessarkAO::Testing;
using namespace WineTest;

namespace {

std::wstring Wide(const std::string& s) { return std::wstring(s.begin(), s.end()); }

VARIANT ValueOf(const std::string& t) {
  const std::string rest = t.substr(1);
  switch (t[0]) {
    case 'L': return I4(std::stol(rest));
    case 'D': return R8(std::stod(rest));
    case 'S': return Str(Wide(rest).c_str());
    case 'B': {
      VARIANT v = Typed(VT_BOOL);
      V_BOOL(&v) = rest == "1" ? VARIANT_TRUE : VARIANT_FALSE;
      return v;
    }
    case 'M': return Missing();
    default: return Typed(VT_EMPTY);
  }
}

std::string TextOf(const VARIANT& v) {
  switch (V_VT(&v)) {
    case VT_I4: return "L" + std::to_string(V_I4(&v));
    case VT_R8: {
      char text[32];
      std::snprintf(text, sizeof text, "%g", V_R8(&v));
      return "D" + std::string(text);
    }
    case VT_BSTR: return "S" + Win32::Narrow(V_BSTR(&v), SysStringLen(V_BSTR(&v)));
    case VT_BOOL: return V_BOOL(&v) ? "B1" : "B0";
    case VT_EMPTY: return "E";
    default: return "?" + std::to_string(V_VT(&v));
  }
}

WORD FlagsOf(const std::string& kind) {
  return kind == "let" ? DISPATCH_PROPERTYPUT : kind == "method" ? DISPATCH_METHOD : DISPATCH_PROPERTYGET;
}

}  // namespace

TEST_CASE("the call-behaviour rows through the dispatch adapter") {
  const auto rows = CallRows();
  CHECK(rows.size() > 25);
  for (const CallRow& row : rows) {
    Ref<Object> native = MakeRef<CallProbe>();
    IDispatch* d = Com::ToDispatch(native);
    std::vector<Var> targets(row.args.size());
    std::vector<VARIANT> args;
    for (std::size_t i = 0; i < row.args.size(); ++i) {
      if (row.args[i][0] == '&') {
        targets[i].v = ValueOf(row.args[i].substr(1));
        args.push_back(RefVar(&targets[i].v));
      } else {
        args.push_back(ValueOf(row.args[i]));
      }
    }
    CallResult r;
    const std::wstring member = Wide(row.member);
    const DISPID id = row.kind == "default" ? DISPID_VALUE : IdOf(d, member.c_str());
    if (id == DISPID_UNKNOWN) {
      // An unknown name never reaches Invoke: the client sees it as 438.
      if (row.ErrorNumber() != 438) Fail(__FILE__, __LINE__, row.text);
    } else {
      InvokeId(d, id, FlagsOf(row.kind), args, r);
      if (row.ErrorNumber()) {
        const std::wstring text = Wide(row.ErrorText());
        if (r.hr != DISP_E_EXCEPTION || r.error.scode != MAKE_HRESULT(1, FACILITY_CONTROL, row.ErrorNumber()) ||
            r.Description().find(text) == std::wstring::npos || r.Source() != L"CallProbe")
          Fail(__FILE__, __LINE__, row.text);
      } else {
        const std::string got = "=" + TextOf(r.result.v);
        if (r.hr != S_OK || got != row.expect) Fail(__FILE__, __LINE__, row.text + " gave " + got);
        for (const auto& [n, value] : row.outputs)
          if (TextOf(targets[n - 1].v) != value) Fail(__FILE__, __LINE__, row.text + " out" + std::to_string(n));
      }
    }
    ClearAll(args);
    d->Release();
  }
}
