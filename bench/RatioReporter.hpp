// A console reporter that also remembers each benchmark's time per
// iteration, so a benchmark program can print ratios against the baseline it
// measured in the same run.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace TessarkAO::Bench {

class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& r : runs)
      if (r.run_type == Run::RT_Iteration && !r.error_occurred)
        times_[r.benchmark_name()] = r.GetAdjustedRealTime();
    ConsoleReporter::ReportRuns(runs);
  }
  // Time per iteration of a benchmark by its full name; 0 when it did not run.
  double Time(const std::string& name) const {
    auto it = times_.find(name);
    return it == times_.end() ? 0.0 : it->second;
  }
  // Prints "label: a / b = ratio (goal)" for two benchmarks that ran.
  void PrintRatio(const std::string& label, const std::string& a, const std::string& b,
                  const std::string& goal = {}) const {
    const double ta = Time(a), tb = Time(b);
    if (ta <= 0 || tb <= 0) return;
    std::printf("ratio %-48s %10.3f  (%s / %s)%s%s\n", label.c_str(), ta / tb, a.c_str(), b.c_str(),
                goal.empty() ? "" : "  goal: ", goal.c_str());
  }

 private:
  std::map<std::string, double> times_;
};

// Runs the registered benchmarks with a RatioReporter and hands it to `report`.
template <class F>
int RunWithRatios(int argc, char** argv, F report) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  report(reporter);
  benchmark::Shutdown();
  return 0;
}

}  // namespace TessarkAO::Bench
