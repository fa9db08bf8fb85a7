// Runs over the exports: a mixture and some calls with it.
#include <cstdio>
#include <string_view>

#include "invariants.hpp"
#include "report.hpp"

namespace kestrune::fuzz {
namespace {

// Flashes are drawn twice as often as properties. What takes as long as a hundred flashes, the envelope and points at
// a given vapour fraction, is drawn rarely.
const Entry& draw_entry(Choices& choices) {
  const auto& all = entries();
  if (progress->only != nullptr) return entry_of(progress->only);
  for (;;) {
    const bool flash = choices.chance(45);
    const Entry& entry =
        all[static_cast<std::size_t>(choices.below(flash ? 11 : static_cast<int>(all.size())))];
    const bool long_one = entry.family == Family::envelope || entry.words[0] == 'W';
    if (!long_one || choices.empty() || choices.chance(15)) return entry;
  }
}

}  // namespace

void make_call(Call& call) {
  if (progress->tallies[0].calls == 0)
    for (const Entry& entry : entries()) progress->tally(entry.name);  // the order of the table
  if (progress->narrate) {
    std::printf("run %llu call %d  %s\n", static_cast<unsigned long long>(progress->run), progress->call,
                call.text().c_str());
    std::fflush(stdout);
  }
  call.run();
  if (progress->narrate) std::printf("      %s, %.3f ms\n", call.results().c_str(), call.milliseconds);
  Tally& tally = progress->tally(call.entry.name);
  const bool sound = call.sound() && (!call.own_routines || routines_are_faithful());
  tally.count(call.milliseconds, call.scenario.n(), call.status == KV_OK, sound);
  Finding finding = broken_rule(call);
  if (finding.what.empty() && !call.scenario.buffers.red_zones_whole())
    finding.what = "a red zone around the group data was written";
  if (finding.what.empty()) return;
  ++tally.faults;
  count_fault(call.entry.name, finding.what,
              finding.numbers + "\n      " + call.text() + "\n      gave " + call.results());
}

void one_run(const std::uint8_t* data, std::size_t size) {
  Choices choices(data, size);
  Scenario scenario(choices);
  const int calls = 1 + choices.below(6);
  for (progress->call = 0; progress->call < calls; ++progress->call) {
    Call call(choices, scenario, draw_entry(choices));
    make_call(call);
  }
}

}  // namespace kestrune::fuzz
