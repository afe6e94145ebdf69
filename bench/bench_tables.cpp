// Column set sorts and column growth, each against its baseline in the same
// run; the ratios are printed at the end.
//
//  - 10,000 rows, 8 columns, three keys with many ties, ascending and
//    descending: the sort against the bubble sort run pass by pass as it is
//    defined (with the columns' own comparisons and exchanges);
//  - 1,000,000 rows, three keys: the sort against std::stable_sort of an
//    index vector on the same keys (the baseline only orders indices; the
//    sort also moves the rows of every column);
//  - TKColumn::Add: 100,000 calls against 10,000 (linear growth gives 10).
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <numeric>
#include <random>
#include <string>

#include "automation/Convert.hpp"
#include "tables/TK2DArray.hpp"
#include "tables/TKColumn.hpp"
#include "tables/TKColumnSet.hpp"

using namespace TessarkAO;

namespace {

ParamArray Keys(std::initializer_list<std::int32_t> keys) {
  ParamArray p;
  p.items = SafeArray::Vector(VarType::Variant, 0, static_cast<std::int32_t>(keys.size()) - 1);
  std::size_t i = 0;
  for (std::int32_t k : keys) p.items.Data()[i++] = Variant(k);
  return p;
}

// Columns: 1 Double (20 values), 2 String (200 texts in mixed case), 3 Double
// (1000 values), then payload columns of Doubles and Strings.
Ref<TKColumnSet> MakeSet(std::int32_t rows, std::int32_t columns, std::uint32_t seed) {
  std::mt19937 rng(seed);
  auto set = MakeRef<TKColumnSet>();
  set->LetNumberOfRows(rows);
  for (std::int32_t c = 1; c <= columns; ++c) {
    const bool text = c == 2 || (c > 3 && c % 2 == 0);
    Ref<TKColumn> col = set->AddColumn(text ? TKColumnType_String : TKColumnType_Double);
    for (std::int32_t r = 1; r <= rows; ++r) {
      const std::uint32_t v = rng();
      if (c == 1) col->SetAt(r, Variant(static_cast<double>(v % 20)));
      else if (c == 2) col->SetAt(r, Variant((v % 2 ? "Part-" : "part-") + std::to_string(v % 200)));
      else if (c == 3) col->SetAt(r, Variant(static_cast<double>(v % 1000) * 0.5));
      else if (text) col->SetAt(r, Variant("row " + std::to_string(r)));
      else col->SetAt(r, Variant(static_cast<double>(r)));
    }
  }
  return set;
}

// The sort as defined: for each key, the spans of the earlier keys, then
// (n - 1)^2 comparisons per span, every exchange swapping every column.
bool SortPassByPass(TKColumnSet& set, std::int32_t sortType, const std::vector<std::int32_t>& keys) {
  bool result = false;
  for (std::size_t k = 0; k < keys.size(); ++k) {
    Ref<TK2DArray> table = MakeRef<TK2DArray>();
    table->SetDimensions(1, 2, false);
    table->SetValue(1, 1, 1.0);
    table->SetValue(1, 2, set.NumberOfRows());
    for (std::size_t j = 0; j < k; ++j) table = set.GetSpanInformationWithSpanContext(keys[j], table);
    TKColumn& key = *set.Item(keys[k]);
    for (std::int32_t s = 1; s <= table->Rows(); ++s) {
      const auto start = static_cast<std::int32_t>(table->GetValue(s, 1));
      const auto end = static_cast<std::int32_t>(table->GetValue(s, 2));
      for (std::int32_t i = start; i <= end - 1; ++i) {
        for (std::int32_t m = start; m <= end - 1; ++m) {
          const bool greater = key.IsFirstValueGreater(m, m + 1);
          if (sortType == TKColumnSetSort_Ascending ? greater : !greater) {
            for (std::int32_t c = 1; c <= set.NumberOfColumns(); ++c) set.Item(c)->Swap(m, m + 1);
            result = true;
          }
        }
      }
    }
  }
  return result;
}

void Sort10k(benchmark::State& state, bool literal, std::int32_t sortType) {
  for (auto _ : state) {
    state.PauseTiming();
    Ref<TKColumnSet> set = MakeSet(10000, 8, 42);
    state.ResumeTiming();
    if (literal)
      benchmark::DoNotOptimize(SortPassByPass(*set, sortType, {1, 2, 3}));
    else
      benchmark::DoNotOptimize(set->Sort(sortType, Keys({1, 2, 3})));
  }
}

void BM_Sort10k_Ascending_PassByPass(benchmark::State& s) { Sort10k(s, true, TKColumnSetSort_Ascending); }
void BM_Sort10k_Ascending(benchmark::State& s) { Sort10k(s, false, TKColumnSetSort_Ascending); }
void BM_Sort10k_Descending_PassByPass(benchmark::State& s) { Sort10k(s, true, TKColumnSetSort_Descending); }
void BM_Sort10k_Descending(benchmark::State& s) { Sort10k(s, false, TKColumnSetSort_Descending); }

constexpr std::int32_t kBig = 1000000;
constexpr std::int32_t kBigColumns = 4;

void Sort1M(benchmark::State& state, std::int32_t sortType) {
  for (auto _ : state) {
    state.PauseTiming();
    Ref<TKColumnSet> set = MakeSet(kBig, kBigColumns, 7);
    state.ResumeTiming();
    benchmark::DoNotOptimize(set->Sort(sortType, Keys({1, 2, 3})));
  }
}

// std::stable_sort of row indices on the same three keys (texts lower-cased
// beforehand, compared by code units as the sort does).
void StableSort1M(benchmark::State& state, bool descending) {
  Ref<TKColumnSet> set = MakeSet(kBig, kBigColumns, 7);
  const auto& k1 = set->Item(1)->DoubleStore();
  std::vector<std::string> k2;
  for (const auto& t : set->Item(2)->StringStore()) k2.push_back(LowerCase(t));
  const auto& k3 = set->Item(3)->DoubleStore();
  std::vector<std::int32_t> index(kBig);
  for (auto _ : state) {
    std::iota(index.begin(), index.end(), 0);
    auto before = [&](std::int32_t a, std::int32_t b) {
      const auto i = static_cast<std::size_t>(a), j = static_cast<std::size_t>(b);
      if (k1[i] != k1[j]) return k1[i] < k1[j];
      if (const int c = CompareCodeUnits(k2[i], k2[j]); c != 0) return c < 0;
      return k3[i] < k3[j];
    };
    if (descending)
      std::stable_sort(index.begin(), index.end(), [&](std::int32_t a, std::int32_t b) { return before(b, a); });
    else
      std::stable_sort(index.begin(), index.end(), before);
    benchmark::DoNotOptimize(index.data());
  }
}

void BM_Sort1M_Ascending(benchmark::State& s) { Sort1M(s, TKColumnSetSort_Ascending); }
void BM_Sort1M_Descending(benchmark::State& s) { Sort1M(s, TKColumnSetSort_Descending); }
void BM_StableSortIndex1M_Ascending(benchmark::State& s) { StableSort1M(s, false); }
void BM_StableSortIndex1M_Descending(benchmark::State& s) { StableSort1M(s, true); }

void Adds(benchmark::State& state, std::int32_t n) {
  for (auto _ : state) {
    auto column = MakeRef<TKColumn>();
    column->LetColumnType(TKColumnType_Double);
    const Variant v(1.5);
    for (std::int32_t i = 0; i < n; ++i) column->Add(v);
    benchmark::DoNotOptimize(column->NumberOfElements());
  }
}
void BM_Add10k(benchmark::State& s) { Adds(s, 10000); }
void BM_Add100k(benchmark::State& s) { Adds(s, 100000); }

void AddRows(benchmark::State& state, std::int32_t n) {
  for (auto _ : state) {
    auto a = MakeRef<TK2DArray>();
    a->SetDimensions(1, 2, false);
    for (std::int32_t i = 1; i < n; ++i) a->AddRow();
    benchmark::DoNotOptimize(a->Rows());
  }
}
void BM_AddRow2D10k(benchmark::State& s) { AddRows(s, 10000); }
void BM_AddRow2D100k(benchmark::State& s) { AddRows(s, 100000); }

}  // namespace

BENCHMARK(BM_Sort10k_Ascending_PassByPass)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_Sort10k_Ascending)->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(BM_Sort10k_Descending_PassByPass)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_Sort10k_Descending)->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(BM_Sort1M_Ascending)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_StableSortIndex1M_Ascending)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_Sort1M_Descending)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_StableSortIndex1M_Descending)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_Add10k)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Add100k)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_AddRow2D10k)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_AddRow2D100k)->Unit(benchmark::kMillisecond);

namespace {

class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& r : runs) times_[r.run_name.function_name] = r.GetAdjustedRealTime();
    ConsoleReporter::ReportRuns(runs);
  }
  void Ratio(const char* what, const char* a, const char* b) const {
    auto x = times_.find(a), y = times_.find(b);
    if (x == times_.end() || y == times_.end() || y->second <= 0) return;
    std::printf("%-58s %10.2f\n", what, x->second / y->second);
  }

 private:
  std::map<std::string, double> times_;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  std::printf("\nRatios\n");
  reporter.Ratio("10k ascending: pass by pass / sort (>= 100)", "BM_Sort10k_Ascending_PassByPass",
                 "BM_Sort10k_Ascending");
  reporter.Ratio("10k descending: pass by pass / sort (>= 100)", "BM_Sort10k_Descending_PassByPass",
                 "BM_Sort10k_Descending");
  reporter.Ratio("1M ascending: sort / stable_sort of indices (<= 1.5)", "BM_Sort1M_Ascending",
                 "BM_StableSortIndex1M_Ascending");
  reporter.Ratio("1M descending: sort / stable_sort of indices (<= 1.5)", "BM_Sort1M_Descending",
                 "BM_StableSortIndex1M_Descending");
  reporter.Ratio("Add: 100,000 calls / 10,000 calls (< 15)", "BM_Add100k", "BM_Add10k");
  reporter.Ratio("2D AddRow: 100,000 rows / 10,000 rows (< 15)", "BM_AddRow2D100k", "BM_AddRow2D10k");
  benchmark::Shutdown();
  return 0;
}
