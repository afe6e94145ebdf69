// Matrix product and point transform: the native classes against plain loops
// and Eigen's Matrix4d built with the same flags, and the same operations
// through late-bound calls.  After the run it prints the ratios:
//   native / fastest baseline      (the native classes should be within 1.2x)
//   late-bound / native            (the cost of a call by name)
#include <benchmark/benchmark.h>

#include <Eigen/Core>
#include <algorithm>
#include <cstdio>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "geometry/TKMatrix4d.hpp"
#include "geometry/TKVector4d.hpp"

using namespace TessarkAO;

namespace {

// Well-scaled random inputs, the same for every contender.
struct Inputs {
  double a[4][4], b[4][4], p[3];
  Inputs() {
    std::mt19937_64 gen(42);
    std::uniform_real_distribution<double> d(-2.0, 2.0);
    for (auto& row : a)
      for (double& x : row) x = d(gen);
    for (auto& row : b)
      for (double& x : row) x = d(gen);
    for (double& x : p) x = d(gen);
  }
};
const Inputs kIn;

Mat4 ToMat4(const double m[4][4]) {
  Mat4 r;
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j) r.e[i][j] = m[i][j];
  return r;
}

Eigen::Matrix4d ToEigen(const double m[4][4]) {
  Eigen::Matrix4d r;
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j) r(i, j) = m[i][j];
  return r;
}

// ---- Matrix product ---------------------------------------------------------

void Product_PlainLoops(benchmark::State& state) {
  alignas(16) double a[4][4], b[4][4], c[4][4];
  std::copy(&kIn.a[0][0], &kIn.a[0][0] + 16, &a[0][0]);
  std::copy(&kIn.b[0][0], &kIn.b[0][0] + 16, &b[0][0]);
  for (auto _ : state) {
    benchmark::DoNotOptimize(&a);
    benchmark::DoNotOptimize(&b);
    for (int i = 0; i < 4; ++i)
      for (int j = 0; j < 4; ++j) {
        double sum = 0.0;
        for (int k = 0; k < 4; ++k) sum += a[i][k] * b[k][j];
        c[i][j] = sum;
      }
    benchmark::DoNotOptimize(&c);
    benchmark::ClobberMemory();
  }
}

void Product_Eigen(benchmark::State& state) {
  Eigen::Matrix4d a = ToEigen(kIn.a), b = ToEigen(kIn.b), c;
  for (auto _ : state) {
    benchmark::DoNotOptimize(&a);
    benchmark::DoNotOptimize(&b);
    c.noalias() = a * b;
    benchmark::DoNotOptimize(&c);
    benchmark::ClobberMemory();
  }
}

void Product_Native(benchmark::State& state) {
  TKMatrix4d a, b, c;
  a.Assign(ToMat4(kIn.a), kDefaultEpsilon);
  b.Assign(ToMat4(kIn.b), kDefaultEpsilon);
  for (auto _ : state) {
    benchmark::DoNotOptimize(&a);
    benchmark::DoNotOptimize(&b);
    a.MultiplyByMatrixInto(b, c);
    benchmark::DoNotOptimize(&c);
    benchmark::ClobberMemory();
  }
}

void Product_LateBound(benchmark::State& state) {
  auto a = MakeRef<TKMatrix4d>(), b = MakeRef<TKMatrix4d>();
  a->Assign(ToMat4(kIn.a), kDefaultEpsilon);
  b->Assign(ToMat4(kIn.b), kDefaultEpsilon);
  Ref<Object> obj = a;
  const DispId id = obj->GetDispId("MultiplyByMatrix");
  for (auto _ : state) {
    Variant args[] = {Variant(b)};
    Variant r = obj->InvokeId(id, CallKind::Method, args);
    benchmark::DoNotOptimize(&r);
  }
}

void Product_LateBoundByName(benchmark::State& state) {
  auto a = MakeRef<TKMatrix4d>(), b = MakeRef<TKMatrix4d>();
  a->Assign(ToMat4(kIn.a), kDefaultEpsilon);
  b->Assign(ToMat4(kIn.b), kDefaultEpsilon);
  const Variant obj = Variant(a);
  for (auto _ : state) {
    Variant r = obj.Call("MultiplyByMatrix", b);
    benchmark::DoNotOptimize(&r);
  }
}

// ---- Point transform --------------------------------------------------------

void Point_PlainLoops(benchmark::State& state) {
  alignas(16) double m[4][4], p[3], out[3];
  std::copy(&kIn.a[0][0], &kIn.a[0][0] + 16, &m[0][0]);
  std::copy(kIn.p, kIn.p + 3, p);
  for (auto _ : state) {
    benchmark::DoNotOptimize(&m);
    benchmark::DoNotOptimize(&p);
    for (int j = 0; j < 3; ++j) {
      double sum = m[3][j];
      for (int k = 0; k < 3; ++k) sum += p[k] * m[k][j];
      out[j] = sum;
    }
    benchmark::DoNotOptimize(&out);
    benchmark::ClobberMemory();
  }
}

void Point_Eigen(benchmark::State& state) {
  Eigen::Matrix4d m = ToEigen(kIn.a);
  Eigen::RowVector4d p(kIn.p[0], kIn.p[1], kIn.p[2], 1.0), out;
  for (auto _ : state) {
    benchmark::DoNotOptimize(&m);
    benchmark::DoNotOptimize(&p);
    out.noalias() = p * m;
    benchmark::DoNotOptimize(&out);
    benchmark::ClobberMemory();
  }
}

void Point_Native(benchmark::State& state) {
  TKMatrix4d m;
  m.Assign(ToMat4(kIn.a), kDefaultEpsilon);
  TKVector4d p, out;
  p.Assign(Vec4{{kIn.p[0], kIn.p[1], kIn.p[2], 0.0}}, kDefaultEpsilon);
  for (auto _ : state) {
    benchmark::DoNotOptimize(&m);
    benchmark::DoNotOptimize(&p);
    m.MultiplyByPointInto(p, out);
    benchmark::DoNotOptimize(&out);
    benchmark::ClobberMemory();
  }
}

void Point_LateBound(benchmark::State& state) {
  auto m = MakeRef<TKMatrix4d>();
  m->Assign(ToMat4(kIn.a), kDefaultEpsilon);
  auto p = MakeRef<TKVector4d>();
  p->Assign(Vec4{{kIn.p[0], kIn.p[1], kIn.p[2], 0.0}}, kDefaultEpsilon);
  Ref<Object> obj = m;
  const DispId id = obj->GetDispId("MultiplyByPoint");
  for (auto _ : state) {
    Variant args[] = {Variant(p)};
    Variant r = obj->InvokeId(id, CallKind::Method, args);
    benchmark::DoNotOptimize(&r);
  }
}

// The fastest repetition: on a shared machine the slower ones mostly measure
// the other processes.
double Min(const std::vector<double>& v) { return *std::min_element(v.begin(), v.end()); }

BENCHMARK(Product_PlainLoops)->ComputeStatistics("min", Min);
BENCHMARK(Product_Eigen)->ComputeStatistics("min", Min);
BENCHMARK(Product_Native)->ComputeStatistics("min", Min);
BENCHMARK(Product_LateBound)->ComputeStatistics("min", Min);
BENCHMARK(Product_LateBoundByName)->ComputeStatistics("min", Min);
BENCHMARK(Point_PlainLoops)->ComputeStatistics("min", Min);
BENCHMARK(Point_Eigen)->ComputeStatistics("min", Min);
BENCHMARK(Point_Native)->ComputeStatistics("min", Min);
BENCHMARK(Point_LateBound)->ComputeStatistics("min", Min);

// Keeps the per-iteration times so the ratios can be printed at the end.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    // CPU time: on a shared machine the wall clock mostly measures the
    // other processes.  With repetitions the fastest one is kept.
    for (const Run& r : runs) {
      if (r.run_type == Run::RT_Iteration && r.iterations > 0 && r.repetitions <= 1)
        ns_[r.run_name.function_name] = r.GetAdjustedCPUTime();
      if (r.run_type == Run::RT_Aggregate && r.aggregate_name == "min")
        ns_[r.run_name.function_name] = r.GetAdjustedCPUTime();
    }
  }
  void PrintRatios() const {
    std::printf("\nratios (CPU time per operation)\n");
    for (const char* op : {"Product", "Point"}) {
      const std::string o = op;
      const double loops = At(o + "_PlainLoops"), eigen = At(o + "_Eigen"), native = At(o + "_Native");
      const double fastest = std::min(loops, eigen);
      std::printf("  %-8s native %.2f ns / fastest baseline %.2f ns = %.2fx  (plain loops %.2f, Eigen %.2f)\n",
                  op, native, fastest, native / fastest, loops, eigen);
      std::printf("  %-8s late-bound %.1f ns / native = %.1fx\n", op, At(o + "_LateBound"),
                  At(o + "_LateBound") / native);
    }
    std::printf("  Product  late-bound by name %.1f ns / native = %.1fx\n", At("Product_LateBoundByName"),
                At("Product_LateBoundByName") / At("Product_Native"));
  }

 private:
  double At(const std::string& name) const {
    auto it = ns_.find(name);
    return it == ns_.end() ? 0.0 : it->second;
  }
  std::map<std::string, double> ns_;
};

}  // namespace

int main(int argc, char** argv) {
  // A live vector keeps the shared state built, so the late-bound results
  // (which create vectors and matrices) measure the calls, not its set-up.
  auto keepAlive = MakeRef<TKVector4d>();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.PrintRatios();
  benchmark::Shutdown();
  return 0;
}
