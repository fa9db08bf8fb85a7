// The flash with free water, section 6 of docs/method.md: the feed as a gas, then as a liquid, then two
// fluids from what was missing: whatever passes the gate first is the answer. An estimate only shortens the
// way to two fluids, so that warm and cold starts end alike.

#include "flash/wet/wet_flash.hpp"

#include <algorithm>
#include <cmath>

#include "flash/accept.hpp"
#include "flash/feed.hpp"
#include "flash/trace_flash.hpp"
#include "flash/wet/wet_state.hpp"
#include "support/mathkernels.hpp"

namespace kestrune::flash {
namespace {

// Starts of the flash's own, by the numbers that the trace shows.
enum Source { kFromWilson = 1, kFromTrial = 3, kFromDryFeed = 5 };

StatusCode write_answer(Wet& f, StatusCode status) {
  const IsothermalCall& c = f.call;
  const WetAnswer& a = f.answer;
  *c.beta = a.beta;
  for (int i = 0; i < f.m.n; ++i) {
    c.x[i] = a.x[i];
    // Not below the bound of K, so that K is the ratio of what is returned.
    c.y[i] = std::max(a.y[i], kSmallestK * a.x[i]);
    c.K[i] = ratio_of(c.y[i], c.x[i]);
  }
  trace_result(f.trace, c, f.it);
  return status;
}

// One fluid: beside it what is nearest to forming.
StatusCode finish_single(Wet& f) {
  WetAnswer& a = f.answer;
  const int w = f.m.water;
  const bool gas = a.beta == 1.0;
  const WetTrial& nearest = gas ? f.liquid : f.vapour;
  double* const other = gas ? a.x : a.y;
  if (nearest.found) std::copy_n(nearest.w, f.m.n, other);
  if (gas && std::log(a.activity) >= (nearest.found ? nearest.ln_sum : -1e300)) {
    std::fill_n(other, f.m.n, 0.0);
    other[w] = 1.0;
  }
  return write_answer(f, KV_SINGLE_PHASE);
}

StatusCode finish(Wet& f) {
  return f.answer.beta == 1.0 || f.answer.beta == 0.0 ? finish_single(f) : write_answer(f, KV_OK);
}

// The feed as a liquid, free water included.
void feed_as_liquid(Wet& f) {
  f.answer.beta = 0.0;
  std::copy_n(f.z, f.m.ld, f.answer.x);
  std::copy_n(f.z, f.m.ld, f.answer.y);
}

// Almost nothing but water: steam or water, by its vapour pressure.
StatusCode water_alone(Wet& f) {
  WetAnswer& a = f.answer;
  a.Zy = 0.0;
  if (!gas_fugacity(f, f.z, a.phi_y, a.Zy)) return f.status;
  const double over = std::log(f.water * f.m.P / f.m.psat.value) + a.phi_y[f.m.water];
  feed_as_liquid(f);
  if (over <= 0.0 && (!(a.Zy > 0.0) || loosely_packed(f, f.z, a.Zy))) a.beta = 1.0;
  return write_answer(f, KV_SINGLE_PHASE);
}

// ---- starts of two fluids, into f.log_k ----

double saturated_gas_water(const Wet& f, double ln_phi_w) {
  return std::log(f.m.psat.value / f.m.P) - ln_phi_w;
}

// Mole fractions of the hydrocarbons that hold water up to their limit, in those of a liquid with this much
// water.
double oil_scale(const Wet& f, const double* x) {
  const double s = f.m.solubility.value, oil = oil_of(f.m.n, f.m.water, x);
  return x[f.m.water] > s && oil > 0.0 ? (1.0 - s) / oil : 1.0;
}

// From what was missing beside the answer of which it was.
void start_from_trial(Wet& f, const WetTrial& t, bool trial_is_gas) {
  const double* const other = trial_is_gas ? f.answer.x : f.answer.y;
  const double scale = trial_is_gas ? oil_scale(f, other) : 1.0;
  for (int i = 0; i < f.m.n; ++i) {
    // ln phi of the answer's phase by the fugacity and its composition, of hydrocarbons without free water.
    const double ln_phi = f.answer.d[i] - support::fast_log(scale * other[i]);
    f.log_k[i] =
        std::clamp(trial_is_gas ? ln_phi - t.ln_phi[i] : t.ln_phi[i] - ln_phi, -kLargestLogK, kLargestLogK);
  }
  f.log_k[f.m.water] = saturated_gas_water(f, trial_is_gas ? t.ln_phi[f.m.water] : f.answer.phi_y[f.m.water]);
  f.it.source = kFromTrial;
}

void start_from_wilson(Wet& f) {
  for (int i = 0; i < f.m.n; ++i) f.log_k[i] = support::fast_log(f.wilson_k[i]);
  f.log_k[f.m.water] = std::min(saturated_gas_water(f, 0.0), std::log(0.9));
  f.it.source = kFromWilson;
}

// From an estimate whose liquid may hold free water.
void start_from_estimate(Wet& f) {
  const IsothermalCall& c = f.call;
  const int w = f.m.water;
  const double scale = oil_scale(f, c.x);
  for (int i = 0; i < f.m.n; ++i) {
    double k = f.wilson_k[i];
    if (c.x[i] > 0.0 && c.y[i] > 0.0) k = c.y[i] / (scale * c.x[i]);
    f.log_k[i] = std::clamp(std::log(k), -kLargestLogK, kLargestLogK);
  }
  f.log_k[w] = c.y[w] > 0.0 ? std::log(c.y[w]) : saturated_gas_water(f, 0.0);
  f.it.source = 0;
}

// From the flash of the feed without its water. False: it is one phase.
bool start_from_dry_feed(Wet& f) {
  double beta = 0.0;
  const eos::Context silent = f.call.context.silent();
  if (isothermal_flash({{f.dry, silent, f.call.routines}, f.call.T, f.call.P, &beta, f.it.x, f.it.y, f.it.k}) !=
      KV_OK)
    return false;
  for (int i = 0; i < f.m.n; ++i) f.log_k[i] = support::fast_log(f.it.k[i]);
  f.log_k[f.m.water] = std::min(saturated_gas_water(f, 0.0), std::log(0.9));
  f.it.source = kFromDryFeed;
  return true;
}

bool usable_estimate(const Wet& f) {
  const IsothermalCall& c = f.call;
  return c.start != Start::cold && *c.beta > 0.0 && *c.beta < 1.0 && usable_compositions(f.m.n, c.x, c.y);
}

// An answer of two phases that a third one cuts, kept in case nothing better is found.
struct Kept {
  bool any = false, liquids = false;
  double beta = 0.0;
  double *x, *y;
  double* log_k;  // where the split into its liquid and the one that cuts starts
};

// What was missing as the liquid, and the liquid beside the gas in the gas's place, by the equation of state.
// False: f.status.
bool keep_two_liquids(Wet& f, Kept& kept) {
  const int n = f.m.n, w = f.m.water;
  const double scale = oil_scale(f, f.answer.x), s = std::min(f.m.solubility.value, f.answer.x[w]);
  for (int i = 0; i < n; ++i) f.spare[i] = i == w ? s : scale * f.answer.x[i];
  double Z = 0.0;
  if (!gas_fugacity(f, f.spare, f.g, Z)) return false;
  for (int i = 0; i < n; ++i) kept.log_k[i] = f.liquid.ln_phi[i] - f.g[i];
  kept.log_k[w] = saturated_gas_water(f, f.g[w]);
  kept.liquids = true;
  return true;
}

bool try_split(Wet& f, Kept& kept) {
  bool third = false;
  if (!split_two(f)) return false;
  if (accept(f, third)) return true;
  if (f.exchanged && f.status == KV_OK) {
    // Two liquids with their names exchanged.
    for (int i = 0; i < f.m.n; ++i) f.log_k[i] = f.answer.phi_y[i] - f.answer.phi_x[i];
    f.log_k[f.m.water] = saturated_gas_water(f, f.answer.phi_x[f.m.water]);
    if (!split_two(f)) return false;
    if (accept(f, third)) return true;
  }

  if (third && !kept.any) {
    if (f.liquid.found && !keep_two_liquids(f, kept)) return false;
    kept.any = true;
    kept.beta = f.answer.beta;
    std::copy_n(f.answer.x, f.m.n, kept.x);
    std::copy_n(f.answer.y, f.m.n, kept.y);
  }
  return false;
}

// Where two fluids may start: from what is missing beside the feed as a gas and as a liquid. ln K, [ld].
struct Starts {
  bool have_gas = false, have_liquid = false;
  double *gas_k = nullptr, *liquid_k = nullptr;
};

// Two fluids from all starts there are. True: f.answer; else f.status may say why.
bool try_two_fluids(Wet& f, const Starts& starts, Kept& kept) {
  for (const auto& [have, k] :
       {std::pair{starts.have_gas, starts.gas_k}, std::pair{starts.have_liquid, starts.liquid_k}}) {
    if (!have || f.status != KV_OK) continue;
    f.it.source = kFromTrial;
    std::copy_n(k, f.m.n, f.log_k);
    if (try_split(f, kept)) return true;
  }
  if (f.status == KV_OK && start_from_dry_feed(f) && try_split(f, kept)) return true;
  if (f.status != KV_OK) return false;
  start_from_wilson(f);
  return try_split(f, kept);
}

// The same; then of two liquids either may hold the water: from the pair that was kept for that, and from all again.
bool try_either_way(Wet& f, const Starts& starts, Kept& kept) {
  if (try_two_fluids(f, starts, kept)) return true;
  f.either_way = f.two_liquids || kept.liquids;
  if (f.status == KV_OK && kept.liquids) {
    std::copy_n(kept.log_k, f.m.n, f.log_k);
    if (try_split(f, kept)) return true;
  }
  return f.status == KV_OK && f.two_liquids && try_two_fluids(f, starts, kept);
}

// Nothing passed the gate: the best of what a third phase cuts, or nothing.
StatusCode end_without_answer(Wet& f, const Kept& kept) {
  if (!kept.any) return write_answer(f, KV_TRIVIAL);
  f.answer.beta = kept.beta;
  std::copy_n(kept.x, f.m.n, f.answer.x);
  std::copy_n(kept.y, f.m.n, f.answer.y);
  if (f.call.third != nullptr) f.call.third->found = true;
  return write_answer(f, KV_OK);
}

StatusCode solve(Wet& f, Kept& kept, Starts starts) {
  trace_header(f.trace, f.call, f.settings);
  wilson(f.call.T, f.call.P, *f.call.context.record, true, f.wilson_k, nullptr);
  const bool given = usable_estimate(f);
  if (f.water > 1.0 - KV_DEFAULT_PURE_TOLERANCE) return water_alone(f);
  // One fluid, or a gas beside water; what is missing is kept as a start.
  bool third = false, good_gas = false;
  if (feed_as_gas(f)) {
    good_gas = accept(f, third);
    // A fluid that is a liquid by its name comes second.
    if (good_gas && called_gas(f, f.answer.y, f.answer.Zy)) return finish(f);
    starts.have_gas = f.liquid.found && f.liquid.ln_sum > 0.0;
    if (starts.have_gas) start_from_trial(f, f.liquid, false);
    std::copy_n(f.log_k, f.m.n, starts.gas_k);
  }
  if (f.status != KV_OK) return f.status;  // of the fugacity routine: the results keep what they held
  feed_as_liquid(f);
  // A fluid that is stable as both goes by its name.
  if (accept(f, third) && (!good_gas || f.liquid_by_name)) return finish(f);
  // A gas, or another liquid in its place.
  const bool gas = f.vapour.found && f.vapour.ln_sum > 0.0;
  starts.have_liquid = gas || (f.liquid.found && f.liquid.ln_sum > 0.0);
  if (starts.have_liquid) start_from_trial(f, gas ? f.vapour : f.liquid, true);
  std::copy_n(f.log_k, f.m.n, starts.liquid_k);
  if (f.status != KV_OK) return f.status;
  if (good_gas && feed_as_gas(f) && accept(f, third)) return finish(f);
  if (given) {
    start_from_estimate(f);
    if (try_split(f, kept)) return finish(f);
  }
  feed_as_liquid(f);  // what is left where none is found does not tell where the search began
  if (try_either_way(f, starts, kept)) return finish(f);
  return f.status != KV_OK ? f.status : end_without_answer(f, kept);
}

void take_trial(support::Arena& arena, int ld, WetTrial& t) {
  for (double** a : {&t.log_w, &t.w, &t.ln_phi}) *a = arena.zeros(ld);
}

// Everything that a flash works with, then body(flash, arena).
template <class Body>
StatusCode with_wet(const IsothermalCall& call, Body&& body) {
  return support::with_arena<5, 81>(call.context.record->count, [&](support::Arena& arena) -> StatusCode {
    Model m;
    const StatusCode status = make_model(call.T, call.P, call.context, call.routines, true, 0, arena, m);
    if (status != KV_OK) return status;
    m.branch = WaterBranch::by_content;
    Settings settings = copy_settings(call.context);
    apply_robust_settings(kModelOptions, settings);
    support::TraceWriter writer(settings.trace, settings.trace_unit);
    FlashTrace trace{call.trace != nullptr ? *call.trace : writer};
    Wet f(call, m, settings, trace);
    const int n = m.n;
    const std::size_t ld = m.ld, square = ld * n;
    double* const z = arena.zeros(ld);
    if (!normalise_feed(n, call.z, z)) return KV_COMPOSITION;
    f.z = f.it.z = z;
    f.dry = arena.zeros(ld);
    f.water = z[m.water];
    f.rest = 0.0;
    for (int i = 0; i < n; ++i) f.rest += i == m.water ? 0.0 : z[i];
    for (int i = 0; i < n; ++i) f.dry[i] = i == m.water || !(f.rest > 0.0) ? 0.0 : z[i] / f.rest;
    f.pseudo_critical = pseudo_critical_temperature(*call.context.record, f.dry);
    WetAnswer& a = f.answer;
    for (double** p : {&f.wilson_k, &f.log_k, &f.g, &f.before, &f.spare, &a.x, &a.y, &a.phi_x, &a.phi_y, &a.d})
      *p = arena.zeros(ld);
    for (WetTrial* t : {&f.trial, &f.liquid, &f.vapour}) take_trial(arena, m.ld, *t);
    for (const auto array : kIterateArrays) f.it.*array = arena.zeros(ld);
    f.two = {arena.zeros(ld),    arena.zeros(ld),    arena.zeros(ld),
             arena.take(square), arena.take(square), arena.take(square)};
    const StatusCode result = body(f, arena);
    if (call.counts != nullptr) *call.counts = m.counts;
    return result;
  });
}

}  // namespace

StatusCode wet_flash(const IsothermalCall& call) {
  return with_wet(call, [](Wet& f, support::Arena& arena) {
    Kept kept;
    kept.x = arena.zeros(f.m.ld);
    kept.y = arena.zeros(f.m.ld);
    kept.log_k = arena.zeros(f.m.ld);
    Starts starts;
    starts.gas_k = arena.zeros(f.m.ld);
    starts.liquid_k = arena.zeros(f.m.ld);
    return solve(f, kept, starts);
  });
}

StatusCode check_wet(const IsothermalCall& call, bool& good, bool& third) {
  return with_wet(call, [&](Wet& f, support::Arena&) -> StatusCode {
    f.answer.beta = *call.beta;
    f.answer.boundary = *call.beta == 0.0 || *call.beta == 1.0;
    std::copy_n(call.x, f.m.n, f.answer.x);
    std::copy_n(call.y, f.m.n, f.answer.y);
    wilson(f.call.T, f.call.P, *f.call.context.record, true, f.wilson_k, nullptr);
    good = accept(f, third);
    // The dew point of what is a liquid by its name, and stable as one, is none.
    if (good && *call.beta == 1.0 && !called_gas(f, f.answer.y, f.answer.Zy)) {
      bool cut = false;
      f.answer.boundary = false;
      feed_as_liquid(f);
      good = !(accept(f, cut) && f.liquid_by_name);
    }
    return f.status;
  });
}

}  // namespace kestrune::flash
