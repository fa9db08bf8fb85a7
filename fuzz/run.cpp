#include "run.hpp"

#include <cstdio>
#include <cstdlib>
#include <string>

#include "invariants.hpp"

namespace kestrune::fuzz {
namespace {

Progress own_progress{};
constexpr std::uint64_t kShownOfAKind = 5;

// Flashes are drawn twice as often as properties. What takes as long as a hundred flashes, the envelope and points at
// a given vapour fraction, is drawn rarely.
std::size_t draw_entry(Choices& choices) {
  const auto& all = entries();
  if (progress->only != nullptr)
    for (std::size_t k = 0; k < all.size(); ++k)
      if (std::string_view(all[k].name) == progress->only) return k;
  for (;;) {
    const bool flash = choices.chance(45);
    const auto k = static_cast<std::size_t>(choices.below(flash ? 11 : static_cast<int>(all.size())));
    const bool long_one = all[k].family == Family::envelope || all[k].words[0] == 'W';
    if (!long_one || choices.empty() || choices.chance(25)) return k;
  }
}

void count_time(Tally& t, const Call& c) {
  t.total_ms += c.milliseconds;
  if (c.milliseconds > t.slowest_ms) {
    t.slowest_ms = c.milliseconds;
    t.slowest_run = progress->run;
    t.slowest_count = c.scenario.n();
  }
  if (!c.sound() || (c.own_routines && !routines_are_faithful())) return;
  ++t.sound;
  if (c.milliseconds <= t.slowest_sound_ms) return;
  t.slowest_sound_ms = c.milliseconds;
  t.slowest_sound_run = progress->run;
  t.slowest_sound_count = c.scenario.n();
}

}  // namespace

Progress* progress = &own_progress;

void count_fault(const char* of, const char* what, const char* details) {
  const std::string key = (std::string(of) + ": " + what).substr(0, kKeyLength - 1);
  ++progress->faults;
  for (Progress::Kind& kind : progress->kinds) {
    if (kind.count != 0 && key != kind.key) continue;
    key.copy(kind.key, kKeyLength - 1);
    if (++kind.count > kShownOfAKind) return;
    break;
  }
  std::printf("FAULT --seed %llu --run %llu call %d  %s%s\n", static_cast<unsigned long long>(progress->seed),
              static_cast<unsigned long long>(progress->run), progress->call, key.c_str(), details);
  std::fflush(stdout);
}

int one_run(const std::uint8_t* data, std::size_t size) {
  Choices choices(data, size);
  Scenario scenario(choices);
  const int calls = 1 + choices.below(6);
  int faults = 0;
  for (progress->call = 0; progress->call < calls; ++progress->call) {
    const std::size_t which = draw_entry(choices);
    Call call(choices, scenario, entries()[which]);
    if (progress->narrate) {
      std::printf("run %llu call %d  %s\n", static_cast<unsigned long long>(progress->run), progress->call, call.text().c_str());
      std::fflush(stdout);
    }
    call.run();
    if (progress->narrate) std::printf("      %s, %.3f ms\n", call.results().c_str(), call.milliseconds);
    Tally& tally = progress->tally[which];
    ++tally.calls;
    tally.answers += call.status == KV_OK ? 1 : 0;
    count_time(tally, call);
    Finding finding = broken_rule(call);
    if (finding.what.empty() && !scenario.buffers.red_zones_whole()) finding.what = "a red zone around the group data was written";
    if (finding.what.empty()) continue;
    ++faults;
    ++tally.faults;
    count_fault(call.entry.name, finding.what.c_str(),
                (finding.numbers + "\n      " + call.text() + "\n      gave " + call.results()).c_str());
  }
  return faults;
}

void print_table(const Progress& p) {
  std::printf("%-38s %10s %8s %6s %8s   slowest sound call: %s    slowest of all\n", "export", "calls", "answers", "faults",
              "mean ms", "ms (components, run)");
  const auto integer = [](std::uint64_t v) { return static_cast<unsigned long long>(v); };
  std::uint64_t calls = 0;
  for (std::size_t k = 0; k < entries().size(); ++k) {
    const Tally& t = p.tally[k];
    if (t.calls == 0) continue;
    calls += t.calls;
    const auto n = static_cast<double>(t.calls);
    std::printf("%-38s %10llu %6.1f %% %6llu %8.3f   %9.2f (%d, %llu)   %9.2f (%d, %llu)\n", entries()[k].name, integer(t.calls),
                100.0 * static_cast<double>(t.answers) / n, integer(t.faults), t.total_ms / n, t.slowest_sound_ms,
                t.slowest_sound_count, integer(t.slowest_sound_run), t.slowest_ms, t.slowest_count, integer(t.slowest_run));
  }
  std::printf("%llu calls in %llu runs, %llu faults\n", integer(calls), integer(p.run - p.first), integer(p.faults));
  for (const Progress::Kind& kind : p.kinds)
    if (kind.count != 0) std::printf("%8llu  %s\n", static_cast<unsigned long long>(kind.count), kind.key);
}

}  // namespace kestrune::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (kestrune::fuzz::one_run(data, size) != 0) std::abort();
  return 0;
}
