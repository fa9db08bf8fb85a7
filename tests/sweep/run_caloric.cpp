// Flashes at enthalpy and entropy: the round trip from temperature and back, asked at many states, and values
// on a grid that were made from no state.
#include <algorithm>
#include <cmath>

#include "report.hpp"
#include "tables.hpp"

namespace kestrune::sweep {
namespace {

constexpr int start_count = 4;
const char* const names_of_starts[start_count] = {"none", "60 K off", "far", "warm"};

void count(const CaloricAnswer& a, const CaloricVerdict& v, int start, Tally& tally) {
  tally.count("trips");
  tally.seconds[std::string("start ") + names_of_starts[start]].push_back(a.seconds);
  if (!v.group.empty()) return tally.blame({v.group + ", start " + names_of_starts[start]});
  tally.count("jump", a.phases.status == KV_NOT_CONVERGED);
  tally.count("range", a.phases.status == KV_PURE_RANGE);
  tally.count("other", v.other_state);
  tally.count("single", v.outcome == Outcome::single_phase);
  tally.count("two", v.outcome == Outcome::two_phase);
  tally.count("three", v.outcome == Outcome::three_phase_state);
  tally.size("T", v.apart);
  tally.size("balance", v.energy);
  tally.size("ln f", v.fugacity);
}

struct GridPlan {
  int rows, columns;
  double shift;  // of the grid, in parts of its spacing
};

// One state, what was asked about it and what came back.
struct CaloricTrip {
  bool usable = false;
  CaloricQuestion question;
  Answer base;  // of the state
  double T_start[start_count] = {};
  CaloricAnswer answers[start_count];
  CaloricVerdict verdicts[start_count];
};

// Enthalpy or entropy of a phase by the property exports.
bool value_of(Library& library, const CaloricTrip& trip, double T, const Answer& phases, bool vapour,
              double& value) {
  const Question& state = trip.question.state;
  return library.property(trip.question.quantity, asks_gas(state, T, phases, vapour), T, state.P,
                          vapour ? phases.y : phases.x, value);
}

// The state: by the flash at T and P, or where that cannot meet two phases (feeds of nearly one component,
// every second state), by the temperature of a vapour fraction drawn from the state.
void set_state(Library& library, const Sides& sides, const Components& components, int k, const State& state,
               CaloricTrip& trip) {
  const Feed& feed = sides.feed;
  Question& q = trip.question.state;
  q = question_of(feed, components, state);
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
  trip.question.quantity = (k / 2) % 2 ? Quantity::entropy : Quantity::enthalpy;
  if (beta < 1 && !value_of(library, trip, q.T, trip.base, false, liquid)) return;
  if (beta > 0 && !value_of(library, trip, q.T, trip.base, true, vapour)) return;
  trip.question.value = (1 - beta) * liquid + beta * vapour;
  trip.usable = true;
}

double total_of(Library& library, const CaloricTrip& trip, double T, const Answer& phases) {
  double liquid = 0, vapour = 0;
  if (phases.beta < 1) value_of(library, trip, T, phases, false, liquid);
  if (phases.beta > 0) value_of(library, trip, T, phases, true, vapour);
  return (1 - phases.beta) * liquid + phases.beta * vapour;
}

// Value k of a grid: rows of one pressure each, the pressures evenly spaced in their logarithms, in a row the
// values between those of the feed as one phase at the ends of the temperatures.
void set_value(Library& library, const Feed& feed, const Components& components, int k, const GridPlan& plan,
               CaloricTrip& trip) {
  const int row = k / plan.columns;
  const double P = 0.05 * std::pow(4000.0, (row + plan.shift) / plan.rows);
  trip.question.quantity = row % 2 ? Quantity::entropy : Quantity::enthalpy;
  trip.question.given = true;
  double ends[2];
  for (int end = 0; end < 2; ++end) {
    // With free water up to where a fifth of a liquid at its limit is water: beyond, the rules describe no
    // liquid.
    const double wet = feed.solubility_b / (feed.solubility_a - std::log(0.2));
    const double T = end ? (feed.free_water ? wet : 700) : (feed.free_water ? 250 : 100);
    trip.question.state = question_of(feed, components, {T, P});
    ends[end] = total_of(library, trip, T, {0, 0, feed.z, feed.z, feed.z});
  }
  trip.question.value = ends[0] + (ends[1] - ends[0]) * (k % plan.columns + plan.shift) / plan.columns;
  const CaloricAnswer a = library.caloric(feed, trip.question.quantity, trip.question.value, P, 0);
  trip.question.state.T = a.T;
  trip.base = a.phases;
  trip.usable = true;
}

// Of a value on a grid: refused where no temperature has it, and the same from everywhere.
void judge_starts(Library& library, CaloricTrip& trip) {
  int jump = -1;  // not known
  for (int s = 0; s < start_count; ++s) {
    CaloricVerdict& verdict = trip.verdicts[s];
    const CaloricAnswer& a = trip.answers[s];
    if (a.phases.status == KV_NOT_CONVERGED && !trip.question.state.free_water) {
      const auto value_at = [&](double T, const Answer& phases) { return total_of(library, trip, T, phases); };
      if (jump < 0) jump = lies_in_jump(trip.question, value_at);
      if (jump == 1) verdict = {};
    } else if (verdict.group.empty() && !trip.question.state.free_water && trip.verdicts[0].group.empty() &&
               !(std::fabs(a.T - trip.answers[0].T) <= caloric_temperature_tolerance)) {
      verdict.group = "depends on the start";
      verdict.reason = "T is " + std::to_string(trip.answers[0].T) + " from another start";
    }
  }
}

void ask(Library& library, const Feed& feed, int k, const CaloricTrip* before, CaloricTrip& trip) {
  const Question& state = trip.question.state;
  trip.T_start[1] = std::max(10.0, state.T + (k % 4 < 2 ? 60 : -60));
  trip.T_start[2] = k % 2 ? 5 : 5000;
  if (before && before->base.status != 0 && before->base.status != KV_PURE_RANGE) before = nullptr;
  trip.T_start[3] = before ? before->question.state.T : 0;
  for (int s = 0; s < start_count; ++s) {
    CaloricAnswer& a = trip.answers[s];
    a = library.caloric(feed, trip.question.quantity, trip.question.value, state.P, trip.T_start[s],
                        s == 3 && before ? &before->base : nullptr);
    PhaseValues values;
    if (a.phases.status == KV_OK || a.phases.status == KV_PURE_RANGE) {
      values.liquid_known = value_of(library, trip, a.T, a.phases, false, values.liquid);
      values.vapour_known = value_of(library, trip, a.T, a.phases, true, values.vapour);
    }
    trip.verdicts[s] = judge_caloric(trip.question, a, values);
  }
  if (trip.question.given) judge_starts(library, trip);
}

void sweep_caloric(const Options& o, Library& library, const Feed& feed, int count_of, std::FILE* failures,
                   Tally& tally) {
  const Components components = read_components(o.data, feed.ids);
  const Sides sides(feed, components);
  library.prepare(feed, components);
  std::vector<CaloricTrip> trips;
  if (o.mode == Mode::values) {
    const int rows = std::max(2, static_cast<int>(std::sqrt(count_of / 2.0)));
    const GridPlan plan{rows, count_of / rows + 1, o.seed_of(feed) % 1009 / 1009.0};
    trips.resize(rows * plan.columns);
    parallel_for(static_cast<int>(trips.size()), o.jobs,
                 [&](int k) { set_value(library, feed, components, k, plan, trips[k]); });
  } else {
    const std::vector<State> states =
        make_states(feed, components, {count_of, o.jobs, o.critical_steps, o.seed_of(feed)});
    trips.resize(states.size());
    parallel_for(static_cast<int>(trips.size()), o.jobs,
                 [&](int k) { set_state(library, sides, components, k, states[k], trips[k]); });
  }
  parallel_for(static_cast<int>(trips.size()), o.jobs, [&](int k) {
    if (trips[k].usable)
      ask(library, feed, k, k > 0 && trips[k - 1].usable ? &trips[k - 1] : nullptr, trips[k]);
  });
  for (const CaloricTrip& trip : trips) {
    const CaloricQuestion& q = trip.question;
    tally.count("skip", !trip.usable);
    for (int s = 0; s < start_count && trip.usable; ++s) {
      const CaloricAnswer& a = trip.answers[s];
      const CaloricVerdict& v = trip.verdicts[s];
      count(a, v, s, tally);
      if (!v.group.empty())
        Line(failures) << feed.name << (q.quantity == Quantity::entropy ? "SP" : "HP") << q.value << q.state.P
                       << q.state.T << q.beta << names_of_starts[s] << trip.T_start[s] << a.phases.status << a.T
                       << a.phases.beta << v.group << v.reason << feed.z;
    }
  }
}

}  // namespace

int run_caloric(const Options& o, Library& library, std::FILE* failures) {
  std::fprintf(
      failures,
      "mixture,export,value,P_atm,T_K,beta,start,T_start,status,answer_T,answer_beta,group,reason,z\n");
  std::vector<Feed> feeds = all_feeds();
  if (o.mode == Mode::values)
    for (Feed& feed : value_feeds()) feeds.push_back(std::move(feed));
  const int count_of = o.states / start_count / static_cast<int>(feeds.size()) + 1;
  const Columns columns{{"trips", "single", "two", "three", "range", "other", "skip", "jump"},
                        {"T", "balance", "ln f"}};
  return run_over(o, columns, feeds, [&](const Feed& feed, Tally& tally) {
    sweep_caloric(o, library, feed, count_of, failures, tally);
  });
}

}  // namespace kestrune::sweep
