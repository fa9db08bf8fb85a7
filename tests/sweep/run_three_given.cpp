// The three-phase flashes at enthalpy, entropy and vapour fraction: from the flash at T and P and back, and at
// values on a grid.
#include <algorithm>
#include <cmath>

#include "options.hpp"
#include "states.hpp"
#include "tables.hpp"
#include "three_ask.hpp"

namespace {

using namespace kestrune::sweep;

struct Tally {
  int states = 0, trips = 0, other = 0, none = 0, wrong = 0;
  double apart = 0, energy = 0, fugacity = 0, tpd = 0;
  std::map<std::string, int> groups, asked;
  std::map<std::string, std::vector<double>> seconds;

  void add(const Trip& trip) {
    ++trips;
    ++asked[trip.name];
    seconds[trip.name].push_back(trip.phases.seconds);
    none += trip.none;
    if (!trip.verdict.group.empty()) {
      ++wrong;
      ++groups[std::string(trip.name) + ": " + trip.verdict.group];
      return;
    }
    other += trip.verdict.other;
    if (!trip.verdict.other) apart = std::max(apart, trip.verdict.apart);
    energy = std::max(energy, trip.verdict.energy);
    fugacity = std::max(fugacity, trip.verdict.fugacity);
    tpd = std::min(tpd, trip.verdict.tpd);
  }

  void add(const Tally& t) {
    states += t.states;
    trips += t.trips;
    other += t.other;
    none += t.none;
    wrong += t.wrong;
    apart = std::max(apart, t.apart);
    energy = std::max(energy, t.energy);
    fugacity = std::max(fugacity, t.fugacity);
    tpd = std::min(tpd, t.tpd);
    for (const auto& [name, count] : t.groups) groups[name] += count;
    for (const auto& [name, count] : t.asked) asked[name] += count;
    for (const auto& [name, times] : t.seconds)
      seconds[name].insert(seconds[name].end(), times.begin(), times.end());
  }

  void print(const char* name) const {
    std::printf("%-26s %7d %7d %6d %6d %6d  %8.1e %8.1e %8.1e %9.1e\n", name, states, trips, other, none, wrong,
                apart, energy, fugacity, tpd);
    std::fflush(stdout);
  }

  void print_exports(bool times) {
    for (auto& [name, list] : seconds) {
      std::printf("  %7d  %s", asked[name], name.c_str());
      std::sort(list.begin(), list.end());
      double sum = 0;
      for (double t : list) sum += t;
      if (times)
        std::printf(": mean %.1f us, p95 %.1f us, largest %.1f us",
                    1e6 * sum / static_cast<double>(list.size()), 1e6 * list[list.size() * 95 / 100],
                    1e6 * list.back());
      std::printf("\n");
    }
  }
};

void write_failure(std::FILE* file, const System& system, const ThreeState& s, const Trip& trip) {
  const ThreeAnswer& a = trip.phases;
  std::fprintf(file, "%s,%s,%s,%.17g,%.17g,%.17g,%.17g,%d,%.17g,%.17g,%.17g,\"%s\",\"%s\"",
               system.feed.name.c_str(), s.kind, trip.name, s.T, s.P, trip.value, trip.expected, a.status,
               trip.found, a.beta, a.V, trip.verdict.group.c_str(), trip.verdict.reason.c_str());
  for (const Composition* part : {&s.z, &a.a, &a.b, &a.y}) {
    std::fprintf(file, ",");
    write_values(file, *part);
  }
  std::fprintf(file, "\n");
  std::fflush(file);
}

Tally sweep_system(const Options& o, Library& library, const System& system, int count, std::FILE* failures) {
  const Components components = read_components(o.data, system.feed.ids);
  library.prepare(system.feed, components);
  const Sample sample =
      sample_states(system, {count, o.jobs, o.seed_of(system.feed)},
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
  Tally tally;
  for (int k = 0; k < n; ++k) {
    tally.states += right[k];
    for (const Trip& trip : trips[k]) {
      tally.add(trip);
      if (!trip.verdict.group.empty()) write_failure(failures, system, sample.states[k], trip);
    }
  }
  const std::vector<ThreeState> drawn = draw_states(system, count / 3 + 1, o.seed_of(system.feed) + 1);
  trips.assign(drawn.size(), {});
  parallel_for(static_cast<int>(drawn.size()), o.jobs, [&](int k) { trips[k] = asker.grid(k, drawn[k]); });
  for (size_t k = 0; k < drawn.size(); ++k)
    for (const Trip& trip : trips[k]) {
      tally.add(trip);
      if (!trip.verdict.group.empty()) write_failure(failures, system, drawn[k], trip);
    }
  tally.print(system.feed.name.c_str());
  return tally;
}

}  // namespace

namespace kestrune::sweep {

int run_three_given(const Options& o, Library& library, std::FILE* failures) {
  std::fprintf(failures,
               "system,kind,export,T_K,P_atm,value,expected,status,found,beta,V,group,reason,z,xA,xB,y\n");
  const std::vector<System> systems = three_phase_systems();
  const int count = o.states / static_cast<int>(systems.size()) + 1;
  std::printf("%-26s %7s %7s %6s %6s %6s  %8s %8s %8s %9s\n", "system", "states", "trips", "other", "none",
              "wrong", "T, P", "balance", "ln f", "tpd");
  Tally total;
  for (const System& system : systems) {
    if (!o.mixture.empty() && system.feed.name != o.mixture) continue;
    total.add(sweep_system(o, library, system, count, failures));
  }
  total.print("all");
  total.print_exports(o.times);
  print_groups(total.groups);
  std::printf("%d passed, %d failed\n", total.trips - total.wrong, total.wrong);
  return total.trips > 0 ? total.wrong : -1;
}

}  // namespace kestrune::sweep
