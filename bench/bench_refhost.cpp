// The reference host at scale: a scene of nested assemblies loads from JSON,
// is walked by late-bound calls as the library walks a scene tree, and is
// saved again.  Each step runs at 10,000 and at 100,000 shapes in the same
// run; the Scaling benchmark reports the time at 100,000 over the time at
// 10,000 for each step (linear is 10; the goal is below 15) and the
// process's peak memory.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cstdio>
#include <cstring>
#include <ctime>
#include <fstream>
#include <functional>
#include <string>

#include "automation/Convert.hpp"
#include "automation/Variant.hpp"
#include "refhost/RefHost.hpp"

using namespace TessarkAO;

namespace {

// Assemblies eight wide and up to four deep, holding parts whose histories
// hold extrudes; every shape placed.
void AppendShapes(std::string& out, int& left, int depth, int& serial) {
  bool first = true;
  for (int i = 0; i < 8 && left > 0; ++i) {
    if (!first) out += ',';
    first = false;
    --left;
    const int id = ++serial;
    const bool container = depth < 4 && left > 0;
    const int type = container ? (depth % 2 == 0 ? 1 : 3) : 5;
    out += "{\"name\":\"S" + std::to_string(id) + "\",\"type\":" + std::to_string(type) +
           ",\"systemID\":" + std::to_string(id + 1) +
           ",\"components\":[{\"type\":4,\"variables\":{\"1\":" + std::to_string(id % 97) +
           ".5,\"2\":-3.25,\"4\":0,\"5\":0,\"6\":1,\"7\":" + std::to_string(id % 360) +
           "}},{\"type\":5,\"variables\":{\"1\":1.5}}";
    if (container) {
      out += ",{\"type\":" + std::string(type == 1 ? "2" : "23") + ",\"shapes\":[";
      AppendShapes(out, left, depth + 1, serial);
      out += "]}";
    } else {
      out += ",{\"type\":14,\"variables\":{\"55\":2.5}}";
    }
    out += "]}";
  }
}

std::string SceneText(int shapes) {
  std::string out =
      R"({"pages":[{"name":"Scene1","root":{"name":"","type":1,"systemID":1,"components":[{"type":18},{"type":2,"shapes":[)";
  int serial = 0;
  while (shapes > 0) {
    if (serial) out += ',';
    AppendShapes(out, shapes, 0, serial);
  }
  out += "]}]}}]}";
  return out;
}

// The library's tree walk: type, container component, children; plus one
// variable read per shape.
long Walk(const Variant& shape) {
  long n = 1;
  const std::int32_t type = ToLong(shape.Get("Type"));
  const Variant positions = shape.Get("Components", 4);
  if (ToLong(positions.Get("Count")) > 0)
    benchmark::DoNotOptimize(ToDouble(positions.Call("Item", 1).Call("Variable", 1).Get("Value")));
  const int container = type == 1 ? 2 : type == 3 ? 23 : 0;
  if (container && ToLong(shape.Get("Components", container).Get("Count")) > 0) {
    Variant shapes = shape.Get("Components", container).Call("Item", 1).Get("Shapes");
    const std::int32_t count = ToLong(shapes.Get("Count"));
    for (std::int32_t i = 1; i <= count; ++i) n += Walk(shapes.Call("Item", i));
  }
  return n;
}

const std::string& Text(int shapes) {
  static std::string small = SceneText(10000), large = SceneText(100000);
  return shapes == 10000 ? small : large;
}

void BM_Load(benchmark::State& state) {
  const std::string& text = Text(static_cast<int>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(RefHost::LoadSceneFromString(text));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_Walk(benchmark::State& state) {
  Variant app(RefHost::LoadSceneFromString(Text(static_cast<int>(state.range(0)))));
  const Variant root = app.Get("ActivePage").Get("Shape");
  for (auto _ : state) benchmark::DoNotOptimize(Walk(root));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_Save(benchmark::State& state) {
  Ref<Object> app = RefHost::LoadSceneFromString(Text(static_cast<int>(state.range(0))));
  for (auto _ : state) benchmark::DoNotOptimize(RefHost::SaveSceneToString(app));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

double PeakMiB() {
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line))
    if (line.rfind("VmHWM:", 0) == 0) return std::stod(line.substr(6)) / 1024.0;
  return 0.0;
}

// Processor time of the process, so that other work on a shared machine does
// not bend the ratios.
double CpuSeconds() {
  timespec t{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}

double Seconds(const std::function<void()>& f) {
  double best = 1e300;
  for (int k = 0; k < 3; ++k) {
    const double t0 = CpuSeconds();
    f();
    best = std::min(best, CpuSeconds() - t0);
  }
  return best;
}

// Time at 100,000 shapes over time at 10,000, step by step (processor time,
// best of three).
void BM_Scaling(benchmark::State& state) {
  for (auto _ : state) {
    double t[2][3];
    double liveMiB = 0.0;
    for (int k = 0; k < 2; ++k) {
      const std::string& text = Text(k == 0 ? 10000 : 100000);
      const std::size_t before = mallinfo2().uordblks;
      Variant app(RefHost::LoadSceneFromString(text));
      if (k == 1) liveMiB = static_cast<double>(mallinfo2().uordblks - before) / (1024.0 * 1024.0);
      const Variant root = app.Get("ActivePage").Get("Shape");
      t[k][0] = Seconds([&] { benchmark::DoNotOptimize(RefHost::LoadSceneFromString(text)); });
      t[k][1] = Seconds([&] { benchmark::DoNotOptimize(Walk(root)); });
      t[k][2] = Seconds([&] { benchmark::DoNotOptimize(RefHost::SaveSceneToString(app.AsObject())); });
    }
    state.counters["load_ratio"] = t[1][0] / t[0][0];
    state.counters["walk_ratio"] = t[1][1] / t[0][1];
    state.counters["save_ratio"] = t[1][2] / t[0][2];
    state.counters["total_ratio"] = (t[1][0] + t[1][1] + t[1][2]) / (t[0][0] + t[0][1] + t[0][2]);
    state.counters["scene_MiB"] = liveMiB;
    state.counters["peak_MiB"] = PeakMiB();
  }
}

}  // namespace

BENCHMARK(BM_Load)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(BM_Walk)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(BM_Save)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(BM_Scaling)->Unit(benchmark::kMillisecond)->Iterations(1);

BENCHMARK_MAIN();
