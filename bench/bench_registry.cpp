// Registry store speed, each measured against bare SQLite in the same run:
//   - a read through TKSystemUtils.ReadRegistryStringValue, called
//     late-bound by name (open key, size query, data query, close) against
//     one prepared point SELECT;
//   - a durable write through TKSystemUtils.SetRegistryStringValue (create
//     or open the key, write the value, close) against one INSERT OR
//     REPLACE on a WAL database with synchronous FULL.
// Prints each pair's ratio after the benchmark table.
#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <stdlib.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "automation/Catalogue.hpp"
#include "automation/Variant.hpp"
#include "platform/Registry.hpp"

using namespace TessarkAO;

namespace {

std::string TempFolder() {
  static const std::string dir = [] {
    std::string pattern = (std::filesystem::temp_directory_path() / "tk-bench-XXXXXX").string();
    if (!mkdtemp(pattern.data())) std::abort();
    return pattern;
  }();
  return dir;
}

void UseStore() {
  static const bool done = [] {
    SetRegistry(OpenRegistryStore(TempFolder() + "/registry.sqlite3"));
    return true;
  }();
  (void)done;
}

// A bare SQLite database of the same shape as a value table.
sqlite3* BareDatabase() {
  static sqlite3* db = [] {
    sqlite3* d = nullptr;
    sqlite3_open((TempFolder() + "/bare.sqlite3").c_str(), &d);
    sqlite3_exec(d,
                 "PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL;"
                 "CREATE TABLE IF NOT EXISTS vals(key_id INTEGER NOT NULL, fold TEXT NOT NULL, name TEXT NOT NULL,"
                 " type INTEGER NOT NULL, data BLOB NOT NULL, PRIMARY KEY(key_id, fold)) WITHOUT ROWID;"
                 "INSERT OR REPLACE INTO vals VALUES (7, 'INSTALL', 'Install', 1, '/opt/tessark');",
                 nullptr, nullptr, nullptr);
    return d;
  }();
  return db;
}

void BM_ReadThroughSystemUtils(benchmark::State& state) {
  UseStore();
  Ref<Object> sys = CreateObject("TessarkAO.TKSystemUtils");
  std::vector<Variant> args = {Variant(3), Variant("SOFTWARE\\Tessark\\TESSARK 6.0\\Directories"),
                               Variant("Install"), Variant("/opt/tessark")};
  sys->Invoke("SetRegistryStringValue", CallKind::Method, args);
  args[3] = Variant("");
  for (auto _ : state) {
    Variant status = sys->Invoke("ReadRegistryStringValue", CallKind::Method, args);
    benchmark::DoNotOptimize(status);
    benchmark::DoNotOptimize(args[3]);
  }
  if (args[3].AsString() != "/opt/tessar") state.SkipWithError("unexpected value read");
}
BENCHMARK(BM_ReadThroughSystemUtils);

void BM_BareSqlitePointRead(benchmark::State& state) {
  sqlite3* db = BareDatabase();
  sqlite3_stmt* st = nullptr;
  sqlite3_prepare_v2(db, "SELECT type, data FROM vals WHERE key_id = ?1 AND fold = ?2", -1, &st, nullptr);
  for (auto _ : state) {
    sqlite3_bind_int64(st, 1, 7);
    sqlite3_bind_text(st, 2, "INSTALL", -1, SQLITE_STATIC);
    if (sqlite3_step(st) != SQLITE_ROW) state.SkipWithError("no row");
    benchmark::DoNotOptimize(sqlite3_column_blob(st, 1));
    sqlite3_reset(st);
  }
  sqlite3_finalize(st);
}
BENCHMARK(BM_BareSqlitePointRead);

void BM_DurableWriteThroughSystemUtils(benchmark::State& state) {
  UseStore();
  Ref<Object> sys = CreateObject("TessarkAO.TKSystemUtils");
  std::int32_t i = 0;
  for (auto _ : state) {
    std::vector<Variant> args = {Variant(3), Variant("SOFTWARE\\Tessark\\Bench"), Variant("Value"),
                                 Variant(std::to_string(++i))};
    benchmark::DoNotOptimize(sys->Invoke("SetRegistryStringValue", CallKind::Method, args));
  }
}
BENCHMARK(BM_DurableWriteThroughSystemUtils)->Unit(benchmark::kMicrosecond)->MinTime(1.0);

void BM_BareSqliteWalWrite(benchmark::State& state) {
  sqlite3* db = BareDatabase();
  sqlite3_stmt* st = nullptr;
  sqlite3_prepare_v2(db, "INSERT OR REPLACE INTO vals VALUES (9, 'VALUE', 'Value', 1, ?1)", -1, &st, nullptr);
  std::int32_t i = 0;
  for (auto _ : state) {
    const std::string text = std::to_string(++i);
    sqlite3_bind_blob(st, 1, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
    if (sqlite3_step(st) != SQLITE_DONE) state.SkipWithError("write failed");
    sqlite3_reset(st);
  }
  sqlite3_finalize(st);
}
BENCHMARK(BM_BareSqliteWalWrite)->Unit(benchmark::kMicrosecond)->MinTime(1.0);

// Keeps each benchmark's time per iteration for the ratios.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& r : runs)
      if (!r.error_occurred) times[r.benchmark_name()] = r.GetAdjustedRealTime() * UnitToSeconds(r.time_unit);
    ConsoleReporter::ReportRuns(runs);
  }
  static double UnitToSeconds(benchmark::TimeUnit u) {
    switch (u) {
      case benchmark::kNanosecond: return 1e-9;
      case benchmark::kMicrosecond: return 1e-6;
      case benchmark::kMillisecond: return 1e-3;
      default: return 1;
    }
  }
  std::map<std::string, double> times;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  auto ratio = [&](const char* what, const char* a, const char* b, double goal) {
    auto ia = reporter.times.find(a), ib = reporter.times.find(b);
    if (ia == reporter.times.end() || ib == reporter.times.end()) return;
    std::printf("%-44s %9.2f us vs %9.2f us  ratio %.2f", what, ia->second * 1e6, ib->second * 1e6,
                ia->second / ib->second);
    if (goal > 0) std::printf(" (goal at most %.1f)", goal);
    std::printf("\n");
  };
  std::printf("\n");
  ratio("registry read / bare SQLite point read", "BM_ReadThroughSystemUtils", "BM_BareSqlitePointRead", 0);
  ratio("durable write / bare SQLite WAL write", "BM_DurableWriteThroughSystemUtils/min_time:1.000",
        "BM_BareSqliteWalWrite/min_time:1.000", 1.5);
  if (auto it = reporter.times.find("BM_ReadThroughSystemUtils"); it != reporter.times.end())
    std::printf("registry read through TKSystemUtils: %.2f us (goal at most 5 us)\n", it->second * 1e6);
  std::error_code ec;
  std::filesystem::remove_all(TempFolder(), ec);
  return 0;
}
