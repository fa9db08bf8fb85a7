#include "report.hpp"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string_view>

namespace kestrune::fuzz {
namespace {

Progress own_progress{};
constexpr std::uint64_t kShownOfAKind = 5;
constexpr int kUsualSize = 40;
constexpr double kSlow = 50.0;  // ms

unsigned long long integer(std::uint64_t value) {
  return value;
}

void print_slowest(const Slowest& s) {
  std::printf("  %10.2f %4d %9llu", s.ms, s.size, integer(s.run));
}

}  // namespace

double processor_ms() {
  return 1e3 * static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

Progress* progress = &own_progress;

void Tally::count(double ms, int size, bool answered, bool is_sound) {
  ++calls;
  answers += answered ? 1 : 0;
  total_ms += ms;
  if (ms > any.ms) any = {ms, progress->run, size};
  if (!is_sound || size > kUsualSize) return;
  slow += ms > kSlow ? 1 : 0;
  if (ms > sound.ms) sound = {ms, progress->run, size};
}

Tally& Progress::tally(const char* name) {
  std::size_t k = 0;
  while (tallies[k].name[0] != 0 && std::string_view(tallies[k].name) != name) ++k;
  if (tallies[k].name[0] == 0) std::string_view(name).copy(tallies[k].name, sizeof tallies[k].name - 1);
  return tallies[k];
}

void count_fault(const char* of, const std::string& what, const std::string& details) {
  const std::string key = (std::string(of) + ": " + what).substr(0, Progress::kKey - 1);
  ++progress->faults;
  for (Progress::Kind& kind : progress->kinds) {
    if (kind.count != 0 && key != kind.key) continue;
    key.copy(kind.key, Progress::kKey - 1);
    if (++kind.count > kShownOfAKind) return;
    break;
  }
  if (progress->known < known_cases())
    std::printf("FAULT known case %llu", integer(progress->known));
  else
    std::printf("FAULT --seed %llu --run %llu call %d", integer(progress->seed), integer(progress->run),
                progress->call);
  std::printf("  %s%s\n", key.c_str(), details.c_str());
  std::fflush(stdout);
}

void print_table(const Progress& p) {
  std::printf("%-38s %10s %8s %6s %9s %7s  %s\n", "", "calls", "answers", "faults", "mean ms", "> 50 ms",
              "slowest sound, up to 40: ms, size, run    slowest of all");
  std::uint64_t calls = 0;
  for (const Tally& t : p.tallies) {
    if (t.calls == 0) continue;
    calls += t.calls;
    const auto n = static_cast<double>(t.calls);
    std::printf("%-38s %10llu %6.1f %% %6llu %9.3f %7llu", t.name, integer(t.calls),
                100.0 * static_cast<double>(t.answers) / n, integer(t.faults), t.total_ms / n, integer(t.slow));
    print_slowest(t.sound);
    print_slowest(t.any);
    std::printf("\n");
  }
  std::printf("%llu calls in %llu runs, %llu faults\n", integer(calls), integer(p.run - p.first),
              integer(p.faults));
  for (const Progress::Kind& kind : p.kinds)
    if (kind.count != 0) std::printf("%8llu  %s\n", integer(kind.count), kind.key);
}

}  // namespace kestrune::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using kestrune::fuzz::progress;
  progress->known = kestrune::fuzz::known_cases();
  [[maybe_unused]] static const int table_at_exit = std::atexit([] { kestrune::fuzz::print_table(*progress); });
  const std::uint64_t before = progress->faults;
  kestrune::fuzz::one_run(data, size);
  if (progress->faults != before) std::abort();
  ++progress->run;
  return 0;
}
