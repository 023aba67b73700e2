#include "Limits.h"

#include <benchmark/benchmark.h>
#include <algorithm>
#include <cstdio>
#include <map>

namespace {

class MedianReporter final : public benchmark::ConsoleReporter {
 public:
  MedianReporter() : ConsoleReporter(OO_Tabular) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.run_type == Run::RT_Iteration && !run.error_occurred) {
        const auto& name = run.run_name;
        times_[name.args.empty() ? name.function_name : name.function_name + "/" + name.args].push_back(
            run.real_accumulated_time / static_cast<double>(run.iterations) * 1e3);
      }
    }
  }

  double median(const std::string& name) {
    auto& values = times_[name];
    if (values.empty()) return 0;
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
  }

  void print() {
    std::printf("%-34s %10s %10s %10s  (ms, of %s)\n", "", "median", "fastest", "slowest", "the runs");
    for (auto& [name, values] : times_) {
      std::sort(values.begin(), values.end());
      std::printf("%-34s %10.2f %10.2f %10.2f\n", name.c_str(), median(name), values.front(), values.back());
    }
  }

 private:
  std::map<std::string, std::vector<double>> times_;
};

}  // namespace

int runWithLimits(int argc, char** argv, const std::vector<RatioLimit>& ratios, const std::vector<TimeLimit>& times) {
  std::vector<char*> arguments(argv, argv + argc);
  std::string repetitions = "--benchmark_repetitions=9";
  std::string interleaving = "--benchmark_enable_random_interleaving=true";
  std::string shortest = "--benchmark_min_time=0.02";
  for (std::string* argument : {&repetitions, &interleaving, &shortest}) {
    arguments.insert(arguments.begin() + 1, argument->data());
  }
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  MedianReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.print();
  for (const RatioLimit& limit : ratios) {
    const double peer = reporter.median(limit.peer);
    if (peer <= 0) continue;  // filtered out
    const double ratio = reporter.median(limit.benchmark) / peer;
    std::printf("%s / %s = %.2f, limit %.2f: %s\n", limit.benchmark.c_str(), limit.peer.c_str(), ratio, limit.atMost,
                ratio <= limit.atMost ? "kept" : "MISSED");
  }
  for (const TimeLimit& limit : times) {
    const double time = reporter.median(limit.benchmark);
    std::printf("%s = %.1f ms, limit %.0f ms: %s\n", limit.benchmark.c_str(), time, limit.atMost,
                time <= limit.atMost ? "kept" : "MISSED");
  }
  return 0;
}
