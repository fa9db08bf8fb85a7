// Flashes at enthalpy and entropy: the round trip from temperature and back, asked at many states.
#include <algorithm>
#include <cmath>

#include "options.hpp"
#include "states.hpp"
#include "tables.hpp"

namespace {

using namespace kestrune::sweep;

constexpr int starts = 4;
const char* const start_names[starts] = {"none", "60 K off", "far", "warm"};

struct Tally {
  int trips = 0, single = 0, two = 0, three = 0, range = 0, other = 0, skipped = 0, wrong = 0;
  double apart = 0, energy = 0, fugacity = 0, seconds = 0;
  std::map<std::string, int> groups;

  void add(const CaloricAnswer& a, const CaloricVerdict& v, int start) {
    ++trips;
    seconds += a.seconds;
    if (!v.group.empty()) {
      ++wrong;
      ++groups[v.group + ", start " + start_names[start]];
      return;
    }
    range += a.phases.status == KV_PURE_RANGE;
    other += v.other_state;
    single += v.outcome == Outcome::single_phase;
    two += v.outcome == Outcome::two_phase;
    three += v.outcome == Outcome::three_phase_state;
    apart = std::max(apart, v.apart);
    energy = std::max(energy, v.energy);
    fugacity = std::max(fugacity, v.fugacity);
  }

  void add(const Tally& t) {
    trips += t.trips;
    single += t.single;
    two += t.two;
    three += t.three;
    range += t.range;
    other += t.other;
    skipped += t.skipped;
    wrong += t.wrong;
    apart = std::max(apart, t.apart);
    energy = std::max(energy, t.energy);
    fugacity = std::max(fugacity, t.fugacity);
    seconds += t.seconds;
    for (const auto& [name, count] : t.groups) groups[name] += count;
  }

  void print(const char* name, bool times) const {
    std::printf("%-26s %7d %7d %7d %6d %6d %6d %6d %6d  %8.1e %8.1e %8.1e", name, trips, single, two, three,
                range, other, skipped, wrong, apart, energy, fugacity);
    if (times) std::printf(" %8.1f us", 1e6 * seconds / std::max(1, trips));
    std::printf("\n");
    std::fflush(stdout);
  }
};

// One state, what was asked about it and what came back.
struct Trip {
  bool usable = false;
  Quantity quantity = Quantity::enthalpy;
  CaloricQuestion question;
  Answer base;  // of the state
  double T_start[starts] = {};
  CaloricAnswer answers[starts];
  CaloricVerdict verdicts[starts];
};

// Enthalpy or entropy of a phase by the property exports.
bool value_of(Library& library, const Trip& trip, double T, const Answer& phases, bool vapour, double& value) {
  const Question& state = trip.question.state;
  return library.property(trip.quantity, asks_gas(state, T, phases, vapour), T, state.P,
                          vapour ? phases.y : phases.x, value);
}

// The state: by the flash at T and P, or where that cannot meet two phases (feeds of nearly one component,
// every second state), by the temperature of a vapour fraction drawn from the state.
void set_state(Library& library, const Sides& sides, const Components& components, int k, const State& state,
               Trip& trip) {
  const Feed& feed = sides.feed;
  Question& q = trip.question.state;
  q = {&components, feed.z, state.T, state.P, feed.free_water, feed.solubility_a, feed.solubility_b};
  if (sides.nearly_pure() && k % 2 == 1) {
    const double W = std::fmod(state.T * 7919, 1.0);
    const SaturationAnswer point = library.saturation(feed, {Given::pressure, W, state.P});
    if (point.status != 0) return;
    q.T = point.found;
    trip.base = {0, W, point.x, point.y, point.K};
    trip.question.sharp = false;
  } else {
    trip.base = library.flash(feed, state.T, state.P);
  }
  if (!judge(q, trip.base).reason.empty()) return;
  // With free water above the critical pressure of water an answer may go by either model.
  if (q.free_water && q.P > critical_pressure_of_water) return;
  const double beta = trip.question.beta = trip.base.beta;
  double liquid = 0, vapour = 0;
  trip.quantity = (k / 2) % 2 ? Quantity::entropy : Quantity::enthalpy;
  if (beta < 1 && !value_of(library, trip, q.T, trip.base, false, liquid)) return;
  if (beta > 0 && !value_of(library, trip, q.T, trip.base, true, vapour)) return;
  trip.question.value = (1 - beta) * liquid + beta * vapour;
  trip.usable = true;
}

void ask(Library& library, const Feed& feed, int k, const Trip* before, Trip& trip) {
  const Question& state = trip.question.state;
  trip.T_start[1] = std::max(10.0, state.T + (k % 4 < 2 ? 60 : -60));
  trip.T_start[2] = k % 2 ? 5 : 5000;
  trip.T_start[3] = before ? before->question.state.T : 0;
  for (int s = 0; s < starts; ++s) {
    CaloricAnswer& a = trip.answers[s];
    a = library.caloric(feed, trip.quantity, trip.question.value, state.P, trip.T_start[s],
                        s == 3 && before ? &before->base : nullptr);
    PhaseValues values;
    if (a.phases.status == KV_OK || a.phases.status == KV_PURE_RANGE) {
      values.liquid_known = value_of(library, trip, a.T, a.phases, false, values.liquid);
      values.vapour_known = value_of(library, trip, a.T, a.phases, true, values.vapour);
    }
    trip.verdicts[s] = judge_caloric(trip.question, a, values);
  }
}

void write_failure(std::FILE* file, const Feed& feed, const Trip& trip, int s) {
  const CaloricAnswer& a = trip.answers[s];
  std::fprintf(file, "%s,%s,%.17g,%.17g,%.17g,%.17g,%s,%.17g,%d,%.17g,%.17g,\"%s\",\"%s\",", feed.name.c_str(),
               trip.quantity == Quantity::entropy ? "SP" : "HP", trip.question.value, trip.question.state.P,
               trip.question.state.T, trip.question.beta, start_names[s], trip.T_start[s], a.phases.status, a.T,
               a.phases.beta, trip.verdicts[s].group.c_str(), trip.verdicts[s].reason.c_str());
  write_values(file, feed.z);
  std::fprintf(file, "\n");
  std::fflush(file);
}

Tally sweep_feed(const Options& o, Library& library, const Feed& feed, int count, std::FILE* failures) {
  const Components components = read_components(o.data, feed.ids);
  const Sides sides(feed, components);
  const StatePlan plan{count, o.jobs, o.critical_steps, o.seed_of(feed)};
  const std::vector<State> states = make_states(feed, components, plan);
  library.prepare(feed, components);
  const int n = static_cast<int>(states.size());
  std::vector<Trip> trips(n);
  parallel_for(n, o.jobs, [&](int k) { set_state(library, sides, components, k, states[k], trips[k]); });
  parallel_for(n, o.jobs, [&](int k) {
    if (trips[k].usable)
      ask(library, feed, k, k > 0 && trips[k - 1].usable ? &trips[k - 1] : nullptr, trips[k]);
  });
  Tally tally;
  for (const Trip& trip : trips) {
    tally.skipped += !trip.usable;
    for (int s = 0; s < starts && trip.usable; ++s) {
      tally.add(trip.answers[s], trip.verdicts[s], s);
      if (!trip.verdicts[s].group.empty()) write_failure(failures, feed, trip, s);
    }
  }
  tally.print(feed.name.c_str(), o.times);
  return tally;
}

}  // namespace

namespace kestrune::sweep {

int run_caloric(const Options& o, Library& library, std::FILE* failures) {
  std::fprintf(
      failures,
      "mixture,export,value,P_atm,T_K,beta,start,T_start,status,answer_T,answer_beta,group,reason,z\n");
  const std::vector<Feed> feeds = all_feeds();
  const int count = o.states / starts / static_cast<int>(feeds.size()) + 1;
  std::printf("%-26s %7s %7s %7s %6s %6s %6s %6s %6s  %8s %8s %8s\n", "mixture", "trips", "single", "two",
              "three", "range", "other", "skip", "wrong", "T", "balance", "ln f");
  Tally total;
  for (const Feed& feed : feeds) {
    if (!o.mixture.empty() && feed.name != o.mixture) continue;
    total.add(sweep_feed(o, library, feed, count, failures));
  }
  total.print("all", o.times);
  print_groups(total.groups);
  std::printf("%d passed, %d failed\n", total.trips - total.wrong, total.wrong);
  return total.trips > 0 ? total.wrong : -1;
}

}  // namespace kestrune::sweep
