// The reference host's B-spline interpolation through fit points at 100,000
// and at 1,000,000 points in the same run.  The work is linear in the number
// of points, so the time ratio 1e6 / 1e5 should be near 10 (goal: below 15).
#include <benchmark/benchmark.h>

#include <cmath>

#include "RatioReporter.hpp"
#include "automation/Convert.hpp"
#include "automation/Variant.hpp"
#include "refhost/RefHost.hpp"

using namespace TessarkAO;

namespace {

// A B-spline curve of a new path in the profile of an extrusion.
Variant NewCurve(const Variant& app) {
  const Variant root = app.Get("ActivePage").Get("Shape");
  const Variant group = root.Get("Components", 2).Call("Add");
  const Variant shape = group.Get("Shapes", 5).Call("Add");
  const Variant path =
      shape.Get("Components", 15).Call("Item", 1).Get("Profile").Get("Components", 3).Call("Add");
  path.Call("SetStartPoint", 0.0, 0.0);
  return path.Call("AddBSplineTo", 1.0, 1.0);
}

// n fit points along a wavy line, as an n x 2 table.
Variant FitPoints(std::int32_t n) {
  SafeArray table = SafeArray::Matrix(VarType::Double, 1, n, 1, 2);
  for (std::int32_t i = 1; i <= n; ++i) {
    table.Put(i, 1, Variant(i * 0.01));
    table.Put(i, 2, Variant(std::sin(i * 0.001) * 50.0));
  }
  return Variant(std::move(table));
}

void BM_SetDefinitionByFitPoints(benchmark::State& state) {
  const auto n = static_cast<std::int32_t>(state.range(0));
  const Variant app(RefHost::NewApplication());
  const Variant curve = NewCurve(app);
  Variant points = FitPoints(n);
  for (auto _ : state) {
    Variant args[] = {Variant(std::int16_t{3}), Variant(false),     Variant(false),
                      Variant::ByRef(points),   Variant::Nothing(), Variant::Nothing()};
    curve.Invoke("SetDefinitionByFitPoints", CallKind::Method, args);
  }
  state.counters["control_points"] = ToDouble(curve.Get("ControlPoints"));
}

}  // namespace

BENCHMARK(BM_SetDefinitionByFitPoints)
    ->Arg(100000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3);

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  Bench::RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.PrintRatio("fit points 1e6 / 1e5 (linear: 10)", "BM_SetDefinitionByFitPoints/1000000/iterations:3",
                      "BM_SetDefinitionByFitPoints/100000/iterations:3", "below 15");
  benchmark::Shutdown();
  return 0;
}
