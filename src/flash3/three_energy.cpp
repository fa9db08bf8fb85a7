// An equilibrium at a temperature says which phases there are; Newton's method at these phases says where they
// would have the value; and the stability test says whether they still are the right ones there. The value
// never falls with temperature, so that every equilibrium closes a bracket. Where an iteration ends without an
// answer, that of the two-phase flash is gone on from (search_from_two_phases).

#include "flash3/three_energy.hpp"

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "flash/feed.hpp"
#include "flash/pure/pure_saturation.hpp"
#include "flash3/three_energy_state.hpp"
#include "flash3/three_free_water.hpp"

namespace kestrune::flash3 {
namespace {

using flash::kCold;
using flash::kColdest;
using flash::kDefaultTemperature;
using flash::kHottest;
using flash::plausible;

constexpr int kMostStates = 80, kMostDropped = 2;  // of a search; phases dropped from one solution
constexpr int kRetreats = 6;                       // towards where there was an answer
constexpr double kNoFurther = 0.02;  // relative distance from where there is no answer that is close enough
constexpr double kReached = 1e-11;   // of the value's size
constexpr double kNear = 1e-9;       // relative change of T that is left of a single phase
constexpr double kSameTemperature = 1e-13;  // relative width of a bracket that is an answer
constexpr double kBeside = 1e-8;            // relative distance from a bracket whose ends are this uncertain

void keep(EnergySearch& q) {
  KeptState& side = off(q) < 0.0 ? q.low : q.high;
  const double T = q.e.m.T;
  if (side.known && (off(q) < 0.0 ? T <= side.T : T >= side.T)) return;
  copy_phases(q.e.p, side.p, q.e.m.ld);
  side.T = T;
  side.known = true;
  side.fourth = q.state_status == KV_FOURTH_PHASE;
  side.gibbs = q.gibbs;
}

// The equilibrium at T, its value, and the bracket. False: q.status.
bool state_at(EnergySearch& q, double T, bool estimate) {
  q.status = set_conditions(T, q.call.P, q.e);
  if (q.status != KV_OK) return false;
  q.state_status = estimate ? find_equilibrium_from(q.e) : find_equilibrium(q.e);
  if (q.state_status != KV_OK && q.state_status != KV_FOURTH_PHASE) {
    q.status = q.state_status;
    return false;
  }
  if (!evaluate(q)) return false;
  keep(q);
  q.bracket.add(T, off(q));
  return true;
}

// Whether a status is of the model or of a host, and the same at any temperature.
bool model_refuses(StatusCode status) {
  return status > KV_STATUS_CALL_BLOCK && status != KV_NOT_FINITE;
}

// As state_at, nearer and nearer to where there was an answer.
bool state_towards(EnergySearch& q, double good, double T) {
  bool known = !q.bracket.closed() && (q.no_answer - good) * (q.no_answer - T) < 0.0;
  for (int k = 0; k < kRetreats; ++k) {
    if (k > 0 && std::fabs(T - good) <= kNoFurther * good) break;
    if (state_at(q, T, false)) return true;
    if (model_refuses(q.status)) return false;
    if (!known) q.no_answer = T;
    known = false;
    T = 0.5 * (q.no_answer + good);
  }
  return false;
}

// Whether the value lies below that of the coldest state that the model has; as in the flash of two phases.
bool below_coldest(EnergySearch& q, double from) {
  q.asked_coldest = true;
  const flash::Property property = q.call.property;
  if (flash::out_of_reach(property, from, off(q), q.Cp)) return true;
  const flash::Cold found = flash::ask_cold_states(from, [&](double T) {
    if (set_conditions(T, q.call.P, q.e) != KV_OK) return flash::Cold::unknown;
    const StatusCode status = find_equilibrium(q.e);
    if (model_refuses(status)) return flash::Cold::goes_on;
    if ((status != KV_OK && status != KV_FOURTH_PHASE) || !evaluate(q)) return flash::Cold::unknown;
    return flash::ask_cold_state(property, T, off(q), q.Cp, q.rising);
  });
  q.falling = found == flash::Cold::falling;
  return found == flash::Cold::beyond;
}

// The gate: e.p is an equilibrium, and at its temperature it has the value.
bool accept(EnergySearch& q) {
  Equilibrium& e = q.e;
  q.status = evaluate_phases(e.m, e.z, e.p, e.w, false);
  return q.status == KV_OK && accept(e) && evaluate(q) &&
         std::fabs(off(q)) <= flash::kOwedValue * size_of_value(q) && e.m.T >= kColdest && e.m.T <= kHottest;
}

bool reached(const EnergySearch& q) {
  return std::fabs(off(q)) <= kReached * size_of_value(q);
}

double next_temperature(const EnergySearch& q, double T, int count) {
  const flash::EnergyBracket& b = q.bracket;
  if (b.closed()) {
    const double next = b.secant();
    return count % 4 == 3 || !b.inside(next) ? 0.5 * (b.low + b.high) : next;
  }
  double next = q.slope > 0.0 ? T - off(q) / q.slope : off(q) < 0.0 ? T * 1.3 : T / 1.3;
  next = std::clamp(next, T / 1.5, T * 1.5);
  if (std::fabs(next - T) < 1e-6 * T) next = off(q) < 0.0 ? T * (1.0 + 1e-5) : T / (1.0 + 1e-5);
  return std::clamp(next, kColdest, kHottest);
}

// Towards the jump of a bracket that has one: beside it, or the middle where that did not close it by half.
bool state_towards_jump(EnergySearch& q) {
  const double width = (q.bracket.high - q.bracket.low) / q.bracket.high;
  double T = 0.0;
  bool low = false;
  const bool beside = width <= 0.5 * q.narrowed && beside_jump(q, T, low);
  q.narrowed = width;
  if (!state_towards(q, q.e.m.T, beside ? T : 0.5 * (q.bracket.low + q.bracket.high))) return false;
  if (beside && low != (off(q) < 0.0)) q.aside *= 8.0;
  return true;
}

// From the state at the start to the answer in e.p at e.m.T.
// Where no width is left, or a jump between: the value within what is owed, or no answer.
StatusCode end_between(EnergySearch& q) {
  q.status = KV_OK;
  if (solve_between_sides(q)) return q.state_status;
  return std::fabs(off(q)) <= flash::kOwedValue * size_of_value(q) ? q.state_status
                                                                   : StatusCode{KV_NOT_CONVERGED};
}

// Whether there is nothing to look at towards the next temperature: an end of the range, or below the cold states.
bool ends_before(EnergySearch& q, double T, double next) {
  const bool colder = T < kCold && next < T && !q.bracket.have_low;
  q.end_of_range = !q.bracket.closed() && (next == T || (colder && !q.asked_coldest && below_coldest(q, T)) ||
                                           (colder && q.falling && next < flash::kColdStates[0]));
  return q.end_of_range || next == T;
}

StatusCode search(EnergySearch& q) {
  for (int count = 0; count < kMostStates; ++count) {
    if (reached(q)) return q.state_status;
    const double T = q.e.m.T;
    const double width = q.bracket.high - q.bracket.low;
    q.jump = is_jump(q);
    if (q.jump || (q.bracket.closed() && width <= kSameTemperature * T)) return end_between(q);
    const double next = next_temperature(q, T, count);
    // Newton at the phases here; what it finds is confirmed, or else looked at as one more state.
    q.status = KV_OK;
    const bool solved = solve_at_phases(q, T);
    if (solved && q.bracket.inside(q.s.T)) {
      if (confirm(q)) return q.state_status;
      if (q.status == KV_OK && q.e.m.T != T && count % 3 != 2) continue;
    }
    if (q.bracket.closed()) {
      q.status = KV_OK;
      if (solve_between_sides(q)) return q.state_status;
      if (model_refuses(q.status)) return q.status;
    }
    if (q.bracket.closed() && other_three(q) && state_towards_jump(q)) continue;
    if (ends_before(q, T, next)) return KV_NOT_CONVERGED;
    if (!state_towards(q, T, next)) return model_refuses(q.status) ? q.status : StatusCode{KV_NOT_CONVERGED};
  }
  return KV_NOT_CONVERGED;
}

// Whether another way may lead to an answer where one has ended with this status.
bool is_mended(StatusCode status) {
  return status == KV_NOT_CONVERGED || status == KV_NOT_FINITE;
}

/*
 * From the answer of the two-phase flash, which follows a vapour that grows all at once: it stands where
 * nothing cuts it, else it is where the search goes on.
 */
StatusCode search_from_two_phases(EnergySearch& q) {
  const ThreeEnergyCall& c = q.call;
  Equilibrium& e = q.e;
  double T = 0.0, beta = 0.0, values[2];
  const eos::Context silent = c.context.silent();
  const StatusCode status = flash::energy_flash(
      {{e.z, silent, c.routines}, c.property, c.wanted, c.P, &T, &beta, e.x, e.y, e.K, values, values + 1});
  if (status != KV_OK) return status;
  q.bracket = {};
  q.low.known = q.high.known = false;
  q.attempted = 1.0;
  q.s.T = T;
  q.status = KV_OK;
  const bool two = beta > 0.0 && beta < 1.0;
  if (two) put_two_phases(e, beta);
  if (two ? confirm(q) : state_at(q, T, false) && accept(q)) return q.state_status;
  return q.status == KV_OK && (q.low.known || q.high.known) ? search(q) : StatusCode{KV_NOT_CONVERGED};
}

// Values by place: A, B and vapour, in the order that write_phases has just given to e.p.
StatusCode write_answer(EnergySearch& q, StatusCode found) {
  const ThreeEnergyCall& c = q.call;
  *c.T = q.e.m.T;
  const StatusCode written = write_phases(q.e, c.out);
  if (written != KV_OK && written != KV_LV_ANSWER && written != KV_LL_ANSWER) return written;
  if (!evaluate(q)) return q.status != KV_OK ? q.status : StatusCode{KV_NOT_FINITE};
  // The values as they leave, by routines of a host that may have changed their mind.
  const Phases& p = q.e.p;
  const bool met = std::fabs(off(q)) <= owed(c, q.e.m.T);
  if (found == KV_OK && !(met && flash::is_split(q.e.m.n, q.e.z, p.count, p.amount, p.x)))
    return KV_NOT_CONVERGED;
  const int count = p.count;
  double A = 0.0, B = 0.0, vapour = 0.0;
  if (written == KV_OK || (written == KV_LL_ANSWER && count == 2)) {
    A = q.phase[0];
    B = q.phase[1];
    vapour = count == 3 ? q.phase[2] : 0.0;
  } else if (written == KV_LL_ANSWER) {
    B = q.phase[0];
  } else {
    A = count == 2 ? q.phase[0] : 0.0;
    vapour = q.phase[count - 1];
  }
  *c.A = A;
  *c.B = B;
  *c.vapour = vapour;
  return found == KV_OK ? written : found;
}

// ---- a single component ----

StatusCode single_component(const ThreeEnergyCall& c, support::Arena& arena) {
  const int n = c.context.record->count;
  double beta = 0.0, liquid = 0.0, vapour = 0.0;
  double *const x = arena.zeros(n), *const y = arena.zeros(n), *const K = arena.zeros(n),
                *const z = arena.zeros(n);
  flash::normalise_feed(n, c.z, z);
  drop_traces(n, z);  // as the phases are written
  const StatusCode status = flash::energy_flash({{z, c.context, c.routines, c.free_water},
                                                 c.property,
                                                 c.wanted,
                                                 c.P,
                                                 c.T,
                                                 &beta,
                                                 x,
                                                 y,
                                                 K,
                                                 &liquid,
                                                 &vapour});
  if (status != KV_OK) return status;
  const bool split = split_free_water(
      {.T = *c.T, .P = c.P, .context = c.context, .V = beta, .x = x, .y = y, .free_water = c.free_water},
      c.out);
  // Of hardly anything but water: what else there is has the value of the whole liquid.
  *c.A = liquid;
  *c.B = split ? liquid : 0.0;
  *c.vapour = vapour;
  return KV_LV_ANSWER;
}

// Everything that a search works with, on two arenas: one for what stays with a temperature of the flash.
StatusCode with_search(const ThreeEnergyCall& c, support::Arena& arena, support::Arena& model_arena) {
  const int n = c.context.record->count, ld = support::padded(n);
  const flash::Settings settings = flash::copy_settings(c.context);
  support::TraceWriter trace(settings.trace, settings.trace_unit);
  EnergySearch q{c, {}, {}, {}, {}, {}, {}, {}};
  q.s.e = &q.e;
  q.s.caloric = &q.caloric;
  q.s.what = c.property == flash::Property::enthalpy ? Specify::enthalpy : Specify::entropy;
  q.s.wanted = c.wanted;
  take_specified(arena, n, ld, q.s);
  take_phases(arena, ld, q.low.p);
  take_phases(arena, ld, q.high.p);
  take_phases(arena, ld, q.joined);
  const double start = plausible(*c.T) ? *c.T : kDefaultTemperature;
  q.caloric.property = c.property;
  q.caloric.P = c.P;
  q.caloric.z = c.z;
  q.caloric.context = c.context;
  q.caloric.routines = c.routines;
  // Where the value has no slopes those of the fugacities are needed.
  const int order = q.caloric.analytic() ? 0 : 1;
  StatusCode status = open_equilibrium(c, start, c.P, order, model_arena, trace, q.e);
  if (status != KV_OK) return status;
  q.caloric.z = q.e.z;
  flash::open_caloric(arena, q.caloric);
  q.caloric.base = arena.mark();
  const bool given = c.start != flash::Start::cold && take_estimate(c.out, q.e);
  const bool started =
      state_at(q, start, given) || (start != kDefaultTemperature && state_at(q, kDefaultTemperature, false));
  status = started ? search(q) : q.status;
  if (is_mended(status) && !q.end_of_range && !q.jump) {
    const StatusCode other = search_from_two_phases(q);
    if (other == KV_OK || other == KV_FOURTH_PHASE) status = other;
  }
  const bool answer = status == KV_OK || status == KV_FOURTH_PHASE;
  return answer ? write_answer(q, status) : status;
}

}  // namespace

bool evaluate(EnergySearch& q) {
  Phases& p = q.e.p;
  const bool analytic = q.caloric.analytic();
  q.value = q.slope = q.Cp = 0.0;
  q.gibbs = {};
  q.rising = true;
  if (analytic) q.status = flash::prepare_caloric(q.caloric, q.e.m.T);
  double* const x = q.s.spare;
  for (int j = 0; j < p.count && q.status == KV_OK; ++j) {
    std::copy_n(p.x[j], q.e.m.ld, x);
    drop_traces(q.e.m.n, x);
    if (analytic) {
      flash::PhaseCaloric c;
      c.ln_phi = q.s.raw[j];
      c.dln_phi_dT = q.s.dtau[j];
      c.Z = p.Z[j];
      if (!flash::phase_caloric(q.caloric, x, flash::Kind::stable, c)) q.status = KV_NOT_FINITE;
      q.phase[j] = c.value;
      q.slope += p.amount[j] * c.slope;
      q.Cp += p.amount[j] * c.Cp;
      q.rising = q.rising && c.slope > 0.0;
      q.gibbs.add(q.e.m.n, p.amount[j], x, c);
    } else {
      const int phase = j == find_vapour(q.e) ? KV_PHASE_GAS : KV_PHASE_LIQUID;
      q.status = flash::phase_value(q.caloric, q.e.m.T, x, phase, q.phase[j]);
    }
    q.value += p.amount[j] * q.phase[j];
  }
  return q.status == KV_OK && std::fabs(q.value) <= DBL_MAX;
}

bool solve_at_phases(EnergySearch& q, double T) {
  if (!q.caloric.analytic()) return false;
  q.s.T = T;
  q.s.P = q.call.P;
  for (int dropped = 0; dropped <= kMostDropped; ++dropped) {
    StatusCode status = KV_OK;
    const Found found = solve_specified(q.s, status);
    if (found == Found::yes) return q.s.T > kColdest && q.s.T < kHottest;
    if (found != Found::negative || q.e.p.count < 2) return false;
    drop_least(q.e.p, q.e.z, q.e.m.ld);
    q.s.T = std::clamp(q.s.T, 0.9 * T, 1.1 * T);
  }
  return false;
}

bool confirm(EnergySearch& q) {
  // The value of three phases of two components is any along their line: an end of the bracket that was met
  // there may lie on the wrong side of it.
  const double beside = kBeside * q.s.T;
  if (!(q.s.T >= q.bracket.low - beside && q.s.T <= q.bracket.high + beside)) return false;
  q.status = set_conditions(q.s.T, q.call.P, q.e);
  if (q.status != KV_OK) return false;
  const int count = q.e.p.count;
  if (count == 1) {
    // The flash at this temperature tells; the value is that of the same phase.
    return state_at(q, q.s.T, false) && q.e.p.count == 1 && std::fabs(off(q)) <= kNear * q.s.T * q.slope;
  }
  q.status = test_equilibrium(q.e);
  if (q.status != KV_OK) return false;
  if (!q.e.third.found) {
    q.state_status = KV_OK;
    return accept(q);
  }
  state_at(q, q.s.T, true);
  return q.status == KV_OK && q.state_status == KV_FOURTH_PHASE && q.e.p.count == count &&
         std::fabs(off(q)) <= flash::kOwedValue * size_of_value(q);
}

StatusCode three_energy_flash(const ThreeEnergyCall& c) {
  const int n = c.context.record->count;
  if (const StatusCode bad = flash::check_feed_sum(c.z, *c.context.record); bad != KV_OK) return bad;
  if (*c.T == 0.0) *c.T = kDefaultTemperature;
  const int j = flash::single_component_of_feed(n, c.z, flash::pure_tolerance(*c.context.record));
  // Of a feed of hardly anything but another component the water that it has is a liquid of its own.
  if (j >= 0 && (!c.free_water || j == eos::find_water_family(*c.context.record)))
    return support::with_arena<0, 5>(n, [&](support::Arena& arena) { return single_component(c, arena); });
  if (c.free_water) return three_energy_free_water(c);
  return support::with_arena<12, 100>(n, [&](support::Arena& arena) {
    return support::with_arena<12, 80>(n, [&](support::Arena& model) { return with_search(c, arena, model); });
  });
}

}  // namespace kestrune::flash3
