// Front end without Google Benchmark, for the 32-bit build. The same repeats, the same columns.
//
//   bench_core [--counts | --passes N NAME | PART OF A NAME]

#include <chrono>
#include <exception>

#include "cases.hpp"

namespace {

using namespace kestrune::bench;

double seconds_of(const Case& c, long passes) {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point start = Clock::now();
  double sum = 0.0;
  for (long k = 0; k < passes; ++k) sum += c.pass();
  const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
  keep(sum);
  return seconds;
}

void run(const Case& c) {
  c.set_up();
  long passes = 1;
  while (seconds_of(c, passes) < kSecondsOfRepeat) passes *= 2;
  std::vector<double> ns;
  for (int k = 0; k < kRepeats; ++k)
    ns.push_back(seconds_of(c, passes) * 1e9 / (c.batch * static_cast<double>(passes)));
  print_row(c, ns);
}

}  // namespace

int main(int argc, char** argv) try {
  if (run_untimed(argc, argv)) return 0;
  const char* part = argc > 1 ? argv[1] : "";
  for (const Case& c : cases())
    if (c.name.find(part) != std::string::npos) run(c);
  return 0;
} catch (const std::exception& e) {
  std::fprintf(stderr, "%s\n", e.what());
  return 1;
}
