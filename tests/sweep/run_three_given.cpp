// The three-phase flashes at enthalpy, entropy and vapour fraction: from the flash at T and P and back, and at
// values on a grid.
#include "report.hpp"
#include "tables.hpp"
#include "three_ask.hpp"

namespace kestrune::sweep {
namespace {

void count(const Trip& trip, Tally& tally) {
  const GivenVerdict& v = trip.verdict;
  tally.count("trips");
  tally.seconds[trip.name].push_back(trip.phases.seconds);
  tally.count("none", trip.none);
  if (!v.group.empty()) return tally.blame({std::string(trip.name) + ": " + v.group});
  tally.count("other", v.other);
  if (!v.other) tally.size("T, P", v.apart);
  tally.size("balance", v.energy);
  tally.size("ln f", v.fugacity);
  tally.size("-tpd", -v.tpd);
}

void sweep_given(const Options& o, Library& library, const System& system, int count_of, std::FILE* failures,
                 Tally& tally) {
  const Components components = read_components(o.data, system.feed.ids);
  library.prepare(system.feed, components);
  const Sample sample =
      sample_states(system, {count_of, o.jobs, o.seed_of(system.feed)},
                    [&](double T, double P, const Composition& z) { return library.three(T, P, z); });
  const int n = static_cast<int>(sample.states.size());
  const Asker asker{library, system, components};
  std::vector<char> right(n);
  std::vector<std::vector<Trip>> trips(n);
  parallel_for(n, o.jobs, [&](int k) {
    const ThreeState& s = sample.states[k];
    right[k] = judge_three(asker.question(s, s.T, s.P), s.answer).group.empty();
  });
  parallel_for(n, o.jobs, [&](int k) {
    if (right[k])
      trips[k] = asker.ask(k, sample.states[k], k > 0 && right[k - 1] ? &sample.states[k - 1] : nullptr);
  });
  const auto report = [&](const ThreeState& s, const std::vector<Trip>& made) {
    for (const Trip& trip : made) {
      const ThreeAnswer& a = trip.phases;
      count(trip, tally);
      if (!trip.verdict.group.empty())
        Line(failures) << system.feed.name << s.kind << trip.name << s.T << s.P << trip.value << trip.expected
                       << a.status << trip.found << a.beta << a.V << trip.verdict.group << trip.verdict.reason
                       << s.z << a.a << a.b << a.y;
    }
  };
  for (int k = 0; k < n; ++k) {
    tally.count("states", right[k]);
    report(sample.states[k], trips[k]);
  }
  const std::vector<ThreeState> drawn = draw_states(system, count_of / 3 + 1, o.seed_of(system.feed) + 1);
  trips.assign(drawn.size(), {});
  parallel_for(static_cast<int>(drawn.size()), o.jobs, [&](int k) { trips[k] = asker.grid(k, drawn[k]); });
  for (size_t k = 0; k < drawn.size(); ++k) report(drawn[k], trips[k]);
}

}  // namespace

int run_three_given(const Options& o, Library& library, std::FILE* failures) {
  std::fprintf(failures,
               "system,kind,export,T_K,P_atm,value,expected,status,found,beta,V,group,reason,z,xA,xB,y\n");
  const std::vector<System> systems = three_phase_systems();
  const int count_of = o.states / static_cast<int>(systems.size()) + 1;
  return run_over(
      o, {{"trips", "states", "other", "none"}, {"T, P", "balance", "ln f", "-tpd"}}, systems,
      [&](const System& s, Tally& tally) { sweep_given(o, library, s, count_of, failures, tally); });
}

}  // namespace kestrune::sweep
