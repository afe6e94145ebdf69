// Dispatch cost of the Windows server, run under Wine: a property get
// through IDispatch by dispatch id and by name (GetIDsOfNames + Invoke),
// side by side with a direct C++ call of the same member in the same run,
// reported as ratios.  (Google Benchmark is not built for Windows here; this
// program times best-of-seven runs with QueryPerformanceCounter.)
//
//   1. A property get on a class of this program served by the same adapter
//      in-process, against a direct virtual call of its getter.
//   2. Localizer.LoadString(101) through the registered tktools.dll, against
//      a direct call of Localizer::LoadString.
//   3. For every class the server serves with a parameterless numeric
//      property, its get through the server against the runtime's own
//      late-bound call on a native object.
#include <algorithm>
#include <cstdio>
#include <functional>
#include <string>

#include "DispatchCall.hpp"
#include "automation/Catalogue.hpp"
#include "automation/Members.hpp"
#include "com/ComServer.hpp"
#include "com/Guid.hpp"
#include "com/TypeLibraryWriter.hpp"
#include "com/VariantBridge.hpp"
#include "frame/Localizer.hpp"

using namespace TessarkAO;
using namespace WineTest;

namespace {

class BenchPoint final : public Dispatch<BenchPoint> {
 public:
  static constexpr std::string_view kClassName = "BenchPoint";
  static void Describe(ClassBuilder<BenchPoint>& b) {
    b.Property<&BenchPoint::GetX, &BenchPoint::LetX>("X").Property<&BenchPoint::GetY, &BenchPoint::LetY>("Y");
  }
  virtual double GetX() { return x_; }
  void LetX(double x) { x_ = x; }
  double GetY() { return y_; }
  void LetY(double y) { y_ = y; }

 private:
  double x_ = 1.5, y_ = 2.5;
};

volatile double g_sink = 0;

// Nanoseconds per call: the best of five runs of at most `n` calls, each run
// cut to about 20 ms of calls so that a slow member (one that reads the
// registry, say) does not hold the whole leg up.
double Time(const std::function<void()>& body, int n) {
  LARGE_INTEGER f, a, b;
  QueryPerformanceFrequency(&f);
  auto seconds = [&] { return static_cast<double>(b.QuadPart - a.QuadPart) / static_cast<double>(f.QuadPart); };
  QueryPerformanceCounter(&a);
  for (int i = 0; i < 100; ++i) body();
  QueryPerformanceCounter(&b);
  const double estimate = std::max(seconds() / 100, 1e-9);
  n = static_cast<int>(std::clamp(0.02 / estimate, 100.0, static_cast<double>(n)));
  double best = 1e300;
  for (int run = 0; run < 5; ++run) {
    QueryPerformanceCounter(&a);
    for (int i = 0; i < n; ++i) body();
    QueryPerformanceCounter(&b);
    best = std::min(best, seconds() * 1e9 / n);
  }
  return best;
}

double GetById(IDispatch* d, DISPID id, VARIANT* args, UINT count) {
  DISPPARAMS dp{args, nullptr, count, 0};
  VARIANT r;
  VariantInit(&r);
  d->Invoke(id, IID_NULL, 0, DISPATCH_PROPERTYGET | DISPATCH_METHOD, &dp, &r, nullptr, nullptr);
  const double out = V_VT(&r) == VT_R8 ? V_R8(&r) : V_VT(&r) == VT_I4 ? V_I4(&r) : SysStringLen(V_BSTR(&r));
  VariantClear(&r);
  return out;
}

double GetByName(IDispatch* d, const wchar_t* name, VARIANT* args, UINT count) {
  LPOLESTR names[] = {const_cast<LPOLESTR>(name)};
  DISPID id = 0;
  d->GetIDsOfNames(IID_NULL, names, 1, 0, &id);
  return GetById(d, id, args, count);
}

void Report(const char* what, double direct, double byId, double byName, const char* baseline) {
  std::printf("%-44s %-22s %8.1f ns\n", what, baseline, direct);
  std::printf("%-44s %-22s %8.1f ns  ratio %6.1fx\n", what, "IDispatch by id", byId, byId / direct);
  std::printf("%-44s %-22s %8.1f ns  ratio %6.1fx\n", what, "IDispatch by name", byName, byName / direct);
}

}  // namespace

int main() {
  CoInitialize(nullptr);
  constexpr int kCalls = 200000;

  {
    Ref<BenchPoint> native = MakeRef<BenchPoint>();
    BenchPoint* volatile p = native.get();
    IDispatch* d = Com::ToDispatch(Ref<Object>(native));
    const DISPID id = IdOf(d, L"X");
    const double direct = Time([&] { g_sink = p->GetX(); }, kCalls * 10);
    const double byId = Time([&] { g_sink = GetById(d, id, nullptr, 0); }, kCalls);
    const double byName = Time([&] { g_sink = GetByName(d, L"X", nullptr, 0); }, kCalls);
    Report("in-process adapter: property get X", direct, byId, byName, "direct virtual call");
    const DispId runtimeId = native->GetDispId("X");
    const double runtime = Time([&] { g_sink = ToDouble(native->InvokeId(runtimeId, CallKind::Get, {})); }, kCalls);
    std::printf("%-44s %-22s %8.1f ns  ratio %6.1fx\n", "in-process adapter: property get X", "runtime late-bound",
                runtime, runtime / direct);
    d->Release();
  }

  {
    const ClassRecord* r = FindClass("TessarkAO.Localizer");
    IDispatch* d = nullptr;
    CoCreateInstance(Com::ToGUID(*Com::ParseGuid(r->clsid)), nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                     reinterpret_cast<void**>(&d));
    if (!d) {
      std::printf("tktools.dll is not registered\n");
      return 1;
    }
    Localizer native;
    Localizer* volatile p = &native;
    VARIANT arg = I4(101);
    const DISPID id = IdOf(d, L"LoadString");
    const double direct = Time([&] { g_sink = static_cast<double>(p->LoadString(101).size()); }, kCalls);
    const double byId = Time([&] { g_sink = GetById(d, id, &arg, 1); }, kCalls);
    const double byName = Time([&] { g_sink = GetByName(d, L"LoadString", &arg, 1); }, kCalls);
    Report("tktools.dll: Localizer.LoadString(101)", direct, byId, byName, "direct C++ call");
    d->Release();
  }

  for (const Com::ServedClass& c : Com::ServedClasses()) {
    const MemberInfo* member = nullptr;
    for (const MemberInfo& m : c.info->Members())
      if (!m.isMethod && m.get && m.get.params.empty() &&
          (m.get.result == VarType::Double || m.get.result == VarType::Long)) {
        member = &m;
        break;
      }
    if (!member) continue;
    IDispatch* d = nullptr;
    CoCreateInstance(Com::ToGUID(*Com::ParseGuid(c.record->clsid)), nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                     reinterpret_cast<void**>(&d));
    if (!d) continue;
    Ref<Object> native = CreateObject(c.record->progId);
    const std::wstring name = Win32::Widen(member->name);
    const double direct = Time([&] { g_sink = ToDouble(native->InvokeId(member->id, CallKind::Get, {})); }, kCalls);
    const double byId = Time([&] { g_sink = GetById(d, member->id, nullptr, 0); }, kCalls);
    const double byName = Time([&] { g_sink = GetByName(d, name.c_str(), nullptr, 0); }, kCalls);
    const std::string what = "tktools.dll: " + std::string(c.record->name) + "." + member->name;
    Report(what.c_str(), direct, byId, byName, "runtime late-bound");
    d->Release();
  }
  CoUninitialize();
  return 0;
}
