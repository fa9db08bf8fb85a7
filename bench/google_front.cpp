// Front end for Google Benchmark. Its own options work (--benchmark_filter=..., --benchmark_repetitions=...);
// --counts and --passes N NAME time nothing (cases.hpp).

#include <benchmark/benchmark.h>

#include <exception>

#include "cases.hpp"

namespace {

using namespace kestrune::bench;

// One line for each case: minimum and median over its repeats.
class Rows : public benchmark::BenchmarkReporter {
 public:
  explicit Rows(const std::vector<Case>& all) : all_(all) {}
  bool ReportContext(const Context&) override { return true; }
  void ReportRuns(const std::vector<Run>& runs) override {
    const Case* found = nullptr;
    std::vector<double> ns;
    for (const Run& run : runs) {
      if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
      for (const Case& c : all_)
        if (c.name == run.run_name.function_name) found = &c;
      if (found != nullptr)
        ns.push_back(run.real_accumulated_time * 1e9 / (static_cast<double>(run.iterations) * found->batch));
    }
    if (found != nullptr) print_row(*found, ns);
  }

 private:
  const std::vector<Case>& all_;
};

}  // namespace

int main(int argc, char** argv) try {
  if (run_untimed(argc, argv)) return 0;
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  const std::vector<Case> all = cases();
  for (const Case& c : all) {
    benchmark::RegisterBenchmark(c.name.c_str(),
                                 [&c](benchmark::State& state) {
                                   c.set_up();
                                   double sum = 0.0;
                                   for (auto _ : state) sum += c.pass();
                                   benchmark::DoNotOptimize(sum);
                                 })
        ->Repetitions(kRepeats)
        ->MinTime(kSecondsOfRepeat)
        ->UseRealTime();
  }
  Rows rows(all);
  benchmark::RunSpecifiedBenchmarks(&rows);
  return 0;
} catch (const std::exception& e) {
  std::fprintf(stderr, "%s\n", e.what());
  return 1;
}
