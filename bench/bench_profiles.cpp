// Profiles through the reference host: writing (SetProfileData) and reading
// (GetProfileFromPaths) one outline of N curves, against baselines that make
// the same host calls directly, late-bound, without a profile in between.
//   write / draw directly:  what the profile adds on top of the host's drawing
//   read / read directly:   what the profile adds on top of the host's variables
//   10,000 / 1,000 curves:  linear in the number of curves when about 10
// The curves cycle through lines, arcs, Beziers, circles, ellipses and
// B-splines, with a fillet after every 50th curve.
#include <benchmark/benchmark.h>

#include "RatioReporter.hpp"
#include "automation/Catalogue.hpp"
#include "automation/Convert.hpp"
#include "profiles/TKProfile.hpp"
#include "refhost/RefHost.hpp"

using namespace TessarkAO;

namespace {

// A fresh profile shape's path collection; the application stays alive with it.
struct Scene {
  Ref<Object> app = RefHost::NewApplication();
  Variant paths = Variant(app)
                      .Get("ActivePage")
                      .Get("Shape")
                      .Get("Components", 2)
                      .Call("Item", 1)
                      .Get("Shapes", 9)
                      .Call("Add")
                      .Get("Components", 15)
                      .Call("Item", 1)
                      .Get("Profile")
                      .Get("Components", 3);
};

Ref<TKProfile> MakeProfile(std::int32_t curves) {
  auto profile = RefCast<TKProfile>(CreateObject("TessarkAO.TKProfile"));
  Ref<TKOutline> o = profile->AddOutline();
  for (std::int32_t i = 0; i < curves; ++i) {
    const double x = i, y = (i % 7) * 0.5;
    if (i % 50 == 49) {
      o->AddCurve(TKCurveType_Fillet)->LetRadius(0.1);
      continue;
    }
    switch (i % 6) {
      case 0: o->AddLineTo(x, y); break;
      case 1: {
        Ref<TKCurve> k = o->AddCurve(TKCurveType_Arc);
        k->LetX(x), k->LetY(y), k->LetHFactor(0.3);
        break;
      }
      case 2: {
        Ref<TKCurve> k = o->AddCurve(TKCurveType_Bezier);
        k->LetX(x), k->LetY(y), k->LetTan1X(x - 0.7), k->LetTan1Y(y + 1), k->LetTan2X(x - 0.3),
            k->LetTan2Y(y);
        break;
      }
      case 3: {
        Ref<TKCurve> k = o->AddCurve(TKCurveType_Ellipse);
        k->LetCenterX(x), k->LetCenterY(y), k->LetMinorHeight(-1), k->LetXPtOnCurve(0.3),
            k->LetYPtOnCurve(0.4);
        break;
      }
      case 4: {
        Ref<TKCurve> k = o->AddCurve(TKCurveType_Ellipse);
        k->LetCenterX(x), k->LetCenterY(y), k->LetMinorHeight(0.2), k->LetXPtOnCurve(x + 0.5),
            k->LetYPtOnCurve(y);
        break;
      }
      default: {
        Ref<TKCurve> k = o->AddCurve(TKCurveType_BSpline);
        k->LetX(x), k->LetY(y), k->LetBSplineDegree(2);
        k->LetBSplineControlPoints(3);
        for (std::int32_t j = 1; j <= 3; ++j) k->SetControlPoint(j, x - 1 + 0.5 * j, y + j % 2);
        k->LetBSplineWeights(3);
        for (std::int32_t j = 1; j <= 3; ++j) k->SetWeight(j, 1);
        k->LetBSplineKnots(6);
        for (std::int32_t j = 1; j <= 6; ++j) k->SetKnot(j, j <= 3 ? 0 : 1);
        break;
      }
    }
  }
  o->LetClosed(true);
  return profile;
}

void WriteProfile(benchmark::State& state) {
  Ref<TKProfile> profile = MakeProfile(static_cast<std::int32_t>(state.range(0)));
  for (auto _ : state) {
    state.PauseTiming();
    auto scene = std::make_unique<Scene>();
    state.ResumeTiming();
    profile->SetProfileData(ToObject(scene->paths));
    state.PauseTiming();
    scene.reset();
    state.ResumeTiming();
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(WriteProfile)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond)->Complexity(benchmark::oN);

// The same host calls as WriteProfile, made straight from the curve records.
void DrawDirectly(benchmark::State& state) {
  Ref<TKProfile> profile = MakeProfile(static_cast<std::int32_t>(state.range(0)));
  const std::vector<Ref<TKCurve>>& curves = profile->GetOutline(1)->Curves();
  for (auto _ : state) {
    state.PauseTiming();
    auto scene = std::make_unique<Scene>();
    state.ResumeTiming();
    const Variant p = scene->paths.Call("Add");
    p.Call("SetStartPoint", 0.0, 0.0);
    std::int32_t j = 0;
    std::vector<std::int32_t> fillets;
    for (const Ref<TKCurve>& k : curves) {
      ++j;
      switch (k->GetCurveType()) {
        case 0: fillets.push_back(j); break;
        case 1: p.Call("AddLineTo", k->GetX(), k->GetY()); break;
        case 2: p.Call("AddArcTo", k->GetX(), k->GetY(), k->GetHFactor()); break;
        case 3:
          p.Call("AddSplineTo", k->GetX(), k->GetY(), k->GetTan1X(), k->GetTan1Y(), k->GetTan2X(),
                 k->GetTan2Y());
          break;
        case 4:
          if (k->GetMinorHeight() == -1)
            p.Call("AddEllipse", k->GetCenterX(), k->GetCenterY(), 0.5);
          else
            p.Call("AddEllipse", k->GetCenterX(), k->GetCenterY(), k->GetMinorHeight(), k->GetXPtOnCurve(),
                   k->GetYPtOnCurve());
          break;
        default: {
          Variant cp(SafeArray::Matrix(VarType::Double, 1, 3, 1, 2)),
              w(SafeArray::Vector(VarType::Double, 1, 3)), kn(SafeArray::Vector(VarType::Double, 1, 6));
          for (std::int32_t i = 1; i <= 3; ++i) w.AsArray().Put(i, 1.0);
          for (std::int32_t i = 4; i <= 6; ++i) kn.AsArray().Put(i, 1.0);
          p.Call("AddBSplineTo", k->GetX(), k->GetY()).Call("SetDefinition", 2, false, false, cp, w, kn);
        }
      }
    }
    p.Let("Construction", 0);
    p.Let("Closed", true);
    for (std::int32_t f : fillets) p.Call("AddFilletAt", f, 0.1);
    state.PauseTiming();
    scene.reset();
    state.ResumeTiming();
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(DrawDirectly)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond)->Complexity(benchmark::oN);

void ReadProfile(benchmark::State& state) {
  Scene scene;
  MakeProfile(static_cast<std::int32_t>(state.range(0)))->SetProfileData(ToObject(scene.paths));
  auto profile = RefCast<TKProfile>(CreateObject("TessarkAO.TKProfile"));
  for (auto _ : state) profile->GetProfileFromPaths(ToObject(scene.paths));
  state.SetComplexityN(state.range(0));
}
BENCHMARK(ReadProfile)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond)->Complexity(benchmark::oN);

// The host reads ReadProfile makes: every curve's type and variables, and the
// B-spline data, summed instead of stored.
void ReadDirectly(benchmark::State& state) {
  Scene scene;
  MakeProfile(static_cast<std::int32_t>(state.range(0)))->SetProfileData(ToObject(scene.paths));
  const std::vector<std::vector<std::int32_t>> vars = {{1, 2, 3, 5, 6},        {1, 2, 9, 10},
                                                       {1, 2, 3, 4, 8, 9, 10}, {1, 2, 3, 4, 5, 6, 9, 10},
                                                       {1, 2, 3, 4, 9},        {1, 2}};
  for (auto _ : state) {
    double sum = 0;
    const Variant p = scene.paths.Call("Item", 1);
    const Variant curves = p.Get("Curves");
    const std::int32_t n = ToLong(curves.Get("Count"));
    for (std::int32_t j = 1; j <= n; ++j) {
      const Variant c = curves.Call("Item", j);
      const std::int32_t t = ToLong(c.Get("Type"));
      for (std::int32_t v : vars[static_cast<std::size_t>(t)])
        sum += ToDouble(p.Get("Variable", j, v).Get("Value"));
      if (t == 5) {
        for (const char* m : {"Closed", "Periodic", "Degree", "FitPoints"}) sum += ToDouble(c.Get(m));
        for (std::int32_t i = 1; i <= ToLong(c.Get("ControlPoints")); ++i) {
          Variant x, y;
          std::vector<Variant> args = {Variant(i), Variant::ByRef(x), Variant::ByRef(y)};
          c.Invoke("GetControlPoint", CallKind::Method, args);
          sum += ToDouble(x) + ToDouble(y);
        }
        for (std::int32_t i = 1; i <= ToLong(c.Get("Knots")); ++i) sum += ToDouble(c.Call("GetKnot", i));
        for (std::int32_t i = 1; i <= ToLong(c.Get("Weights")); ++i) sum += ToDouble(c.Call("GetWeight", i));
      }
    }
    benchmark::DoNotOptimize(sum);
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(ReadDirectly)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond)->Complexity(benchmark::oN);

}  // namespace

int main(int argc, char** argv) {
  return Bench::RunWithRatios(argc, argv, [](const Bench::RatioReporter& r) {
    r.PrintRatio("write 10,000 curves / draw them directly", "WriteProfile/10000", "DrawDirectly/10000",
                 "< 1.5");
    r.PrintRatio("read 10,000 curves / read them directly", "ReadProfile/10000", "ReadDirectly/10000",
                 "< 1.5");
    r.PrintRatio("write: 10,000 / 1,000 curves", "WriteProfile/10000", "WriteProfile/1000", "about 10");
    r.PrintRatio("read: 10,000 / 1,000 curves", "ReadProfile/10000", "ReadProfile/1000", "about 10");
    r.PrintRatio("draw directly: 10,000 / 1,000 curves", "DrawDirectly/10000", "DrawDirectly/1000");
  });
}
