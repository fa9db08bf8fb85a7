// The three-phase flashes at enthalpy, entropy and vapour fraction: from the flash at T and P and back.
#include <algorithm>
#include <cmath>

#include "options.hpp"
#include "states.hpp"
#include "tables.hpp"
#include "three_states.hpp"

namespace {

using namespace kestrune::sweep;

// One call and what came of it.
struct Trip {
  const char* name = "HP";  // of the export, with the start
  double value = 0, expected = 0, found = 0;
  ThreeAnswer phases;
  GivenVerdict verdict;
  bool none = false;  // no bubble or dew point, and none is known
};

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

// What the trips of one system share.
struct Asker {
  Library& library;
  const System& system;
  const Components& components;

  Question question(const ThreeState& s, double T, double P) const { return {&components, s.z, T, P}; }

  ThreeValues values(Quantity quantity, const Question& q, const ThreeAnswer& answer) const {
    ThreeValues result;
    for (const PresentPhase& phase : present_phases(q, Reduced(q), answer)) {
      const int k = phase.name == 'A' ? 0 : phase.name == 'B' ? 1 : 2;
      const Composition& w = k == 0 ? answer.a : k == 1 ? answer.b : answer.y;
      result.known[k] = library.property(quantity, is_gas(phase), q.T, q.P, w, result.value[k]);
    }
    return result;
  }

  double total(Quantity quantity, const ThreeState& s) const {
    const ThreeValues parts = values(quantity, question(s, s.T, s.P), s.answer);
    return s.answer.beta * parts.value[0] + s.answer.rest() * parts.value[1] + s.answer.V * parts.value[2];
  }

  Trip caloric(const char* name, Quantity quantity, double value, double T_low, double T_high,
               const ThreeState& s, double start, const ThreeAnswer* estimate) const {
    Trip trip{name, value, T_low, 0, {}, {}};
    const ThreeCaloricAnswer answer = library.three_caloric(quantity, value, s.P, s.z, start, estimate);
    trip.found = answer.T;
    trip.phases = answer.phases;
    ThreeValues parts;
    const bool usable = layout_of(answer.phases) != Layout::none && answer.T > 0 && answer.T < 1e5;
    if (usable) parts = values(quantity, question(s, answer.T, s.P), answer.phases);
    trip.verdict = judge_three_caloric({question(s, 0, s.P), value, T_low, T_high}, answer, parts);
    return trip;
  }

  Trip point(const char* name, double W, bool at_pressure, const ThreeState& s, double start,
             const ThreeAnswer* estimate) const {
    Trip trip{name, W, at_pressure ? s.T : s.P, 0, {}, {}};
    const SaturationQuestion q{at_pressure ? Given::pressure : Given::temperature, W, at_pressure ? s.P : s.T};
    const ThreePoint answer = library.three_point(q, s.z, start, estimate);
    trip.found = answer.found;
    trip.phases = answer.phases;
    const Question state = at_pressure ? question(s, answer.found, s.P) : question(s, s.T, answer.found);
    static_cast<ThreeVerdict&>(trip.verdict) = judge_three_point(state, W, answer);
    trip.verdict.apart = std::abs(answer.found - trip.expected) / (at_pressure ? 1 : trip.expected);
    trip.verdict.other = trip.verdict.apart > 1e-6;
    return trip;
  }

  // Where the share of the vapour reaches W = 0 or 1 without a jump on the way from the state to the end of the
  // system's range; 0 when it does not.
  double end_of_vapour(double W, bool at_pressure, const ThreeState& s) const {
    const double from = at_pressure ? s.T : s.P;
    const double to = at_pressure ? (W == 0 ? system.feed.T_low : system.feed.T_high)
                                  : (W == 0 ? system.P_high : system.P_low);
    const auto reached = [&](double at, double& V) {
      const ThreeAnswer answer = at_pressure ? library.three(at, s.P, s.z) : library.three(s.T, at, s.z);
      V = answer.status == 0 ? answer.V : 0.5;
      return answer.status == 0 && V == W;
    };
    double a = from, b = from, V = 0, last = s.answer.V;
    for (int k = 1; k <= 12 && b == from; ++k) {
      const double at = from + (to - from) * k / 12;
      if (reached(at, V)) {
        b = at;
      } else {
        a = at;
        last = V;
      }
    }
    if (b == from) return 0;
    for (int k = 0; k < 45; ++k) {
      const double middle = 0.5 * (a + b);
      if (reached(middle, V)) {
        b = middle;
      } else {
        a = middle;
        last = V;
      }
    }
    return std::abs(last - W) < 1e-6 ? b : 0;
  }

  // Bubble or dew point; a missing one is a fault where the share of the vapour shows that it exists.
  Trip end(const char* name, double W, bool at_pressure, const ThreeState& s) const {
    Trip trip = point(name, W, at_pressure, s, 0, nullptr);
    trip.verdict.apart = 0;
    trip.verdict.other = false;
    if (trip.phases.status == 0) return trip;
    const double known = end_of_vapour(W, at_pressure, s);
    trip.expected = known;
    trip.none = known == 0 && trip.phases.status == KV_NO_SATURATION;
    if (trip.none) trip.verdict = GivenVerdict{};
    if (known > 0) trip.verdict.reason += text(", but there is a point at %.10g", known);
    return trip;
  }

  // Everything that is asked about state k; before: the state before it, or null.
  std::vector<Trip> ask(int k, const ThreeState& s, const ThreeState* before) const {
    std::vector<Trip> trips;
    const bool entropy = k / 2 % 2 == 1;
    const Quantity quantity = entropy ? Quantity::entropy : Quantity::enthalpy;
    const double value = total(quantity, s);
    trips.push_back(caloric(entropy ? "SP cold" : "HP cold", quantity, value, s.T, s.T, s, 0, nullptr));
    if (before)
      trips.push_back(
          caloric(entropy ? "SP warm" : "HP warm", quantity, value, s.T, s.T, s, s.T + 3, &before->answer));
    if (before && before->P == s.P && before->z == s.z && before->T != s.T) {
      const double middle = 0.5 * (value + total(quantity, *before));
      trips.push_back(caloric(entropy ? "SP between" : "HP between", quantity, middle, std::min(s.T, before->T),
                              std::max(s.T, before->T), s, 0, nullptr));
    }
    const double V = s.answer.V;
    if (V > 0 && V < 1) {
      trips.push_back(point("WP cold", V, true, s, 0, nullptr));
      trips.push_back(point("WT cold", V, false, s, 0, nullptr));
      trips.push_back(point("WP warm", V, true, s, s.T * 1.005, &s.answer));
      trips.push_back(point("WT warm", V, false, s, s.P * 1.02, &s.answer));
      const double W = k % 2;
      trips.push_back(end(W == 0 ? "WP bubble" : "WP dew", W, true, s));
      trips.push_back(end(W == 0 ? "WT bubble" : "WT dew", W, false, s));
    }
    return trips;
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
