// The main solver, section 7 of docs/method.md. An isothermal flash says which phases there are at a
// temperature; Newton's method at these phases says where the value would be reached; and the stability test
// says whether they are still the right ones there. Every isothermal flash closes the bracket around the
// temperature, since the value rises with it. Where that does not end soon the bracket is closed to its end,
// see energy_close.cpp.

#include "flash/energy/energy_flash.hpp"

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "flash/energy/energy_state.hpp"
#include "flash/feed.hpp"
#include "flash/pure/pure_saturation.hpp"
#include "flash/settings.hpp"
#include "flash/trace_flash.hpp"
#include "support/mathkernels.hpp"

namespace kestrune::flash {
namespace {

// Flashes of an iteration; up to how many of them Newton's method goes on from each new state without a step of the
// bracket between; from how many a closed bracket is left to close_bracket.
constexpr int kMostFlashes = 60, kSecantFrom = 6, kCloseFrom = 12;
// Where the flash has no answer: halvings back to the last one that had, then steps past it.
constexpr int kRetreats = 6, kAdvances = 4;
constexpr double kOtherStarts[] = {kDefaultTemperature, 200.0, 450.0, 700.0, 120.0};  // K
constexpr double kAdvance = 1.17;    // of T, past where the flash has no answer
constexpr double kNoFurther = 0.05;  // relative distance from there that is close enough
constexpr double kSameTwo = 1e-6;    // fractions of phases that are the same

void take_state(support::Arena& arena, int ld, EnergyState& s) {
  for (double** a : {&s.x, &s.y}) *a = arena.zeros(ld);
}

// The phase counted by beta is the less densely packed one.
void order_phases(Energy& e, EnergyState& s) {
  if (!lighter(*e.call.context.record, s.x, e.liquid.Z, s.y, e.vapour.Z)) return;
  std::swap_ranges(s.x, s.x + e.ld, s.y);
  s.beta = 1.0 - s.beta;
}

bool same_phases(const Energy& e, const EnergyState& a, const EnergyState& b) {
  double apart = std::fabs(a.beta - b.beta);
  for (int i = 0; i < e.n; ++i)
    apart = std::max({apart, std::fabs(a.x[i] - b.x[i]), std::fabs(a.y[i] - b.y[i])});
  return apart <= kSameTwo;
}

// Where to look next when Newton has no answer within the bracket.
double next_temperature(const Energy& e, const EnergyState& s) {
  const EnergyBracket& b = e.bracket;
  if (b.closed()) {
    const double T = b.secant();
    return e.flashes % 8 == 7 || !b.inside(T) ? 0.5 * (b.low + b.high) : T;
  }
  const double f = e.f(s);
  double T = s.slope > 0.0 ? s.T - f / s.slope : f < 0.0 ? s.T * 1.3 : s.T / 1.5;
  T = std::clamp(T, s.T / 1.5, s.T * 1.5);
  return std::clamp(T, kColdest, kHottest);
}

/*
 * Newton on the feed as one phase from e.spare.T, and the flash at the temperature found, whose answer e.state
 * becomes. True: it is one phase there, and the answer.
 */
bool solve_as_one_phase(Energy& e) {
  EnergyState& s = e.spare;
  if (solve_one_phase(e, s) != Local::converged || !e.worth_a_look(s.T)) return false;
  if (!equilibrium_at(e, s.T, false, s)) return false;
  copy_state(e, s, e.state);
  return !s.two_phases() && accept(e, e.state, Found::flash);
}

// Newton at the phases that the state has. True: the state is the answer.
bool solve_locally(Energy& e) {
  if (!e.model.analytic()) return false;
  EnergyState& s = e.spare;
  copy_state(e, e.state, s);
  if (s.two_phases()) {
    const Local local = solve_phases(e, s);
    if (local == Local::converged) return true;
    if (e.status != KV_OK) return false;
    if (local == Local::unstable) {
      (e.f(e.state) < 0.0 ? e.turned_low : e.turned_high) = true;
      if (!e.worth_a_look(s.T)) return false;
      // Something splits off: what the flash says there. Of a state with three phases it may be the same two.
      if (!equilibrium_at(e, s.T, false, e.other)) return false;
      copy_state(e, e.other, e.state);
      if (!same_phases(e, s, e.other) || !accept(e, s, Found::flash)) return false;
      copy_state(e, s, e.state);
      return true;
    }
    if (local != Local::vanished) s.T = e.state.T;
  }
  // One phase, or two of which one vanishes: where would the feed as one phase have the value?
  return solve_as_one_phase(e);
}

// As equilibrium_at: nearer and nearer to where there was an answer, then past where there is none.
bool equilibrium_towards(Energy& e, double T) {
  const double good = e.state.T;
  bool known = !e.bracket.closed() && (e.no_answer - good) * (e.no_answer - T) < 0.0;
  double nearer = T;
  for (int k = 0; k < kRetreats; ++k) {
    if (k > 0 && std::fabs(nearer - good) <= kNoFurther * good) break;
    if (equilibrium_at(e, nearer, false, e.state)) return true;
    if (model_refuses(e)) return false;
    if (!known) e.no_answer = nearer;
    known = false;
    nearer = 0.5 * (e.no_answer + good);
  }
  double past = T;
  for (int k = 0; k < kAdvances; ++k) {
    past = T > good ? past * kAdvance : past / kAdvance;
    if (!e.bracket.inside(past)) return false;
    if (equilibrium_at(e, past, false, e.state)) return true;
  }
  return false;
}

// The first state that a flash has an answer at, from where the search is started.
bool first_equilibrium(Energy& e) {
  if (equilibrium_at(e, e.start_T, e.call.start != Start::cold, e.state)) return true;
  for (const double T : kOtherStarts) {
    if (model_refuses(e)) return false;
    if (T != e.start_T && equilibrium_at(e, T, false, e.state)) return true;
  }
  return false;
}

/*
 * Whether the value lies below that of the coldest state that the model has. Else, where it might lie between, e.falling
 * says that it is not looked for below the first of the cold states.
 */
bool below_coldest(Energy& e) {
  e.asked_coldest = true;
  const Property property = e.call.property;
  if (out_of_reach(property, e.state.T, e.f(e.state), e.state.Cp)) return true;
  const Cold found = ask_cold_states(e.state.T, [&](double T) {
    if (model_refuses(e) || !equilibrium_at(e, T, false, e.other)) return Cold::unknown;
    return ask_cold_state(property, T, e.f(e.other), e.other.Cp, e.other.rising);
  });
  e.falling = found == Cold::falling;
  if (found == Cold::beyond) copy_state(e, e.other, e.state);
  return found == Cold::beyond;
}

// Whether the search ends where it would go to T: at an end of the range, or below what the model has in the cold.
bool ends_before(Energy& e, double T) {
  if (T == e.state.T && !e.bracket.closed()) {
    e.limit = e.f(e.state) < 0.0 ? kLimitReached : -kLimitReached;
    return true;
  }
  const bool colder = e.state.T < kCold && T < e.state.T && !e.bracket.have_low;
  const bool below = colder && ((!e.asked_coldest && below_coldest(e)) || (e.falling && T < kColdStates[0]));
  if (below) e.limit = -kLimitReached;
  return below;
}

// No flash has led from e.state.T, then from, towards T: the bracket is closed by itself, or the model ends here.
StatusCode end_towards(Energy& e, double from, double T) {
  if (e.bracket.closed()) return close_bracket(e);
  if (model_refuses(e)) return e.status;
  e.limit = T > from ? kLimitReached : -kLimitReached;
  return KV_NOT_CONVERGED;
}

/*
 * Without an estimate of the phases the first flash is where the feed as one phase would have the value. True: that was
 * the answer.
 */
bool solved_by_first_guess(Energy& e) {
  if (e.call.start != Start::cold || !e.model.analytic()) return false;
  e.spare.T = e.start_T;
  if (solve_as_one_phase(e)) return true;
  if (e.flashes == 0 && plausible(e.spare.T)) e.start_T = e.spare.T;
  return false;
}

// Whether the bracket is better closed by itself.
bool left_to_bracket(const Energy& e) {
  return e.bracket.closed() && (e.flashes >= kCloseFrom || (e.turned_low && e.turned_high) || pairs_cross(e));
}

// Isothermal flashes and Newton's method at what they find, until the bracket is better closed by itself.
StatusCode iterate(Energy& e) {
  if (solved_by_first_guess(e)) return KV_OK;
  if ((e.flashes == 0 || e.status != KV_OK) && !first_equilibrium(e)) return e.status;
  while (e.flashes < kMostFlashes) {
    trace_energy_pass(e.trace, e.call, e.state.T, e.state.beta, e.state.liquid, e.state.vapour);
    add_to_bracket(e);
    if (has_value(e, e.state) && accept(e, e.state, Found::flash)) return KV_OK;
    if (left_to_bracket(e)) return close_bracket(e);
    const int before = e.flashes;
    if (solve_locally(e)) return KV_OK;
    if (e.status != KV_OK && e.status != KV_NOT_FINITE) return e.bracket.closed() ? close_bracket(e) : e.status;
    if (e.flashes != before && e.flashes < kSecantFrom) continue;  // a new state was looked at
    if (e.flashes != before) add_to_bracket(e);
    const double T = next_temperature(e, e.state), from = e.state.T;
    if (ends_before(e, T)) return KV_NOT_CONVERGED;
    if (!equilibrium_towards(e, T)) return end_towards(e, from, T);
  }
  return KV_NOT_CONVERGED;
}

StatusCode write_state(Energy& e, StatusCode status) {
  const EnergyCall& c = e.call;
  const EnergyState& s = e.state;
  *c.T = s.T;
  *c.beta = s.beta;
  write_split(e.n, s.x, s.y, c.x, c.y, c.K);
  *c.liquid = s.beta < 1.0 ? s.liquid : 0.0;
  *c.vapour = s.beta > 0.0 ? s.vapour : 0.0;
  trace_energy_pass(e.trace, c, *c.T, *c.beta, *c.liquid, *c.vapour);
  trace_energy_result(e.trace, c);
  return status;
}

// The search, which ends within CRIT of the value, and from there the main solver to the value itself.
StatusCode search_and_prove(Energy& e, bool warm) {
  const StatusCode status = search_temperature(e, warm);
  e.state.T = *e.call.T;
  if (status != KV_OK) return status;
  e.bracket = {};
  e.flashes = 1;
  add_to_bracket(e);
  if (has_value(e, e.state) && accept(e, e.state, Found::flash)) return KV_OK;
  if (solve_locally(e)) return KV_OK;
  return KV_NOT_CONVERGED;
}

// The driver: single component, main solver, search.
StatusCode drive(Energy& e, support::Arena& arena) {
  const EnergyCall& c = e.call;
  const bool warm = c.start != Start::cold;
  if (*c.T == 0.0) *c.T = kDefaultTemperature;
  e.start_T = plausible(*c.T) ? *c.T : kDefaultTemperature;
  trace_energy_header(e.trace, c, e.start_T);
  e.state.T = e.start_T;
  if (warm) {
    e.state.beta = *c.beta;
    for (int i = 0; i < e.n; ++i) {
      e.state.x[i] = c.x[i];
      e.state.y[i] = c.y[i];
    }
    copy_state(e, e.state, e.spare);
  }
  const int j = single_component_of_feed(e.n, c.z, pure_tolerance(*c.context.record));
  if (j >= 0) {
    const StatusCode status = solve_single_component(e, j, arena);
    if (status == KV_OK && accept(e, e.state, Found::component, j)) return write_state(e, KV_OK);
    if (status != KV_OK && status != kNotApplicable) return write_state(e, status);
  }
  EnergyState saved = e.saved;
  if (warm) copy_state(e, e.state, saved);
  StatusCode status = iterate(e);
  const bool search = (status == KV_SINGLE_PHASE || status == KV_NOT_CONVERGED || status == KV_DAMPING) &&
                      std::fabs(e.limit) != kLimitReached && !e.jump;
  if (!search) return write_state(e, status);
  *c.T = e.state.T;
  if (warm) {
    const double T = e.state.T;
    copy_state(e, saved, e.state);
    e.state.T = T;
  }
  return write_state(e, search_and_prove(e, warm));
}

// Everything that a flash works with, then run(flash, arena).
template <class Run>
StatusCode with_energy(const EnergyCall& call, support::Arena& arena, Run&& run) {
  const Settings settings = copy_settings(call.context);
  support::TraceWriter trace(settings.trace, settings.trace_unit);
  CaloricModel model;
  model.property = call.property;
  model.P = call.P;
  model.context = call.context;
  model.routines = call.routines;
  model.free_water = call.free_water;
  Energy e(call, model, trace);
  e.n = call.context.record->count;
  e.ld = support::padded(e.n);
  e.silent = call.context.silent();
  double* z = arena.zeros(e.ld);
  if (!normalise_feed(e.n, call.z, z)) return KV_COMPOSITION;
  e.z = model.z = z;
  for (EnergyState* s : {&e.state, &e.spare, &e.saved, &e.other, &e.low, &e.high}) take_state(arena, e.ld, *s);
  for (double** a : {&e.in_liquid, &e.in_vapour, &e.scale, &e.gap, &e.gap_dT, &e.step, &e.along_T, &e.K,
                     &e.liquid.ln_phi, &e.liquid.dln_phi_dT, &e.vapour.ln_phi, &e.vapour.dln_phi_dT})
    *a = arena.zeros(e.ld);
  const std::size_t square = static_cast<std::size_t>(e.ld) * e.n;
  for (double** a : {&e.liquid_dn, &e.vapour_dn, &e.system}) *a = arena.take(square);
  open_caloric(arena, model);
  e.fugacities.P = call.P;
  e.fugacities.context = e.silent;
  e.fugacities.host = call.routines;
  e.fugacities.n = e.n;
  e.fugacities.ld = e.ld;
  e.fugacities.bracub = call.context.tools->cubic_root();
  for (double** a : {&e.fugacities.s, &e.fugacities.row}) *a = arena.zeros(e.ld);
  model.base = arena.mark();
  const StatusCode status = run(e, arena);
  if (call.flashes != nullptr) *call.flashes = e.flashes;
  return status;
}

}  // namespace

void copy_state(const Energy& e, const EnergyState& from, EnergyState& to) {
  double *const x = to.x, *const y = to.y;
  std::copy_n(from.x, e.ld, x);
  std::copy_n(from.y, e.ld, y);
  to = from;
  to.x = x;
  to.y = y;
}

Local solve_phases(Energy& e, EnergyState& s) {
  const Local local = solve_two_phases(e, s);
  if (local != Local::converged) return local;
  if (!e.bracket.about(s.T)) return Local::failed;
  order_phases(e, s);
  if (!accept(e, s, Found::newton)) return e.status == KV_OK ? Local::unstable : Local::failed;
  copy_state(e, s, e.state);
  return Local::converged;
}

IsothermalCall isothermal_call(Energy& e, EnergyState& s) {
  IsothermalCall c{{e.z, e.silent, e.call.routines, e.call.free_water}, s.T, e.call.P, &s.beta, s.x, s.y, e.K};
  if (e.model.analytic() && prepare_caloric(e.model, s.T) == KV_OK) {
    e.fugacities.T = s.T;
    e.fugacities.t = e.model.t;
    c.model = &e.fugacities;
  }
  return c;
}

namespace {

// Values of the phases of s, a liquid x and a vapour y where it has them, with their slopes. False: e.status.
bool evaluate_with_slopes(Energy& e, const double* x, const double* y, EnergyState& s) {
  e.status = prepare_caloric(e.model, s.T);
  if (e.status != KV_OK) return false;
  const bool liquid = s.beta<1.0, vapour = s.beta> 0.0, two = liquid && vapour;
  e.liquid.dn = e.vapour.dn = nullptr;
  e.liquid.Z = e.vapour.Z = 0.0;
  s.rising = true;
  s.Cp = 0.0;
  s.gibbs = {};
  const auto add = [&](double amount, const double* phase, Kind kind, PhaseCaloric& c, double& value) {
    if (!phase_caloric(e.model, phase, two ? kind : Kind::stable, c)) e.status = KV_NOT_FINITE;
    value = c.value;
    if (!two) s.slope = c.slope;
    s.rising = s.rising && !(c.slope <= 0.0);
    s.Cp += amount * c.Cp;
    s.gibbs.add(e.n, amount, phase, c);
  };
  if (liquid) add(1.0 - s.beta, x, Kind::liquid, e.liquid, s.liquid);
  if (vapour) add(s.beta, y, Kind::gas, e.vapour, s.vapour);
  return true;
}

}  // namespace

bool evaluate_state(Energy& e, EnergyState& s) {
  s.liquid = s.vapour = s.slope = 0.0;
  const bool liquid = s.beta<1.0, vapour = s.beta> 0.0;
  const double* x = s.beta > 0.0 ? s.x : e.z;
  const double* y = s.beta < 1.0 ? s.y : e.z;
  if (!e.model.analytic()) {
    e.status = KV_OK;
    if (liquid) e.status = phase_value(e.model, s.T, x, KV_PHASE_LIQUID, s.liquid);
    if (vapour && e.status == KV_OK) e.status = phase_value(e.model, s.T, y, KV_PHASE_GAS, s.vapour);
  } else if (!evaluate_with_slopes(e, x, y, s)) {
    return false;
  }
  s.value = (liquid ? (1.0 - s.beta) * s.liquid : 0.0) + (vapour ? s.beta * s.vapour : 0.0);
  return e.status == KV_OK && std::fabs(s.value) <= DBL_MAX;
}

bool equilibrium_at(Energy& e, double T, bool warm, EnergyState& s) {
  ++e.flashes;
  s.T = T;
  IsothermalCall c = isothermal_call(e, s);
  c.start = warm ? Start::warm : Start::cold;
  c.index = warm ? 0 : 1;
  c.trace = &e.trace;
  s.status = isothermal_flash(c);
  if (s.status == KV_SINGLE_PHASE) s.status = KV_OK;
  e.status = s.status;
  return s.status == KV_OK && evaluate_state(e, s);
}

StatusCode energy_flash(const EnergyCall& call) {
  return support::with_arena<12, 220>(call.context.record->count,
                                      [&](support::Arena& arena) { return with_energy(call, arena, drive); });
}

StatusCode energy_search(const EnergyCall& call) {
  const auto run = [](Energy& e, support::Arena&) { return write_state(e, search_and_prove(e, false)); };
  return support::with_arena<12, 220>(call.context.record->count,
                                      [&](support::Arena& arena) { return with_energy(call, arena, run); });
}

}  // namespace kestrune::flash
